#include "desktop/window_presence.h"

#ifdef VORNIC_X11
#    include "desktop/x11_window_presence.h"
#endif

namespace vornic {

namespace {

class NoWindowPresence final : public WindowPresence
{
};

} // namespace

std::unique_ptr<WindowPresence> WindowPresence::create()
{
#ifdef VORNIC_X11
    if (auto presence = X11WindowPresence::create())
        return presence;
#endif
    return std::make_unique<NoWindowPresence>();
}

} // namespace vornic
