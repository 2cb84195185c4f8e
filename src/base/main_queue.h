#pragma once

#include <functional>
#include <stop_token>

namespace vornic::main_queue {

/// The queue of the main thread, which is Qt's event loop. Needs a QCoreApplication, without which nothing is
/// run. Both functions may be called from any thread.

/// Queues \a block for the main thread and returns. What it throws is logged.
void async(std::function<void()> block);

/// Runs \a block on the main thread and waits until it has run. From the main thread itself this is an
/// assertion failure; the block then runs at once. Returns early when the application ends, or once a stop is
/// requested of \a cancelled; if the main thread requests it, the block does not run afterwards either.
/// What the block throws is thrown here.
void sync(const std::function<void()> &block, const std::stop_token &cancelled = {});

} // namespace vornic::main_queue
