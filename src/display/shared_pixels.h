#pragma once

#include <QtGlobal>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace vornic {

class BitmapImage;

/// Memory for one picture that a display server may map too, and a count of the images that show it.
///
/// Made by a grabber, which alone writes to it, and only while isFree(). The images keep it alive and may
/// be let go on any thread.
class SharedPixels
{
public:
    /// Null when there is no memory.
    [[nodiscard]] static std::shared_ptr<SharedPixels> create(std::size_t size);
    ~SharedPixels();
    SharedPixels(const SharedPixels &) = delete;
    SharedPixels &operator=(const SharedPixels &) = delete;

    [[nodiscard]] uchar *data() const { return m_data; }
    [[nodiscard]] std::size_t size() const { return m_size; }
    /// The file descriptor of the memory, through which it can be mapped; from now on the caller's. -1 from the
    /// second call on.
    [[nodiscard]] int takeFileDescriptor();

    /// No image shows the memory; what their readers have done with it has happened before.
    [[nodiscard]] bool isFree() const { return m_images.load(std::memory_order_acquire) == 0; }
    void addImage() { m_images.fetch_add(1, std::memory_order_relaxed); }
    void dropImage() { m_images.fetch_sub(1, std::memory_order_release); }

private:
    SharedPixels(int fileDescriptor, uchar *data, std::size_t size);

    int m_fileDescriptor;
    uchar *m_data;
    std::size_t m_size;
    std::atomic<int> m_images { 0 };
};

/// An image over \a pixels, without a copy: rows of 4 * width bytes from its start.
[[nodiscard]] std::shared_ptr<const BitmapImage> imageOver(std::shared_ptr<SharedPixels> pixels,
                                                           int width,
                                                           int height,
                                                           std::vector<std::uint64_t> bandVersions);

} // namespace vornic
