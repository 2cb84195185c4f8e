#include "controls/picture_data.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>

namespace vornic {

QByteArray tiffData(const QImage &image)
{
    if (image.isNull())
        return {};
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "TIFF");
    return buffer.data();
}

QByteArray pdfData(const QImage &image)
{
    if (image.isNull())
        return {};
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    constexpr int pointsPerInch = 72;
    QPdfWriter writer(&buffer);
    writer.setResolution(pointsPerInch);
    writer.setPageSize(QPageSize(QSizeF(image.size()), QPageSize::Point));
    writer.setPageMargins({});
    QPainter painter(&writer);
    painter.drawImage(QRectF(QPointF(0, 0), QSizeF(image.size())), image);
    painter.end();
    return buffer.data();
}

} // namespace vornic
