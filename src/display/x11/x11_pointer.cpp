#include "display/x11/x11_pointer.h"

#include "display/display_backend.h"
#include "display/x11/x11_changes.h"
#include "x11/x11_connection.h"
#include "x11/xcb_reply.h"

#include <xcb/xfixes.h>

#include <algorithm>
#include <cstring>
#include <span>

namespace vornic {

X11Pointer::X11Pointer(X11Connection &connection, X11Changes &changes)
    : m_connection(connection)
    , m_changes(changes)
{
}

QPoint X11Pointer::positionOnRoot()
{
    const auto cookie = xcb_query_pointer(m_connection.get(), m_connection.root());
    const XcbReply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(m_connection.get(), cookie, nullptr));
    const std::lock_guard lock(m_mutex);
    if (reply)
        m_position = { reply->root_x, reply->root_y };
    return m_position;
}

std::shared_ptr<const CursorShape> X11Pointer::shape()
{
    const std::lock_guard lock(m_mutex);
    watchShapes();
    if (m_changes.take(X11Change::Cursor))
        m_shape = readShape();
    return m_shape;
}

/// Only from the first question on: events that nobody reads would pile up in the server.
void X11Pointer::watchShapes()
{
    if (m_isWatching)
        return;
    m_isWatching = true;
    xcb_xfixes_select_cursor_input(
        m_connection.get(), m_connection.root(), XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
}

std::shared_ptr<const CursorShape> X11Pointer::readShape()
{
    const auto cookie = xcb_xfixes_get_cursor_image(m_connection.get());
    const XcbReply<xcb_xfixes_get_cursor_image_reply_t> reply(
        xcb_xfixes_get_cursor_image_reply(m_connection.get(), cookie, nullptr));
    if (!reply)
        return nullptr;
    const std::span pixels(xcb_xfixes_get_cursor_image_cursor_image(reply.get()),
                           std::size_t { reply->width } * reply->height);
    // Programs hide the pointer by giving it a shape of transparent pixels.
    if (std::ranges::all_of(pixels, [](std::uint32_t pixel) { return pixel == 0; }))
        return nullptr;
    auto shape = std::make_shared<CursorShape>();
    shape->picture = QImage(reply->width, reply->height, QImage::Format_ARGB32_Premultiplied);
    shape->hotSpot = { reply->xhot, reply->yhot };
    std::memcpy(shape->picture.bits(), pixels.data(), pixels.size_bytes());
    return shape;
}

} // namespace vornic
