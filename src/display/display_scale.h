#pragma once

#include "geometry/toolkit_scale.h"

class QScreen;

namespace vornic {

/// How the toolkit sees the pixels of the main display. Read afresh on every call; main thread.

/// How many pixels of the display there are for each of the toolkit's main screen. Only the X server inside a Wayland
/// session has a screen of another size, that of the compositor's logical coordinates; elsewhere it is 1.
[[nodiscard]] double displayPixelsPerScreenPixel();

/// The toolkit's coordinates on \a screen, in pixels of the display.
[[nodiscard]] ToolkitScale displayScale(const QScreen &screen);

} // namespace vornic
