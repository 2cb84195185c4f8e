#pragma once

#include <functional>
#include <string_view>
#include <thread>

namespace vornic {

/// Where every thread of the program is made, and what keeps an exception from leaving one, which would end the process.
/// All of it may be called from any thread.

/// Logs what is being handled in a catch block, which happened in \a where. Without the memory for a line it is lost.
void logUnhandledException(std::string_view where) noexcept;

/// Runs \a work and returns true; where it throws, logs that and returns false.
template<typename Work>
bool runGuarded(std::string_view where, const Work &work) noexcept
{
    try {
        work();
        return true;
    } catch (...) {
        logUnhandledException(where);
        return false;
    }
}

/// A thread that runs \a work, guarded. Debuggers show the first 15 characters of \a name; an empty one leaves the
/// thread its name. Throws std::system_error where the system has no thread to give.
[[nodiscard]] std::thread startThread(std::string_view name, std::function<void()> work);

/// Whether the system has \a count more threads at once, all of which have ended on return. Somebody else may take them
/// the moment after; it tells a system at its limits, on which libraries wait for good for a thread that never came.
[[nodiscard]] bool areThreadsAvailable(int count);

} // namespace vornic
