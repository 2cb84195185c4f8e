#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace vornic {

/// A serial dispatch queue: blocks run one after the other, in the order given, on the queue's own thread.
///
/// Made and destroyed by its owner; the functions may be called from any thread. The destructor waits for all
/// blocks given to async() and sync(), and drops those of after() whose delay has not passed. A block of async() or after()
/// that throws is logged, and the queue goes on.
class SerialQueue
{
public:
    using Block = std::function<void()>;

    /// \a label names the thread in debuggers, which show its first 15 characters; an empty one leaves the
    /// thread its name. Throws std::system_error where there is no thread to be had.
    explicit SerialQueue(std::string label = {});
    ~SerialQueue();
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    [[nodiscard]] const std::string &label() const;

    /// Queues \a block and returns.
    void async(Block block);
    /// Queues \a block and waits until it has run. From the queue itself this is an assertion failure; the
    /// block then runs at once, where a plain wait would never end. What the block throws is thrown here.
    void sync(const Block &block);
    /// Queues \a block once \a delay has passed.
    void after(std::chrono::nanoseconds delay, Block block);
    [[nodiscard]] bool isCurrent() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vornic
