#pragma once

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

namespace vornic {

/// Where things on the screen are. Pure functions between three kinds of coordinates, all in device pixels:
///
/// - screen coordinates: origin at the lower left of the main display, y up;
/// - display coordinates: origin at its upper left, y down;
/// - the desktop's pixels: whole pixels from the upper left of the whole desktop, y down. The main display
///   may lie anywhere on it.

/// The main display as the desktop has it now.
struct DisplayPlacement {
    QSize size;    ///< empty when there is no display
    QPoint origin; ///< of its upper left, in the desktop's pixels
};

/// A rectangle of display coordinates in whole pixels: truncated origin, truncated size.
[[nodiscard]] QRect truncatedRect(const QRectF &rectangle);

/// The desktop's pixels that are recorded where \a recorded, in screen coordinates, is asked for, and \a
/// margin more of them on every side.
[[nodiscard]] QRect desktopPixels(const QRectF &recorded, int margin, const DisplayPlacement &display);

/// A point of the desktop (a pixel's middle ends in .5) in screen coordinates.
[[nodiscard]] QPointF screenPoint(QPointF onDesktop, const DisplayPlacement &display);

} // namespace vornic
