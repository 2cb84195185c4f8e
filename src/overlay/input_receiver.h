#pragma once

#include <QPoint>

class QMimeData;

namespace vornic {

/// Is told what the mouse does over the overlay's input window. Points are pixels of the desktop, y down.
///
/// Implemented by the overlay's window; called on the main thread.
class InputReceiver
{
public:
    virtual ~InputReceiver() = default;

    /// The first mouse button.
    virtual void inputPressed(QPoint onDesktop) = 0;
    virtual void inputDragged(QPoint onDesktop) = 0;
    virtual void inputReleased() = 0;
    /// Without a button.
    virtual void inputMoved(QPoint onDesktop) = 0;
    /// Another program drags \a files in; whether they would be taken. \a mayCopy: that program
    /// lets them be copied.
    [[nodiscard]] virtual bool filesEntered(const QMimeData &files, bool mayCopy) = 0;
    /// It has left without dropping what would have been taken.
    virtual void filesLeft() = 0;
    /// It drops what would be taken; whether it was.
    [[nodiscard]] virtual bool filesDropped(const QMimeData &files, QPoint onDesktop) = 0;
};

} // namespace vornic
