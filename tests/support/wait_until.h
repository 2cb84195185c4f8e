#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <chrono>
#include <functional>
#include <thread>

namespace vornic::test {

/// Blocks until \a condition holds, \a timeout at most, and says whether it did; \a condition is asked on the
/// calling thread. Events of that thread are handled meanwhile, so that it may be the main thread.
inline bool waitUntil(const std::function<bool()> &condition,
                      std::chrono::milliseconds timeout = std::chrono::seconds(20))
{
    const QDeadlineTimer deadline(timeout);
    while (!condition()) {
        if (deadline.hasExpired())
            return condition();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace vornic::test
