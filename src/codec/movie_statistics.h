#pragma once

#include <QString>

#include <cstdint>

namespace vornic {

/// What went into a movie, and where it stands; a plain value.
///
/// Made by the task that writes the movie, and told with PKMuxerTaskActionComplete.
struct MovieStatistics {
    /// Read from the source and shown by the movie; equal ones count each, though they are stored as one.
    std::int64_t framesWritten = 0;
    /// Read from the source, but not in the movie: unusable (without a picture) or out of order (not later
    /// than the frame before).
    std::int64_t framesSkipped = 0;
    double seconds = 0; ///< until the last picture's end
    double audioSeconds = 0;
    QString file; ///< another than was asked for where something else has come to stand there
};

} // namespace vornic
