#include "overlay/x11/x11_overlay_server.h"

#include "overlay/x11/x11_windows.h"
#include "x11/x11_shape.h"
#include "x11/xcb_reply.h"

#include <QGuiApplication>
#include <QWindow>

#include <utility>

namespace vornic {

namespace {

/// The toolkit's own connection: what is sent through it keeps its order with what the toolkit sends.
xcb_connection_t *toolkitConnection()
{
    const auto *native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return native ? native->connection() : nullptr;
}

/// None for a window that the toolkit has not made yet.
xcb_window_t idOf(const QWindow *window)
{
    return window && window->handle() ? static_cast<xcb_window_t>(window->winId())
                                      : xcb_window_t { XCB_NONE };
}

} // namespace

std::unique_ptr<OverlayServer> X11OverlayServer::create(InputReceiver &receiver)
{
    auto connection = toolkitConnection() ? X11Connection::open() : nullptr;
    return connection ? std::unique_ptr<OverlayServer>(new X11OverlayServer(std::move(connection), receiver))
                      : nullptr;
}

X11OverlayServer::X11OverlayServer(std::unique_ptr<X11Connection> connection, InputReceiver &receiver)
    : m_connection(std::move(connection))
    , m_events(*m_connection)
    , m_compositing(m_events)
    , m_stacking(m_events)
    , m_inputWindow(m_events, receiver)
{
    connect(&m_compositing, &X11Compositing::changed, this, &OverlayServer::compositingChanged);
    connect(&m_stacking, &X11Stacking::desktopChanged, this, &OverlayServer::windowsMoved);
}

QRegion X11OverlayServer::pixelsOf(const QList<QWindow *> &windows)
{
    QRegion pixels;
    for (const QWindow *window : windows) {
        const xcb_window_t id = idOf(window);
        if (id == XCB_NONE)
            continue;
        m_stacking.watch(id); // first, so that no change between is missed
        pixels += framePixels(*m_connection, id);
    }
    m_events.flush(); // the replies may have brought events, for which nothing else would wake the loop
    return pixels;
}

void X11OverlayServer::setAppearance(QWindow &window, const OverlayAppearance &appearance)
{
    xcb_connection_t *const connection = toolkitConnection();
    const xcb_window_t id = idOf(&window);
    const bool isNew = std::exchange(m_window, id) != id;
    if (isNew || appearance.shape != m_shape) {
        setShape(connection, id, XCB_SHAPE_SK_BOUNDING, appearance.shape);
        m_shape = appearance.shape;
    }
    if (isNew || appearance.takesMouse != m_takesMouse) {
        const auto input = appearance.takesMouse ? std::nullopt : std::optional(QRegion());
        setShape(connection, id, XCB_SHAPE_SK_INPUT, input);
        m_takesMouse = appearance.takesMouse;
    }
    xcb_flush(connection);
    m_windowAbove = idOf(appearance.windowAbove);
    m_inputWindow.place(appearance.inputArea);
}

void X11OverlayServer::orderFront(QWindow &window)
{
    wait(); // until the window is there
    m_stacking.keepOnTop(idOf(&window), m_windowAbove, m_inputWindow.id());
}

void X11OverlayServer::orderOut()
{
    m_stacking.stop();
    m_inputWindow.place({});
}

void X11OverlayServer::wait()
{
    for (xcb_connection_t *connection : { toolkitConnection(), m_connection->get() })
        XcbReply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    m_events.flush();
}

} // namespace vornic
