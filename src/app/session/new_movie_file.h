#pragma once

#include <QDateTime>
#include <QString>

namespace vornic {

/// The path of a movie that is not there yet, in the user's folder of movies, or the home folder where there is none,
/// under a name with \a time, by the second, and a number where that is taken. Asks the disk.
[[nodiscard]] QString newMovieFile(const QDateTime &time = QDateTime::currentDateTime());
/// The path of a movie that is not there yet, for a recording of \a time that was meant for \a meant: that name, with a
/// number where it is taken, or newMovieFile() where its folder is gone. Asks the disk.
[[nodiscard]] QString movieFileFor(const QString &meant, const QDateTime &time);

} // namespace vornic
