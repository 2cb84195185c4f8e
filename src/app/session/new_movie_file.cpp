#include "app/session/new_movie_file.h"

#include "base/native_path.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace vornic {

namespace {

QString freeName(const QString &folder, const QString &name)
{
    QString path = QDir(folder).filePath(name + QStringLiteral(".mp4"));
    for (int number = 2; isTaken(path); ++number)
        path = QDir(folder).filePath(QStringLiteral("%1 %2.mp4").arg(name).arg(number));
    return path;
}

} // namespace

QString newMovieFile(const QDateTime &time)
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    if (!QFileInfo(folder).isDir())
        folder = QDir::homePath();
    // No colons: not every file system takes them.
    const QString name = QCoreApplication::translate("vornic", "Recording %1")
                             .arg(time.toString(QStringLiteral("yyyy-MM-dd HH-mm-ss")));
    return freeName(folder, name);
}

QString movieFileFor(const QString &meant, const QDateTime &time)
{
    const QFileInfo file(meant);
    if (meant.isEmpty() || !isFolder(file.absolutePath()))
        return newMovieFile(time);
    return freeName(file.absolutePath(), file.completeBaseName());
}

} // namespace vornic
