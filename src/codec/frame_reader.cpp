#include "codec/frame_reader.h"

#include "base/thread.h"
#include "codec/PKVideoFrame2.h"

#include <utility>

namespace vornic {

FrameReader::FrameReader(Source source, std::stop_token stop)
    : m_source(std::move(source))
    , m_stop(std::move(stop))
    , m_thread(startThread("vornic-frames", [this] { run(); }))
{
}

FrameReader::~FrameReader()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

std::shared_ptr<const PKVideoFrame2> FrameReader::next()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, m_stop, [this] { return !m_frames.empty() || m_hasEnded; });
    if (m_stop.stop_requested())
        return nullptr;
    if (m_frames.empty()) {
        if (m_failure)
            std::rethrow_exception(std::exchange(m_failure, nullptr));
        return nullptr;
    }
    auto frame = std::move(m_frames.front());
    m_frames.pop_front();
    lock.unlock();
    m_changed.notify_all();
    return frame;
}

bool FrameReader::isFull() const
{
    std::ptrdiff_t pictures = m_frames.empty() ? 0 : 1;
    for (std::size_t i = 1; i < m_frames.size(); ++i)
        pictures += m_frames[i]->sharesPixelsWith(*m_frames[i - 1]) ? 0 : 1;
    return m_frames.size() >= maxFrames || pictures >= maxPictures;
}

void FrameReader::run()
{
    std::exception_ptr failure;
    try {
        while (readOne()) { }
    } catch (...) {
        failure = std::current_exception();
    }
    {
        const std::scoped_lock lock(m_mutex);
        m_hasEnded = true;
        m_failure = failure;
    }
    m_changed.notify_all();
}

bool FrameReader::readOne()
{
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !isFull() || m_isStopping; });
        if (m_isStopping)
            return false;
    }
    auto frame = m_source();
    if (!frame)
        return false;
    {
        const std::scoped_lock lock(m_mutex);
        m_frames.push_back(std::move(frame));
    }
    m_changed.notify_all();
    return true;
}

} // namespace vornic
