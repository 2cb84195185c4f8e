#pragma once

#include <cstdint>

namespace vornic {

/// What went into a movie; a plain value.
///
/// Made by the task that writes the movie, and told with PKMuxerTaskActionComplete.
struct MovieStatistics {
    std::int64_t framesWritten = 0;
    std::int64_t framesSkipped = 0; ///< without a picture, or not later than the one before
    double seconds = 0;             ///< until the last picture's end
    double audioSeconds = 0;
};

} // namespace vornic
