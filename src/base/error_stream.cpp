#include "base/error_stream.h"

#include "base/printable.h"
#include "base/thread.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace vornic {

namespace {

constexpr qsizetype mostWaitingBytes = 1 << 20;
constexpr std::chrono::seconds lastWait(2);

/// Waits for who takes the bytes. False when \a stop is requested, or nobody ever will.
bool awaitTaker(int descriptor, const std::stop_token &stop)
{
    constexpr int lookAgainMs = 100;
    pollfd watched { descriptor, POLLOUT, 0 };
    while (!stop.stop_requested()) {
        const int ready = ::poll(&watched, 1, lookAgainMs);
        if (ready > 0)
            return (watched.revents & POLLOUT) != 0;
        if (ready < 0 && errno != EINTR)
            return false;
    }
    return false;
}

} // namespace

ErrorStream::ErrorStream(int descriptor)
    : m_descriptor(descriptor)
{
    try {
        m_thread = startThread("vornic errors", [this] { writeAll(m_stop.get_token()); });
    } catch (const std::system_error &) {
        // Without a thread whoever tells something writes it.
    }
}

ErrorStream::~ErrorStream()
{
    m_stop.request_stop();
    if (m_thread.joinable())
        m_thread.join();
}

void ErrorStream::writeLine(const QString &line)
{
    const std::lock_guard lock(m_mutex);
    add({ lineEnd() + printable(line).toUtf8() + '\n' });
}

void ErrorStream::redraw(const QString &line)
{
    const std::lock_guard lock(m_mutex);
    if (!m_waiting.empty() && m_waiting.back().isRedrawn) {
        m_waitingBytes -= m_waiting.back().bytes.size();
        m_waiting.pop_back();
    }
    add({ "\r\x1b[K" + printable(line).toUtf8(), true });
    m_lineIsOpen = true;
}

void ErrorStream::endRedrawnLine()
{
    const std::lock_guard lock(m_mutex);
    if (m_lineIsOpen)
        add({ lineEnd() });
}

/// What goes in front of a new line.
QByteArray ErrorStream::lineEnd()
{
    return std::exchange(m_lineIsOpen, false) ? QByteArrayLiteral("\n") : QByteArray();
}

void ErrorStream::add(Piece piece)
{
    if (!m_thread.joinable()) {
        write(piece.bytes, {});
        return;
    }
    if (m_waitingBytes + piece.bytes.size() > mostWaitingBytes)
        return;
    m_waitingBytes += piece.bytes.size();
    m_waiting.push_back(std::move(piece));
    m_changed.notify_all();
}

void ErrorStream::writeAll(const std::stop_token &stop)
{
    std::unique_lock lock(m_mutex);
    while (m_changed.wait(lock, stop, [this] { return !m_waiting.empty(); })) {
        const Piece piece = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_waitingBytes -= piece.bytes.size();
        m_isWriting = true;
        lock.unlock();
        write(piece.bytes, stop);
        lock.lock();
        m_isWriting = false;
        m_changed.notify_all();
    }
}

/// What nobody can take is dropped.
void ErrorStream::write(const QByteArray &bytes, const std::stop_token &stop) const
{
    for (qsizetype done = 0; done < bytes.size() && awaitTaker(m_descriptor, stop);) {
        // So much a pipe that is ready takes without waiting.
        const auto count = static_cast<std::size_t>(std::min<qsizetype>(bytes.size() - done, PIPE_BUF));
        const ssize_t written = ::write(m_descriptor, bytes.constData() + done, count);
        if (written > 0)
            done += written;
        else if (written < 0 && errno != EINTR && errno != EAGAIN)
            return;
    }
}

bool ErrorStream::flush(std::chrono::nanoseconds longest)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, longest, [this] { return m_waiting.empty() && !m_isWriting; });
}

ErrorStream &standardError()
{
    // Never destroyed: other threads may have something to tell until the very end.
    static ErrorStream *const stream = [] {
        auto *made = new ErrorStream(STDERR_FILENO);
        std::atexit([] { standardError().flush(lastWait); });
        return made;
    }();
    return *stream;
}

} // namespace vornic
