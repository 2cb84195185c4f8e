#pragma once

#include "geometry/screen_geometry.h"
#include "geometry/toolkit_scale.h"

#include <QList>
#include <QRect>

class QScreen;

namespace vornic {

/// How the toolkit sees the pixels of the main display. Read afresh on every call; main thread.

/// The toolkit's screen that is the main display; its main one where none is, null where there is no screen.
[[nodiscard]] const QScreen *displayScreen();

/// How many pixels of the display there are for each of the toolkit's screen that is it. Only the X server inside a
/// Wayland session has screens of other sizes, those of the compositor's logical coordinates; elsewhere it is 1.
[[nodiscard]] double displayPixelsPerScreenPixel();

/// The toolkit's coordinates on \a screen, in pixels of the display.
[[nodiscard]] ToolkitScale displayScale(const QScreen &screen);

/// How many pixels of a display of size \a display there are for each of a screen that the X server inside a Wayland
/// session shows it with; 1 where either is empty.
[[nodiscard]] double pixelsPerScreenPixel(const QSizeF &display, const QSizeF &screen);
/// Which of \a screens, in that server's pixels, shows \a display; the first of the likeliest, -1 where there is none.
[[nodiscard]] qsizetype screenThatShows(const DisplayPlacement &display, const QList<QRectF> &screens);

} // namespace vornic
