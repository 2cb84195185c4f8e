#include "support/thread_limit.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <limits>
#include <memory>

namespace {

std::atomic<int> running = 0; // of those that were made here
std::atomic<int> limit = std::numeric_limits<int>::max();

struct Work {
    void *(*start)(void *);
    void *argument;
};

void *runCounted(void *argument)
{
    const std::unique_ptr<Work> work(static_cast<Work *>(argument));
    void *result = work->start(work->argument);
    --running;
    return result;
}

} // namespace

/// Stands before the system's, for the libraries too.
extern "C" int pthread_create(pthread_t *thread,
                              const pthread_attr_t *attributes,
                              void *(*start)(void *),
                              void *argument) noexcept
{
    static const auto systems
        = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    if (++running > limit) {
        --running;
        return EAGAIN;
    }
    auto work = std::make_unique<Work>(Work { start, argument });
    const int result = systems(thread, attributes, runCounted, work.get());
    if (result == 0)
        static_cast<void>(work.release());
    else
        --running;
    return result;
}

namespace vornic::test {

ThreadLimit::ThreadLimit(int more)
{
    limit = running + more;
}

ThreadLimit::~ThreadLimit()
{
    limit = std::numeric_limits<int>::max();
}

} // namespace vornic::test
