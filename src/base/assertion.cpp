#include "base/assertion.h"

#include "base/log.h"

#include <mutex>
#include <utility>

namespace vornic {

namespace {

std::mutex &handlerMutex()
{
    static std::mutex mutex;
    return mutex;
}

AssertionHandler &currentHandler()
{
    static AssertionHandler handler;
    return handler;
}

} // namespace

void reportAssertionFailure(const AssertionFailure &failure)
{
    AssertionHandler handler;
    {
        const std::lock_guard lock(handlerMutex());
        handler = currentHandler();
    }
    if (handler) {
        handler(failure);
        return;
    }
    logMessage(QStringLiteral("Assertion failure in %1, %2:%3: %4")
                   .arg(failure.operation, failure.file)
                   .arg(failure.line)
                   .arg(failure.description));
}

AssertionHandler setAssertionHandler(AssertionHandler handler)
{
    const std::lock_guard lock(handlerMutex());
    return std::exchange(currentHandler(), std::move(handler));
}

} // namespace vornic
