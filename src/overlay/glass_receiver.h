#pragma once

#include <QPoint>

class QMimeData;

namespace vornic {

/// Hears of what happens on the glass. Points are pixels of the desktop, y down.
///
/// Implemented by the overlay's window; called on the main thread.
class GlassReceiver
{
public:
    virtual ~GlassReceiver() = default;

    /// The first mouse button.
    virtual void glassPressed(QPoint onDesktop) = 0;
    virtual void glassDragged(QPoint onDesktop) = 0;
    /// Another program drags \a files over the glass; whether they would be taken. \a mayCopy: that program
    /// lets them be copied.
    [[nodiscard]] virtual bool glassEntered(const QMimeData &files, bool mayCopy) = 0;
    /// It has left without dropping what would have been taken.
    virtual void glassLeft() = 0;
    /// It drops what would be taken; whether it was.
    [[nodiscard]] virtual bool glassDropped(const QMimeData &files, QPoint onDesktop) = 0;
};

} // namespace vornic
