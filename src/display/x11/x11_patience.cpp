#include "display/x11/x11_patience.h"

#include "base/log.h"
#include "base/thread.h"
#include "x11/x11_connection.h"

#include <QCoreApplication>

#include <utility>

namespace vornic {

X11Patience::Waiting::Waiting(X11Patience &patience)
    : m_patience(patience)
{
    const std::lock_guard lock(patience.m_mutex);
    m_looks = patience.m_waits.insert(patience.m_waits.end(), 0);
    patience.m_wasAsked = true;
    if (std::exchange(patience.m_isAsleep, false))
        patience.m_isAsked.notify_one();
}

X11Patience::Waiting::~Waiting()
{
    const std::lock_guard lock(m_patience.m_mutex);
    m_patience.m_waits.erase(m_looks);
}

X11Patience::X11Patience(X11Connection &connection, std::function<void()> closed)
    : m_connection(connection)
    , m_closed(std::move(closed))
    , m_thread(startThread("vornic patience", [this] { watch(m_stop.get_token()); }))
{
}

X11Patience::~X11Patience()
{
    m_stop.request_stop();
    m_thread.join();
}

void X11Patience::watch(const std::stop_token &stop)
{
    std::unique_lock lock(m_mutex);
    while (!stop.stop_requested()) {
        m_isAsleep = maySleep();
        if (m_isAsleep)
            m_isAsked.wait(lock, stop, [this] { return !m_isAsleep; });
        m_isAsked.wait_for(lock, stop, betweenLooks, [] { return false; });
        if (hasWaitedTooLong())
            break;
    }
    if (stop.stop_requested())
        return;
    lock.unlock();
    logMessage(QCoreApplication::translate("vornic", "The X server has not answered for two seconds."));
    m_connection.close();
    m_closed();
}

/// In a recording the main thread is asked by every pass. When that ends it may be because of the server, too.
bool X11Patience::maySleep()
{
    if (std::exchange(m_wasAsked, false) || !m_waits.empty()) {
        m_main = {};
        return false;
    }
    if (!m_main.isBack()) {
        if (m_main.looks() < maxLooksForMain)
            return false;
        closeAllIfFrozen();
    }
    m_main = {};
    return true;
}

bool X11Patience::hasWaitedTooLong()
{
    for (int &looks : m_waits)
        ++looks;
    return !m_waits.empty() && m_waits.front() > maxLooks;
}

} // namespace vornic
