#pragma once

#include "app/session/recording_clock.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

namespace vornic {

/// What the recordings that begin from now on are to be, beside what the options say; a plain value.
struct RecordingWishes {
    /// Whether the device that the list shows is recorded, where sound is; or only what the system plays.
    bool usesInput = true;
    /// The input and what the system plays become a track each, where both are recorded.
    bool separateTracks = false;
    /// They end by themselves when they are so long, in seconds. Without it, what the options say.
    std::optional<double> length;
    /// They end by themselves where their movies will be so large, in bytes.
    std::optional<std::uint64_t> maxSize;
    /// Asked when a capture begins: how long until the screen shows nothing that does not belong in the movie.
    std::function<std::chrono::nanoseconds()> settlingTime = [] { return std::chrono::nanoseconds(0); };
    RecordingClock::Now clock = absoluteTimeSeconds; ///< another one for tests
};

} // namespace vornic
