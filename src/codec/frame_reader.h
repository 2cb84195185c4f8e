#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>

namespace vornic {

class PKVideoFrame2;

/// Reads frames ahead on a thread of its own, so that reading overlaps with encoding.
///
/// Made by a MovieWriter, which calls next() on its thread.
class FrameReader
{
public:
    using Source = std::function<std::shared_ptr<const PKVideoFrame2>()>;

    /// Starts calling \a source, on the reader's thread only, until it gives null or throws. A request to \a stop
    /// ends the waits in next(). Throws std::system_error where there is no thread to be had.
    explicit FrameReader(Source source, std::stop_token stop = {});
    /// Waits for the running call of the source; there is none afterwards.
    ~FrameReader();
    FrameReader(const FrameReader &) = delete;
    FrameReader &operator=(const FrameReader &) = delete;

    /// Blocks for the next frame; null at the end, or once the stop was requested. Throws what the source threw,
    /// after the frames before it.
    [[nodiscard]] std::shared_ptr<const PKVideoFrame2> next();

private:
    /// Pictures read ahead at most, of about 3 MB at 1920 x 1080: enough to cover a slow one, together with those that
    /// the encoder looks ahead.
    static constexpr std::ptrdiff_t maxPictures = 3;
    /// Frames read ahead at most; those that share the pixels of the one before take no memory.
    static constexpr std::size_t maxFrames = 32;

    [[nodiscard]] bool isFull() const;
    void run();
    bool readOne();

    Source m_source; ///< reader's thread only
    std::stop_token m_stop;

    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::deque<std::shared_ptr<const PKVideoFrame2>> m_frames; ///< guarded, as all below
    std::exception_ptr m_failure;
    bool m_hasEnded = false;   ///< the source gives no more
    bool m_isStopping = false; ///< the reader is being destroyed

    std::thread m_thread;
};

} // namespace vornic
