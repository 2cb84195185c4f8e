#pragma once

#include <QRect>

#include <vector>

namespace vornic {

class X11Connection;

/// The frames of the windows that are shown on the current workspace, with their decoration and without their shadow,
/// from above; pixels of the root window. Without a window manager they are the root's children. Blocks for some
/// exchanges with the server for each window; any thread.
[[nodiscard]] std::vector<QRect> windowFrames(const X11Connection &connection);

} // namespace vornic
