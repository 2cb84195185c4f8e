#pragma once

#include <QRect>

#include <vector>

namespace vornic {

/// The frames of the windows that the desktop shows, with their decoration and without their shadow, from above; in
/// the desktop's pixels. Panels and the desktop's own background are none. Empty where the desktop tells nobody.
/// Blocks for some exchanges with the server for each window; main thread only.
[[nodiscard]] std::vector<QRect> desktopWindows();

} // namespace vornic
