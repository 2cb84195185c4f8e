#include "app/help_copy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace vornic {

QString helpCopy(const QString &document)
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
                      + QStringLiteral("/com.kavlor.vornic"));
    folder.mkpath(QStringLiteral("."));
    QString copy = folder.filePath(QStringLiteral("Help.pdf"));
    // Whoever opens a named pipe waits for it.
    const bool isDocument = QFileInfo(document).isFile();
    if (isDocument && !QFileInfo::exists(copy))
        QFile::copy(document, copy);
    if (QFileInfo(copy).isFile())
        return copy;
    return isDocument ? document : QString();
}

} // namespace vornic
