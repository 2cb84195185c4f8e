#include "overlay/dropped_picture.h"

#include <QImageReader>
#include <QMimeData>
#include <QUrl>

namespace vornic {

namespace {

QString firstFile(const QMimeData *pasteboard)
{
    return pasteboard && pasteboard->hasUrls() ? pasteboard->urls().value(0).toLocalFile() : QString();
}

} // namespace

bool holdsPicture(const QMimeData *pasteboard)
{
    const QString file = firstFile(pasteboard);
    if (file.isEmpty())
        return false;
    QImageReader reader(file);
    reader.setDecideFormatFromContent(true);
    return reader.canRead();
}

QImage droppedPicture(const QMimeData *pasteboard)
{
    const QString file = firstFile(pasteboard);
    if (file.isEmpty())
        return {};
    QImageReader reader(file);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    return reader.read();
}

} // namespace vornic
