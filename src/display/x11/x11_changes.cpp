#include "display/x11/x11_changes.h"

#include "x11/x11_connection.h"
#include "x11/x11_events.h"
#include "x11/xcb_reply.h"

#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/xfixes.h>

#include <utility>

namespace vornic {

namespace {

/// The server takes no request of the extension before it was asked for its version.
bool hasDamageReports(const X11Connection &connection)
{
    if (!connection.extension(xcb_damage_id))
        return false;
    const auto cookie = xcb_damage_query_version(connection.get(), 1, 1);
    return XcbReply<xcb_damage_query_version_reply_t>(
               xcb_damage_query_version_reply(connection.get(), cookie, nullptr))
        != nullptr;
}

} // namespace

X11Changes::X11Changes(X11Connection &connection)
    : m_connection(connection)
{
    // An extension is missing only when the server has gone since it was asked; nothing will come then.
    if (const auto *fixes = connection.extension(xcb_xfixes_id))
        m_cursorEvent = fixes->first_event + XCB_XFIXES_CURSOR_NOTIFY;
    if (const auto *randr = connection.extension(xcb_randr_id)) {
        m_screenEvent = randr->first_event + XCB_RANDR_SCREEN_CHANGE_NOTIFY;
        m_monitorEvent = randr->first_event + XCB_RANDR_NOTIFY;
    }
    if (const auto *damage = connection.extension(xcb_damage_id); damage && hasDamageReports(connection))
        m_damageEvent = damage->first_event + XCB_DAMAGE_NOTIFY;
}

bool X11Changes::take(X11Change change)
{
    const std::lock_guard lock(m_mutex);
    readEvents();
    return std::exchange(flag(change), false);
}

bool X11Changes::isTold(X11Change change)
{
    const std::lock_guard lock(m_mutex);
    readEvents();
    return flag(change);
}

void X11Changes::readEvents()
{
    while (const XcbReply<xcb_generic_event_t> event { xcb_poll_for_event(m_connection.get()) })
        noteEvent(kindOf(*event));
}

void X11Changes::noteEvent(int kind)
{
    // Other kinds are errors of requests without a reply; whoever made them finds out at the next reply.
    if (kind == m_damageEvent)
        flag(X11Change::Picture) = true;
    else if (kind == m_cursorEvent)
        flag(X11Change::Cursor) = true;
    else if (kind == XCB_CONFIGURE_NOTIFY || kind == m_screenEvent || kind == m_monitorEvent)
        flag(X11Change::Layout) = true;
}

} // namespace vornic
