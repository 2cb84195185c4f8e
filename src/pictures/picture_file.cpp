#include "pictures/picture_file.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

namespace vornic {

bool isPictureFile(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return false;
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    return reader.canRead();
}

Picture readPictureFile(const QString &path, QString *whyNot)
{
    QString reason;
    Picture picture;
    QFile file(path);
    if (const QFileInfo info(file); !info.exists())
        reason = QCoreApplication::translate("vornic", "there is no such file");
    else if (!info.isFile())
        reason = QCoreApplication::translate("vornic", "it is not a regular file");
    else if (!file.open(QIODevice::ReadOnly))
        reason = file.errorString();
    else
        picture = Picture::read(file, &reason);
    if (whyNot)
        *whyNot = reason;
    return picture;
}

} // namespace vornic
