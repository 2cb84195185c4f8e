#include "pictures/picture_file.h"

#include <QCoreApplication>
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

QImage readPictureFile(const QString &path, QString *whyNot)
{
    QString reason;
    QImage picture;
    if (const QFileInfo file(path); !file.exists()) {
        reason = QCoreApplication::translate("vornic", "there is no such file");
    } else if (!file.isFile()) {
        reason = QCoreApplication::translate("vornic", "it is not a regular file");
    } else {
        QImageReader reader(path);
        reader.setDecideFormatFromContent(true);
        reader.setAutoTransform(true);
        picture = reader.read();
        if (picture.isNull())
            reason = reader.errorString();
    }
    if (whyNot)
        *whyNot = reason;
    return picture;
}

} // namespace vornic
