#include "base/exit_guard.h"

#include <cstdlib>
#include <utility>

namespace vornic {

namespace {

/// exit() destroys the objects of its own thread before all that are static, whenever these were made.
struct LastWork {
    LastWork() = default;
    ~LastWork()
    {
        if (work)
            std::_Exit(std::exchange(work, nullptr)());
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
