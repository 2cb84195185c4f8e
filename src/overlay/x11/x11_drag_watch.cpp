#include "overlay/x11/x11_drag_watch.h"

#include "x11/x11_connection.h"
#include "x11/x11_events.h"
#include "x11/xcb_reply.h"

namespace vornic {

namespace {

constexpr int lookAgainMs = 100;

} // namespace

X11DragWatch::X11DragWatch(X11Events &events)
    : m_connection(events.connection())
    , m_events(events)
    , m_selection(events, m_connection.atom("XdndSelection"))
{
    m_buttons.setInterval(lookAgainMs);
    connect(&m_buttons, &QTimer::timeout, this, &X11DragWatch::lookAtButtons);
    connect(&m_selection, &X11SelectionWatch::ownerSet, this, [this](std::uint32_t owner) {
        if (owner == XCB_NONE || m_buttons.isActive())
            return;
        m_buttons.start();
        emit changed();
    });
}

void X11DragWatch::lookAtButtons()
{
    const XcbReply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
        m_connection.get(), xcb_query_pointer(m_connection.get(), m_connection.root()), nullptr));
    m_events.flush();
    constexpr unsigned buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    if (pointer && (pointer->mask & buttons) != 0)
        return;
    m_buttons.stop();
    emit changed();
}

} // namespace vornic
