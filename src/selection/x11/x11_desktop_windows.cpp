#include "selection/x11/x11_desktop_windows.h"

#include "x11/x11_connection.h"
#include "x11/x11_windows.h"
#include "x11/xcb_reply.h"

#include <QByteArray>
#include <QMargins>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace vornic {

namespace {

using Words = std::vector<std::uint32_t>;

/// A property that is a list; nothing where \a window has none.
std::optional<Words> listOf(const X11Connection &connection, xcb_window_t window, const QByteArray &name)
{
    constexpr std::uint32_t maxWords = 1U << 16;
    const auto cookie = xcb_get_property(
        connection.get(), 0, window, connection.atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, maxWords);
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection.get(), cookie, nullptr));
    if (!reply || reply->format != 32)
        return std::nullopt;
    const auto *first = static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get()));
    return Words(first, first + reply->value_len);
}

/// Extended Window Manager Hints 1.5: _NET_WM_WINDOW_TYPE, _NET_WM_DESKTOP and _NET_CURRENT_DESKTOP.
bool isChoosable(const X11Connection &connection, xcb_window_t window)
{
    constexpr std::uint32_t everyWorkspace = 0xffffffff;
    const Words types = listOf(connection, window, "_NET_WM_WINDOW_TYPE").value_or(Words());
    for (const char *other : { "_NET_WM_WINDOW_TYPE_DESKTOP", "_NET_WM_WINDOW_TYPE_DOCK" })
        if (std::ranges::count(types, connection.atom(other)) > 0)
            return false;
    const Words current = listOf(connection, connection.root(), "_NET_CURRENT_DESKTOP").value_or(Words());
    const Words own = listOf(connection, window, "_NET_WM_DESKTOP").value_or(Words());
    return current.empty() || own.empty() || own[0] == everyWorkspace || own[0] == current[0];
}

/// What a window that decorates itself keeps free around itself, for its shadow: left, right, top, bottom.
QMargins shadowOf(const X11Connection &connection, xcb_window_t window)
{
    const Words widths = listOf(connection, window, "_GTK_FRAME_EXTENTS").value_or(Words());
    if (widths.size() != 4)
        return {};
    std::array<int, 4> sides {};
    std::ranges::transform(
        widths, sides.begin(), [](std::uint32_t width) { return static_cast<int>(width); });
    return { sides[0], sides[2], sides[1], sides[3] };
}

/// Whether a window manager runs; one that has crashed leaves its lists.
/// Extended Window Manager Hints 1.5, _NET_SUPPORTING_WM_CHECK: a window that bears its own number.
bool hasWindowManager(const X11Connection &connection)
{
    const QByteArray name("_NET_SUPPORTING_WM_CHECK");
    const auto window = listOf(connection, connection.root(), name);
    return window && window->size() == 1 && listOf(connection, window->front(), name) == window;
}

/// The root's children, from below; what draws nothing is left out.
Words childrenOfRoot(const X11Connection &connection)
{
    const XcbReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection.get(), xcb_query_tree(connection.get(), connection.root()), nullptr));
    if (!tree)
        return {};
    const xcb_window_t *first = xcb_query_tree_children(tree.get());
    Words windows(first, first + tree->children_len);
    std::erase_if(windows, [&](xcb_window_t window) {
        const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
            connection.get(), xcb_get_window_attributes(connection.get(), window), nullptr));
        return !attributes || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT;
    });
    return windows;
}

} // namespace

std::vector<QRect> windowFrames(const X11Connection &connection)
{
    // Extended Window Manager Hints 1.5: the managed windows, from below.
    const auto managed = hasWindowManager(connection)
        ? listOf(connection, connection.root(), "_NET_CLIENT_LIST_STACKING")
        : std::nullopt;
    Words windows = managed ? *managed : childrenOfRoot(connection);
    std::ranges::reverse(windows);
    std::vector<QRect> frames;
    for (const xcb_window_t window : windows) {
        if (!isChoosable(connection, window))
            continue;
        const QRect frame = framePixels(connection, window);
        if (!frame.isEmpty())
            frames.push_back(frame.marginsRemoved(shadowOf(connection, window)));
    }
    return frames;
}

} // namespace vornic
