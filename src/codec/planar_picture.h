#pragma once

#include <QtGlobal>

#include <array>
#include <memory>
#include <mutex>
#include <new>
#include <vector>

namespace vornic {

class PlanarPicturePool;

/// The memory of one 4:2:0 picture: planes Y, Cb and Cr in one block, rows top to bottom.
///
/// Made by a PlanarPicturePool. Shared by frames; whoever writes must be the only one that holds it.
class PlanarPicture
{
public:
    /// The size is rounded up to even. Bytes are undefined at first.
    PlanarPicture(int width, int height);

    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    [[nodiscard]] int planeWidth(int plane) const { return plane == 0 ? m_width : m_width / 2; }
    [[nodiscard]] int planeHeight(int plane) const { return plane == 0 ? m_height : m_height / 2; }
    [[nodiscard]] uchar *data(int plane) { return m_memory.get() + offset(plane); }
    [[nodiscard]] const uchar *data(int plane) const { return m_memory.get() + offset(plane); }
    [[nodiscard]] qsizetype stride(int plane) const { return plane == 0 ? m_stride : m_stride / 2; }
    [[nodiscard]] std::size_t byteCount() const { return m_byteCount; }

    /// A copy of the pixels that nobody else holds, from the same pool while that still exists.
    [[nodiscard]] std::shared_ptr<PlanarPicture> copy() const;
    /// Repeats column \a width - 1 and row \a height - 1 of the luma into what is stored beyond that size.
    void repeatLumaEdges(int width, int height);
    /// Of the limited range.
    void fillBlack();
    /// Copies all of \a picture to where its upper left is at \a x, \a y, which are even; it must fit.
    void put(const PlanarPicture &picture, int x, int y);

private:
    friend class PlanarPicturePool;
    struct AlignedDelete {
        void operator()(uchar *memory) const { ::operator delete(memory, alignment); }
    };
    /// Rows start on a cache line, which also suits vector code.
    static constexpr std::align_val_t alignment { 64 };

    [[nodiscard]] qsizetype offset(int plane) const;

    int m_width;
    int m_height;
    qsizetype m_stride;
    std::size_t m_byteCount;
    std::unique_ptr<uchar, AlignedDelete> m_memory;
    std::weak_ptr<PlanarPicturePool> m_pool;
};

/// Reuses the memory of pictures that nobody holds any more: the page faults of fresh memory cost about as
/// much as converting a picture.
///
/// Made by whoever makes many pictures; take() and the return of a picture happen on any thread.
class PlanarPicturePool : public std::enable_shared_from_this<PlanarPicturePool>
{
public:
    [[nodiscard]] std::shared_ptr<PlanarPicture> take(int width, int height);

private:
    void giveBack(std::unique_ptr<PlanarPicture> picture);

    std::mutex m_mutex;
    std::vector<std::unique_ptr<PlanarPicture>> m_free; ///< all of one size
};

} // namespace vornic
