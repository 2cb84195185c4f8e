#pragma once

#include "options/record_quality.h"

#include <chrono>
#include <cstdint>

namespace vornic {

/// What follows from the quality step; pure functions. A stored quality may be any number.

/// Grabs a second while recording: 30 at High, 20 at any other.
[[nodiscard]] double captureFrameRate(RecordQuality quality);
/// The pause after a pass's work, truncated to whole nanoseconds.
[[nodiscard]] std::chrono::nanoseconds captureDelay(double frameRate);
/// The movie's nominal frame rate: 25 at Medium, 30 at any other. It differs from the capture rate at
/// "Medium" on purpose: every frame carries its own duration.
[[nodiscard]] double movieFrameRate(RecordQuality quality);
/// The movie's target in bits a second, for a picture of that many pixels.
[[nodiscard]] std::int32_t movieBitRate(RecordQuality quality, std::int64_t width, std::int64_t height);

} // namespace vornic
