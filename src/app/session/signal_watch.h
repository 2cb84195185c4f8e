#pragma once

#include <functional>
#include <semaphore>
#include <thread>

namespace vornic {

/// Calls back when the main thread has not heard of a signal for ten seconds: it waits, somewhere in a library, for what
/// may never come, and nothing else could end the program in order.
///
/// Made by UnixSignals. Has a thread of its own, on which it calls back, and which sleeps until there is a signal.
class SignalWatch
{
public:
    /// Without a thread to be had it does nothing.
    explicit SignalWatch(std::function<void()> unheard);
    ~SignalWatch();
    SignalWatch(const SignalWatch &) = delete;
    SignalWatch &operator=(const SignalWatch &) = delete;

    /// Where a signal's handler writes one byte; -1: there is no such place.
    [[nodiscard]] int descriptor() const { return m_told; }
    /// The main thread has heard of one.
    void heard() { m_heard.release(); }

private:
    void watch();

    std::function<void()> m_unheard;
    int m_told = -1;
    int m_read = -1;
    std::counting_semaphore<> m_heard { 0 };
    std::thread m_thread; ///< last: it uses all of it
};

} // namespace vornic
