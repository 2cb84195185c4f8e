#include "overlay/x11/x11_window_on_top.h"

#include "x11/x11_windows.h"
#include "x11/xcb_reply.h"

#include <QPlatformSurfaceEvent>
#include <QWindow>

#include <utility>

namespace vornic {

std::unique_ptr<WindowOnTop> X11WindowOnTop::create(QWindow &window)
{
    auto connection = toolkitConnection() ? X11Connection::open() : nullptr;
    return connection ? std::unique_ptr<WindowOnTop>(new X11WindowOnTop(std::move(connection), window))
                      : nullptr;
}

X11WindowOnTop::X11WindowOnTop(std::unique_ptr<X11Connection> connection, QWindow &window)
    : m_connection(std::move(connection))
    , m_events(*m_connection)
    , m_stacking(m_events, X11Stacking::OwnWindows::Anywhere)
    , m_window(&window)
{
    window.installEventFilter(this);
    window.create();
    keepOnTop();
}

void X11WindowOnTop::keepOnTop()
{
    xcb_connection_t *const toolkit = toolkitConnection();
    // Until the server knows the window.
    const XcbReply<xcb_get_input_focus_reply_t> known(
        xcb_get_input_focus_reply(toolkit, xcb_get_input_focus(toolkit), nullptr));
    m_stacking.keepOnTop(idOf(m_window));
}

bool X11WindowOnTop::eventFilter(QObject *window, QEvent *event)
{
    if (event->type() == QEvent::PlatformSurface) {
        const auto type = static_cast<QPlatformSurfaceEvent *>(event)->surfaceEventType();
        if (type == QPlatformSurfaceEvent::SurfaceCreated)
            keepOnTop();
        else
            m_stacking.stop();
    }
    return WindowOnTop::eventFilter(window, event);
}

} // namespace vornic
