#pragma once

#include "overlay/wayland/output_grid.h"
#include "overlay/wayland/wayland_cursors.h"
#include "wayland/wayland_handle.h"

#include <QPoint>
#include <QPointF>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <vector>

namespace vornic {

class InputReceiver;
class WaylandConnection;

/// The mouse of a Wayland desktop over the surface of the overlay.
///
/// Made by LayerShellServer; main thread only. What it does is told from the toolkit's loop, never in the middle of a
/// wait for the compositor.
class WaylandMouse
{
public:
    /// Borrows both for life.
    WaylandMouse(WaylandConnection &connection, InputReceiver &receiver);
    ~WaylandMouse();
    WaylandMouse(const WaylandMouse &) = delete;
    WaylandMouse &operator=(const WaylandMouse &) = delete;

    /// How the surface's coordinates become pixels of the desktop, on which its upper left lies at \a origin.
    void setGrid(const OutputGrid &grid, QPoint origin);
    /// The pointer's shape over the surface.
    void setCursor(Qt::CursorShape shape);

private:
    enum class Act { Press, Drag, Release, Move };
    struct Notice {
        Act act = Act::Move;
        QPoint onDesktop;
    };

    void seatChanged(std::uint32_t capabilities);
    void entered(std::uint32_t serial, QPointF onSurface);
    void left();
    void moved(QPointF onSurface);
    void button(std::uint32_t number, bool isDown);
    void notice(Act act);
    void tell();
    void showCursor();
    static wl_pointer_listener makeListener();
    static const wl_seat_listener seatListener;
    static const wl_pointer_listener pointerListener;

    InputReceiver &m_receiver;
    WaylandCursors m_cursors;
    OutputGrid m_grid;
    QPoint m_origin;
    WaylandPtr<wl_seat> m_seat;
    WaylandPtr<wl_pointer> m_pointer; ///< null while no mouse is there
    std::uint32_t m_enterSerial = 0;
    Qt::CursorShape m_cursor = Qt::ArrowCursor;
    QPoint m_onDesktop; ///< where it was last
    bool m_isInside = false;
    bool m_isPressed = false;
    int m_otherButtons = 0; ///< that are held
    std::vector<Notice> m_notices;
    QTimer m_soon;
};

} // namespace vornic
