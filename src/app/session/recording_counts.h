#pragma once

#include <cstdint>

namespace vornic {

/// What became of a recording; a plain value.
struct RecordingCounts {
    std::uint64_t framesGrabbed = 0; ///< kept in the spool
    std::uint64_t framesWritten = 0; ///< in the movie
    std::uint64_t framesSkipped = 0; ///< grabbed, but not in the movie
    double audioSeconds = 0;         ///< in the movie
};

} // namespace vornic
