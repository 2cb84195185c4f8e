#pragma once

namespace vornic {

/// The absolute clock: seconds of CLOCK_MONOTONIC, from any thread.
///
/// It never jumps when the wall clock is set. Only differences mean something; never 0 on a running system.
[[nodiscard]] double absoluteTimeSeconds();

} // namespace vornic
