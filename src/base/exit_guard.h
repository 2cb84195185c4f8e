#pragma once

#include <functional>

namespace vornic {

/// Keeps exit() from tearing down a program that runs.
///
/// The toolkit calls exit() in the middle of its loop when the X server has gone. That would destroy the static objects
/// with which other threads work, and leave undone what comes after the loop. While a guard with last work lives, that
/// work is done instead, before anything is destroyed, and the process ends there.
///
/// Made by main on its thread; one at a time.
class ExitGuard
{
public:
    ExitGuard() = default;
    /// From here on exit() is what it was.
    ~ExitGuard() { setLastWork({}); }
    ExitGuard(const ExitGuard &) = delete;
    ExitGuard &operator=(const ExitGuard &) = delete;

    /// Done on the thread of this call when that calls exit(); returns the exit status. It must not call exit() itself.
    /// Empty: none.
    void setLastWork(std::function<int()> work);
};

} // namespace vornic
