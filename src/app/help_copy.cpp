#include "app/help_copy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace vornic {

QString helpCopy(const QString &document)
{
    if (document.isEmpty())
        return {};
    const QDir caches(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation));
    const QDir folder(caches.filePath(QStringLiteral("com.kavlor.vornic")));
    // It also holds recordings, which are nobody else's business.
    caches.mkpath(QStringLiteral("."));
    caches.mkdir(folder.dirName(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
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
