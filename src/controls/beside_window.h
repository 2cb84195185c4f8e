#pragma once

#include <QPoint>
#include <QRect>

class QWidget;

namespace vornic {

/// Where a panel goes that is used together with a window.

/// The upper left corner of a panel of \a size beside \a window: to the right of it, to the left, below or above,
/// wherever there is room on \a screen first, and else where it covers least. All in the same coordinates, y down,
/// with the windows' frames.
[[nodiscard]] QPoint positionBeside(const QSize &size, const QRect &window, const QRect &screen);

/// Moves \a panel, which is not shown yet, beside \a window on the window's screen.
void placeBeside(QWidget &panel, const QWidget &window);

} // namespace vornic
