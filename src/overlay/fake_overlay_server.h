#pragma once

#include "overlay/overlay_server.h"

#include <QImage>

#include <utility>

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
    /// What pixelsOf() answers from now on; tells that windows have moved.
    void setPixelsOfWindows(const QRegion &all, const QRegion &seen);
    void setPixelsOfWindows(const QRegion &pixels) { setPixelsOfWindows(pixels, pixels); }

    /// What of a surface was to be painted anew since this was asked last.
    [[nodiscard]] QRegion takeRepainted() { return std::exchange(m_repainted, {}); }
    /// What a surface shows, as large as the window's pixels.
    [[nodiscard]] QImage surface() const;

    /// The last that was asked for.
    [[nodiscard]] const OverlayAppearance &appearance() const { return m_appearance; }
    [[nodiscard]] bool isInFront() const { return m_isInFront; }
    [[nodiscard]] Qt::CursorShape cursor() const { return m_cursor; }
    [[nodiscard]] int waitCount() const { return m_waits; }

    [[nodiscard]] bool hasSurface() const override { return m_hasSurface; }
    void setPaint(const Paint &paint) override { m_paint = paint; }
    void repaint(const QRegion &pixels) override { m_repainted += pixels; }
    [[nodiscard]] bool keepsMouse() const override { return m_keepsMouse; }
    [[nodiscard]] bool isComposited() const override { return m_isComposited; }
    [[nodiscard]] bool isDragging() const override { return m_isDragging; }
    [[nodiscard]] QRegion pixelsOf(const QList<QWindow *> &windows, Pixels which) override;
    void setAppearance(QWindow &window, const OverlayAppearance &appearance) override;
    void setCursor(Qt::CursorShape shape) override { m_cursor = shape; }
    void takeFocus(QWindow & /*window*/) override { }
    void orderFront(QWindow &window) override;
    void orderOut() override;
    void wait() override;

private:
    InputReceiver &m_receiver;
    const bool m_hasSurface;
    bool m_keepsMouse = false;
    Paint m_paint;
    QRegion m_repainted;
    OverlayAppearance m_appearance;
    QRegion m_pixelsOfWindows;
    QRegion m_seenPixelsOfWindows;
    Qt::CursorShape m_cursor = Qt::ArrowCursor;
    bool m_isComposited = true;
    bool m_isDragging = false;
    bool m_isInFront = false;
    int m_waits = 0;
};

} // namespace vornic
