#include "base/serial_queue.h"

#include "base/assertion.h"
#include "base/thread.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <semaphore>
#include <thread>
#include <utility>

namespace vornic {

/// Needs nothing of the system but its thread: a queue that is there works also where no descriptor is to be had.
struct SerialQueue::Impl {
    using Clock = std::chrono::steady_clock;

    explicit Impl(std::string name)
        : label(std::move(name))
    {
    }

    void add(Block block)
    {
        {
            const std::scoped_lock lock(mutex);
            blocks.push_back(std::move(block));
        }
        changed.notify_one();
    }
    void addAt(Clock::time_point time, Block block)
    {
        {
            const std::scoped_lock lock(mutex);
            delayed.emplace(time, std::move(block));
        }
        changed.notify_one();
    }
    /// The thread: whatever comes of a block, the next one follows.
    void run()
    {
        while (!isEnding)
            runGuarded(label, next());
    }
    /// Waits for it; those whose delay has passed come first. Takes no memory.
    Block next()
    {
        std::unique_lock lock(mutex);
        while (true) {
            const auto first = delayed.begin();
            if (first != delayed.end() && first->first <= Clock::now()) {
                Block block = std::move(first->second);
                delayed.erase(first);
                return block;
            }
            if (!blocks.empty()) {
                Block block = std::move(blocks.front());
                blocks.pop_front();
                return block;
            }
            if (first == delayed.end())
                changed.wait(lock);
            else
                changed.wait_until(lock, Clock::time_point(first->first));
        }
    }

    const std::string label;
    bool isEnding = false; ///< queue's thread only
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Block> blocks; ///< guarded, as the next
    std::multimap<Clock::time_point, Block> delayed;
    std::thread thread;
};

SerialQueue::SerialQueue(std::string label)
    : m_impl(std::make_unique<Impl>(std::move(label)))
{
    m_impl->thread = startThread(m_impl->label, [impl = m_impl.get()] { impl->run(); });
}

SerialQueue::~SerialQueue()
{
    // What was given before this block still runs; what is delayed is dropped.
    m_impl->add([impl = m_impl.get()] { impl->isEnding = true; });
    m_impl->thread.join();
}

const std::string &SerialQueue::label() const
{
    return m_impl->label;
}

void SerialQueue::async(Block block)
{
    m_impl->add(std::move(block));
}

void SerialQueue::sync(const Block &block)
{
    if (isCurrent()) {
        reportAssertionFailure({ QStringLiteral("sync"),
                                 QStringLiteral("SerialQueue"),
                                 1,
                                 QStringLiteral("A queue waits for itself: %1").arg(m_impl->label.c_str()) });
        block();
        return;
    }
    // Shared with the block: a waiter that wakes early must not take the semaphore away from release().
    const auto done = std::make_shared<std::binary_semaphore>(0);
    std::exception_ptr failure;
    m_impl->add([&block, &failure, done] {
        try {
            block();
        } catch (...) {
            failure = std::current_exception();
        }
        done->release();
    });
    done->acquire();
    if (failure)
        std::rethrow_exception(failure);
}

void SerialQueue::after(std::chrono::nanoseconds delay, Block block)
{
    m_impl->addAt(Impl::Clock::now() + delay, std::move(block));
}

bool SerialQueue::isCurrent() const
{
    return m_impl->thread.get_id() == std::this_thread::get_id();
}

} // namespace vornic
