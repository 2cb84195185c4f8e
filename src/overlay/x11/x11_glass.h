#pragma once

#include "overlay/glass_receiver.h"

#include <QObject>
#include <QPoint>
#include <QRegion>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <optional>

namespace vornic {

class X11Connection;
class X11Events;
class XdndTarget;

/// A window that nobody sees and that takes the mouse, and files that other programs drop.
///
/// Made by OverlayServer; main thread only. It lies where the overlay is cut away for want of translucency,
/// so that a press between its bars still reaches the overlay.
class X11Glass : public QObject
{
    Q_OBJECT
public:
    /// Borrows both for life.
    X11Glass(X11Events &events, GlassReceiver &receiver);
    ~X11Glass() override;

    [[nodiscard]] std::uint32_t id() const { return m_window; }
    /// Lays it over \a onDesktop, pixels of the desktop; an empty region hides it.
    void lay(const QRegion &onDesktop);

private:
    void tellDrag();

    X11Connection &m_connection;
    X11Events &m_events;
    GlassReceiver &m_receiver;
    std::uint32_t m_window;
    QRegion m_laid;
    std::optional<QPoint> m_draggedTo; ///< not told yet; only the last of many movements is
    QTimer m_tellDrag;
    std::unique_ptr<XdndTarget> m_drops;
};

} // namespace vornic
