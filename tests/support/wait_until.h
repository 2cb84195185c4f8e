#pragma once

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

namespace vornic::test {

/// Blocks for \a time, and handles the events of the calling thread as they come.
inline void handleEventsFor(std::chrono::milliseconds time)
{
    if (!QAbstractEventDispatcher::instance()) {
        std::this_thread::sleep_for(time);
        return;
    }
    QTimer timer;
    timer.setSingleShot(true);
    timer.start(time);
    while (timer.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// For waitUntil(), where the condition itself does something each time, such as drawing the next picture.
constexpr std::chrono::milliseconds everyMillisecond(1);

/// Blocks until \a condition holds, \a timeout at most, and says whether it did; \a condition is asked on the
/// calling thread, every millisecond at first, then less and less often up to every \a maxPause, because many
/// conditions start a program. Events of that thread are handled meanwhile, so that it may be the main thread.
inline bool waitUntil(const std::function<bool()> &condition,
                      std::chrono::milliseconds timeout = std::chrono::seconds(20),
                      std::chrono::milliseconds maxPause = std::chrono::milliseconds(20))
{
    using namespace std::chrono;
    constexpr milliseconds minPause(1);
    const auto begin = steady_clock::now();
    const QDeadlineTimer deadline(timeout);
    while (!condition()) {
        if (deadline.hasExpired())
            return condition();
        const auto waited = duration_cast<milliseconds>(steady_clock::now() - begin);
        handleEventsFor(std::clamp(waited / 8, minPause, maxPause));
    }
    return true;
}

} // namespace vornic::test
