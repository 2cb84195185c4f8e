#include "overlay/dropped_picture.h"

#include "pictures/picture_file.h"

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
    return isPictureFile(firstFile(pasteboard));
}

Picture droppedPicture(const QMimeData *pasteboard)
{
    return readPictureFile(firstFile(pasteboard));
}

} // namespace vornic
