#include "display/x11/x11_main_monitor.h"

#include "display/x11/x11_changes.h"
#include "x11/x11_connection.h"
#include "x11/xcb_reply.h"

#include <xcb/randr.h>

namespace vornic {

namespace {

const xcb_randr_monitor_info_t *mainOne(const xcb_randr_get_monitors_reply_t &reply)
{
    const xcb_randr_monitor_info_t *first = nullptr;
    for (auto all = xcb_randr_get_monitors_monitors_iterator(&reply); all.rem > 0;
         xcb_randr_monitor_info_next(&all)) {
        if (all.data->width == 0 || all.data->height == 0)
            continue;
        if (all.data->primary != 0)
            return all.data;
        if (!first)
            first = all.data;
    }
    return first;
}

} // namespace

X11MainMonitor::X11MainMonitor(X11Connection &connection, X11Changes &changes)
    : m_connection(connection)
    , m_changes(changes)
{
    // A monitor that a program defines is told only as a new configuration of the root window.
    const std::uint32_t rootEvents = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection.get(), connection.root(), XCB_CW_EVENT_MASK, &rootEvents);
    xcb_randr_select_input(connection.get(),
                           connection.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE
                               | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_RESOURCE_CHANGE);
}

X11Layout X11MainMonitor::layout()
{
    const std::lock_guard lock(m_mutex);
    if (m_changes.take(X11Change::Layout))
        refresh();
    return m_connection.isAlive() ? m_layout : X11Layout {};
}

void X11MainMonitor::refresh()
{
    xcb_connection_t *const connection = m_connection.get();
    const auto geometryCookie = xcb_get_geometry(connection, m_connection.root());
    const auto monitorsCookie = xcb_randr_get_monitors(connection, m_connection.root(), 1);
    const XcbReply<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(connection, geometryCookie, nullptr));
    const XcbReply<xcb_randr_get_monitors_reply_t> monitors(
        xcb_randr_get_monitors_reply(connection, monitorsCookie, nullptr));
    ++m_layout.version;
    if (!root || !monitors)
        return;
    const QRect wholeRoot(0, 0, root->width, root->height);
    const auto *monitor = mainOne(*monitors);
    m_layout.id = monitor ? monitor->name : m_connection.root();
    m_layout.rectangle = monitor
        ? wholeRoot.intersected(QRect(monitor->x, monitor->y, monitor->width, monitor->height))
        : wholeRoot;
}

} // namespace vornic
