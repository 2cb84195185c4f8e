#include "overlay/x11/x11_window_stack.h"

#include "display/main_display.h"
#include "x11/x11_connection.h"
#include "x11/x11_windows.h"
#include "x11/xcb_reply.h"

#include <QGuiApplication>
#include <QWindow>

#include <algorithm>
#include <ranges>

namespace vornic {

namespace {

using Stack = std::vector<StackedWindow>;

std::vector<xcb_window_t> childrenOf(const X11Connection &connection, xcb_window_t window)
{
    const XcbReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection.get(), xcb_query_tree(connection.get(), window), nullptr));
    if (!tree)
        return {};
    const xcb_window_t *first = xcb_query_tree_children(tree.get());
    return { first, first + tree->children_len };
}

/// The part of an id that says who has made the window.
std::uint32_t makerOf(std::uint32_t window, xcb_connection_t *connection)
{
    return window & ~xcb_get_setup(connection)->resource_id_mask;
}

/// Window managers have windows of a pixel, or beside the desktop, only to hold properties.
bool isMoreThanAHelper(const QRect &pixels)
{
    return pixels.right() >= 0 && pixels.bottom() >= 0 && (pixels.width() > 1 || pixels.height() > 1);
}

/// Asks for all windows before it waits for the first answer.
Stack queriedStack(const X11Connection &connection)
{
    const std::vector<xcb_window_t> windows = childrenOf(connection, connection.root());
    std::vector<std::pair<xcb_get_window_attributes_cookie_t, xcb_get_geometry_cookie_t>> asked;
    asked.reserve(windows.size());
    for (const xcb_window_t window : windows)
        asked.emplace_back(xcb_get_window_attributes(connection.get(), window),
                           xcb_get_geometry(connection.get(), window));
    const std::uint32_t server = makerOf(connection.root(), connection.get());
    Stack stack;
    stack.reserve(windows.size());
    for (std::size_t index = 0; index < windows.size(); ++index) {
        const XcbReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection.get(), asked[index].first, nullptr));
        const XcbReply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(connection.get(), asked[index].second, nullptr));
        StackedWindow window;
        window.id = windows[index];
        if (attributes && geometry) {
            const int border = 2 * geometry->border_width;
            window.pixels
                = QRect(geometry->x, geometry->y, geometry->width + border, geometry->height + border);
            window.isSeen = attributes->map_state == XCB_MAP_STATE_VIEWABLE
                && attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT
                && makerOf(window.id, connection.get()) != server && isMoreThanAHelper(window.pixels);
            window.isManaged = attributes->override_redirect == 0;
        }
        stack.push_back(window);
    }
    return stack;
}

/// Unmanaged windows of ours are children of the root window, or in another program's, as a tray's icon.
std::uint32_t ownTopLevel(const X11Connection &connection, const QWindow &window)
{
    const xcb_window_t id = idOf(&window);
    return id == XCB_NONE || !isShown(connection, id) || isUnmanaged(connection, id)
        ? id
        : topLevelOf(connection, id);
}

void markOwn(const X11Connection &connection, Stack &stack)
{
    std::vector<std::uint32_t> decorations;
    const auto windows = QGuiApplication::topLevelWindows();
    for (const QWindow *window : windows)
        decorations.push_back(ownTopLevel(connection, *window));
    xcb_connection_t *const toolkit = toolkitConnection();
    const std::uint32_t us = toolkit ? xcb_get_setup(toolkit)->resource_id_base : 0;
    for (StackedWindow &window : stack)
        window.isOwn = makerOf(window.id, connection.get()) == us
            || std::ranges::find(decorations, window.id) != decorations.end();
}

/// Whether the window manager's mark is on \a window or, as far as decorations are nested, in it.
/// Inter-Client Communication Conventions Manual 2.0, 4.1.3.1.
bool holdsManagedWindow(const X11Connection &connection, xcb_window_t window, int depth = 3)
{
    const auto cookie = xcb_get_property(
        connection.get(), 0, window, connection.atom("WM_STATE"), XCB_GET_PROPERTY_TYPE_ANY, 0, 0);
    const XcbReply<xcb_get_property_reply_t> state(xcb_get_property_reply(connection.get(), cookie, nullptr));
    if (state && state->type != XCB_ATOM_NONE)
        return true;
    return depth > 0 && std::ranges::any_of(childrenOf(connection, window), [&](xcb_window_t child) {
               return holdsManagedWindow(connection, child, depth - 1);
           });
}

void markLockers(const X11Connection &connection, Stack &stack)
{
    const DisplayPlacement main = mainDisplayPlacement();
    const QRect display(main.origin, main.size);
    if (display.isEmpty())
        return;
    const auto showsOnDisplay
        = [&](const StackedWindow &window) { return window.isSeen && window.pixels.intersects(display); };
    const auto mayLock = [&](const StackedWindow &window) {
        return window.isSeen && !window.isOwn && !window.isManaged && window.pixels.contains(display);
    };
    const auto first = std::ranges::find_if(stack, mayLock);
    for (auto window = stack.end(); window != stack.begin() && window - 1 >= first;) {
        --window;
        if (!window->isSeen)
            continue;
        if (holdsManagedWindow(connection, window->id))
            return;
        window->locksScreen = mayLock(*window) && std::any_of(stack.begin(), window, showsOnDisplay);
    }
}

} // namespace

std::vector<StackedWindow> windowStack(const X11Connection &connection)
{
    Stack stack = queriedStack(connection);
    markOwn(connection, stack);
    markLockers(connection, stack);
    return stack;
}

std::uint32_t topLevelOf(const X11Connection &connection, std::uint32_t window)
{
    while (true) {
        const XcbReply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection.get(), xcb_query_tree(connection.get(), window), nullptr));
        if (!tree)
            return XCB_NONE;
        if (tree->parent == connection.root() || tree->parent == XCB_NONE)
            return window;
        window = tree->parent;
    }
}

} // namespace vornic
