#pragma once

namespace vornic::exit_status {

inline constexpr int done = 0;       ///< where a movie was asked for, it is complete
inline constexpr int failed = 1;     ///< there is no movie, or nothing was done
inline constexpr int wrongUsage = 2; ///< nothing was tried
inline constexpr int incomplete = 3; ///< there is a movie, but not all that was asked for

} // namespace vornic::exit_status
