#include "capture/spool/pointer_shape_archive.h"

#include "base/keyed_archive.h"
#include "display/display_backend.h"

#include <QtEndian>

#include <bit>
#include <cstring>

namespace vornic {

namespace {

constexpr QLatin1StringView indexKey("index");
constexpr QLatin1StringView hotSpotKey("hotSpot");
constexpr QLatin1StringView widthKey("width");
constexpr QLatin1StringView heightKey("height");
constexpr QLatin1StringView pixelsKey("pixels"); ///< rows of premultiplied ARGB, compressed by the toolkit

constexpr int maxSide = 1024;
constexpr qsizetype bytesPerPixel = 4;

} // namespace

QByteArray pointerShapeArchive(std::uint64_t index, const CursorShape &shape)
{
    const QImage picture = shape.picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QByteArray pixels;
    for (int y = 0; y < picture.height(); ++y)
        pixels.append(reinterpret_cast<const char *>(picture.constScanLine(y)),
                      bytesPerPixel * picture.width());
    KeyedArchiver archiver;
    archiver.encodeInt64(indexKey, std::bit_cast<std::int64_t>(index));
    archiver.encodePoint(hotSpotKey, shape.hotSpot);
    archiver.encodeInt32(widthKey, picture.width());
    archiver.encodeInt32(heightKey, picture.height());
    archiver.encodeData(pixelsKey, qCompress(pixels));
    return archiver.bytes();
}

std::optional<std::pair<std::uint64_t, std::shared_ptr<const CursorShape>>>
pointerShapeFromArchive(QByteArrayView archive)
{
    const auto unarchiver = KeyedUnarchiver::create(archive.toByteArray());
    if (!unarchiver)
        return std::nullopt;
    const QSize size(unarchiver->decodeInt32(widthKey), unarchiver->decodeInt32(heightKey));
    if (size.isEmpty() || size.width() > maxSide || size.height() > maxSide)
        return std::nullopt;
    const qsizetype length = bytesPerPixel * size.width() * size.height();
    const QByteArray compressed = unarchiver->decodeData(pixelsKey).value_or(QByteArray());
    // The toolkit allocates whatever the first four bytes say.
    if (compressed.size() < 4 || qFromBigEndian<quint32>(compressed.constData()) != length)
        return std::nullopt;
    const QByteArray pixels = qUncompress(compressed);
    if (pixels.size() != length)
        return std::nullopt;
    auto shape = std::make_shared<CursorShape>();
    shape->picture = QImage(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y)
        std::memcpy(shape->picture.scanLine(y),
                    pixels.constData() + y * bytesPerPixel * size.width(),
                    static_cast<std::size_t>(bytesPerPixel * size.width()));
    shape->hotSpot = unarchiver->decodePoint(hotSpotKey).toPoint();
    return std::pair(std::bit_cast<std::uint64_t>(unarchiver->decodeInt64(indexKey)),
                     std::shared_ptr<const CursorShape>(std::move(shape)));
}

} // namespace vornic
