#include "app/session/new_movie_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace vornic {

QString newMovieFile(const QDateTime &time)
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    if (!QFileInfo(folder).isDir())
        folder = QDir::homePath();
    // No colons: not every file system takes them.
    const QString name = QCoreApplication::translate("vornic", "Recording %1")
                             .arg(time.toString(QStringLiteral("yyyy-MM-dd HH-mm-ss")));
    QString path = QDir(folder).filePath(name + QStringLiteral(".mp4"));
    for (int number = 2; QFileInfo::exists(path); ++number)
        path = QDir(folder).filePath(QStringLiteral("%1 %2.mp4").arg(name).arg(number));
    return path;
}

} // namespace vornic
