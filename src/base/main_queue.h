#pragma once

#include <functional>
#include <stop_token>

namespace vornic::main_queue {

/// The queue of the main thread: Qt's event loop. Needs a QCoreApplication; both may be called from any
/// thread.

/// Queues \a block for the main thread and returns.
void async(std::function<void()> block);

/// Runs \a block on the main thread and waits until it has run. From the main thread itself this is an
/// assertion failure; the block then runs at once. Returns without running it when the loop has ended, or
/// once a stop of \a givenUp is requested; where that is done on the main thread, the block does not run
/// later either.
void sync(const std::function<void()> &block, const std::stop_token &givenUp = {});

} // namespace vornic::main_queue
