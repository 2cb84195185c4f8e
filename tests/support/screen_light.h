#pragma once

#include <QRect>

#include <functional>

namespace vornic::test {

/// Makes all of a display white (true) or black (false). A mark in its corner is another each time: a recorder of the
/// screen finds no two pictures alike.
using ScreenLight = std::function<void(bool isWhite)>;

/// A window over all of $DISPLAY or, where that is not set, of $WAYLAND_DISPLAY, black at first, which the function keeps;
/// empty where there is no display.
[[nodiscard]] ScreenLight screenLight();

/// The same over a part of $DISPLAY alone, and without a mark: nothing else is drawn there. Empty on other displays.
[[nodiscard]] ScreenLight screenPatch(const QRect &rectangle);

/// What it chooses from, each where the build knows such displays.
[[nodiscard]] ScreenLight x11Light();
[[nodiscard]] ScreenLight x11Patch(const QRect &rectangle);
[[nodiscard]] ScreenLight waylandLight();

} // namespace vornic::test
