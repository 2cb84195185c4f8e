#include "platform/main_queue.h"

#include "platform/assertion.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

#include <memory>
#include <semaphore>
#include <utility>

namespace vornic::main_queue {

namespace {

/// Lets the waiter of sync() go when its block has run, or when the loop ends and drops it unrun.
class Releaser
{
public:
    explicit Releaser(std::shared_ptr<std::binary_semaphore> done)
        : m_done(std::move(done))
    {
    }
    ~Releaser() { m_done->release(); }
    Releaser(const Releaser &) = delete;
    Releaser &operator=(const Releaser &) = delete;

private:
    std::shared_ptr<std::binary_semaphore> m_done;
};

} // namespace

void async(std::function<void()> block)
{
    if (QCoreApplication *application = QCoreApplication::instance())
        QMetaObject::invokeMethod(application, std::move(block), Qt::QueuedConnection);
}

void sync(const std::function<void()> &block)
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
    const auto done = std::make_shared<std::binary_semaphore>(0);
    {
        auto releaser = std::make_shared<Releaser>(done);
        QMetaObject::invokeMethod(
            application, [&block, releaser = std::move(releaser)] { block(); }, Qt::QueuedConnection);
    }
    done->acquire();
}

} // namespace vornic::main_queue
