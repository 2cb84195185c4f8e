#pragma once

#include <QList>
#include <QObject>
#include <QRegion>

#include <functional>
#include <optional>

class QPainter;
class QWindow;

namespace vornic {

/// What of the overlay's window is seen, and what takes the mouse.
struct OverlayAppearance {
    QRect pixels;  ///< the window's, of the desktop
    QRegion shape; ///< the part of the window that shows; device pixels from its upper left
    std::optional<QRegion> mouseShape; ///< what of that takes the mouse, as shape; nothing said: all
    QRegion inputArea; ///< where an invisible window takes the mouse in its place, pixels of the desktop
    /// What is shown in place of the window, each in a window of its own, which takes no mouse but by the input area;
    /// pixels from the upper left of \c pixels. Nothing said: the window.
    std::optional<QList<QRect>> parts = {};
};

/// What the overlay's window needs of the desktop and the toolkit cannot ask for.
///
/// Made through the table of backends (createOverlayServer()) by VNRecoderWindow, and has an InputReceiver
/// that is told what the mouse does over the input area; main thread only.
class OverlayServer : public QObject
{
    Q_OBJECT
public:
    ~OverlayServer() override = default;

    /// Paints the overlay, with a painter that has its origin at the upper left of its pixels, y down.
    using Paint = std::function<void(QPainter &)>;

    /// Whether the server shows the overlay itself. The toolkit's window then is never on the screen, and the input
    /// area is what takes the mouse.
    [[nodiscard]] virtual bool hasSurface() const { return false; }
    /// What a server shows itself, on a surface or in parts, is painted by \a paint, whenever it pleases.
    virtual void setPaint(const Paint & /*paint*/) { }
    /// \a pixels of the overlay, y down from its upper left, look otherwise now.
    virtual void repaint(const QRegion & /*pixels*/) { }
    /// Whether a window keeps the mouse from the windows beneath it also where its mouse shape leaves it to them. The
    /// overlay is shown in parts then, wherever the mouse is not all its own.
    [[nodiscard]] virtual bool keepsMouse() const { return false; }
    /// Whether the overlay can stand at every pixel of the display.
    [[nodiscard]] virtual bool isExact() const { return true; }

    /// Whether the desktop shows through what is painted translucent.
    [[nodiscard]] virtual bool isComposited() const = 0;
    /// Which pixels of a window count.
    enum class Pixels {
        All,
        Seen, ///< those that no other program's window covers
    };

    /// Whether some program drags something that may be dropped.
    [[nodiscard]] virtual bool isDragging() const = 0;
    /// The pixels of the desktop that those of \a windows take that are shown, with their decoration. May
    /// block for some exchanges with the server. From then on windowsMoved() tells when that is another
    /// answer.
    [[nodiscard]] virtual QRegion pixelsOf(const QList<QWindow *> &windows, Pixels which) = 0;
    /// Tells the server what has changed. Before the window is shown, and whenever something changes.
    virtual void setAppearance(QWindow &window, const OverlayAppearance &appearance) = 0;
    /// The pointer's shape over the input area.
    virtual void setCursor(Qt::CursorShape shape) = 0;
    /// Gives the keyboard focus to \a window after a press on the input area, of which the toolkit does not know.
    virtual void takeFocus(QWindow &window) = 0;
    /// Puts it above other programs' windows and beneath the program's own, and keeps it there; never above one
    /// that locks the screen.
    virtual void orderFront(QWindow &window) = 0;
    virtual void orderOut() = 0;
    /// Returns once the server has done what the toolkit and we have asked for.
    virtual void wait() = 0;

signals:
    /// isComposited() is another answer now.
    void compositingChanged();
    /// isDragging() is another answer now.
    void draggingChanged();
    /// Some window was shown, hidden, moved or stacked anew, while the overlay is kept in front.
    void windowsMoved();
};

} // namespace vornic
