#include "overlay/x11/x11_selection_watch.h"

#include "x11/x11_connection.h"
#include "x11/x11_events.h"
#include "x11/xcb_reply.h"

#include <xcb/xfixes.h>

namespace vornic {

X11SelectionWatch::X11SelectionWatch(X11Events &events, std::uint32_t selection)
    : m_connection(events.connection())
    , m_selection(selection)
{
    const auto *fixes = m_connection.extension(xcb_xfixes_id);
    if (!fixes)
        return;
    const auto cookie = xcb_xfixes_query_version(m_connection.get(), 5, 0);
    const XcbReply<xcb_xfixes_query_version_reply_t> asked(
        xcb_xfixes_query_version_reply(m_connection.get(), cookie, nullptr));
    xcb_xfixes_select_selection_input(m_connection.get(),
                                      m_connection.root(),
                                      m_selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER
                                          | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
                                          | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    const int notice = fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    connect(&events, &X11Events::eventRead, this, [this, notice](const xcb_generic_event_t &event) {
        if (kindOf(event) != notice)
            return;
        const auto &told = as<xcb_xfixes_selection_notify_event_t>(event);
        if (told.selection == m_selection)
            emit ownerSet(told.owner);
    });
    events.flush();
}

std::uint32_t X11SelectionWatch::owner() const
{
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        m_connection.get(), xcb_get_selection_owner(m_connection.get(), m_selection), nullptr));
    return reply ? reply->owner : xcb_window_t { XCB_NONE };
}

} // namespace vornic
