#pragma once

#include <functional>

namespace vornic {

/// Splits \a count items into contiguous ranges, runs \a work(first, count) for each, and returns when all
/// have ended. A range has at least \a minItems items, unless there are fewer in all; there are a few ranges
/// for each processor. They run at the same time, on the calling thread and on threads kept for the process.
/// What \a work throws first is thrown here, once all that run have ended; ranges that nobody has begun are left out then.
void parallelRanges(int count, int minItems, const std::function<void(int first, int count)> &work);

} // namespace vornic
