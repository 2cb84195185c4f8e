#pragma once

#include "overlay/VNRecoderView.h"
#include "overlay/input_receiver.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QRect>
#include <QRectF>
#include <QRegion>
#include <QWidget>

#include <memory>

namespace vornic {

class OverlayServer;
struct OverlayAppearance;
class SizeLabel;
class VNRecoderWindowDelegate;

/// The borderless window around the recorded rectangle, above ordinary windows, panels and menus.
///
/// Made by the controller's interface file; main thread only. No window manager touches it: so it stands on
/// no task bar, keeps its place at once and may reach beyond the edges of the display. With a compositing
/// manager it is translucent; without one it is cut to what its view shows. The program's other windows are
/// above it. It also has a hole where they are, while recording only where they are seen: some window managers
/// keep windows like this one above all that they manage. Where the server has a surface for it, or shows it in parts,
/// these are shown in its place.
class VNRecoderWindow : public QWidget, private InputReceiver
{
    Q_OBJECT
public:
    /// Of pop-up menus; the main window's is one more.
    static constexpr int overlayLevel = 101;

    /// Borderless, transparent and hidden, whatever style, backing and deferral are asked for.
    VNRecoderWindow(const QRectF &contentRect, Qt::WindowFlags styleMask, int backing, bool defer);
    VNRecoderWindow();
    ~VNRecoderWindow() override;

    [[nodiscard]] VNRecoderWindowDelegate *recorderWnddelegate() const { return _recorderWnddelegate; }
    void setRecorderWnddelegate(VNRecoderWindowDelegate *delegate) { _recorderWnddelegate = delegate; }
    [[nodiscard]] int level() const { return overlayLevel; }
    [[nodiscard]] bool canBecomeKeyWindow() const { return true; }

    /// In screen coordinates; what was set last, also where it is not whole pixels.
    [[nodiscard]] QRectF frame() const { return m_frame; }
    /// Moves, resizes and shows the new contents at once.
    void setFrame(const QRectF &frame);
    /// Shows it above other programs' windows, without taking the keyboard focus; while idle only as long as
    /// the window above is on the screen, too.
    void orderFront();
    void orderOut();
    /// Whether it was ordered to the front last, shown or not.
    [[nodiscard]] bool isOrderedIn() const { return m_isOrderedIn; }
    /// A recording has begun, then it is shown whatever the window above does, or has ended.
    void recordingChanged();
    /// Leaves the desktop to other programs: hides it, and lets the window above be one like others, until the
    /// user turns to that window again, or records.
    void stepAside();
    /// Takes the keyboard focus; where the server shows the overlay it stays where it is.
    void becomeKey();
    /// The main window: this one is hidden while it is hidden or minimised, it gets the keyboard focus when
    /// this one is hidden, and it stays above other programs' windows while this one is shown and idle.
    /// Null: none.
    void setWindowAbove(QWidget *window);
    /// Tells the size of the recorded rectangle beside the frame until the mouse's button is up.
    void showSize();
    /// Gives the pointer the shape for what a press there would take hold of.
    void showCursor(QPointF mouseLocation);
    /// Fills the window with \a view and follows its looks.
    void setContentView(VNRecoderView *view);
    /// Returns once the server has drawn what the window shows now; a compositing manager may still be a
    /// frame behind.
    void waitUntilDrawn();

    /// Whether the desktop shows through what is painted translucent.
    [[nodiscard]] bool isTranslucent() const;
    /// The pixels of the frame, and how many the toolkit's window reaches beyond them at the upper left,
    /// where it cannot stand on every pixel.
    [[nodiscard]] QSize pixelSize() const { return m_onDesktop.size(); }
    [[nodiscard]] QPoint pixelInset() const;
    /// Pixels of the display for each of the window's coordinates.
    [[nodiscard]] double pixelScale() const;
    /// Whether the toolkit's window is not on the screen, because the server shows what is painted.
    [[nodiscard]] bool isShownByServer() const;
    /// Whether the frame can stand at every pixel of the display.
    [[nodiscard]] bool isExact() const;
    /// What the toolkit's window holds of the frame's pixels, from the frame's upper left: nothing that is far
    /// off the desktop, however large a rectangle is asked for.
    [[nodiscard]] QRect heldPixels() const { return m_held.translated(-m_onDesktop.topLeft()); }
    /// The lower left of those pixels, in screen coordinates.
    [[nodiscard]] QPointF pixelOrigin() const;
    /// The middle of the pixel where the mouse is, in screen coordinates; \a global is where the toolkit says
    /// that it is.
    [[nodiscard]] QPointF mouseLocation(QPointF global) const;
    /// The desktop's part in this window.
    [[nodiscard]] OverlayServer &server() const { return *m_server; }

signals:
    void windowDidBecomeKey();
    void windowDidResignKey();

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void inputPressed(QPoint onDesktop) override;
    void inputDragged(QPoint onDesktop) override;
    void inputReleased() override;
    void inputMoved(QPoint onDesktop) override;
    [[nodiscard]] bool filesEntered(const QMimeData &files, bool mayCopy) override;
    void filesLeft() override;
    [[nodiscard]] bool filesDropped(const QMimeData &files, QPoint onDesktop) override;
    void place();
    [[nodiscard]] bool mayBeShown() const;
    void followWindowAbove();
    void followWindowAboveSoon();
    void bringToDesktop();
    void takeFromDesktop();
    void keepWindowAboveOnTop();
    void returnToDesktop();
    void returnOnceNoMenuIsOpen();
    void hideSize();
    [[nodiscard]] QRegion takenPixels() const;
    void leaveOutOwnWindows();
    void updateAppearance();
    [[nodiscard]] OverlayAppearance appearance() const;
    [[nodiscard]] QList<QRect> parts() const;
    void setOnScreen(bool isOnScreen);

    VNRecoderWindowDelegate *_recorderWnddelegate = nullptr;
    QRectF m_frame;
    QRect m_onDesktop; ///< the frame's pixels
    QRect m_held;      ///< those of them that the toolkit's window holds
    QRect
        m_toolkitPixels; ///< the pixels of the toolkit's window; the frame's where the server shows the overlay
    QRegion m_ownWindows; ///< the pixels of the desktop where other windows of the program are
    bool m_isOrderedIn = false;
    bool m_isInParts = false; ///< the server shows parts of it
    bool m_isAside = false;
    QElapsedTimer m_sinceLeft;         ///< the window above has lost the keyboard focus; invalid: not since
    bool m_isDragRefused = false;      ///< of the drag that goes on
    bool m_isLeftToTheDesktop = false; ///< a recording runs: no press, and no window that nobody sees
    QPointer<QWidget> m_windowAbove;
    QPointer<VNRecoderView> m_view;
    std::unique_ptr<SizeLabel> m_size;       ///< null until somebody drags
    std::unique_ptr<OverlayServer> m_server; ///< never null
};

} // namespace vornic
