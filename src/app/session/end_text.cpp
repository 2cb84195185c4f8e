#include "app/session/end_text.h"

#include "display/display_backend.h"
#include "geometry/screen_geometry.h"
#include "options/VNOption.h"

#include <QCoreApplication>

#include <cerrno>

namespace vornic {

QString whyNoPicture(const QRectF &rectangle)
{
    const QSize display = mainDisplay()->mainDisplaySize();
    if (display.isEmpty())
        return QCoreApplication::translate("vornic",
                                           "The display is gone: the recording ends with what it holds.");
    const QRect pixels = truncatedRect(VNOption::convertScreenRectToQuartz(rectangle));
    if (rectangle == QRectF() || pixels.intersects(QRect(QPoint(0, 0), display)))
        return QCoreApplication::translate(
            "vornic", "The display gives no picture any more: the recording ends with what it holds.");
    return QCoreApplication::translate(
               "vornic",
               "The display has %1x%2 pixels now, and the recorded rectangle lies off "
               "it: the recording ends with what it holds.")
        .arg(display.width())
        .arg(display.height());
}

QString whySpoolingFailed(int error)
{
    if (error == 0 || error == ENOSPC || error == EDQUOT)
        return {};
    if (error == EFBIG)
        return QCoreApplication::translate(
            "vornic", "There is a limit on the size of files, and the recording has reached it");
    return QCoreApplication::translate("vornic", "The recording could not be written to the disk: %1")
        .arg(qt_error_string(error));
}

QString recordingKeptLine(const QString &id)
{
    return QCoreApplication::translate("vornic",
                                       "vornic: The recording is kept: vornic recover %1 makes the movie.")
        .arg(id);
}

} // namespace vornic
