#include "base/parallel.h"

#include "base/thread.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>

#include <algorithm>
#include <atomic>
#include <exception>
#include <latch>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace vornic {

namespace {

int processorCount()
{
    static const int count = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    return count;
}

/// Threads that wait for a share of the caller's work: one fewer than processors, as the caller works too, and fewer
/// where the system has no more to give.
///
/// Made at the first call, for the whole process.
class Helpers
{
public:
    Helpers()
    {
        try {
            m_threads.reserve(static_cast<std::size_t>(processorCount()));
            for (int i = 1; i < processorCount(); ++i)
                m_threads.push_back(startThread("vornic helper", [this] { m_context.run(); }));
        } catch (const std::exception &) { // those that there are must do
        }
    }
    ~Helpers()
    {
        m_work.reset();
        m_context.stop();
        for (std::thread &thread : m_threads)
            thread.join();
    }
    Helpers(const Helpers &) = delete;
    Helpers &operator=(const Helpers &) = delete;

    [[nodiscard]] int count() const { return static_cast<int>(m_threads.size()); }
    template<typename Block>
    void post(Block block)
    {
        asio::post(m_context, std::move(block));
    }

private:
    asio::io_context m_context { processorCount() };
    asio::executor_work_guard<asio::io_context::executor_type> m_work { m_context.get_executor() };
    std::vector<std::thread> m_threads;
};

Helpers &helpers()
{
    static Helpers threads;
    return threads;
}

/// The ranges of one call, taken by whoever is free, and what went wrong first in one of them.
///
/// Made by parallelRanges() for the call; used on all of its threads.
class Ranges
{
public:
    Ranges(int count, int ranges, const std::function<void(int, int)> &work)
        : m_count(count)
        , m_ranges(ranges)
        , m_work(work)
    {
    }

    void take() noexcept
    {
        try {
            for (int range = m_next++; range < m_ranges; range = m_next++) {
                const int first = m_count * range / m_ranges;
                m_work(first, m_count * (range + 1) / m_ranges - first);
            }
        } catch (...) {
            m_next = m_ranges;
            const std::scoped_lock lock(m_mutex);
            if (!m_failure)
                m_failure = std::current_exception();
        }
    }
    void rethrowFailure() const
    {
        if (m_failure)
            std::rethrow_exception(m_failure);
    }

private:
    const int m_count;
    const int m_ranges;
    const std::function<void(int, int)> &m_work;
    std::atomic<int> m_next = 0;
    std::mutex m_mutex;
    std::exception_ptr m_failure; ///< guarded while work is done
};

} // namespace

void parallelRanges(int count, int minItems, const std::function<void(int, int)> &work)
{
    if (count <= 0)
        return;
    // More ranges than processors: where another program holds one of them, the others take over its share.
    constexpr int rangesPerProcessor = 4;
    const int length = std::max({ 1, minItems, count / (processorCount() * rangesPerProcessor) });
    const int rangeCount = std::max(1, count / length);
    const int others = std::min(helpers().count(), rangeCount - 1);
    Ranges ranges(count, rangeCount, work);
    std::latch othersEnd(others);
    for (int other = 0; other < others; ++other) {
        const auto share = [&] {
            ranges.take();
            othersEnd.count_down();
        };
        try {
            helpers().post(share);
        } catch (const std::exception &) {
            othersEnd.count_down(); // no memory to ask for help with
        }
    }
    ranges.take();
    othersEnd.wait();
    ranges.rethrowFailure();
}

} // namespace vornic
