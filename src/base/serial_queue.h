#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace vornic {

/// A serial dispatch queue: blocks run one after the other, in the order given, on the queue's own thread.
///
/// Made and destroyed by its owner; the functions may be called from any thread. Destruction runs what has
/// been given with async() and sync(), drops what is delayed, and waits for the running block.
class SerialQueue
{
public:
    using Block = std::function<void()>;

    /// \a label names the thread in debuggers (Linux keeps its first 15 characters); empty names nothing.
    explicit SerialQueue(std::string label = {});
    ~SerialQueue();
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    [[nodiscard]] const std::string &label() const;

    /// Queues \a block and returns.
    void async(Block block);
    /// Queues \a block and waits until it has run. From the queue itself this is an assertion failure; the
    /// block then runs at once, where a plain wait would never end.
    void sync(const Block &block);
    /// Queues \a block once \a delay has passed.
    void after(std::chrono::nanoseconds delay, Block block);
    [[nodiscard]] bool isCurrent() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vornic
