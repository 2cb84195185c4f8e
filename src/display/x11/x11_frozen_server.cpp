#include "display/x11/x11_frozen_server.h"

#include "base/log.h"
#include "base/main_queue.h"
#include "base/thread.h"
#include "x11/x11_connection.h"

#include <QCoreApplication>

#include <atomic>
#include <chrono>
#include <memory>
#include <semaphore>
#include <system_error>
#include <thread>
#include <utility>

namespace vornic {

namespace {

using namespace std::chrono_literals;

constexpr auto maxAbsence = 10s;
constexpr auto betweenLooks = 500ms;

/// On a thread that nobody waits for. Where there can be none, \a work is left undone.
void runApart(std::function<void()> work)
{
    try {
        startThread("vornic frozen X", std::move(work)).detach();
    } catch (const std::system_error &) {
    }
}

/// Whether it is there, and takes no new connection.
bool isFrozen()
{
    const auto hasAnswered = std::make_shared<std::binary_semaphore>(0);
    runApart([hasAnswered] {
        static_cast<void>(X11Connection::await());
        hasAnswered->release();
    });
    return !hasAnswered->try_acquire_for(2s);
}

void closeAll()
{
    logMessage(QCoreApplication::translate(
        "vornic", "The X server has not answered the window for ten seconds; it is closed."));
    X11Connection::closeAll();
}

/// Whether the main thread comes to its loop in time.
bool mainThreadIsBack()
{
    const auto isBack = std::make_shared<std::binary_semaphore>(0);
    main_queue::async([isBack] { isBack->release(); });
    return isBack->try_acquire_for(maxAbsence);
}

void freeMainThread(const std::atomic<bool> &hasAnswered)
{
    while (!hasAnswered && mainThreadIsBack())
        std::this_thread::sleep_for(betweenLooks);
    if (!hasAnswered)
        closeAll();
}

} // namespace

void awaitFrozenServer(std::function<void()> reconnect)
{
    const auto hasAnswered = std::make_shared<std::atomic<bool>>(false);
    runApart([reconnect = std::move(reconnect), hasAnswered] {
        reconnect();
        *hasAnswered = true;
    });
    runApart([hasAnswered] { freeMainThread(*hasAnswered); });
}

bool MainThreadWatch::isBack()
{
    ++m_looks;
    if (!m_sign) {
        m_sign = std::make_shared<std::atomic<bool>>(false);
        main_queue::async([sign = m_sign] { *sign = true; });
    }
    return *m_sign;
}

void closeAllIfFrozen()
{
    if (isFrozen())
        closeAll();
}

void leaveFrozenServer()
{
    if (isFrozen())
        X11Connection::closeAll();
}

} // namespace vornic
