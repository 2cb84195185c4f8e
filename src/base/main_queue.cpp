#include "base/main_queue.h"

#include "base/assertion.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>

#include <chrono>
#include <memory>
#include <mutex>
#include <semaphore>
#include <utility>

namespace vornic::main_queue {

namespace {

/// Passed by whoever posts a block and by the main thread before it reads one. The toolkit's own lock does
/// the work; this one shows it to the thread sanitizer, which does not see into the toolkit.
std::mutex &handOver()
{
    static std::mutex mutex;
    return mutex;
}

class BlockEvent final : public QEvent
{
public:
    explicit BlockEvent(std::function<void()> block)
        : QEvent(kind())
        , m_block(std::move(block))
    {
    }

    void run() const { m_block(); }

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
        {
            const std::lock_guard lock(handOver());
        }
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
    BlockEvent *event = nullptr;
    {
        const std::lock_guard lock(handOver());
        event = new BlockEvent(std::move(block));
    }
    QCoreApplication::postEvent(receiver, event);
}

} // namespace

void async(std::function<void()> block)
{
    if (QCoreApplication *application = QCoreApplication::instance())
        post(*application, std::move(block));
}

void sync(const std::function<void()> &block, const std::stop_token &givenUp)
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
    // Released by the block, and by who gives it up.
    const auto done = std::make_shared<std::counting_semaphore<2>>(0);
    post(*application, [block, done, givenUp] {
        if (!givenUp.stop_requested())
            block();
        done->release();
    });
    const std::stop_callback letGo(givenUp, [done] { done->release(); });
    // An application that has ended takes no more events; then nobody may wait for one.
    while (!done->try_acquire_for(std::chrono::milliseconds(100)) && QCoreApplication::instance()) { }
}

} // namespace vornic::main_queue
