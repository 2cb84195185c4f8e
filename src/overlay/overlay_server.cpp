#include "overlay/overlay_server.h"

#include "overlay/x11_compositing.h"
#include "overlay/x11_glass.h"
#include "overlay/x11_link.h"
#include "overlay/x11_stacking.h"

#include <QGuiApplication>
#include <QWindow>

#include <xcb/shape.h>

#include <vector>

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
    // A window that the toolkit has not made yet is nobody's lid.
    return window && window->handle() ? static_cast<xcb_window_t>(window->winId())
                                      : xcb_window_t { XCB_NONE };
}

void setShape(xcb_connection_t *connection,
              xcb_window_t window,
              xcb_shape_kind_t kind,
              const std::optional<QRegion> &shape)
{
    if (!shape) {
        xcb_shape_mask(connection, XCB_SHAPE_SO_SET, kind, window, 0, 0, XCB_PIXMAP_NONE);
        return;
    }
    std::vector<xcb_rectangle_t> rectangles;
    for (const QRect &part : *shape)
        rectangles.push_back({ static_cast<std::int16_t>(part.x()),
                               static_cast<std::int16_t>(part.y()),
                               static_cast<std::uint16_t>(part.width()),
                               static_cast<std::uint16_t>(part.height()) });
    // A region keeps its rectangles by rows, and in each from left to right.
    xcb_shape_rectangles(connection,
                         XCB_SHAPE_SO_SET,
                         kind,
                         XCB_CLIP_ORDERING_YX_BANDED,
                         window,
                         0,
                         0,
                         static_cast<std::uint32_t>(rectangles.size()),
                         rectangles.data());
}

} // namespace

struct OverlayServer::Private {
    Private(std::unique_ptr<X11Link> openLink, GlassReceiver &receiver)
        : link(std::move(openLink))
        , compositing(*link)
        , stacking(*link)
        , glass(*link, receiver)
    {
    }

    std::unique_ptr<X11Link> link;
    X11Compositing compositing;
    X11Stacking stacking;
    X11Glass glass;
    xcb_window_t treated = XCB_NONE;
    std::optional<QRegion> shape;
    bool takesMouse = true;
    xcb_window_t lid = XCB_NONE;
};

OverlayServer::OverlayServer() = default;
OverlayServer::~OverlayServer() = default;

std::unique_ptr<OverlayServer> OverlayServer::create(GlassReceiver &receiver)
{
    auto link = toolkitConnection() ? X11Link::open() : nullptr;
    if (!link)
        return nullptr;
    std::unique_ptr<OverlayServer> server(new OverlayServer);
    server->d = std::make_unique<Private>(std::move(link), receiver);
    connect(
        &server->d->compositing, &X11Compositing::changed, server.get(), &OverlayServer::compositingChanged);
    return server;
}

bool OverlayServer::isComposited() const
{
    return d->compositing.isActive();
}

void OverlayServer::treat(QWindow &window, const Treatment &treatment)
{
    xcb_connection_t *const connection = toolkitConnection();
    const xcb_window_t id = idOf(&window);
    const bool isNew = id != d->treated;
    d->treated = id;
    if (isNew || treatment.shape != d->shape) {
        setShape(connection, id, XCB_SHAPE_SK_BOUNDING, treatment.shape);
        d->shape = treatment.shape;
    }
    if (isNew || treatment.takesMouse != d->takesMouse) {
        setShape(connection,
                 id,
                 XCB_SHAPE_SK_INPUT,
                 treatment.takesMouse ? std::nullopt : std::optional(QRegion()));
        d->takesMouse = treatment.takesMouse;
    }
    xcb_flush(connection);
    d->lid = idOf(treatment.lid);
    d->glass.lay(treatment.glass);
}

void OverlayServer::orderFront(QWindow &window)
{
    wait(); // until the window is there
    d->stacking.keepOnTop(idOf(&window), d->lid, d->glass.id());
}

void OverlayServer::orderOut()
{
    d->stacking.stop();
    d->glass.lay({});
}

void OverlayServer::wait()
{
    for (xcb_connection_t *connection : { toolkitConnection(), d->link->get() })
        XcbOwned<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    d->link->flush();
}

} // namespace vornic
