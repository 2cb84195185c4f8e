// Loaded before the C library (LD_PRELOAD): a system that has no more threads to give. THREADS_AT_MOST is how many may
// run at a time beside the first; as soon as there is a file THREADS_UNTIL, no more are made.
//
// The system's own limit counts all that a user runs, and none for the administrator.

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <limits>

namespace {

std::atomic<long> running = 0;

struct Work {
    void *(*start)(void *);
    void *argument;
};

void *runCounted(void *argument)
{
    const Work work = *static_cast<Work *>(argument);
    delete static_cast<Work *>(argument);
    void *result = work.start(work.argument);
    --running;
    return result;
}

bool areNoMore()
{
    const char *file = std::getenv("THREADS_UNTIL");
    return file && ::access(file, F_OK) == 0;
}

long limit()
{
    const char *number = std::getenv("THREADS_AT_MOST");
    return number ? std::atol(number) : std::numeric_limits<long>::max();
}

} // namespace

extern "C" int pthread_create(pthread_t *thread,
                              const pthread_attr_t *attributes,
                              void *(*start)(void *),
                              void *argument) noexcept
{
    static const auto systems
        = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    if (++running > limit() || areNoMore()) {
        --running;
        return EAGAIN;
    }
    auto *work = new Work { start, argument };
    const int result = systems(thread, attributes, runCounted, work);
    if (result != 0) {
        delete work;
        --running;
    }
    return result;
}
