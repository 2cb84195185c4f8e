#pragma once

#include <QList>
#include <QObject>
#include <QRegion>

#include <memory>

class QWindow;

namespace vornic {

class InputReceiver;

/// What the overlay's window needs of the X server and the toolkit cannot ask for.
///
/// Made by VNRecoderWindow; main thread only. Regions are device pixels from the window's upper left.
class OverlayServer : public QObject
{
    Q_OBJECT
public:
    /// What of the window is seen, what takes the mouse, and what stands above it.
    struct Appearance {
        QRegion shape; ///< the part of the window that shows
        bool takesMouse = true;
        QRegion inputArea; ///< where an invisible window takes the mouse in its place, pixels of the desktop
        QWindow *windowAbove = nullptr; ///< directly above; null: none
    };

    /// Null where windows are not those of an X server. Borrows \a receiver for life.
    [[nodiscard]] static std::unique_ptr<OverlayServer> create(InputReceiver &receiver);
    ~OverlayServer() override;

    /// Whether a compositing manager runs, which makes windows translucent.
    [[nodiscard]] bool isComposited() const;
    /// The pixels of the desktop that those of \a windows take that are shown, with their decoration. Blocks
    /// for some exchanges with the server. From then on windowsMoved() tells when that is another answer.
    [[nodiscard]] QRegion pixelsOf(const QList<QWindow *> &windows) const;
    /// Tells the server what has changed. Before the window is shown, and whenever something changes.
    void setAppearance(QWindow &window, const Appearance &appearance);
    /// Puts it above everything but the window above, and keeps it there.
    void orderFront(QWindow &window);
    void orderOut();
    /// Returns once the server has done what the toolkit and we have asked for.
    void wait();

signals:
    void compositingChanged();
    /// Some window was shown, hidden, moved or stacked anew, while the overlay is kept in front.
    void windowsMoved();

private:
    OverlayServer();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace vornic
