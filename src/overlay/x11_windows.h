#pragma once

#include <QRect>

#include <cstdint>

namespace vornic {

class X11Link;

/// The pixels of the desktop that \a window takes, with what the window manager has put around it; empty
/// while it is not shown. Blocks for an exchange with the server; main thread only.
[[nodiscard]] QRect framePixels(X11Link &link, std::uint32_t window);

} // namespace vornic
