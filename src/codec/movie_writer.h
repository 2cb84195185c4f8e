#pragma once

#include "codec/PKMuxerTaskDataSource.h"

#include <cstdint>
#include <functional>

namespace vornic {

class PKMuxerContext;

/// What went into a movie.
struct MovieStatistics {
    std::int64_t framesWritten = 0;
    std::int64_t framesSkipped = 0; ///< without a picture, or not later than the one before
    double seconds = 0;             ///< until the last picture's end
    double audioSeconds = 0;
};

/// Told how much of the movie is done, in percent; on the thread of writeMovie().
using ProgressSink = std::function<void(double percent)>;

/// Writes one movie from \a source and blocks until it is complete. Sound is read on the calling thread,
/// pictures on a thread that ends before this does. Throws MovieFailure, or what the source throws; the
/// movie's name then is as it was before.
MovieStatistics
writeMovie(const PKMuxerContext &context, PKMuxerTaskDataSource &source, const ProgressSink &progress);

} // namespace vornic
