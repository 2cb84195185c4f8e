#pragma once

namespace vornic {

class X11Connection;

/// Whether the server is the one inside a Wayland session, whose root window shows nothing of the desktop.
/// It has an extension of that name, or, in versions without it, monitors whose names begin with it. Blocks for some
/// exchanges with the server.
[[nodiscard]] bool isInsideWayland(const X11Connection &connection);

} // namespace vornic
