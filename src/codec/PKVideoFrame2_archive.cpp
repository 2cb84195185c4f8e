// The keyed archive of a frame: its format, sizes, times, and rows without padding.

#include "base/keyed_archive.h"
#include "codec/PKVideoFrame2.h"
#include "codec/planar_picture.h"

#include <cstring>

namespace vornic {

namespace {

constexpr QLatin1StringView formatKey("pixFormat");
constexpr QLatin1StringView codeWidthKey("codeWidth");
constexpr QLatin1StringView codeHeightKey("codeHeight");
constexpr QLatin1StringView displayWidthKey("displayWidth");
constexpr QLatin1StringView displayHeightKey("displayHeight");
constexpr QLatin1StringView timeStampKey("timeStamp");
constexpr QLatin1StringView durationKey("duration");
constexpr QLatin1StringView pixelsKey("pixels");

struct Plane {
    qsizetype rowBytes;
    int rows;
};

std::vector<Plane> planesOf(PKPixelFormat format, int width, int height)
{
    if (format == PKPixelFormatRGB32)
        return { { qsizetype { width } * 4, height } };
    return { { width, height }, { width / 2, height / 2 }, { width / 2, height / 2 } };
}

} // namespace

void PKVideoFrame2::encodeWithCoder(KeyedArchiver &archiver) const
{
    archiver.encodeInt32(formatKey, static_cast<std::int32_t>(pixFormat()));
    archiver.encodeInt32(codeWidthKey, codeWidth());
    archiver.encodeInt32(codeHeightKey, codeHeight());
    archiver.encodeInt32(displayWidthKey, m_displayWidth);
    archiver.encodeInt32(displayHeightKey, m_displayHeight);
    archiver.encodeInt64(timeStampKey, m_timeStamp);
    archiver.encodeInt64(durationKey, m_duration);
    QByteArray pixels;
    int index = 0;
    for (const Plane plane : planesOf(pixFormat(), codeWidth(), codeHeight())) {
        for (int row = 0; row < plane.rows; ++row)
            pixels.append(reinterpret_cast<const char *>(planeData(index) + row * planeStride(index)),
                          plane.rowBytes);
        ++index;
    }
    archiver.encodeData(pixelsKey, pixels);
}

std::shared_ptr<PKVideoFrame2> PKVideoFrame2::createWithCoder(const KeyedUnarchiver &unarchiver)
{
    const std::int32_t storedFormat = unarchiver.decodeInt32(formatKey);
    const int width = unarchiver.decodeInt32(codeWidthKey);
    const int height = unarchiver.decodeInt32(codeHeightKey);
    const QByteArray pixels = unarchiver.decodeData(pixelsKey).value_or(QByteArray());
    const bool isYuv = storedFormat == static_cast<std::int32_t>(PKPixelFormatYUV420P);
    const bool isRgb = storedFormat == static_cast<std::int32_t>(PKPixelFormatRGB32);
    constexpr int maxPixelsPerSide = 1 << 16;
    if (!(isYuv || isRgb) || width < 1 || height < 1 || width > maxPixelsPerSide || height > maxPixelsPerSide
        || (isYuv && (width % 2 != 0 || height % 2 != 0)))
        return nullptr;
    const PKPixelFormat format = isYuv ? PKPixelFormatYUV420P : PKPixelFormatRGB32;
    qsizetype length = 0;
    for (const Plane plane : planesOf(format, width, height))
        length += plane.rowBytes * plane.rows;
    if (length != pixels.size())
        return nullptr;

    const char *from = pixels.constData();
    std::shared_ptr<PKVideoFrame2> frame;
    if (isRgb) {
        frame = std::make_shared<PKVideoFrame2>(
            QImage(reinterpret_cast<const uchar *>(from), width, height, QImage::Format_RGB32).copy());
    } else {
        const auto planes = std::make_shared<PlanarPicture>(width, height);
        for (int plane = 0; plane < 3; ++plane) {
            const auto rowBytes = static_cast<std::size_t>(planes->planeWidth(plane));
            for (int row = 0; row < planes->planeHeight(plane); ++row, from += rowBytes)
                std::memcpy(planes->data(plane) + row * planes->stride(plane), from, rowBytes);
        }
        frame = std::make_shared<PKVideoFrame2>(planes, width, height);
    }
    const int displayWidth = unarchiver.decodeInt32(displayWidthKey);
    const int displayHeight = unarchiver.decodeInt32(displayHeightKey);
    // A YUV frame shows its own pixels; an RGB frame may ask for any size that a movie can have.
    const int maxWidth = isYuv ? width : maxPixelsPerSide;
    const int maxHeight = isYuv ? height : maxPixelsPerSide;
    if (displayWidth < 1 || displayHeight < 1 || displayWidth > maxWidth || displayHeight > maxHeight)
        return nullptr;
    frame->setDisplaySize(displayWidth, displayHeight);
    frame->setTimeStamp(unarchiver.decodeInt64(timeStampKey));
    frame->setDuration(unarchiver.decodeInt64(durationKey));
    return frame;
}

} // namespace vornic
