#pragma once

#include "overlay/input_receiver.h"
#include "overlay/x11/x11_cursors.h"

#include <QObject>
#include <QPoint>
#include <QRegion>
#include <QTimer>

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace vornic {

class X11Connection;
class X11Events;
class XdndTarget;

/// An invisible window that takes the mouse, and files that other programs drop.
///
/// Made by OverlayServer; main thread only. It lies where the overlay is cut away for want of translucency,
/// so that a press between its bars still reaches the overlay.
class X11InputWindow : public QObject
{
    Q_OBJECT
public:
    /// Borrows both for life.
    X11InputWindow(X11Events &events, InputReceiver &receiver);
    ~X11InputWindow() override;

    [[nodiscard]] std::uint32_t id() const { return m_window; }
    /// Of the server, at the last press.
    [[nodiscard]] std::uint32_t pressTime() const { return m_pressTime; }
    void setCursor(Qt::CursorShape shape);
    /// Covers \a onDesktop, pixels of the desktop; an empty region hides it, during a drag after its end.
    void place(const QRegion &onDesktop);

private:
    void readPress(const xcb_button_press_event_t &press);
    void readRelease(const xcb_button_release_event_t &release);
    void readMotion(const xcb_motion_notify_event_t &motion);
    void cover(const QRegion &onDesktop);
    void tellDrag();

    X11Connection &m_connection;
    X11Events &m_events;
    InputReceiver &m_receiver;
    X11Cursors m_cursors;
    Qt::CursorShape m_cursor = Qt::ArrowCursor;
    std::uint32_t m_window;
    QRegion m_area;
    QRegion m_wanted; ///< what was asked for last
    std::uint32_t m_pressTime = XCB_CURRENT_TIME;
    bool m_isPressed = false;          ///< then it stays where it is: the drag would end with it
    std::optional<QPoint> m_draggedTo; ///< not told yet; only the last of many movements is
    QTimer m_tellDrag;
    std::unique_ptr<XdndTarget> m_drops;
};

} // namespace vornic
