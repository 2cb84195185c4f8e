#pragma once

#include <QString>

namespace vornic {

/// Why no movie could be written to \a path, one sentence for the user; empty when it looks possible.
/// Tries it by making and removing a file in the folder; what stands at \a path is left alone.
[[nodiscard]] QString whyNoMovieCanBeWritten(const QString &path);

/// The same for the cache folder where it is another user's, or others can write to it: nothing in it is trusted then.
[[nodiscard]] QString whyCacheIsRefused();

/// The same for the folder that holds the recording until the movie is written.
[[nodiscard]] QString whyNothingCanBeSpooled();
/// The same where that has just failed for \a reason, which is in the system's words.
[[nodiscard]] QString nothingCanBeSpooledText(const QString &reason);

} // namespace vornic
