#include "display/portal/cast_buffer.h"

#include "display/portal/cast_params.h"

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/video/raw.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

namespace vornic {

namespace {

/// The largest edge of a pointer's picture.
constexpr std::uint32_t maxCursorEdge = 1024;

std::span<const std::byte> metadata(const spa_buffer &buffer, spa_meta_type type)
{
    const spa_meta *const meta = spa_buffer_find_meta(&buffer, type);
    return meta && meta->data ? std::span(static_cast<const std::byte *>(meta->data), meta->size)
                              : std::span<const std::byte>();
}

/// A copy of the T that begins at \a offset, which the other process cannot change any more; nothing where it does not lie
/// within \a bytes.
template<typename T>
std::optional<T> read(std::span<const std::byte> bytes, std::size_t offset = 0)
{
    if (offset > bytes.size() || bytes.size() - offset < sizeof(T))
        return std::nullopt;
    T value {};
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

/// Whether \a bytes from the beginning of \a data on can be read: behind the end of a file that is too short they cannot.
bool isBacked(const spa_data &data, std::int64_t bytes)
{
    if (data.type != SPA_DATA_MemFd)
        return data.type == SPA_DATA_MemPtr;
    struct stat file = {};
    return fstat(static_cast<int>(data.fd), &file) == 0 && file.st_size >= data.mapoffset + bytes;
}

bool isCorrupted(const spa_chunk &chunk)
{
    constexpr int corrupted = SPA_CHUNK_FLAG_CORRUPTED;
    return (chunk.flags & corrupted) != 0;
}

/// Nothing where the buffer holds no picture.
std::optional<CastPixels> pixelsIn(const spa_buffer &buffer, const CastFormat &format)
{
    if (buffer.n_datas == 0 || !buffer.datas[0].chunk || !buffer.datas[0].data)
        return std::nullopt;
    const spa_data &data = buffer.datas[0];
    const spa_chunk chunk = *data.chunk;
    if (isCorrupted(chunk))
        return std::nullopt;
    const std::int64_t rowBytes = std::int64_t { format.size.width() } * 4;
    const std::int64_t stride = chunk.stride == 0 ? rowBytes : chunk.stride;
    const std::int64_t bytes = stride * (format.size.height() - 1) + rowBytes;
    const std::int64_t end = std::int64_t { chunk.offset } + bytes;
    if (stride < rowBytes || bytes > chunk.size || end > data.maxsize || !isBacked(data, end))
        return std::nullopt;
    return CastPixels {
        static_cast<const uchar *>(data.data) + chunk.offset, stride, format.size, format.order, 0
    };
}

int transformIn(const spa_buffer &buffer)
{
    constexpr std::uint32_t transforms = 8;
    const auto told = read<spa_meta_videotransform>(metadata(buffer, SPA_META_VideoTransform));
    return told && told->transform < transforms ? static_cast<int>(told->transform) : 0;
}

/// The part of \a region on a picture of \a size.
QRect visiblePart(const spa_region &region, QSize size)
{
    const auto clipped = [](std::int64_t position, std::int64_t length, int limit) {
        const auto first = std::clamp<std::int64_t>(position, 0, limit);
        return std::pair(static_cast<int>(first),
                         static_cast<int>(std::clamp<std::int64_t>(position + length, first, limit) - first));
    };
    const auto [x, width] = clipped(region.position.x, region.size.width, size.width());
    const auto [y, height] = clipped(region.position.y, region.size.height, size.height());
    return { x, y, width, height };
}

std::vector<QRect> damageIn(const spa_buffer &buffer, QSize size)
{
    std::vector<QRect> damage;
    const std::span<const std::byte> list = metadata(buffer, SPA_META_VideoDamage);
    for (std::size_t at = 0;; at += sizeof(spa_meta_region)) {
        const auto entry = read<spa_meta_region>(list, at);
        // One without an extent ends a list that is shorter than its memory.
        if (!entry || !spa_meta_region_is_valid(&*entry))
            return damage;
        if (const QRect visible = visiblePart(entry->region, size); !visible.isEmpty())
            damage.push_back(visible);
    }
}

/// Where a pixel's red, green, blue and alpha lie; nothing for formats that no pointer has.
std::optional<std::array<std::size_t, 4>> channels(std::uint32_t format)
{
    switch (format) {
    case SPA_VIDEO_FORMAT_RGBA:
        return std::array<std::size_t, 4> { 0, 1, 2, 3 };
    case SPA_VIDEO_FORMAT_BGRA:
        return std::array<std::size_t, 4> { 2, 1, 0, 3 };
    case SPA_VIDEO_FORMAT_ARGB:
        return std::array<std::size_t, 4> { 1, 2, 3, 0 };
    case SPA_VIDEO_FORMAT_ABGR:
        return std::array<std::size_t, 4> { 3, 2, 1, 0 };
    default:
        return std::nullopt;
    }
}

/// The picture that \a bytes begin with the description of; null where there is none to be shown.
QImage bitmapIn(std::span<const std::byte> bytes)
{
    const auto bitmap = read<spa_meta_bitmap>(bytes);
    const auto order = bitmap ? channels(bitmap->format) : std::nullopt;
    if (!order || bitmap->offset < sizeof(spa_meta_bitmap) || bitmap->size.width == 0
        || bitmap->size.height == 0 || bitmap->size.width > maxCursorEdge
        || bitmap->size.height > maxCursorEdge)
        return {};
    const std::int64_t rowBytes = std::int64_t { bitmap->size.width } * 4;
    const std::int64_t end = std::int64_t { bitmap->offset }
        + std::int64_t { bitmap->stride } * (bitmap->size.height - 1) + rowBytes;
    if (bitmap->stride < rowBytes || end > static_cast<std::int64_t>(bytes.size()))
        return {};
    QImage picture(static_cast<int>(bitmap->size.width),
                   static_cast<int>(bitmap->size.height),
                   QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < picture.height(); ++y) {
        const std::byte *pixel = bytes.data() + bitmap->offset + std::ptrdiff_t { bitmap->stride } * y;
        auto *const line = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x, pixel += 4) {
            const auto channel = [&](std::size_t i) { return std::to_integer<int>(pixel[(*order)[i]]); };
            line[x] = qRgba(channel(0), channel(1), channel(2), channel(3));
        }
    }
    return picture;
}

std::shared_ptr<const CursorShape> shapeIn(std::span<const std::byte> bytes, const spa_meta_cursor &cursor)
{
    if (cursor.bitmap_offset > bytes.size())
        return nullptr;
    QImage picture = bitmapIn(bytes.subspan(cursor.bitmap_offset));
    if (picture.isNull())
        return nullptr;
    return std::make_shared<const CursorShape>(
        CursorShape { std::move(picture), QPoint(cursor.hotspot.x, cursor.hotspot.y) });
}

std::optional<CastPointer> pointerIn(const spa_buffer &buffer)
{
    const std::span<const std::byte> bytes = metadata(buffer, SPA_META_Cursor);
    const auto cursor = read<spa_meta_cursor>(bytes);
    if (!cursor)
        return std::nullopt;
    CastPointer pointer { spa_meta_cursor_is_valid(&*cursor),
                          QPoint(cursor->position.x, cursor->position.y),
                          std::nullopt };
    if (cursor->bitmap_offset >= sizeof(spa_meta_cursor))
        pointer.shape = shapeIn(bytes, *cursor);
    return pointer;
}

} // namespace

CastFrame readCastBuffer(const spa_buffer &buffer, const CastFormat &format)
{
    CastFrame frame;
    if (const auto header = read<spa_meta_header>(metadata(buffer, SPA_META_Header)))
        frame.sequence = header->seq;
    frame.pixels = pixelsIn(buffer, format);
    if (frame.pixels)
        frame.pixels->transform = transformIn(buffer);
    frame.damage = damageIn(buffer, format.size);
    frame.pointer = pointerIn(buffer);
    return frame;
}

} // namespace vornic
