#pragma once

#include <functional>

namespace vornic {

/// Splits \a count items into as many contiguous ranges as there are processors (fewer when \a leastItems
/// would not fill one), runs \a work(first, count) for each, one of them on the calling thread, and returns
/// when all have ended. Ranges run at the same time, on threads kept for the process.
void parallelRanges(int count, int leastItems, const std::function<void(int first, int count)> &work);

} // namespace vornic
