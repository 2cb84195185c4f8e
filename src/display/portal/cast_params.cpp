#include "display/portal/cast_params.h"

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/video/format-utils.h>

#include <algorithm>
#include <initializer_list>

namespace vornic {

namespace {

/// No display is larger, and no picture of this size overflows anything.
constexpr std::uint32_t maxEdge = 16384;

struct OfferedFormat {
    spa_video_format format;
    CastPixels::Order order;
};

/// Best first.
constexpr std::array offeredFormats {
    OfferedFormat { SPA_VIDEO_FORMAT_BGRx, CastPixels::Order::Bgrx },
    OfferedFormat { SPA_VIDEO_FORMAT_BGRA, CastPixels::Order::Bgrx },
    OfferedFormat { SPA_VIDEO_FORMAT_RGBx, CastPixels::Order::Rgbx },
    OfferedFormat { SPA_VIDEO_FORMAT_RGBA, CastPixels::Order::Rgbx },
};

/// Bytes of a pointer's description with a picture of \a edge pixels.
constexpr std::size_t cursorBytes(std::size_t edge)
{
    return sizeof(spa_meta_cursor) + sizeof(spa_meta_bitmap) + edge * edge * 4;
}

} // namespace

std::optional<CastFormat> castFormatIn(const spa_pod *param)
{
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    spa_video_info_raw info {};
    if (!param || spa_format_parse(param, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video
        || subtype != SPA_MEDIA_SUBTYPE_raw || spa_format_video_raw_parse(param, &info) < 0)
        return std::nullopt;
    const auto offered = std::ranges::find(offeredFormats, info.format, &OfferedFormat::format);
    const spa_rectangle size = info.size;
    if (offered == offeredFormats.end() || size.width == 0 || size.height == 0 || size.width > maxEdge
        || size.height > maxEdge)
        return std::nullopt;
    return CastFormat { QSize(static_cast<int>(size.width), static_cast<int>(size.height)), offered->order };
}

CastParams::CastParams()
{
    spa_pod_builder_init(&m_builder, m_memory.data(), static_cast<std::uint32_t>(m_memory.size()));
}

void CastParams::addFormats()
{
    begin(SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    addId(SPA_FORMAT_mediaType, SPA_MEDIA_TYPE_video);
    addId(SPA_FORMAT_mediaSubtype, SPA_MEDIA_SUBTYPE_raw);
    spa_pod_frame choice {};
    // The first value of a choice is the one that is preferred; the list or the range of all follows.
    spa_pod_builder_prop(&m_builder, SPA_FORMAT_VIDEO_format, 0);
    spa_pod_builder_push_choice(&m_builder, &choice, SPA_CHOICE_Enum, 0);
    spa_pod_builder_id(&m_builder, offeredFormats.front().format);
    for (const OfferedFormat &offered : offeredFormats)
        spa_pod_builder_id(&m_builder, offered.format);
    spa_pod_builder_pop(&m_builder, &choice);
    spa_pod_builder_prop(&m_builder, SPA_FORMAT_VIDEO_size, 0);
    spa_pod_builder_push_choice(&m_builder, &choice, SPA_CHOICE_Range, 0);
    spa_pod_builder_rectangle(&m_builder, 1920, 1080);
    spa_pod_builder_rectangle(&m_builder, 1, 1);
    spa_pod_builder_rectangle(&m_builder, maxEdge, maxEdge);
    spa_pod_builder_pop(&m_builder, &choice);
    spa_pod_builder_prop(&m_builder, SPA_FORMAT_VIDEO_framerate, 0);
    spa_pod_builder_fraction(&m_builder, 0, 1); // whenever something changes
    spa_pod_builder_prop(&m_builder, SPA_FORMAT_VIDEO_maxFramerate, 0);
    spa_pod_builder_push_choice(&m_builder, &choice, SPA_CHOICE_Range, 0);
    spa_pod_builder_fraction(&m_builder, 60, 1);
    spa_pod_builder_fraction(&m_builder, 0, 1);
    spa_pod_builder_fraction(&m_builder, 1000, 1);
    spa_pod_builder_pop(&m_builder, &choice);
    end();
}

void CastParams::addBuffers()
{
    begin(SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
    addIntChoice(SPA_PARAM_BUFFERS_buffers, SPA_CHOICE_Range, { 4, 2, 16 });
    addIntChoice(
        SPA_PARAM_BUFFERS_dataType, SPA_CHOICE_Flags, { (1U << SPA_DATA_MemFd) | (1U << SPA_DATA_MemPtr) });
    end();
}

void CastParams::addMetadata()
{
    constexpr std::size_t region = sizeof(spa_meta_region);
    addMeta(SPA_META_Header, { sizeof(spa_meta_header) });
    addMeta(SPA_META_VideoDamage, { 16 * region, region, 64 * region });
    addMeta(SPA_META_Cursor, { cursorBytes(64), cursorBytes(1), cursorBytes(512) });
    addMeta(SPA_META_VideoTransform, { sizeof(spa_meta_videotransform) });
}

/// One size, or a preferred one with the least and the most.
void CastParams::addMeta(std::uint32_t type, std::initializer_list<std::size_t> sizes)
{
    begin(SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
    addId(SPA_PARAM_META_type, type);
    addIntChoice(SPA_PARAM_META_size, sizes.size() > 1 ? SPA_CHOICE_Range : SPA_CHOICE_None, sizes);
    end();
}

void CastParams::begin(std::uint32_t type, std::uint32_t id)
{
    spa_pod_builder_push_object(&m_builder, &m_frame, type, id);
}

void CastParams::end()
{
    m_params.push_back(static_cast<const spa_pod *>(spa_pod_builder_pop(&m_builder, &m_frame)));
}

void CastParams::addId(std::uint32_t key, std::uint32_t value)
{
    spa_pod_builder_prop(&m_builder, key, 0);
    spa_pod_builder_id(&m_builder, value);
}

void CastParams::addIntChoice(std::uint32_t key,
                              std::uint32_t kind,
                              std::initializer_list<std::size_t> values)
{
    spa_pod_frame choice {};
    spa_pod_builder_prop(&m_builder, key, 0);
    spa_pod_builder_push_choice(&m_builder, &choice, kind, 0);
    for (const std::size_t value : values)
        spa_pod_builder_int(&m_builder, static_cast<std::int32_t>(value));
    spa_pod_builder_pop(&m_builder, &choice);
}

} // namespace vornic
