#include "overlay/x11/x11_overlay_server.h"

#include "overlay/x11/x11_window_stack.h"
#include "x11/x11_shape.h"
#include "x11/x11_windows.h"
#include "x11/xcb_reply.h"

#include <QWindow>

#include <algorithm>
#include <utility>
#include <vector>

namespace vornic {

namespace {

/// The pixels that other programs' windows take above \a window.
QRegion coverOf(const std::vector<StackedWindow> &stack, std::uint32_t window)
{
    QRegion cover;
    auto above = std::ranges::find(stack, window, &StackedWindow::id);
    for (; above != stack.end(); ++above) {
        if (above->isSeen && !above->isOwn)
            cover += above->pixels;
    }
    return cover;
}

} // namespace

std::unique_ptr<X11OverlayServer> X11OverlayServer::open(InputReceiver &receiver)
{
    auto connection = toolkitConnection() ? X11Connection::open() : nullptr;
    return connection
        ? std::unique_ptr<X11OverlayServer>(new X11OverlayServer(std::move(connection), receiver))
        : nullptr;
}

X11OverlayServer::X11OverlayServer(std::unique_ptr<X11Connection> connection, InputReceiver &receiver)
    : m_connection(std::move(connection))
    , m_events(*m_connection)
    , m_compositing(m_events)
    , m_drags(m_events)
    , m_stacking(m_events, X11Stacking::OwnWindows::Above)
    , m_inputWindow(m_events, receiver)
{
    connect(&m_compositing, &X11Compositing::changed, this, &OverlayServer::compositingChanged);
    connect(&m_drags, &X11DragWatch::changed, this, &OverlayServer::draggingChanged);
    connect(&m_stacking, &X11Stacking::desktopChanged, this, &OverlayServer::windowsMoved);
}

QRegion X11OverlayServer::pixelsOf(const QList<QWindow *> &windows, Pixels which)
{
    const auto stack = which == Pixels::Seen ? windowStack(*m_connection) : std::vector<StackedWindow>();
    QRegion pixels;
    for (const QWindow *window : windows) {
        const xcb_window_t id = idOf(window);
        if (id == XCB_NONE)
            continue;
        m_stacking.watch(id); // first, so that no change between is missed
        const QRect all = framePixels(*m_connection, id);
        if (all.isEmpty())
            continue;
        pixels += which == Pixels::All ? QRegion(all)
                                       : QRegion(all) - coverOf(stack, topLevelOf(*m_connection, id));
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
    if (isNew || appearance.mouseShape != m_mouseShape) {
        setShape(connection, id, XCB_SHAPE_SK_INPUT, appearance.mouseShape);
        m_mouseShape = appearance.mouseShape;
    }
    xcb_flush(connection);
    m_inputWindow.place(appearance.inputArea);
}

/// The toolkit would ask with the time of the last event of its own, which the server takes for outdated when
/// another window got the focus since.
void X11OverlayServer::takeFocus(QWindow &window)
{
    xcb_connection_t *const connection = toolkitConnection();
    xcb_set_input_focus(connection, XCB_INPUT_FOCUS_PARENT, idOf(&window), m_inputWindow.pressTime());
    xcb_flush(connection);
}

void X11OverlayServer::orderFront(QWindow &window)
{
    keepInFront(idOf(&window));
}

void X11OverlayServer::keepInFront(std::uint32_t window)
{
    wait(); // until the window is there
    m_stacking.keepOnTop(window, m_inputWindow.id());
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
