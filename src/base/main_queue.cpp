#include "base/main_queue.h"

#include "base/assertion.h"
#include "base/thread.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>

#include <chrono>
#include <exception>
#include <memory>
#include <semaphore>
#include <utility>

#ifdef __SANITIZE_THREAD__
#    include <sanitizer/tsan_interface.h>
#endif

namespace vornic::main_queue {

namespace {

// The toolkit's event queue orders what the poster of an event wrote before what the main thread reads. The
// thread sanitizer does not see into the toolkit, so these two tell it of that order, event by event.

void announcePosted([[maybe_unused]] QEvent *event)
{
#ifdef __SANITIZE_THREAD__
    __tsan_release(event);
#endif
}

void announceReceived([[maybe_unused]] QEvent *event)
{
#ifdef __SANITIZE_THREAD__
    __tsan_acquire(event);
#endif
}

class BlockEvent final : public QEvent
{
public:
    explicit BlockEvent(std::function<void()> block)
        : QEvent(kind())
        , m_block(std::move(block))
    {
    }
    /// What is never delivered goes with the application, on the main thread.
    ~BlockEvent() override { announceReceived(this); }

    void run() const { runGuarded("main", m_block); }

    static Type kind()
    {
        static const auto registered = static_cast<Type>(registerEventType());
        return registered;
    }

private:
    std::function<void()> m_block;
};

/// Lives on the main thread and runs the blocks that are posted to it.
class Receiver final : public QObject
{
public:
    bool event(QEvent *event) override
    {
        announceReceived(event);
        if (event->type() != BlockEvent::kind())
            return QObject::event(event);
        static_cast<const BlockEvent *>(event)->run();
        return true;
    }
};

void post(QCoreApplication &application, std::function<void()> block)
{
    static Receiver *const receiver = [&application] {
        auto *made = new Receiver; // for the whole process, as the main thread is
        made->moveToThread(application.thread());
        return made;
    }();
    auto *event = new BlockEvent(std::move(block));
    announcePosted(event);
    QCoreApplication::postEvent(receiver, event);
}

} // namespace

void async(std::function<void()> block)
{
    if (QCoreApplication *application = QCoreApplication::instance())
        post(*application, std::move(block));
}

void sync(const std::function<void()> &block, const std::stop_token &cancelled)
{
    QCoreApplication *application = QCoreApplication::instance();
    if (!application)
        return;
    if (application->thread() == QThread::currentThread()) {
        reportAssertionFailure({ QStringLiteral("sync"),
                                 QStringLiteral("MainQueue"),
                                 1,
                                 QStringLiteral("The main queue waits for itself") });
        block();
        return;
    }
    // Shared with the block, which may run when the waiter has gone.
    struct Outcome {
        std::counting_semaphore<2> done { 0 }; // released by the block, and by the request to stop
        std::exception_ptr failure;
    };
    const auto outcome = std::make_shared<Outcome>();
    post(*application, [block, outcome, cancelled] {
        try {
            if (!cancelled.stop_requested())
                block();
        } catch (...) {
            outcome->failure = std::current_exception();
        }
        outcome->done.release();
    });
    const std::stop_callback onCancel(cancelled, [outcome] { outcome->done.release(); });
    // An application that has ended runs no more events, so that nobody may wait for one.
    while (!outcome->done.try_acquire_for(std::chrono::milliseconds(100)))
        if (!QCoreApplication::instance())
            return;
    if (!cancelled.stop_requested() && outcome->failure)
        std::rethrow_exception(outcome->failure);
}

} // namespace vornic::main_queue
