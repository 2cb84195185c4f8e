#include "base/parallel.h"

#include <asio/post.hpp>
#include <asio/thread_pool.hpp>

#include <algorithm>
#include <atomic>
#include <latch>
#include <thread>

namespace vornic {

namespace {

int processorCount()
{
    static const int count = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    return count;
}

/// One thread fewer than processors: the caller works too.
asio::thread_pool &helpers()
{
    static asio::thread_pool pool(static_cast<std::size_t>(std::max(1, processorCount() - 1)));
    return pool;
}

} // namespace

void parallelRanges(int count, int minItems, const std::function<void(int, int)> &work)
{
    if (count <= 0)
        return;
    // More ranges than processors: where another program holds one of them, the others take over its share.
    constexpr int rangesPerProcessor = 4;
    const int length = std::max({ 1, minItems, count / (processorCount() * rangesPerProcessor) });
    const int ranges = std::max(1, count / length);
    const int workers = std::min(processorCount(), ranges);
    std::atomic<int> next = 0;
    const auto takeRanges = [&] {
        for (int range = next++; range < ranges; range = next++) {
            const int first = count * range / ranges;
            work(first, count * (range + 1) / ranges - first);
        }
    };
    std::latch others(workers - 1);
    for (int worker = 1; worker < workers; ++worker) {
        asio::post(helpers(), [&] {
            takeRanges();
            others.count_down();
        });
    }
    takeRanges();
    others.wait();
}

} // namespace vornic
