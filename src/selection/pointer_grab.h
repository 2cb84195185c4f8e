#pragma once

#include <QObject>
#include <QPoint>

#include <memory>

namespace vornic {

/// The mouse of the whole desktop, taken from all windows, by the pixel: the toolkit tells whole logical coordinates,
/// between which lie pixels at a scale factor other than 1.
///
/// Made by SelectionWindow; main thread only. The mouse is let go with the object.
class PointerGrab : public QObject
{
    Q_OBJECT
public:
    ~PointerGrab() override = default;

    /// Whether the mouse is taken; another program may hold it. Blocks for an exchange with the server.
    [[nodiscard]] virtual bool take() = 0;
    /// Lets the signals for what the mouse has done so far come before anything that is queued from now on. Blocks for
    /// an exchange with the server.
    virtual void catchUp() = 0;

signals:
    // Pixels of the desktop.
    void moved(QPoint onDesktop);
    void pressed(Qt::MouseButton button, QPoint onDesktop);
    void released(Qt::MouseButton button, QPoint onDesktop);
};

/// Null where only the toolkit's own is to be had.
[[nodiscard]] std::unique_ptr<PointerGrab> createPointerGrab();

} // namespace vornic
