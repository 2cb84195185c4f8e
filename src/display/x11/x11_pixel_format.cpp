#include "display/x11/x11_pixel_format.h"

#include <bit>
#include <cstring>

namespace vornic {

namespace {

const xcb_visualtype_t *rootVisual(const xcb_screen_t &screen)
{
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0; xcb_depth_next(&depths)) {
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
             xcb_visualtype_next(&visuals)) {
            if (visuals.data->visual_id == screen.root_visual)
                return visuals.data;
        }
    }
    return nullptr;
}

const xcb_format_t *formatOfDepth(const xcb_setup_t &setup, int depth)
{
    for (auto formats = xcb_setup_pixmap_formats_iterator(&setup); formats.rem > 0;
         xcb_format_next(&formats)) {
        if (formats.data->depth == depth)
            return formats.data;
    }
    return nullptr;
}

bool isReadable(const xcb_setup_t &setup, const xcb_format_t *format, const xcb_visualtype_t *visual)
{
    // Deeper channels would need tables of more than a page or two; no server has them.
    constexpr std::uint32_t maxChannel = 0xfff;
    const auto fits
        = [](std::uint32_t mask) { return mask != 0 && mask >> std::countr_zero(mask) <= maxChannel; };
    return std::endian::native == std::endian::little && setup.image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST
        && format && visual && visual->_class == XCB_VISUAL_CLASS_TRUE_COLOR
        && (format->bits_per_pixel == 16 || format->bits_per_pixel == 32) && fits(visual->red_mask)
        && fits(visual->green_mask) && fits(visual->blue_mask);
}

/// The upper bits of a longer value; a shorter one is repeated, so that its largest becomes 255.
std::uint8_t eightBitsOf(std::uint32_t value, unsigned bits)
{
    std::uint32_t sixteenBits = value << (16 - bits);
    for (unsigned filled = bits; filled < 16; filled *= 2)
        sixteenBits |= sixteenBits >> filled;
    return static_cast<std::uint8_t>(sixteenBits >> 8);
}

} // namespace

std::optional<X11PixelFormat>
X11PixelFormat::ofScreen(const xcb_setup_t &setup, const xcb_screen_t &screen, QString &whyNot)
{
    const auto *format = formatOfDepth(setup, screen.root_depth);
    const auto *visual = rootVisual(screen);
    if (!isReadable(setup, format, visual)) {
        whyNot = QStringLiteral(
                     "The X server shows its screen in a pixel format that cannot be read (depth %1); "
                     "depths 16, 24 and 30 can.")
                     .arg(screen.root_depth);
        return std::nullopt;
    }
    return X11PixelFormat(format->bits_per_pixel, format->scanline_pad, *visual);
}

X11PixelFormat::X11PixelFormat(int bitsPerPixel, int scanlinePad, const xcb_visualtype_t &visual)
    : m_bytesPerPixel(bitsPerPixel / 8)
    , m_padBytes(scanlinePad / 8)
    , m_isDirect(bitsPerPixel == 32 && visual.red_mask == 0xff0000 && visual.green_mask == 0xff00
                 && visual.blue_mask == 0xff)
    , m_channels { channelOf(visual.blue_mask), channelOf(visual.green_mask), channelOf(visual.red_mask) }
{
}

X11PixelFormat::Channel X11PixelFormat::channelOf(std::uint32_t mask)
{
    Channel channel;
    channel.shift = static_cast<unsigned>(std::countr_zero(mask));
    channel.maximum = mask >> channel.shift;
    const auto bits = static_cast<unsigned>(std::bit_width(channel.maximum));
    for (std::uint32_t value = 0; value <= channel.maximum; ++value)
        channel.toEightBits.push_back(eightBitsOf(value, bits));
    return channel;
}

qsizetype X11PixelFormat::bytesPerLine(int width) const
{
    const qsizetype bytes = qsizetype { width } * m_bytesPerPixel;
    return (bytes + m_padBytes - 1) / m_padBytes * m_padBytes;
}

void X11PixelFormat::convert(const uchar *from, uchar *to, int width, int rows) const
{
    const qsizetype fromLine = bytesPerLine(width);
    const qsizetype toLine = qsizetype { width } * 4;
    for (int row = 0; row < rows; ++row) {
        if (m_bytesPerPixel == 2)
            convertRow<std::uint16_t>(from + row * fromLine, to + row * toLine, width);
        else
            convertRow<std::uint32_t>(from + row * fromLine, to + row * toLine, width);
    }
}

template<typename Pixel>
void X11PixelFormat::convertRow(const uchar *from, uchar *to, int width) const
{
    for (int x = 0; x < width; ++x) {
        Pixel pixel = 0;
        std::memcpy(&pixel, from + static_cast<std::size_t>(x) * sizeof pixel, sizeof pixel);
        for (const Channel &channel : m_channels)
            *to++ = channel.toEightBits[(std::uint32_t { pixel } >> channel.shift) & channel.maximum];
        *to++ = 0xff;
    }
}

} // namespace vornic
