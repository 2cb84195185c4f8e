#pragma once

#include <functional>

namespace vornic {

/// Splits \a count items into contiguous ranges of at least \a leastItems (but for a smaller count), a few
/// for each processor, runs \a work(first, count) for each, and returns when all have ended. Ranges run at
/// the same time, on the calling thread and on threads kept for the process.
void parallelRanges(int count, int leastItems, const std::function<void(int first, int count)> &work);

} // namespace vornic
