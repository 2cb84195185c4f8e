#pragma once

namespace vornic {

/// The absolute clock: seconds of CLOCK_MONOTONIC, from any thread.
///
/// It does not jump when the wall clock is set. Only differences of two readings mean something. Never 0.
[[nodiscard]] double absoluteTimeSeconds();

} // namespace vornic
