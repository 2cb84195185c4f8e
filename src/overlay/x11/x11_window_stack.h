#pragma once

#include <QRect>

#include <cstdint>
#include <vector>

namespace vornic {

class X11Connection;

/// A child of the root window: a window that no window manager touches, or the decoration of one that it
/// manages.
struct StackedWindow {
    std::uint32_t id = 0;
    QRect pixels;          ///< of the desktop
    bool isSeen = false;   ///< shown, not input-only, and no part of the server itself
    bool isManaged = true; ///< as far as the window alone tells: decorations look unmanaged
    bool isOwn = false;    ///< of this program
    bool locksScreen = false;
};

/// The desktop's windows from below. Blocks for some exchanges with the server; main thread only.
///
/// A screen is locked by an unmanaged window of another program that covers all of the main display, with no
/// managed window above it. One with nothing else beneath it is only a background.
[[nodiscard]] std::vector<StackedWindow> windowStack(const X11Connection &connection);

/// The child of the root window that holds \a window: its decoration, or itself; 0 when there is none.
[[nodiscard]] std::uint32_t topLevelOf(const X11Connection &connection, std::uint32_t window);

} // namespace vornic
