#include "pictures/picture.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImageIOHandler>
#include <QImageReader>

#include <algorithm>
#include <array>
#include <cmath>

namespace vornic {

namespace {

/// The formats of files that are kept as they are: those that everybody has, and that are small.
constexpr std::array keptFormats { "jpeg", "png", "webp" };
/// A larger file is not kept: what is stored is read and written as a whole.
constexpr qint64 maxKeptBytes = 32LL * 1024 * 1024;
/// Of a JPEG, in which nobody sees the difference.
constexpr int fineQuality = 95;
/// Of a PNG, which loses nothing at any: a little larger, but written several times as fast as the smallest.
constexpr int fastCompression = 80;

bool isKept(const QByteArray &format)
{
    return std::ranges::any_of(keptFormats, [&](const char *kept) { return format == kept; });
}

qint64 pixelCount(QSize size)
{
    return qint64 { size.width() } * size.height();
}

/// The toolkit neither scales nor draws longer ones.
bool isTooLong(QSize size)
{
    constexpr int maxSide = 32767;
    return size.width() > maxSide || size.height() > maxSide;
}

/// \a size, or the largest of the same shape that has no more than Picture::maxPixels.
QSize limited(QSize size)
{
    if (size.isEmpty() || pixelCount(size) <= Picture::maxPixels)
        return size;
    const double factor
        = std::sqrt(static_cast<double>(Picture::maxPixels) / static_cast<double>(pixelCount(size)));
    return { static_cast<int>(size.width() * factor), static_cast<int>(size.height() * factor) };
}

/// How the file's pixels lie when it is upright.
QSize uprightSize(const QImageReader &reader)
{
    const QSize size = reader.size();
    return reader.transformation().testFlag(QImageIOHandler::TransformationRotate90) ? size.transposed()
                                                                                     : size;
}

/// Lets the toolkit take more memory for a picture than it does by itself, which is just enough for the largest that
/// is kept: this many megabytes hold four times as many pixels.
class LargePictures
{
public:
    LargePictures() { QImageReader::setAllocationLimit(512); }
    ~LargePictures() { QImageReader::setAllocationLimit(m_before); }
    Q_DISABLE_COPY_MOVE(LargePictures)

private:
    const int m_before = QImageReader::allocationLimit();
};

/// Ends the sentence "It cannot be read: ".
QString tooLargeReason(QSize size)
{
    return QCoreApplication::translate("vornic", "it has %1 × %2 pixels, which is too many")
        .arg(size.width())
        .arg(size.height());
}

/// The picture at the size that can be kept; null with the reason.
QImage readLimited(QImageReader &reader, QString &whyNot)
{
    const QSize size = reader.size();
    if (isTooLong(size)) {
        whyNot = tooLargeReason(uprightSize(reader));
        return {};
    }
    const LargePictures largePictures;
    const bool isTooLarge = limited(size) != size;
    if (isTooLarge)
        reader.setScaledSize(limited(size)); // without memory for the whole, in some formats
    QImage image = reader.read();
    if (image.isNull())
        whyNot = isTooLarge ? tooLargeReason(uprightSize(reader)) : reader.errorString();
    return image;
}

QByteArray encodedAs(const char *format, const QImage &image, int quality)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format, quality);
    return buffer.data();
}

} // namespace

Picture::Picture(const QImage &pixels)
    : m_isOpaque(!pixels.hasAlphaChannel())
{
    if (isTooLong(pixels.size()))
        return;
    const QSize size = limited(pixels.size());
    const QImage &image = size == pixels.size()
        ? pixels
        : pixels.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    m_image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    m_image.setDevicePixelRatio(1);
    m_originalSize = pixels.size();
}

Picture Picture::read(QFile &file, QString *whyNot)
{
    QImageReader reader(&file);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    const QSize size = uprightSize(reader);
    QString reason;
    Picture picture(readLimited(reader, reason));
    if (whyNot)
        *whyNot = reason;
    if (picture.isNull())
        return picture;
    picture.m_fileName = QFileInfo(file).fileName();
    if (limited(size) != size)
        picture.m_originalSize = size;
    if (!picture.isScaledDown() && isKept(format) && file.size() <= maxKeptBytes && file.seek(0))
        picture.m_encoded = file.readAll();
    return picture;
}

Picture Picture::decoded(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (!isKept(reader.format()) || size.isEmpty() || isTooLong(size) || pixelCount(size) > maxPixels)
        return {};
    Picture picture(reader.read());
    if (!picture.isNull())
        picture.m_encoded = bytes;
    return picture;
}

QByteArray Picture::encoded() const
{
    if (m_encoded.isEmpty() && !isNull()) {
        m_encoded = isScaledDown() && m_isOpaque ? encodedAs("JPEG", m_image, fineQuality)
                                                 : encodedAs("PNG", m_image, fastCompression);
    }
    return m_encoded;
}

} // namespace vornic
