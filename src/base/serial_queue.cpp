#include "base/serial_queue.h"

#include "base/assertion.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <pthread.h>

#include <memory>
#include <semaphore>
#include <thread>
#include <utility>

namespace vornic {

struct SerialQueue::Impl {
    explicit Impl(std::string name)
        : label(std::move(name))
    {
    }

    std::string label;
    asio::io_context context { 1 };
    asio::executor_work_guard<asio::io_context::executor_type> work { context.get_executor() };
    std::thread thread;
};

SerialQueue::SerialQueue(std::string label)
    : m_impl(std::make_unique<Impl>(std::move(label)))
{
    m_impl->thread = std::thread([impl = m_impl.get()] {
        if (!impl->label.empty())
            pthread_setname_np(pthread_self(), impl->label.substr(0, 15).c_str());
        impl->context.run();
    });
}

SerialQueue::~SerialQueue()
{
    // What was posted before this block still runs; timers that have not fired are dropped with the context.
    asio::post(m_impl->context, [impl = m_impl.get()] {
        impl->work.reset();
        impl->context.stop();
    });
    m_impl->thread.join();
}

const std::string &SerialQueue::label() const
{
    return m_impl->label;
}

void SerialQueue::async(Block block)
{
    asio::post(m_impl->context, std::move(block));
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
    asio::post(m_impl->context, [&block, done] {
        block();
        done->release();
    });
    done->acquire();
}

void SerialQueue::after(std::chrono::nanoseconds delay, Block block)
{
    auto timer = std::make_shared<asio::steady_timer>(m_impl->context, delay);
    timer->async_wait([timer, block = std::move(block)](const asio::error_code &error) {
        if (!error)
            block();
    });
}

bool SerialQueue::isCurrent() const
{
    return m_impl->thread.get_id() == std::this_thread::get_id();
}

} // namespace vornic
