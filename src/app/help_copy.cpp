#include "app/help_copy.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace vornic {

QString helpCopy(const QString &document)
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
                      + QStringLiteral("/com.kavlor.vornic"));
    folder.mkpath(QStringLiteral("."));
    QString copy = folder.filePath(QStringLiteral("Help.pdf"));
    if (!QFile::exists(copy))
        QFile::copy(document, copy);
    return copy;
}

} // namespace vornic
