#pragma once

#include "display/x11/x11_frozen_server.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <stop_token>
#include <thread>

namespace vornic {

class X11Connection;

/// Ends the wait for a server that is frozen, and not gone, so that nothing else would: when somebody has waited for two
/// seconds, the connection is closed. When nobody asks any more it makes sure that the main thread does not wait instead.
///
/// Made by X11Display for its connection; used from any thread. Has a thread of its own, which sleeps while nobody asks
/// the server.
class X11Patience
{
public:
    /// Somebody asks the server, on this thread, for as long as it lives.
    class Waiting
    {
    public:
        explicit Waiting(X11Patience &patience);
        ~Waiting();
        Waiting(const Waiting &) = delete;
        Waiting &operator=(const Waiting &) = delete;

    private:
        X11Patience &m_patience;
        std::list<int>::iterator m_looks;
    };

    /// Borrows \a connection for life. \a closed is called once it was closed, on the own thread.
    X11Patience(X11Connection &connection, std::function<void()> closed);
    ~X11Patience();
    X11Patience(const X11Patience &) = delete;
    X11Patience &operator=(const X11Patience &) = delete;

private:
    /// Looks are counted, and not the time between them: while this process itself was stopped nobody waited.
    static constexpr std::chrono::milliseconds betweenLooks { 100 };
    static constexpr int maxLooks = 20;

    /// So long may the main thread stay away from its loop while the capture waits for it, and not for the server.
    static constexpr int maxLooksForMain = 100;

    void watch(const std::stop_token &stop);
    [[nodiscard]] bool hasWaitedTooLong();
    [[nodiscard]] bool maySleep();

    X11Connection &m_connection;
    std::function<void()> m_closed;
    std::mutex m_mutex;
    std::condition_variable_any m_isAsked;
    std::list<int> m_waits;  ///< for each the looks that it has lasted, the longest first
    bool m_wasAsked = false; ///< since the last look
    MainThreadWatch m_main;  ///< since nobody has asked any more
    bool m_isAsleep = false;
    std::stop_source m_stop;
    std::thread m_thread; ///< last: it uses all of it
};

} // namespace vornic
