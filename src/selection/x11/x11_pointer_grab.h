#pragma once

#include "selection/pointer_grab.h"

#include <memory>

namespace vornic {

class X11Connection;
class X11Events;

/// A grab of the pointer with the root window, through a connection of its own. The pointer looks as the window under
/// it says.
///
/// Made by createPointerGrab(); main thread only.
class X11PointerGrab final : public PointerGrab
{
    Q_OBJECT
public:
    /// Null when the toolkit is on no X server.
    [[nodiscard]] static std::unique_ptr<PointerGrab> create();
    ~X11PointerGrab() override;

    [[nodiscard]] bool take() override;
    void catchUp() override;

private:
    explicit X11PointerGrab(std::unique_ptr<X11Connection> connection);

    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<X11Events> m_events;
};

} // namespace vornic
