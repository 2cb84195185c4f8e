#pragma once

#include "overlay/overlay_server.h"

#include <QList>

#include <optional>

namespace vornic {

class InputReceiver;

/// A server for the overlay without a desktop: it remembers what it was asked for, and tells what a test lets
/// it tell.
///
/// For tests, and chosen only by VORNIC_OVERLAY=fake or =fake-surface; main thread only.
class FakeOverlayServer final : public OverlayServer
{
    Q_OBJECT
public:
    /// Who shows the overlay.
    enum class Shown {
        ByToolkit,
        ByServer,
    };

    /// What the server was asked for.
    struct Asked {
        OverlayAppearance appearance;
        Qt::CursorShape cursor = Qt::ArrowCursor;
        bool isInFront = false;
        int waits = 0;
        Paint paint;
        QList<QRegion> repaints; ///< of a surface
    };

    /// Borrows \a receiver for life. A compositing manager runs, and no window is shown.
    FakeOverlayServer(InputReceiver &receiver, Shown shown);

    /// The object that is told what the mouse does over the input area.
    [[nodiscard]] InputReceiver &receiver() const { return m_receiver; }
    /// From now on a window keeps the mouse, as on servers that show the overlay in parts.
    void setKeepsMouse() { m_keepsMouse = true; }
    /// A compositing manager comes or goes.
    void setComposited(bool isComposited);
    /// Another program begins to drag something, or ends.
    void setDragging(bool isDragging);
    /// What pixelsOf() answers from now on, \a seen where it is not \a all; tells that windows have moved.
    void setPixelsOfWindows(const QRegion &all, const std::optional<QRegion> &seen = {});

    /// What the server was asked for last.
    [[nodiscard]] const Asked &asked() const { return m_asked; }

    [[nodiscard]] bool hasSurface() const override { return m_hasSurface; }
    void setPaint(const Paint &paint) override { m_asked.paint = paint; }
    void repaint(const QRegion &pixels) override { m_asked.repaints += pixels; }
    [[nodiscard]] bool keepsMouse() const override { return m_keepsMouse; }
    [[nodiscard]] bool isComposited() const override { return m_isComposited; }
    [[nodiscard]] bool isDragging() const override { return m_isDragging; }
    [[nodiscard]] QRegion pixelsOf(const QList<QWindow *> &windows, Pixels which) override;
    void setAppearance(QWindow &window, const OverlayAppearance &appearance) override;
    void setCursor(Qt::CursorShape shape) override { m_asked.cursor = shape; }
    void takeFocus(QWindow & /*window*/) override { }
    void orderFront(QWindow &window) override;
    void orderOut() override;
    void wait() override;

private:
    InputReceiver &m_receiver;
    const bool m_hasSurface;
    bool m_keepsMouse = false;
    Asked m_asked;
    QRegion m_pixelsOfWindows;
    QRegion m_seenPixelsOfWindows;
    bool m_isComposited = true;
    bool m_isDragging = false;
};

} // namespace vornic
