#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

struct pw_buffer;
struct spa_pod;

namespace vornic::test {

/// One buffer of a CastSource.
struct SourceFrame {
    QImage picture = {};            ///< Format_RGB32; null for one of the pointer alone
    std::vector<QRect> damage = {}; ///< three at most
    int transform = 0;
    std::optional<QPoint> pointer = {};
    QImage pointerPicture = {}; ///< Format_ARGB32_Premultiplied, of 16 x 16 pixels at most; null: as before
    QPoint hotSpot = {};
};

/// A stream of pictures in PipeWire, as a compositor makes it for a screen cast, of which a test says each frame.
///
/// Made and destroyed on the test's main thread, which calls everything; has a thread of the library's.
class CastSource
{
public:
    /// \a remoteFd, a connection to PipeWire, is taken. Returns once the stream has a number; null, with the reason on
    /// standard error, when it gets none. Pictures have \a size.
    [[nodiscard]] static std::unique_ptr<CastSource> start(int remoteFd, QSize size);
    /// The stream ends.
    ~CastSource();
    CastSource(const CastSource &) = delete;
    CastSource &operator=(const CastSource &) = delete;

    /// Its number in PipeWire.
    [[nodiscard]] std::uint32_t node() const { return m_node; }
    /// Somebody has connected to it and takes pictures.
    [[nodiscard]] bool isStreaming() const { return m_isStreaming; }
    /// Pictures have \a size as soon as whoever takes them agrees; send() fails until then.
    void resize(QSize size);
    /// With the next number. False where no buffer is free, or none has the size of the picture.
    [[nodiscard]] bool send(const SourceFrame &frame);
    /// Sends \a frame until \a isSo, and says whether it was: while PipeWire is busy it keeps a frame until the next.
    [[nodiscard]] bool sendUntil(const SourceFrame &frame, const std::function<bool()> &isSo);
    /// Leaves out a number, as for a frame that was lost.
    void loseFrame() { ++m_sequence; }
    /// From now on frames have no numbers, as those of some compositors.
    void stopCounting() { m_counts = false; }
    /// How many buffers there are.
    [[nodiscard]] int bufferCount() const { return m_bufferCount; }

private:
    struct Handles;
    struct Callbacks;

    explicit CastSource(QSize size);
    [[nodiscard]] bool connect(int remoteFd);
    void stateChanged(int state);
    void formatAgreed(const spa_pod *param);
    void addMemory(pw_buffer &buffer);
    void removeMemory(pw_buffer &buffer);
    void fill(pw_buffer &buffer, const SourceFrame &frame);

    QSize m_size; ///< under the library's lock, as the next
    QSize m_agreedSize;
    std::uint64_t m_sequence = 0; ///< of the last frame; on the test's thread
    bool m_counts = true;         ///< the same
    std::atomic<std::uint32_t> m_node;
    std::atomic<bool> m_isStreaming = false;
    std::atomic<int> m_bufferCount = 0;
    std::unique_ptr<Handles> m_handles;
};

} // namespace vornic::test
