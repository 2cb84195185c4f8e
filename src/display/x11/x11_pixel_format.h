#pragma once

#include <QString>
#include <QtGlobal>

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace vornic {

/// How the X server lays out the pixels of its screen, and their conversion to 32-bit B, G, R, unused.
///
/// Made by X11Display once per connection; never changes, so any thread may use it.
class X11PixelFormat
{
public:
    /// Nothing, with one sentence for the user, where the layout is one that cannot be read.
    [[nodiscard]] static std::optional<X11PixelFormat>
    ofScreen(const xcb_setup_t &setup, const xcb_screen_t &screen, QString &whyNot);

    /// True when the server's pixels need no conversion.
    [[nodiscard]] bool isDirect() const { return m_isDirect; }
    /// Bytes of a row as the server sends it.
    [[nodiscard]] qsizetype bytesPerLine(int width) const;
    /// Converts \a rows rows of the server's pixels at \a from to rows of 4 * width bytes at \a to.
    void convert(const uchar *from, uchar *to, int width, int rows) const;

private:
    struct Channel {
        unsigned shift = 0;
        std::uint32_t maximum = 0;             ///< the largest value, and the mask once shifted
        std::vector<std::uint8_t> toEightBits; ///< indexed by value
    };

    X11PixelFormat(int bitsPerPixel, int scanlinePad, const xcb_visualtype_t &visual);
    [[nodiscard]] static Channel channelOf(std::uint32_t mask);
    template<typename Pixel>
    void convertRow(const uchar *from, uchar *to, int width) const;

    int m_bytesPerPixel;
    int m_padBytes;
    bool m_isDirect;
    std::array<Channel, 3> m_channels; ///< blue, green, red: in the order in which they are written
};

} // namespace vornic
