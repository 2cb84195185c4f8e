#pragma once

#include "codec/PKMuxerTaskDataSource.h"
#include "codec/movie_statistics.h"

#include <functional>
#include <stop_token>

namespace vornic {

class PKMuxerContext;

/// Told how much of the movie is done, in percent; on the thread of writeMovie().
using ProgressSink = std::function<void(double percent)>;

/// Writes one movie from \a source and blocks until it is complete. Sound is read on the calling thread,
/// pictures on a thread that ends before this does. Throws MovieFailure, or what the source throws; a file
/// of the movie's name is then as it was before. A request to \a stop, from any thread, makes it fail as
/// cancelled, after the source's running calls.
MovieStatistics writeMovie(const PKMuxerContext &context,
                           PKMuxerTaskDataSource &source,
                           const ProgressSink &progress,
                           const std::stop_token &stop = {});

} // namespace vornic
