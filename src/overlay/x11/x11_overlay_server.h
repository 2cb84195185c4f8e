#pragma once

#include "overlay/overlay_server.h"
#include "overlay/x11/x11_compositing.h"
#include "overlay/x11/x11_drag_watch.h"
#include "overlay/x11/x11_input_window.h"
#include "overlay/x11/x11_stacking.h"
#include "x11/x11_connection.h"
#include "x11/x11_events.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace vornic {

/// The overlay's window on an X11 desktop.
///
/// Made by the table of backends and XwaylandOverlayServer; main thread only. Shapes go through the toolkit's own connection, everything
/// else through one of ours.
class X11OverlayServer final : public OverlayServer
{
    Q_OBJECT
public:
    /// Null where the toolkit's windows are not those of an X server. Borrows \a receiver for life.
    [[nodiscard]] static std::unique_ptr<X11OverlayServer> open(InputReceiver &receiver);
    [[nodiscard]] static std::unique_ptr<OverlayServer> create(InputReceiver &receiver)
    {
        return open(receiver);
    }

    [[nodiscard]] bool isComposited() const override { return m_compositing.isActive(); }
    [[nodiscard]] bool isDragging() const override { return m_drags.isActive(); }
    [[nodiscard]] QRegion pixelsOf(const QList<QWindow *> &windows, Pixels which) override;
    void setAppearance(QWindow &window, const OverlayAppearance &appearance) override;
    void setCursor(Qt::CursorShape shape) override { m_inputWindow.setCursor(shape); }
    void takeFocus(QWindow &window) override;
    void orderFront(QWindow &window) override;
    void orderOut() override;
    void wait() override;
    /// orderFront() for a window that the toolkit does not know.
    void keepInFront(std::uint32_t window);

private:
    X11OverlayServer(std::unique_ptr<X11Connection> connection, InputReceiver &receiver);

    std::unique_ptr<X11Connection> m_connection;
    X11Events m_events;
    X11Compositing m_compositing;
    X11DragWatch m_drags;
    X11Stacking m_stacking;
    X11InputWindow m_inputWindow;
    // What was sent last.
    std::uint32_t m_window = 0; ///< 0: nothing yet
    std::optional<QRegion> m_shape;
    std::optional<QRegion> m_mouseShape;
};

} // namespace vornic
