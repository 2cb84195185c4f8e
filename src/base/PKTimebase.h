#pragma once

#include <cstdint>

namespace vornic {

/// Ticks in a second of every timestamp and duration of a recording and of its movie.
inline constexpr std::int64_t PKTimebase = 90000;

} // namespace vornic
