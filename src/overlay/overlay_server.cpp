#include "overlay/overlay_server.h"

#include "overlay/x11/x11_compositing.h"
#include "overlay/x11/x11_input_window.h"
#include "overlay/x11/x11_stacking.h"
#include "overlay/x11/x11_windows.h"
#include "x11/x11_connection.h"
#include "x11/x11_events.h"
#include "x11/x11_shape.h"
#include "x11/xcb_reply.h"

#include <QGuiApplication>
#include <QWindow>

namespace vornic {

namespace {

/// The toolkit's own connection: what is sent through it keeps its order with what the toolkit sends.
xcb_connection_t *toolkitConnection()
{
    const auto *native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return native ? native->connection() : nullptr;
}

xcb_window_t idOf(const QWindow *window)
{
    // A window that the toolkit has not made yet stands above nothing.
    return window && window->handle() ? static_cast<xcb_window_t>(window->winId())
                                      : xcb_window_t { XCB_NONE };
}

} // namespace

struct OverlayServer::Private {
    Private(std::unique_ptr<X11Connection> openConnection, InputReceiver &receiver)
        : connection(std::move(openConnection))
        , events(*connection)
        , compositing(events)
        , stacking(events)
        , inputWindow(events, receiver)
    {
    }

    std::unique_ptr<X11Connection> connection;
    X11Events events;
    X11Compositing compositing;
    X11Stacking stacking;
    X11InputWindow inputWindow;
    xcb_window_t overlay = XCB_NONE;
    std::optional<QRegion> shape;
    bool takesMouse = true;
    xcb_window_t windowAbove = XCB_NONE;
};

OverlayServer::OverlayServer() = default;
OverlayServer::~OverlayServer() = default;

std::unique_ptr<OverlayServer> OverlayServer::create(InputReceiver &receiver)
{
    auto connection = toolkitConnection() ? X11Connection::open() : nullptr;
    if (!connection)
        return nullptr;
    std::unique_ptr<OverlayServer> server(new OverlayServer);
    server->d = std::make_unique<Private>(std::move(connection), receiver);
    connect(
        &server->d->compositing, &X11Compositing::changed, server.get(), &OverlayServer::compositingChanged);
    connect(&server->d->stacking, &X11Stacking::desktopChanged, server.get(), &OverlayServer::windowsMoved);
    return server;
}

bool OverlayServer::isComposited() const
{
    return d->compositing.isActive();
}

QRegion OverlayServer::pixelsOf(const QList<QWindow *> &windows) const
{
    QRegion pixels;
    for (const QWindow *window : windows) {
        const xcb_window_t id = idOf(window);
        if (id == XCB_NONE)
            continue;
        d->stacking.watch(id); // first, so that no change between is missed
        pixels += framePixels(*d->connection, id);
    }
    return pixels;
}

void OverlayServer::setAppearance(QWindow &window, const Appearance &appearance)
{
    xcb_connection_t *const connection = toolkitConnection();
    const xcb_window_t id = idOf(&window);
    const bool isNew = id != d->overlay;
    d->overlay = id;
    if (isNew || appearance.shape != d->shape) {
        setShape(connection, id, XCB_SHAPE_SK_BOUNDING, appearance.shape);
        d->shape = appearance.shape;
    }
    if (isNew || appearance.takesMouse != d->takesMouse) {
        setShape(connection,
                 id,
                 XCB_SHAPE_SK_INPUT,
                 appearance.takesMouse ? std::nullopt : std::optional(QRegion()));
        d->takesMouse = appearance.takesMouse;
    }
    xcb_flush(connection);
    d->windowAbove = idOf(appearance.windowAbove);
    d->inputWindow.place(appearance.inputArea);
}

void OverlayServer::orderFront(QWindow &window)
{
    wait(); // until the window is there
    d->stacking.keepOnTop(idOf(&window), d->windowAbove, d->inputWindow.id());
}

void OverlayServer::orderOut()
{
    d->stacking.stop();
    d->inputWindow.place({});
}

void OverlayServer::wait()
{
    for (xcb_connection_t *connection : { toolkitConnection(), d->connection->get() })
        XcbReply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    d->events.flush();
}

} // namespace vornic
