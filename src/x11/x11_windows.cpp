#include "x11/x11_windows.h"

#include "x11/x11_connection.h"
#include "x11/xcb_reply.h"

#include <QGuiApplication>
#include <QMargins>
#include <QWindow>

#include <algorithm>

namespace vornic {

namespace {

/// What the window manager says that it has put around \a window. Its own window is no measure of that: with
/// some it reaches further, for a shadow or to be grabbed more easily.
/// Extended Window Manager Hints 1.5, _NET_FRAME_EXTENTS: left, right, top, bottom.
QMargins decorationOf(const X11Connection &connection, xcb_window_t window)
{
    constexpr std::uint32_t sides = 4;
    const auto cookie = xcb_get_property(
        connection.get(), 0, window, connection.atom("_NET_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 0, sides);
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection.get(), cookie, nullptr));
    if (!reply || reply->format != 32 || reply->value_len != sides)
        return {};
    const auto *widths = static_cast<const std::int32_t *>(xcb_get_property_value(reply.get()));
    return { widths[0], widths[2], widths[1], widths[3] };
}

} // namespace

xcb_connection_t *toolkitConnection()
{
    const auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    const auto *native
        = application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return native ? native->connection() : nullptr;
}

std::uint32_t idOf(const QWindow *window)
{
    return window && window->handle() ? static_cast<xcb_window_t>(window->winId())
                                      : xcb_window_t { XCB_NONE };
}

bool isUnmanaged(const X11Connection &connection, std::uint32_t window)
{
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection.get(), xcb_get_window_attributes(connection.get(), window), nullptr));
    return attributes && attributes->override_redirect != 0;
}

bool isShown(const X11Connection &connection, std::uint32_t window)
{
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection.get(), xcb_get_window_attributes(connection.get(), window), nullptr));
    if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return false;
    // Extended Window Manager Hints 1.5, _NET_WM_STATE: a list of atoms.
    constexpr std::uint32_t maxStates = 32;
    const auto cookie = xcb_get_property(
        connection.get(), 0, window, connection.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 0, maxStates);
    const XcbReply<xcb_get_property_reply_t> states(
        xcb_get_property_reply(connection.get(), cookie, nullptr));
    if (!states || states->format != 32)
        return true;
    const auto *first = static_cast<const xcb_atom_t *>(xcb_get_property_value(states.get()));
    const xcb_atom_t *end = first + states->value_len;
    return std::find(first, end, connection.atom("_NET_WM_STATE_HIDDEN")) == end;
}

QRect framePixels(const X11Connection &connection, std::uint32_t window)
{
    if (!isShown(connection, window))
        return {};
    const auto geometryCookie = xcb_get_geometry(connection.get(), window);
    const auto originCookie = xcb_translate_coordinates(connection.get(), window, connection.root(), 0, 0);
    const XcbReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection.get(), geometryCookie, nullptr));
    const XcbReply<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(connection.get(), originCookie, nullptr));
    if (!geometry || !origin)
        return {};
    const QRect pixels(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
    return pixels.marginsAdded(decorationOf(connection, window));
}

} // namespace vornic
