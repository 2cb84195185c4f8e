#include "overlay/x11/xwayland_overlay_server.h"

#include "display/display_scale.h"
#include "overlay/x11/x11_overlay_server.h"
#include "x11/x11_nesting.h"
#include "x11/x11_windows.h"

#include <QPainter>

#include <cmath>
#include <utility>

namespace vornic {

std::unique_ptr<OverlayServer> XwaylandOverlayServer::create(InputReceiver &receiver)
{
    auto connection = toolkitConnection() ? X11Connection::open() : nullptr;
    if (!connection || !isInsideWayland(*connection))
        return nullptr;
    std::unique_ptr<XwaylandOverlayServer> server(new XwaylandOverlayServer(std::move(connection), receiver));
    return server->m_server ? std::move(server) : nullptr;
}

XwaylandOverlayServer::XwaylandOverlayServer(std::unique_ptr<X11Connection> connection,
                                             InputReceiver &receiver)
    : m_receiver(receiver)
    , m_connection(std::move(connection))
    , m_server(X11OverlayServer::open(*this))
{
    if (!m_server)
        return;
    connect(m_server.get(), &OverlayServer::draggingChanged, this, &OverlayServer::draggingChanged);
    connect(m_server.get(), &OverlayServer::windowsMoved, this, &OverlayServer::windowsMoved);
}

XwaylandOverlayServer::~XwaylandOverlayServer() = default;

OutputGrid XwaylandOverlayServer::grid()
{
    return OutputGrid(displayPixelsPerScreenPixel());
}

bool XwaylandOverlayServer::isExact() const
{
    constexpr double tolerance = 1e-3;
    const double scale = displayPixelsPerScreenPixel();
    return std::abs(scale - std::round(scale)) < tolerance;
}

bool XwaylandOverlayServer::isDragging() const
{
    return m_server->isDragging();
}

QRegion XwaylandOverlayServer::pixelsOf(const QList<QWindow *> &windows, Pixels which)
{
    QRegion pixels;
    const QRegion onServer = m_server->pixelsOf(windows, which);
    for (const QRect &part : onServer)
        pixels += grid().pixelsAround(part);
    return pixels;
}

void XwaylandOverlayServer::setAppearance(QWindow &window, const OverlayAppearance &appearance)
{
    m_appearance = appearance;
    OverlayAppearance onServer;
    onServer.pixels = grid().logicalAround(appearance.pixels);
    onServer.shape = grid().logicalInside(appearance.shape);
    if (appearance.mouseShape)
        onServer.mouseShape = grid().logicalInside(*appearance.mouseShape);
    onServer.inputArea = grid().logicalInside(appearance.inputArea);
    m_server->setAppearance(window, onServer);
    showParts();
}

/// Of the parts, in pixels of the server: nothing that is beside a part may be covered.
QList<QRect> XwaylandOverlayServer::places() const
{
    QList<QRect> places;
    if (!m_isInFront || !m_appearance.parts)
        return places;
    for (const QRect &part : *m_appearance.parts) {
        const QRect onDesktop = part.translated(m_appearance.pixels.topLeft());
        const QRect place = grid().logicalInside(onDesktop).boundingRect();
        if (!place.isEmpty())
            places += place;
    }
    return places;
}

QImage XwaylandOverlayServer::paintedPart(const QRect &place) const
{
    QImage picture(place.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    const double scale = displayPixelsPerScreenPixel();
    painter.translate(-place.topLeft());
    painter.scale(1 / scale, 1 / scale);
    painter.translate(m_appearance.pixels.topLeft());
    painter.setClipRegion(m_appearance.shape);
    if (m_paint)
        m_paint(painter);
    return picture;
}

void XwaylandOverlayServer::showParts()
{
    using Mouse = X11PartWindow::Mouse;
    const QList<QRect> places = this->places();
    const Mouse mouse = m_appearance.inputArea.isEmpty() ? Mouse::Left : Mouse::Taken;
    if (std::exchange(m_mouse, mouse) != mouse || m_parts.size() != static_cast<std::size_t>(places.size()))
        m_parts.clear();
    const bool isNew = m_parts.empty();
    for (qsizetype i = 0; i < places.size(); ++i) {
        const QImage picture = paintedPart(places.at(i));
        if (isNew)
            m_parts.push_back(std::make_unique<X11PartWindow>(*m_connection, mouse, places.at(i), picture));
        else
            m_parts.at(static_cast<std::size_t>(i))->show(places.at(i), picture);
    }
    if (isNew && !m_parts.empty())
        m_server->keepInFront(m_parts.back()->id());
}

void XwaylandOverlayServer::setCursor(Qt::CursorShape shape)
{
    m_server->setCursor(shape);
}

/// A window that is not on the screen cannot have it.
void XwaylandOverlayServer::takeFocus(QWindow &window)
{
    if (!m_appearance.parts)
        m_server->takeFocus(window);
}

void XwaylandOverlayServer::orderFront(QWindow &window)
{
    m_isInFront = true;
    if (!m_appearance.parts)
        m_server->orderFront(window);
    else if (!m_parts.empty())
        m_server->keepInFront(m_parts.back()->id());
}

void XwaylandOverlayServer::orderOut()
{
    m_isInFront = false;
    m_parts.clear();
    m_server->orderOut();
}

void XwaylandOverlayServer::wait()
{
    m_server->wait();
}

QPoint XwaylandOverlayServer::pixelAt(QPoint onServer)
{
    return grid().pixelAt(QPointF(onServer) + QPointF(0.5, 0.5));
}

void XwaylandOverlayServer::inputPressed(QPoint onServer)
{
    m_receiver.inputPressed(pixelAt(onServer));
}

void XwaylandOverlayServer::inputDragged(QPoint onServer)
{
    m_receiver.inputDragged(pixelAt(onServer));
}

void XwaylandOverlayServer::inputMoved(QPoint onServer)
{
    m_receiver.inputMoved(pixelAt(onServer));
}

bool XwaylandOverlayServer::filesEntered(const QMimeData &files, bool mayCopy)
{
    return m_receiver.filesEntered(files, mayCopy);
}

bool XwaylandOverlayServer::filesDropped(const QMimeData &files, QPoint onServer)
{
    return m_receiver.filesDropped(files, pixelAt(onServer));
}

} // namespace vornic
