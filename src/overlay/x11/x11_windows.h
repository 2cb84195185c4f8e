#pragma once

#include <QRect>

#include <cstdint>

namespace vornic {

class X11Connection;

/// Whether \a window is on the screen, or would be if nothing lay above it. A minimised one is not, though
/// some window managers leave it mapped. Blocks for an exchange with the server; main thread only.
[[nodiscard]] bool isShown(const X11Connection &connection, std::uint32_t window);

/// The pixels of the desktop that \a window takes, with what the window manager has put around it; empty
/// while it is not shown. Blocks for an exchange with the server; main thread only.
[[nodiscard]] QRect framePixels(const X11Connection &connection, std::uint32_t window);

} // namespace vornic
