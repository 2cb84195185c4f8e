#include "app/session/signal_watch.h"

#include "base/thread.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace vornic {

namespace {

constexpr std::chrono::seconds longestWait { 10 };

} // namespace

SignalWatch::SignalWatch(std::function<void()> unheard)
    : m_unheard(std::move(unheard))
{
    std::array<int, 2> sockets { -1, -1 };
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0)
        return;
    m_told = sockets[0];
    m_read = sockets[1];
    try {
        m_thread = startThread("vornic signals", [this] { watch(); });
    } catch (const std::system_error &) { // the main thread hears of signals all the same
    }
}

SignalWatch::~SignalWatch()
{
    m_heard.release();
    ::shutdown(m_told, SHUT_RDWR);
    if (m_thread.joinable())
        m_thread.join();
    ::close(m_told);
    ::close(m_read);
}

void SignalWatch::watch()
{
    char byte = 0;
    while (true) {
        const ssize_t count = ::read(m_read, &byte, sizeof byte);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return;
        if (!m_heard.try_acquire_for(longestWait))
            m_unheard();
    }
}

} // namespace vornic
