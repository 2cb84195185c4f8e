#include "overlay/x11/x11_windows.h"

#include "x11/x11_link.h"

#include <QMargins>

#include <algorithm>

namespace vornic {

namespace {

/// What the window manager says that it has put around \a window. Its own window is no measure of that: with
/// some it reaches further, for a shadow or to be grabbed more easily.
/// Extended Window Manager Hints 1.5, _NET_FRAME_EXTENTS: left, right, top, bottom.
QMargins decorationOf(X11Link &link, xcb_window_t window)
{
    constexpr std::uint32_t sides = 4;
    const auto cookie = xcb_get_property(
        link.get(), 0, window, link.atom("_NET_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 0, sides);
    const XcbOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(link.get(), cookie, nullptr));
    if (!reply || reply->format != 32 || reply->value_len != sides)
        return {};
    const auto *widths = static_cast<const std::int32_t *>(xcb_get_property_value(reply.get()));
    return { widths[0], widths[2], widths[1], widths[3] };
}

} // namespace

bool isShown(X11Link &link, std::uint32_t window)
{
    const XcbOwned<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(link.get(), xcb_get_window_attributes(link.get(), window), nullptr));
    if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return false;
    // Extended Window Manager Hints 1.5, _NET_WM_STATE: a list of atoms.
    constexpr std::uint32_t mostStates = 32;
    const auto cookie
        = xcb_get_property(link.get(), 0, window, link.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 0, mostStates);
    const XcbOwned<xcb_get_property_reply_t> states(xcb_get_property_reply(link.get(), cookie, nullptr));
    if (!states || states->format != 32)
        return true;
    const auto *first = static_cast<const xcb_atom_t *>(xcb_get_property_value(states.get()));
    const xcb_atom_t *end = first + states->value_len;
    return std::find(first, end, link.atom("_NET_WM_STATE_HIDDEN")) == end;
}

QRect framePixels(X11Link &link, std::uint32_t window)
{
    if (!isShown(link, window))
        return {};
    const auto geometryCookie = xcb_get_geometry(link.get(), window);
    const auto originCookie = xcb_translate_coordinates(link.get(), window, link.root(), 0, 0);
    const XcbOwned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(link.get(), geometryCookie, nullptr));
    const XcbOwned<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(link.get(), originCookie, nullptr));
    if (!geometry || !origin)
        return {};
    const QRect pixels(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
    return pixels.marginsAdded(decorationOf(link, window));
}

} // namespace vornic
