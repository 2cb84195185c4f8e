#pragma once

#include <QString>

namespace vornic {

/// Why no movie could be written to \a path, one sentence for the user; empty when it looks possible.
/// Tries it by making and removing a file in the folder; what stands at \a path is left alone.
[[nodiscard]] QString whyNoMovieCanBeWritten(const QString &path);

/// The same for the folder that holds the recording until the movie is written.
[[nodiscard]] QString whyNothingCanBeSpooled();

} // namespace vornic
