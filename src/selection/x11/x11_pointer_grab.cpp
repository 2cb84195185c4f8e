#include "selection/x11/x11_pointer_grab.h"

#include "x11/x11_connection.h"
#include "x11/x11_events.h"
#include "x11/xcb_reply.h"

#include <QGuiApplication>

#include <utility>

namespace vornic {

namespace {

Qt::MouseButton buttonOf(const xcb_button_press_event_t &event)
{
    switch (event.detail) {
    case XCB_BUTTON_INDEX_1:
        return Qt::LeftButton;
    case XCB_BUTTON_INDEX_2:
        return Qt::MiddleButton;
    case XCB_BUTTON_INDEX_3:
        return Qt::RightButton;
    default:
        return Qt::NoButton; // the wheel, and what the mouse has at its side
    }
}

} // namespace

std::unique_ptr<PointerGrab> X11PointerGrab::create()
{
    const bool isToolkitOnX11 = QGuiApplication::platformName() == u"xcb";
    auto connection = isToolkitOnX11 ? X11Connection::open() : nullptr;
    return connection ? std::unique_ptr<PointerGrab>(new X11PointerGrab(std::move(connection))) : nullptr;
}

X11PointerGrab::X11PointerGrab(std::unique_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
    , m_events(std::make_unique<X11Events>(*m_connection))
{
    connect(m_events.get(), &X11Events::eventRead, this, [this](const xcb_generic_event_t &event) {
        if (kindOf(event) == XCB_MOTION_NOTIFY) {
            const auto &motion = as<xcb_motion_notify_event_t>(event);
            emit moved({ motion.root_x, motion.root_y });
        } else if (kindOf(event) == XCB_BUTTON_PRESS) {
            const auto &press = as<xcb_button_press_event_t>(event);
            emit pressed(buttonOf(press), { press.root_x, press.root_y });
        } else if (kindOf(event) == XCB_BUTTON_RELEASE) {
            const auto &release = as<xcb_button_release_event_t>(event);
            emit released(buttonOf(release), { release.root_x, release.root_y });
        }
    });
}

X11PointerGrab::~X11PointerGrab()
{
    xcb_ungrab_pointer(m_connection->get(), XCB_CURRENT_TIME);
    xcb_flush(m_connection->get());
}

bool X11PointerGrab::take()
{
    const auto cookie = xcb_grab_pointer(m_connection->get(),
                                         0,
                                         m_connection->root(),
                                         XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE
                                             | XCB_EVENT_MASK_POINTER_MOTION,
                                         XCB_GRAB_MODE_ASYNC,
                                         XCB_GRAB_MODE_ASYNC,
                                         XCB_NONE,
                                         XCB_NONE,
                                         XCB_CURRENT_TIME);
    const XcbReply<xcb_grab_pointer_reply_t> reply(
        xcb_grab_pointer_reply(m_connection->get(), cookie, nullptr));
    m_events->flush();
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

void X11PointerGrab::catchUp()
{
    // Events that were sent before a reply are read with it.
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_connection->get(), xcb_get_input_focus(m_connection->get()), nullptr));
    m_events->flush();
}

} // namespace vornic
