#pragma once

#include "desktop/window_presence.h"
#include "x11/x11_connection.h"

#include <memory>

namespace vornic {

/// What the X server says of a window and of the decoration around it.
///
/// Made by WindowPresence::create(); main thread only. A window manager that animates takes the window itself away at
/// once, and its decoration, with the picture of the window, at the end of the animation.
class X11WindowPresence final : public WindowPresence
{
public:
    /// Null without an X server.
    [[nodiscard]] static std::unique_ptr<X11WindowPresence> create();

    [[nodiscard]] bool isOnScreen(quintptr window) const override;
    [[nodiscard]] bool isComposited() const override;

private:
    explicit X11WindowPresence(std::unique_ptr<X11Connection> connection);

    std::unique_ptr<X11Connection> m_connection;
};

} // namespace vornic
