#pragma once

#include "geometry/screen_geometry.h"

#include <QPointF>
#include <QRectF>

namespace vornic {

/// What the process's display says of itself and the pointer, in the coordinates that the program reckons in.
/// Read afresh from the display on every call, on any thread.

/// Size and place; an empty size when there is no display.
[[nodiscard]] DisplayPlacement mainDisplayPlacement();

/// The main display's frame in screen coordinates: points are device pixels, origin at the bottom left of the
/// main display, y up. All zeros when there is none.
[[nodiscard]] QRectF mainDisplayFrame();

/// The middle of the pixel under the pointer's hot spot, in screen coordinates (y up): which pixel that is
/// stays unambiguous when y is flipped.
[[nodiscard]] QPointF pointerLocation();

} // namespace vornic
