#pragma once

namespace vornic {

/// Whether the environment tells of a Wayland session, an X server inside it or not. Any thread.
[[nodiscard]] bool isWaylandSession();

} // namespace vornic
