#pragma once

#include <chrono>
#include <cstdint>

namespace vornic {

/// What follows from the quality step; pure functions. 0 is "High" and 1 is "Medium".

/// Grabs a second while recording: 30 at quality 0, 20 at any other.
[[nodiscard]] double captureFrameRate(std::int32_t quality);
/// The pause after a pass's work, truncated to whole nanoseconds.
[[nodiscard]] std::chrono::nanoseconds captureDelay(double frameRate);
/// The movie's nominal frame rate: 25 at quality 1, 30 at any other. It differs from the capture rate at
/// "Medium" on purpose: every frame carries its own duration.
[[nodiscard]] double movieFrameRate(std::int32_t quality);
/// The movie's target in bits a second, for a picture of that many pixels.
[[nodiscard]] std::int32_t movieBitRate(std::int32_t quality, std::int64_t width, std::int64_t height);

} // namespace vornic
