#include "overlay/x11/x11_stacking.h"

#include "overlay/x11/x11_windows.h"
#include "x11/x11_connection.h"
#include "x11/x11_events.h"
#include "x11/xcb_reply.h"

#include <algorithm>
#include <array>

namespace vornic {

namespace {

/// Restacks closer together than this answer a window that wants to be on top as well.
constexpr qint64 restackRowMs = 1000;
constexpr int maxRestacksInARow = 20;

/// The window of the desktop that \a event says was shown, hidden or stacked anew; 0 for another event.
xcb_window_t movedWindow(const xcb_generic_event_t &event)
{
    switch (kindOf(event)) {
    case XCB_MAP_NOTIFY:
        return as<xcb_map_notify_event_t>(event).window;
    case XCB_UNMAP_NOTIFY:
        return as<xcb_unmap_notify_event_t>(event).window;
    case XCB_CONFIGURE_NOTIFY:
        return as<xcb_configure_notify_event_t>(event).window;
    case XCB_CIRCULATE_NOTIFY:
        return as<xcb_circulate_notify_event_t>(event).window;
    case XCB_REPARENT_NOTIFY:
        return as<xcb_reparent_notify_event_t>(event).window;
    default:
        return XCB_NONE;
    }
}

} // namespace

X11Stacking::X11Stacking(X11Events &events)
    : m_connection(events.connection())
    , m_events(events)
{
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.get(), m_connection.root(), XCB_CW_EVENT_MASK, &mask);
    events.flush();
    m_soon.setSingleShot(true);
    m_soon.setInterval(0);
    connect(&m_soon, &QTimer::timeout, this, &X11Stacking::check);
    connect(&events, &X11Events::eventRead, this, [this](const xcb_generic_event_t &event) {
        const xcb_window_t moved = movedWindow(event);
        const bool isOther = moved != XCB_NONE && moved != m_window && moved != m_inputWindow;
        if (m_window != XCB_NONE && (isOther || isOfShowing(event)))
            m_soon.start();
    });
}

void X11Stacking::keepOnTop(std::uint32_t window, std::uint32_t windowAbove, std::uint32_t inputWindow)
{
    m_window = window;
    m_windowAbove = windowAbove;
    m_inputWindow = inputWindow;
    m_restacksInARow = 0;
    if (windowAbove != XCB_NONE)
        watch(windowAbove);
    restack(frameAbove());
}

void X11Stacking::watch(std::uint32_t window)
{
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.get(), window, XCB_CW_EVENT_MASK, &mask);
}

/// Whether a window was minimised or brought back, or is decorated in another way.
bool X11Stacking::isOfShowing(const xcb_generic_event_t &event) const
{
    if (kindOf(event) != XCB_PROPERTY_NOTIFY)
        return false;
    const xcb_atom_t atom = as<xcb_property_notify_event_t>(event).atom;
    return atom == m_connection.atom("_NET_WM_STATE") || atom == m_connection.atom("_NET_FRAME_EXTENTS");
}

void X11Stacking::stop()
{
    m_window = XCB_NONE;
    m_soon.stop();
}

void X11Stacking::check()
{
    if (m_window == XCB_NONE)
        return;
    if (const xcb_window_t above = frameAbove(); !isInPlace(above) && mayRestack())
        restack(above);
    m_events.flush();
    emit desktopChanged();
}

/// The desktop's own child window that holds the window above: its decoration, or itself. None while it is
/// not shown.
std::uint32_t X11Stacking::frameAbove() const
{
    return m_windowAbove != XCB_NONE && isShown(m_connection, m_windowAbove) ? topLevelOf(m_windowAbove)
                                                                             : xcb_window_t { XCB_NONE };
}

bool X11Stacking::mayRestack()
{
    const bool isInARow = m_sinceRestack.isValid() && m_sinceRestack.elapsed() < restackRowMs;
    m_restacksInARow = isInARow ? m_restacksInARow + 1 : 0;
    return m_restacksInARow < maxRestacksInARow;
}

bool X11Stacking::isInPlace(std::uint32_t frameAbove) const
{
    const std::vector<xcb_window_t> windows = windowsFromBelow();
    const auto ours = std::ranges::find(windows, m_window);
    if (ours == windows.end())
        return true; // not on this desktop
    const auto above = frameAbove == XCB_NONE ? windows.end() : std::find(ours, windows.end(), frameAbove);
    if (frameAbove != XCB_NONE && above == windows.end())
        return false; // it is below
    return std::none_of(
        ours + 1, above, [this](xcb_window_t other) { return other != m_inputWindow && isViewable(other); });
}

void X11Stacking::restack(std::uint32_t frameAbove)
{
    m_sinceRestack.start();
    const std::array<std::uint32_t, 2> below { frameAbove, XCB_STACK_MODE_BELOW };
    const std::uint32_t top = XCB_STACK_MODE_ABOVE;
    for (const xcb_window_t window : { m_window, m_inputWindow }) {
        if (frameAbove != XCB_NONE)
            xcb_configure_window(m_connection.get(),
                                 window,
                                 XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE,
                                 below.data());
        else
            xcb_configure_window(m_connection.get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &top);
    }
    m_events.flush();
}

std::vector<std::uint32_t> X11Stacking::windowsFromBelow() const
{
    const XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
        m_connection.get(), xcb_query_tree(m_connection.get(), m_connection.root()), nullptr));
    if (!tree)
        return {};
    const xcb_window_t *first = xcb_query_tree_children(tree.get());
    return { first, first + tree->children_len };
}

std::uint32_t X11Stacking::topLevelOf(std::uint32_t window) const
{
    while (true) {
        const XcbReply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(m_connection.get(), xcb_query_tree(m_connection.get(), window), nullptr));
        if (!tree)
            return XCB_NONE;
        if (tree->parent == m_connection.root() || tree->parent == XCB_NONE)
            return window;
        window = tree->parent;
    }
}

bool X11Stacking::isViewable(std::uint32_t window) const
{
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        m_connection.get(), xcb_get_window_attributes(m_connection.get(), window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE
        && attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
}

} // namespace vornic
