#include "platform/parallel.h"

#include <asio/post.hpp>
#include <asio/thread_pool.hpp>

#include <algorithm>
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

void parallelRanges(int count, int leastItems, const std::function<void(int, int)> &work)
{
    if (count <= 0)
        return;
    const int parts = std::clamp(count / std::max(1, leastItems), 1, processorCount());
    std::latch others(parts - 1);
    for (int part = 1; part < parts; ++part) {
        const int first = count * part / parts;
        const int last = count * (part + 1) / parts;
        asio::post(helpers(), [&work, &others, first, last] {
            work(first, last - first);
            others.count_down();
        });
    }
    work(0, count / parts);
    others.wait();
}

} // namespace vornic
