#pragma once

#include "overlay/input_receiver.h"
#include "overlay/overlay_server.h"
#include "overlay/wayland/output_grid.h"
#include "overlay/x11/x11_part_window.h"
#include "x11/x11_connection.h"

#include <memory>
#include <vector>

namespace vornic {

class X11OverlayServer;

/// The overlay on a Wayland desktop without a layer shell: its window stands on the X server inside the session.
///
/// Made by the table of backends; main thread only. That server reckons in the compositor's logical coordinates, so pixels
/// go both ways by their measured ratio. Its windows keep the mouse even where their shape leaves it to others, unless
/// they came with it; so parts of the overlay are windows of their own.
class XwaylandOverlayServer final : public OverlayServer, private InputReceiver
{
    Q_OBJECT
public:
    /// Null where the toolkit's windows are not on such a server. Borrows \a receiver for life.
    [[nodiscard]] static std::unique_ptr<OverlayServer> create(InputReceiver &receiver);
    ~XwaylandOverlayServer() override;

    void setPaint(const Paint &paint) override { m_paint = paint; }
    [[nodiscard]] bool keepsMouse() const override { return true; }
    [[nodiscard]] bool isExact() const override;
    /// No Wayland desktop is without a compositor.
    [[nodiscard]] bool isComposited() const override { return true; }
    [[nodiscard]] bool isDragging() const override;
    [[nodiscard]] QRegion pixelsOf(const QList<QWindow *> &windows, Pixels which) override;
    void setAppearance(QWindow &window, const OverlayAppearance &appearance) override;
    void setCursor(Qt::CursorShape shape) override;
    void takeFocus(QWindow &window) override;
    void orderFront(QWindow &window) override;
    void orderOut() override;
    void wait() override;

private:
    XwaylandOverlayServer(std::unique_ptr<X11Connection> connection, InputReceiver &receiver);

    void inputPressed(QPoint onServer) override;
    void inputDragged(QPoint onServer) override;
    void inputReleased() override { m_receiver.inputReleased(); }
    void inputMoved(QPoint onServer) override;
    [[nodiscard]] bool filesEntered(const QMimeData &files, bool mayCopy) override;
    void filesLeft() override { m_receiver.filesLeft(); }
    [[nodiscard]] bool filesDropped(const QMimeData &files, QPoint onServer) override;

    [[nodiscard]] static OutputGrid grid();
    [[nodiscard]] static QPoint pixelAt(QPoint onServer);
    [[nodiscard]] QList<QRect> places() const;
    [[nodiscard]] QImage paintedPart(const QRect &place) const;
    void showParts();

    InputReceiver &m_receiver;
    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<X11OverlayServer> m_server;
    Paint m_paint;
    OverlayAppearance m_appearance; ///< what was asked for last
    bool m_isInFront = false;
    X11PartWindow::Mouse m_mouse = X11PartWindow::Mouse::Left;
    std::vector<std::unique_ptr<X11PartWindow>> m_parts; ///< empty while the window is shown
};

} // namespace vornic
