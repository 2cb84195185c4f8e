#pragma once

#include <functional>

namespace vornic::test {

/// Makes all of $DISPLAY white (true) or black (false). A mark in its corner is another each time: a recorder of the
/// screen finds no two pictures alike.
using ScreenLight = std::function<void(bool isWhite)>;

/// A window over all of $DISPLAY, black at first, which the function keeps; empty where there is no display.
[[nodiscard]] ScreenLight screenLight();

} // namespace vornic::test
