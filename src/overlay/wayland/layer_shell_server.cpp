#include "overlay/wayland/layer_shell_server.h"

#include "display/display_backend.h"
#include "display/main_display.h"
#include "geometry/toolkit_scale.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <array>
#include <utility>

namespace vornic {

namespace {

/// Windows of a Wayland compositor are told their size only, those of the X server inside it where they are, too.
bool toolkitKnowsPlaces()
{
    return QGuiApplication::platformName() == u"xcb";
}

bool isOnScreen(const QWindow &window)
{
    return window.isVisible() && window.isExposed() && !window.windowStates().testFlag(Qt::WindowMinimized);
}

bool movesWindows(QEvent::Type type)
{
    constexpr std::array kinds { QEvent::Move, QEvent::Resize, QEvent::Expose,
                                 QEvent::Show, QEvent::Hide,   QEvent::WindowStateChange };
    return std::ranges::find(kinds, type) != kinds.end();
}

} // namespace

std::unique_ptr<OverlayServer> LayerShellServer::create(InputReceiver &receiver)
{
    auto connection = WaylandConnection::open();
    const bool isOffered = connection && connection->bind<wl_shm>(wl_shm_interface, 1)
        && connection->bind<wp_viewporter>(wp_viewporter_interface, 1)
        && connection->bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 1);
    return isOffered ? std::unique_ptr<OverlayServer>(new LayerShellServer(std::move(connection), receiver))
                     : nullptr;
}

LayerShellServer::LayerShellServer(std::unique_ptr<WaylandConnection> connection, InputReceiver &receiver)
    : m_connection(std::move(connection))
    , m_events(*m_connection)
    , m_mouse(*m_connection, receiver)
    , m_drops(*m_connection, receiver)
{
    // Later, as the compositor also tells in the middle of a wait.
    m_connection->outputs().onChange(
        [this] { QMetaObject::invokeMethod(this, &LayerShellServer::followMonitors, Qt::QueuedConnection); });
    followMonitors();
    qApp->installEventFilter(this);
}

LayerShellServer::~LayerShellServer() = default;

WaylandOutput LayerShellServer::recordedMonitor() const
{
    const std::vector<WaylandOutput> all = m_connection->outputs().all();
    const auto named = outputNamed(all, mainDisplay()->mainDisplayName());
    return named ? *named : mainOutput(all).value_or(WaylandOutput());
}

void LayerShellServer::followMonitors()
{
    m_output = recordedMonitor();
    m_origin = mainDisplayPlacement().origin;
    const OutputGrid grid(m_output.factor());
    m_mouse.setGrid(grid, m_origin);
    m_drops.setGrid(grid, m_origin);
    show();
}

void LayerShellServer::show()
{
    m_surface.reset();
    if (!m_isInFront)
        return;
    m_surface
        = OverlaySurface::create(*m_connection, m_output, [this](QPainter &painter) { paint(painter); });
    if (!m_surface)
        return;
    m_surface->onClosed(
        [this] { QMetaObject::invokeMethod(this, &LayerShellServer::followMonitors, Qt::QueuedConnection); });
    m_surface->setInputArea(m_appearance.inputArea.translated(-m_origin));
}

void LayerShellServer::orderFront(QWindow & /*window*/)
{
    if (!std::exchange(m_isInFront, true) || !m_surface)
        show();
}

void LayerShellServer::orderOut()
{
    m_isInFront = false;
    m_surface.reset();
    m_connection->flush();
}

QRegion LayerShellServer::onMonitor(const QRegion &pixelsOfOverlay) const
{
    return pixelsOfOverlay.translated(m_appearance.pixels.topLeft() - m_origin);
}

void LayerShellServer::repaint(const QRegion &pixels)
{
    if (m_surface)
        m_surface->repaint(onMonitor(pixels));
}

void LayerShellServer::setAppearance(QWindow & /*window*/, const OverlayAppearance &appearance)
{
    const QRegion shownBefore = onMonitor(m_appearance.shape);
    const bool isElsewhere = m_appearance.pixels != appearance.pixels;
    m_appearance = appearance;
    if (m_output != recordedMonitor() || m_origin != mainDisplayPlacement().origin) {
        followMonitors();
        return;
    }
    if (!m_surface)
        return;
    const QRegion shown = onMonitor(appearance.shape);
    m_surface->repaint(isElsewhere ? shown + shownBefore : shown ^ shownBefore);
    m_surface->setInputArea(appearance.inputArea.translated(-m_origin));
}

void LayerShellServer::paint(QPainter &painter) const
{
    if (!m_paint)
        return;
    painter.setClipRegion(onMonitor(m_appearance.shape), Qt::IntersectClip);
    painter.translate(m_appearance.pixels.topLeft() - m_origin);
    m_paint(painter);
}

QRegion LayerShellServer::pixelsOf(const QList<QWindow *> &windows, Pixels which)
{
    QRegion pixels;
    if (which == Pixels::Seen || !toolkitKnowsPlaces())
        return pixels;
    const OutputGrid grid(m_output.factor());
    for (const QWindow *window : windows) {
        if (!isOnScreen(*window))
            continue;
        // For the X server the compositor's logical coordinates are pixels.
        const QRect logical = ToolkitScale(*window->screen()).pixelsOf(window->frameGeometry());
        pixels += grid.pixelsAround(logical.translated(-m_output.logical.topLeft()));
    }
    return pixels.translated(m_origin);
}

bool LayerShellServer::eventFilter(QObject *object, QEvent *event)
{
    if (m_isInFront && object->isWindowType() && movesWindows(event->type()))
        QMetaObject::invokeMethod(this, &OverlayServer::windowsMoved, Qt::QueuedConnection);
    return OverlayServer::eventFilter(object, event);
}

void LayerShellServer::wait()
{
    m_connection->roundTrip();
    if (m_surface)
        m_surface->wait();
}

} // namespace vornic
