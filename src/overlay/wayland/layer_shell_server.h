#pragma once

#include "overlay/overlay_server.h"
#include "overlay/wayland/output_grid.h"
#include "overlay/wayland/overlay_surface.h"
#include "overlay/wayland/wayland_drops.h"
#include "overlay/wayland/wayland_mouse.h"
#include "wayland/wayland_connection.h"
#include "wayland/wayland_events.h"

#include <cstdint>
#include <memory>

namespace vornic {

class InputReceiver;

/// The overlay on a Wayland desktop whose compositor offers the layer shell: on a surface of our own as large as the
/// recorded monitor, because a surface that moves is told the mouse in other coordinates by each compositor.
///
/// Made by the table of backends; main thread only. Has a connection of its own to the compositor. The keyboard stays
/// with the program's other windows.
class LayerShellServer final : public OverlayServer
{
    Q_OBJECT
public:
    /// Null where no compositor offers what is needed. Borrows \a receiver for life.
    [[nodiscard]] static std::unique_ptr<OverlayServer> create(InputReceiver &receiver);
    ~LayerShellServer() override;

    [[nodiscard]] bool hasSurface() const override { return true; }
    void setPaint(const Paint &paint) override { m_paint = paint; }
    void repaint(const QRegion &pixels) override;
    [[nodiscard]] bool isComposited() const override { return true; }
    /// Nobody tells of a drag before it is over the input area.
    [[nodiscard]] bool isDragging() const override { return false; }
    /// As far as the toolkit knows where its windows are; which of them are seen nobody knows, so it is none.
    [[nodiscard]] QRegion pixelsOf(const QList<QWindow *> &windows, Pixels which) override;
    void setAppearance(QWindow &window, const OverlayAppearance &appearance) override;
    void setCursor(Qt::CursorShape shape) override { m_mouse.setCursor(shape); }
    void takeFocus(QWindow & /*window*/) override { }
    void orderFront(QWindow &window) override;
    void orderOut() override;
    void wait() override;

protected:
    /// Of the application: its windows come, go and move.
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    LayerShellServer(std::unique_ptr<WaylandConnection> connection, InputReceiver &receiver);

    [[nodiscard]] WaylandOutput recordedMonitor() const;
    void followMonitors();
    void show();
    void paint(QPainter &painter) const;
    [[nodiscard]] QRegion onMonitor(const QRegion &pixelsOfOverlay) const;

    std::unique_ptr<WaylandConnection> m_connection;
    WaylandEvents m_events;
    WaylandMouse m_mouse;
    WaylandDrops m_drops;
    Paint m_paint;
    OverlayAppearance m_appearance; ///< what was asked for last
    WaylandOutput m_output;         ///< the recorded monitor
    QPoint m_origin;                ///< of it, as mainDisplayPlacement() tells
    bool m_isInFront = false;
    std::unique_ptr<OverlaySurface> m_surface; ///< null while there is nothing to be shown
};

} // namespace vornic
