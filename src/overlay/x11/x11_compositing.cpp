#include "overlay/x11/x11_compositing.h"

#include "x11/x11_link.h"

#include <xcb/xfixes.h>

#include <utility>

namespace vornic {

X11Compositing::X11Compositing(X11Link &link)
    : m_link(link)
    , m_selection(link.atom("_NET_WM_CM_S" + QByteArray::number(link.screenNumber())))
{
    const auto *fixes = xcb_get_extension_data(link.get(), &xcb_xfixes_id);
    if (fixes && fixes->present != 0) {
        const auto cookie = xcb_xfixes_query_version(link.get(), 5, 0);
        XcbOwned<xcb_xfixes_query_version_reply_t>(
            xcb_xfixes_query_version_reply(link.get(), cookie, nullptr));
        xcb_xfixes_select_selection_input(link.get(),
                                          link.root(),
                                          m_selection,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER
                                              | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
                                              | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        const int notice = fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
        connect(&link, &X11Link::eventRead, this, [this, notice](const xcb_generic_event_t &event) {
            if (kindOf(event) != notice)
                return;
            const bool isActive = owner() != XCB_NONE;
            if (std::exchange(m_isActive, isActive) != isActive)
                emit changed();
        });
    }
    m_isActive = owner() != XCB_NONE;
    link.flush();
}

std::uint32_t X11Compositing::owner() const
{
    const XcbOwned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        m_link.get(), xcb_get_selection_owner(m_link.get(), m_selection), nullptr));
    return reply ? reply->owner : xcb_window_t { XCB_NONE };
}

} // namespace vornic
