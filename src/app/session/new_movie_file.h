#pragma once

#include <QDateTime>
#include <QString>

namespace vornic {

/// The path of a movie that is not there yet, in the user's folder of movies, or the home folder where there is none,
/// under a name with \a time, by the second, and a number where that is taken. Asks the disk.
[[nodiscard]] QString newMovieFile(const QDateTime &time = QDateTime::currentDateTime());

} // namespace vornic
