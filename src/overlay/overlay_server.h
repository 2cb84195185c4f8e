#pragma once

#include <QList>
#include <QObject>
#include <QRegion>

#include <memory>

class QWindow;

namespace vornic {

class GlassReceiver;

/// What the overlay's window needs of the X server and the toolkit cannot ask for.
///
/// Made by VNRecoderWindow; main thread only. Regions are device pixels from the window's upper left.
class OverlayServer : public QObject
{
    Q_OBJECT
public:
    /// How the window is to be.
    struct Treatment {
        QRegion shape; ///< what of the window shows
        bool takesMouse = true;
        QRegion glass; ///< where an unseen window takes the mouse in its place, pixels of the desktop
        QWindow *lid = nullptr; ///< the window directly above; null: none
    };

    /// Null where windows are not those of an X server. Borrows \a receiver for life.
    [[nodiscard]] static std::unique_ptr<OverlayServer> create(GlassReceiver &receiver);
    ~OverlayServer() override;

    /// Whether a compositing manager runs, which makes windows translucent.
    [[nodiscard]] bool isComposited() const;
    /// The pixels of the desktop that those of \a windows take that are shown, with their decoration. Blocks
    /// for some exchanges with the server. From then on windowsMoved() tells when that is another answer.
    [[nodiscard]] QRegion pixelsOf(const QList<QWindow *> &windows) const;
    /// Sends what is other than it was. Before the window is shown, and whenever something changes.
    void treat(QWindow &window, const Treatment &treatment);
    /// Puts it above everything but the lid, and keeps it there.
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
