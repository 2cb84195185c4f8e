#include "base/log.h"
#include "base/parallel.h"
#include "base/serial_queue.h"
#include "base/thread.h"
#include "support/thread_limit.h"

#include <QStringList>

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>

#include <array>
#include <chrono>
#include <mutex>
#include <new>
#include <semaphore>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace vornic {
namespace {

/// Keeps what is logged, on whatever thread.
class LogKeeper
{
public:
    LogKeeper()
    {
        setLogSink([this](const QString &line) {
            const std::lock_guard lock(m_mutex);
            m_lines += line;
        });
    }
    ~LogKeeper() { setLogSink({}); }
    LogKeeper(const LogKeeper &) = delete;
    LogKeeper &operator=(const LogKeeper &) = delete;

    [[nodiscard]] QStringList lines()
    {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }

private:
    std::mutex m_mutex;
    QStringList m_lines;
};

// The first of this file: what helps with ranges is made once for the process.
TEST(ThreadTest, WithoutHelpersTheCallerDoesAllOfTheWork)
{
    const test::ThreadLimit limit(0);
    std::array<int, 100> visits {};
    parallelRanges(100, 1, [&](int first, int count) {
        for (int i = first; i < first + count; ++i)
            ++visits.at(static_cast<std::size_t>(i));
    });
    for (const int visit : visits)
        EXPECT_EQ(visit, 1);
}

TEST(ThreadTest, HasItsName)
{
    std::array<char, 16> seen {};
    startThread("a name that is too long", [&] {
        pthread_getname_np(pthread_self(), seen.data(), seen.size());
    }).join();
    EXPECT_STREQ(seen.data(), "a name that is ");
}

TEST(ThreadTest, WhatIsThrownIsLoggedAndStaysInTheThread)
{
    LogKeeper log;
    startThread("worker", [] { throw std::runtime_error("the disk is on fire"); }).join();
    EXPECT_EQ(log.lines(), QStringList { "An error was not handled in worker: the disk is on fire" });
}

TEST(ThreadTest, WhatIsThrownIsToldInWords)
{
    LogKeeper log;
    EXPECT_FALSE(runGuarded("a", [] { throw std::bad_alloc(); }));
    EXPECT_FALSE(runGuarded(
        "b", [] { throw std::system_error(std::make_error_code(std::errc::too_many_files_open), "what"); }));
    EXPECT_FALSE(runGuarded("c", [] { throw 1; }));
    EXPECT_TRUE(runGuarded("d", [] {}));
    EXPECT_EQ(log.lines(),
              (QStringList { "An error was not handled in a: there is not enough memory",
                             "An error was not handled in b: Too many open files",
                             "An error was not handled in c: no reason is known" }));
}

TEST(ThreadTest, WithoutAThreadThereIsAnErrorToHandle)
{
    const test::ThreadLimit limit(0);
    EXPECT_THROW(static_cast<void>(startThread("none", [] {})), std::system_error);
    EXPECT_THROW(const SerialQueue queue("none"), std::system_error);
}

TEST(ThreadTest, AQueueNeedsNoDescriptors)
{
    rlimit before {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 0;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    {
        SerialQueue queue("test");
        std::binary_semaphore ran(0);
        queue.after(std::chrono::milliseconds(1), [&] { ran.release(); });
        ran.acquire();
    }
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
}

TEST(ThreadTest, ThreadsAreAvailableUpToTheLimit)
{
    {
        const test::ThreadLimit limit(3);
        EXPECT_TRUE(areThreadsAvailable(3));
    }
    const test::ThreadLimit limit(3);
    EXPECT_FALSE(areThreadsAvailable(4));
}

} // namespace
} // namespace vornic
