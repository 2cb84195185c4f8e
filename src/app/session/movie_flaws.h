#pragma once

#include <QString>

namespace vornic {

struct Recording;
struct RecordingCounts;

/// What is missing in the movie of a recording: a sentence for each, in the user's language; empty where nothing is.
[[nodiscard]] QString movieFlaws(const Recording &recording, const RecordingCounts &counts);

} // namespace vornic
