#pragma once

#include <Qt>

#include <cstdint>
#include <map>

namespace vornic {

class X11Connection;

/// The pointer's shapes for windows that the toolkit does not know, from the server's own cursor font.
///
/// Made by X11InputWindow; main thread only.
class X11Cursors
{
public:
    /// Borrows \a connection for life.
    explicit X11Cursors(X11Connection &connection);

    /// Made once each; 0, the shape of the desktop, for shapes that the overlay has no use for.
    [[nodiscard]] std::uint32_t cursor(Qt::CursorShape shape);

private:
    [[nodiscard]] std::uint32_t made(std::uint16_t glyph) const;

    X11Connection &m_connection;
    std::map<Qt::CursorShape, std::uint32_t> m_made;
};

} // namespace vornic
