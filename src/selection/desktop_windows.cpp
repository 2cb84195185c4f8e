#include "selection/desktop_windows.h"

#ifdef VORNIC_X11
#    include "selection/x11/x11_desktop_windows.h"
#    include "x11/x11_connection.h"
#endif

namespace vornic {

std::vector<QRect> desktopWindows()
{
#ifdef VORNIC_X11
    if (const auto connection = X11Connection::open())
        return windowFrames(*connection);
#endif
    return {};
}

} // namespace vornic
