#pragma once

#include <QRegion>

#include <xcb/shape.h>

#include <optional>
#include <vector>

namespace vornic {

/// Cuts \a window to \a shape, pixels from its upper left; nothing: all of it is there again. Sent, not
/// flushed.
inline void setShape(xcb_connection_t *connection,
                     xcb_window_t window,
                     xcb_shape_kind_t kind,
                     const std::optional<QRegion> &shape)
{
    if (!shape) {
        xcb_shape_mask(connection, XCB_SHAPE_SO_SET, kind, window, 0, 0, XCB_PIXMAP_NONE);
        return;
    }
    std::vector<xcb_rectangle_t> rectangles;
    for (const QRect &part : *shape)
        rectangles.push_back({ static_cast<std::int16_t>(part.x()),
                               static_cast<std::int16_t>(part.y()),
                               static_cast<std::uint16_t>(part.width()),
                               static_cast<std::uint16_t>(part.height()) });
    // A region keeps its rectangles by rows, and in each from left to right.
    xcb_shape_rectangles(connection,
                         XCB_SHAPE_SO_SET,
                         kind,
                         XCB_CLIP_ORDERING_YX_BANDED,
                         window,
                         0,
                         0,
                         static_cast<std::uint32_t>(rectangles.size()),
                         rectangles.data());
}

} // namespace vornic
