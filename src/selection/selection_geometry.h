#pragma once

#include "geometry/screen_geometry.h"

#include <QPoint>
#include <QRect>
#include <QRectF>
#include <QRegion>
#include <QSize>

#include <vector>

namespace vornic {

/// Where things stand while a rectangle is chosen on the screen. Pure functions; unless something else is said,
/// rectangles and points are whole pixels of the main display, from its upper left, y down, and \a display is
/// its size.

/// As short as a side may be, unless the display is shorter: what dragging the overlay's edges stops at.
inline constexpr int minSelectionSide = 60;

/// That of the display.
[[nodiscard]] QPoint nearestPixel(QPoint point, QSize display);
/// The part of \a rectangle on the display, made as large as it must be and kept on the display.
[[nodiscard]] QRect fittedSelection(const QRect &rectangle, QSize display);
/// Spanned by two pixels, both of them in it. What is too small reaches further beyond \a to.
[[nodiscard]] QRect drawnSelection(QPoint from, QPoint to, QSize display);
[[nodiscard]] QRect movedSelection(const QRect &rectangle, QPoint by, QSize display);
/// Moves the right and the bottom edge.
[[nodiscard]] QRect resizedSelection(const QRect &rectangle, QPoint by, QSize display);

/// What \a rectangle, in screen coordinates, is on the display; where there is none of it, the middle half of the
/// display's width and height.
[[nodiscard]] QRect selectionFromScreen(const QRectF &rectangle, QSize display);
/// \a rectangle in screen coordinates.
[[nodiscard]] QRectF selectionOnScreen(const QRect &rectangle, QSize display);

/// Those parts of windows that lie on the display; \a fromAbove are their frames, in the desktop's pixels. Those of
/// which others cover everything are left out.
[[nodiscard]] std::vector<QRect> visibleFrames(const std::vector<QRect> &fromAbove,
                                               const DisplayPlacement &display);

/// A line around \a rectangle: outside, but for the sides that lie at the display's edges.
[[nodiscard]] QRegion frameAround(const QRect &rectangle, int thickness, QSize display);

/// That of \a candidates, each pushed onto the display first, which covers least of the first of \a avoided; among
/// equals, least of the second, and so on. The first of those that are best.
[[nodiscard]] QRect
leastCovering(const std::vector<QRect> &candidates, const std::vector<QRect> &avoided, QSize display);

} // namespace vornic
