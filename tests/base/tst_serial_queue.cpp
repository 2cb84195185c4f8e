#include "base/assertion.h"
#include "base/log.h"
#include "base/main_queue.h"
#include "base/parallel.h"
#include "base/serial_queue.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <semaphore>
#include <stdexcept>
#include <stop_token>
#include <thread>
#include <vector>

namespace vornic {
namespace {

using namespace std::chrono_literals;

/// Counts assertion failures instead of logging them.
class FailureCounter
{
public:
    FailureCounter()
    {
        setAssertionHandler([this](const AssertionFailure &) { ++m_count; });
    }
    ~FailureCounter() { setAssertionHandler({}); }
    FailureCounter(const FailureCounter &) = delete;
    FailureCounter &operator=(const FailureCounter &) = delete;
    [[nodiscard]] int count() const { return m_count; }

private:
    std::atomic<int> m_count = 0;
};

/// Counts what is logged instead of printing it.
class LogCounter
{
public:
    LogCounter()
    {
        setLogSink([this](const QString &) { ++m_count; });
    }
    ~LogCounter() { setLogSink({}); }
    LogCounter(const LogCounter &) = delete;
    LogCounter &operator=(const LogCounter &) = delete;
    [[nodiscard]] int count() const { return m_count; }

private:
    std::atomic<int> m_count = 0;
};

TEST(SerialQueueTest, BlocksRunOneAfterTheOtherInOrder)
{
    SerialQueue queue("test");
    std::vector<int> order;
    for (int i = 0; i < 100; ++i)
        queue.async([&order, i] { order.push_back(i); });
    int seen = 0;
    queue.sync([&] { seen = static_cast<int>(order.size()); });
    EXPECT_EQ(seen, 100);
    EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST(SerialQueueTest, ABlockKnowsItsQueue)
{
    SerialQueue queue("one");
    SerialQueue other("two");
    EXPECT_FALSE(queue.isCurrent());
    queue.sync([&] {
        EXPECT_TRUE(queue.isCurrent());
        EXPECT_FALSE(other.isCurrent());
    });
    EXPECT_EQ(queue.label(), "one");
}

TEST(SerialQueueTest, ADelayedBlockRunsAfterItsDelay)
{
    SerialQueue queue;
    std::promise<std::chrono::steady_clock::time_point> ran;
    const auto start = std::chrono::steady_clock::now();
    queue.after(30ms, [&] { ran.set_value(std::chrono::steady_clock::now()); });
    EXPECT_GE(ran.get_future().get() - start, 30ms);
}

TEST(SerialQueueTest, WaitingForItselfIsAFailureNotADeadlock)
{
    const FailureCounter failures;
    SerialQueue queue;
    bool ran = false;
    queue.sync([&] { queue.sync([&] { ran = true; }); });
    EXPECT_TRUE(ran);
    EXPECT_EQ(failures.count(), 1);
}

TEST(SerialQueueTest, TheEndRunsWhatWasGivenAndDropsWhatIsDelayed)
{
    std::atomic<int> ran = 0;
    std::atomic<bool> late = false;
    {
        SerialQueue queue;
        for (int i = 0; i < 10; ++i)
            queue.async([&] { ++ran; });
        queue.after(1h, [&] { late = true; });
    }
    EXPECT_EQ(ran, 10);
    EXPECT_FALSE(late);
}

TEST(SerialQueueTest, GoesOnAfterABlockThatThrows)
{
    const LogCounter log;
    SerialQueue queue("test");
    std::promise<void> ran;
    queue.async([] { throw std::runtime_error("async"); });
    queue.after(1ms, [] { throw std::runtime_error("after"); });
    queue.after(2ms, [&] { ran.set_value(); });
    ran.get_future().get();
    EXPECT_EQ(log.count(), 2);
}

TEST(SerialQueueTest, WhoWaitsGetsWhatTheBlockThrows)
{
    SerialQueue queue;
    EXPECT_THROW(queue.sync([] { throw std::runtime_error("sync"); }), std::runtime_error);
    bool ran = false;
    queue.sync([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST(SerialQueueTest, ManyThreadsMayGiveBlocks)
{
    SerialQueue queue;
    int sum = 0;
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i)
                queue.sync([&] { ++sum; });
        });
    threads.clear();
    queue.sync([&] { EXPECT_EQ(sum, 2000); });
}

/// Runs \a work on a thread beside the main thread's event loop.
void besideTheMainLoop(const std::function<void()> &work)
{
    int argc = 1;
    char name[] = "test";
    char *argv[] = { name, nullptr };
    QCoreApplication application(argc, argv);
    std::jthread thread([&] {
        work();
        main_queue::async([] { QCoreApplication::quit(); });
    });
    QCoreApplication::exec();
}

TEST(MainQueueTest, BlocksRunOnTheMainThreadInOrder)
{
    const std::thread::id mainThread = std::this_thread::get_id();
    std::vector<int> order;
    besideTheMainLoop([&] {
        main_queue::async([&] { order.push_back(1); });
        main_queue::sync([&] {
            EXPECT_EQ(std::this_thread::get_id(), mainThread);
            order.push_back(2);
        });
        order.push_back(3);
    });
    EXPECT_EQ(order, (std::vector { 1, 2, 3 }));
}

TEST(MainQueueTest, WaitingForItselfIsAFailureNotADeadlock)
{
    const FailureCounter failures;
    bool ran = false;
    besideTheMainLoop([&] { main_queue::sync([&] { main_queue::sync([&] { ran = true; }); }); });
    EXPECT_TRUE(ran);
    EXPECT_EQ(failures.count(), 1);
}

TEST(MainQueueTest, GoesOnAfterABlockThatThrows)
{
    const LogCounter log;
    bool ran = false;
    besideTheMainLoop([&] {
        main_queue::async([] { throw std::runtime_error("async"); });
        main_queue::sync([&] { ran = true; });
    });
    EXPECT_TRUE(ran);
    EXPECT_EQ(log.count(), 1);
}

TEST(MainQueueTest, WhoWaitsGetsWhatTheBlockThrows)
{
    besideTheMainLoop(
        [] { EXPECT_THROW(main_queue::sync([] { throw std::runtime_error("sync"); }), std::runtime_error); });
}

TEST(MainQueueTest, WithoutAnApplicationNothingRunsAndNobodyHangs)
{
    bool ran = false;
    std::jthread([&] { main_queue::sync([&] { ran = true; }); }).join();
    EXPECT_FALSE(ran);
}

TEST(MainQueueTest, ACancelledWaitEndsAndItsBlockDoesNotRun)
{
    bool ran = false;
    std::stop_source stop;
    std::binary_semaphore returned(0);
    besideTheMainLoop([&] {
        // The main thread is busy until the wait has ended, so that it is not the block that ends it.
        main_queue::async([&] {
            stop.request_stop();
            EXPECT_TRUE(returned.try_acquire_for(20s));
        });
        main_queue::sync([&] { ran = true; }, stop.get_token());
        returned.release();
    });
    EXPECT_FALSE(ran);
}

TEST(ParallelTest, EveryItemIsVisitedOnce)
{
    for (const int count : { 0, 1, 2, 3, 7, 68, 1000 }) {
        std::vector<std::atomic<int>> visits(static_cast<std::size_t>(count));
        parallelRanges(count, 1, [&](int first, int length) {
            for (int i = first; i < first + length; ++i)
                ++visits[static_cast<std::size_t>(i)];
        });
        for (const auto &visit : visits)
            EXPECT_EQ(visit, 1);
    }
}

TEST(ParallelTest, SmallWorkStaysOnOneThread)
{
    std::atomic<int> calls = 0;
    parallelRanges(7, 4, [&](int, int) { ++calls; });
    EXPECT_EQ(calls, 1);
}

TEST(ParallelTest, WhoCallsGetsWhatARangeThrows)
{
    for (int thrower = 0; thrower < 20; ++thrower) {
        std::atomic<int> running = 0;
        EXPECT_THROW(parallelRanges(20,
                                    1,
                                    [&](int first, int count) {
                                        ++running;
                                        if (thrower >= first && thrower < first + count) {
                                            --running;
                                            throw std::runtime_error("range");
                                        }
                                        std::this_thread::yield();
                                        --running;
                                    }),
                     std::runtime_error);
        EXPECT_EQ(running, 0);
    }
}

TEST(ParallelTest, ManyCallersAtOnceAllEnd)
{
    std::atomic<int> sum = 0;
    std::vector<std::jthread> callers;
    for (int c = 0; c < 6; ++c)
        callers.emplace_back([&] {
            for (int i = 0; i < 200; ++i)
                parallelRanges(10, 1, [&](int, int length) { sum += length; });
        });
    callers.clear();
    EXPECT_EQ(sum, 6 * 200 * 10);
}

} // namespace
} // namespace vornic
