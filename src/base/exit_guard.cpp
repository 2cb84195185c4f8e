#include "base/exit_guard.h"

#include "base/error_stream.h"

#include <chrono>
#include <cstdlib>
#include <utility>

namespace vornic {

namespace {

/// What was told is written first, if somebody takes it.
[[noreturn]] void end(int status)
{
    standardError().flush(std::chrono::seconds(2));
    std::_Exit(status);
}

/// exit() destroys the objects of its own thread before all that are static, whenever these were made.
struct LastWork {
    LastWork() = default;
    ~LastWork()
    {
        if (work)
            end(std::exchange(work, nullptr)());
    }
    LastWork(const LastWork &) = delete;
    LastWork &operator=(const LastWork &) = delete;

    std::function<int()> work;
};

thread_local LastWork lastWork;

} // namespace

void ExitGuard::setLastWork(std::function<int()> work)
{
    lastWork.work = std::move(work);
}

} // namespace vornic
