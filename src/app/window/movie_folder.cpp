#include "app/window/movie_folder.h"

#include "base/user_defaults.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace vornic::movie_folder {

namespace {

const QString folderKey = QStringLiteral("com.kavlor.movieFolder");

/// Also a link to a file that is gone, which a new file would replace.
bool isUsed(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

} // namespace

QString current()
{
    for (const QString &folder : { user_defaults::value(folderKey).toString(),
                                   QStandardPaths::writableLocation(QStandardPaths::MoviesLocation) }) {
        if (!folder.isEmpty() && QFileInfo(folder).isDir())
            return folder;
    }
    return QDir::homePath();
}

void setCurrent(const QString &folder)
{
    user_defaults::setValue(folderKey, folder);
    user_defaults::synchronize();
}

QString unusedName(const QString &folder, const QString &name, const QString &type)
{
    const auto path
        = [&](const QString &candidate) { return QStringLiteral("%1/%2.%3").arg(folder, candidate, type); };
    QString candidate = name;
    for (int number = 2; isUsed(path(candidate)); ++number)
        candidate = QStringLiteral("%1 %2").arg(name).arg(number);
    return candidate;
}

} // namespace vornic::movie_folder
