#include "overlay/x11/x11_stacking.h"

#include "x11/x11_connection.h"
#include "x11/x11_events.h"

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

X11Stacking::X11Stacking(X11Events &events, OwnWindows ownWindows)
    : m_connection(events.connection())
    , m_events(events)
    , m_ownWindows(ownWindows)
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

void X11Stacking::keepOnTop(std::uint32_t window, std::uint32_t inputWindow)
{
    m_window = window;
    m_inputWindow = inputWindow;
    m_restacksInARow = 0;
    const Stack stack = windowStack(m_connection);
    const auto ceiling = ceilingOf(stack);
    restack(ceiling == stack.end() ? XCB_NONE : ceiling->id);
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
    const Stack stack = windowStack(m_connection);
    const auto ceiling = ceilingOf(stack);
    if (!isInPlace(stack, ceiling) && mayRestack())
        restack(ceiling == stack.end() ? XCB_NONE : ceiling->id);
    m_events.flush();
    emit desktopChanged();
}

bool X11Stacking::mayRestack()
{
    const bool isInARow = m_sinceRestack.isValid() && m_sinceRestack.elapsed() < restackRowMs;
    m_restacksInARow = isInARow ? m_restacksInARow + 1 : 0;
    return m_restacksInARow < maxRestacksInARow;
}

bool X11Stacking::isKept(const StackedWindow &window) const
{
    return window.id == m_window || window.id == m_inputWindow;
}

/// The lowest of the windows that ours has to stay beneath: lockers, and windows of the program that no other
/// program's window lies above.
X11Stacking::Stack::const_iterator X11Stacking::ceilingOf(const Stack &stack) const
{
    auto ceiling = stack.end();
    bool isBeneathOther = false;
    for (auto window = stack.end(); window != stack.begin();) {
        --window;
        if (!window->isSeen || isKept(*window))
            continue;
        if (window->locksScreen)
            isBeneathOther = false;
        else if (!window->isOwn)
            isBeneathOther = true;
        if (window->locksScreen || (window->isOwn && m_ownWindows == OwnWindows::Above && !isBeneathOther))
            ceiling = window;
    }
    return ceiling;
}

bool X11Stacking::isInPlace(const Stack &stack, Stack::const_iterator ceiling) const
{
    const auto ours = std::ranges::find(stack, m_window, &StackedWindow::id);
    if (ours == stack.end())
        return true; // not on this desktop
    const auto input = std::ranges::find(stack, m_inputWindow, &StackedWindow::id);
    if (ours > ceiling || (input != stack.end() && (input < ours || input > ceiling)))
        return false;
    return std::none_of(ours, ceiling, [this](const StackedWindow &window) {
        const bool isNeutral = window.isOwn && m_ownWindows == OwnWindows::Anywhere;
        return window.isSeen && !isKept(window) && !isNeutral;
    });
}

void X11Stacking::restack(std::uint32_t ceiling)
{
    m_sinceRestack.start();
    const std::array<std::uint32_t, 2> below { ceiling, XCB_STACK_MODE_BELOW };
    const std::uint32_t top = XCB_STACK_MODE_ABOVE;
    for (const xcb_window_t window : { m_window, m_inputWindow }) {
        if (window == XCB_NONE)
            continue;
        if (ceiling != XCB_NONE)
            xcb_configure_window(m_connection.get(),
                                 window,
                                 XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE,
                                 below.data());
        else
            xcb_configure_window(m_connection.get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &top);
    }
    m_events.flush();
}

} // namespace vornic
