#pragma once

#include <QRect>

#include <xcb/xcb.h>

#include <cstdint>

class QWindow;

namespace vornic {

class X11Connection;

/// The toolkit's own connection: what is sent through it keeps its order with what the toolkit sends. Null
/// where the toolkit has no windows, or they are not those of an X server.
[[nodiscard]] xcb_connection_t *toolkitConnection();

/// 0 for a window that the toolkit has not made yet.
[[nodiscard]] std::uint32_t idOf(const QWindow *window);

/// Whether \a window is on the screen, or would be if nothing lay above it. A minimised one is not, though
/// some window managers leave it mapped. Blocks for an exchange with the server; main thread only.
[[nodiscard]] bool isShown(const X11Connection &connection, std::uint32_t window);

/// Whether \a window asks window managers to leave it alone. Blocks for an exchange with the server.
[[nodiscard]] bool isUnmanaged(const X11Connection &connection, std::uint32_t window);

/// The pixels of the desktop that \a window takes, with what the window manager has put around it; empty
/// while it is not shown. Blocks for an exchange with the server; main thread only.
[[nodiscard]] QRect framePixels(const X11Connection &connection, std::uint32_t window);

} // namespace vornic
