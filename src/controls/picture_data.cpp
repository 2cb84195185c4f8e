#include "controls/picture_data.h"

#include <QBuffer>
#include <QDataStream>
#include <QPainter>
#include <QPdfWriter>

namespace vornic {

namespace {

constexpr quint16 typeShort = 3;
constexpr quint16 typeLong = 4;
constexpr quint16 channels = 4;
constexpr quint16 fieldCount = 11;
constexpr quint32 directoryOffset = 8;
/// Of what does not fit into the directory: four channel widths.
constexpr quint32 widthsOffset = directoryOffset + 2 + fieldCount * 12U + 4;
constexpr quint32 pixelsOffset = widthsOffset + 2 * channels;

void writeField(QDataStream &file, quint16 tag, quint16 type, quint32 count, quint32 value)
{
    file << tag << type << count;
    // A short stands in the first two of the four bytes.
    if (type == typeShort && count == 1)
        file << static_cast<quint16>(value) << quint16(0);
    else
        file << value;
}

} // namespace

QByteArray tiffData(const QImage &image)
{
    if (image.isNull())
        return {};
    const QImage pixels = image.convertToFormat(QImage::Format_RGBA8888);
    const auto width = static_cast<quint32>(pixels.width());
    const auto height = static_cast<quint32>(pixels.height());
    QByteArray data;
    QDataStream file(&data, QIODevice::WriteOnly);
    file.setByteOrder(QDataStream::LittleEndian);
    file.writeRawData("II", 2);
    file << quint16(42) << directoryOffset << fieldCount;
    writeField(file, 256, typeLong, 1, width);
    writeField(file, 257, typeLong, 1, height);
    writeField(file, 258, typeShort, channels, widthsOffset);
    writeField(file, 259, typeShort, 1, 1); // no compression
    writeField(file, 262, typeShort, 1, 2); // red, green, blue
    writeField(file, 273, typeLong, 1, pixelsOffset);
    writeField(file, 277, typeShort, 1, channels);
    writeField(file, 278, typeLong, 1, height); // all rows in one strip
    writeField(file, 279, typeLong, 1, width * height * channels);
    writeField(file, 284, typeShort, 1, 1); // channels side by side
    writeField(file, 338, typeShort, 1, 2); // the fourth is opacity, not multiplied in
    file << quint32(0);
    for (int channel = 0; channel < channels; ++channel)
        file << quint16(8);
    for (int row = 0; row < pixels.height(); ++row)
        file.writeRawData(reinterpret_cast<const char *>(pixels.constScanLine(row)),
                          pixels.width() * channels);
    return data;
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
