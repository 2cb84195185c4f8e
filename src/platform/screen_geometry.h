#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>

namespace vornic {

/// The main display's frame in screen coordinates: points are device pixels, origin at the bottom left of the
/// main display, y up. Read afresh from the display on every call; all zeros when there is none.
[[nodiscard]] QRectF mainDisplayFrame();

/// The middle of the pixel under the pointer's hot spot, in screen coordinates (y up): which pixel that is
/// stays unambiguous when the y axis is turned over.
[[nodiscard]] QPointF pointerLocation();

/// A rectangle of display coordinates (y down) in whole device pixels: truncated origin, truncated size.
[[nodiscard]] QRect truncatedRect(const QRectF &rectangle);

} // namespace vornic
