// Linked into every program of a build with the thread sanitizer.
//
// The toolkit starts programs by clone() with the caller's memory. What the sanitizer notes for the child is then noted for
// the caller, too: from then on it ignores what that thread locks, and reports races that are none. A fork has memory of its
// own.

#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>

/// In place of the system library's: the child gets a copy of the memory.
extern "C" int clone(int (*work)(void *), void * /*stack*/, int flags, void *argument, ...)
{
    std::va_list rest;
    va_start(rest, argument);
    int *const descriptor = va_arg(rest, int *);
    va_end(rest);
    const pid_t child = fork();
    if (child == 0)
        _exit(work(argument));
    if (child > 0 && (flags & CLONE_PIDFD) != 0)
        *descriptor = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    return child;
}
