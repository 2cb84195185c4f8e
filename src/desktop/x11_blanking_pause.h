#pragma once

#include "desktop/blanking_pause.h"

#include <memory>

namespace vornic {

class X11Connection;

/// Keeps the X server from blanking the screen by itself and from switching the monitor off.
///
/// Made by IdleInhibitor, used on one thread. It holds a connection of its own, with which the pause ends
/// even when the process is killed. Does nothing where there is no X server.
class X11BlankingPause final : public BlankingPause
{
public:
    X11BlankingPause();
    ~X11BlankingPause() override;

private:
    std::unique_ptr<X11Connection> m_connection; ///< null where there is no X server
};

} // namespace vornic
