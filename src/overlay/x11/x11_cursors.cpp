#include "overlay/x11/x11_cursors.h"

#include "x11/x11_connection.h"

#include <string_view>

namespace vornic {

namespace {

/// X11 core protocol, appendix B: the font "cursor". Each glyph is followed by its mask. 0: none.
std::uint16_t glyphOf(Qt::CursorShape shape)
{
    static const std::map<Qt::CursorShape, std::uint16_t> glyphs {
        { Qt::SizeFDiagCursor, 134 }, { Qt::SizeBDiagCursor, 136 }, { Qt::SizeVerCursor, 116 },
        { Qt::SizeHorCursor, 108 },   { Qt::SizeAllCursor, 52 },    { Qt::OpenHandCursor, 58 },
    };
    const auto found = glyphs.find(shape);
    return found == glyphs.end() ? 0 : found->second;
}

} // namespace

X11Cursors::X11Cursors(X11Connection &connection)
    : m_connection(connection)
{
}

std::uint32_t X11Cursors::cursor(Qt::CursorShape shape)
{
    const std::uint16_t glyph = glyphOf(shape);
    if (glyph == 0)
        return XCB_CURSOR_NONE;
    const auto [entry, isNew] = m_made.try_emplace(shape, 0);
    if (isNew)
        entry->second = made(glyph);
    return entry->second;
}

std::uint32_t X11Cursors::made(std::uint16_t glyph) const
{
    constexpr std::string_view name("cursor");
    constexpr std::uint16_t full = 0xffff;
    const xcb_font_t font = xcb_generate_id(m_connection.get());
    const xcb_cursor_t cursor = xcb_generate_id(m_connection.get());
    xcb_open_font(m_connection.get(), font, static_cast<std::uint16_t>(name.size()), name.data());
    const auto mask = static_cast<std::uint16_t>(glyph + 1);
    xcb_create_glyph_cursor(m_connection.get(), cursor, font, font, glyph, mask, 0, 0, 0, full, full, full);
    xcb_close_font(m_connection.get(), font);
    return cursor;
}

} // namespace vornic
