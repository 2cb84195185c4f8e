#include "display/display_scale.h"

#include "display/display_backend.h"
#ifdef VORNIC_X11
#    include "x11/x11_connection.h"
#    include "x11/x11_nesting.h"
#    include "x11/x11_windows.h"
#endif

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace vornic {

namespace {

/// The toolkit stays with its X server as long as the process lives.
bool isToolkitInsideWayland()
{
#ifdef VORNIC_X11
    static const bool isInside = [] {
        const auto connection = toolkitConnection() ? X11Connection::open() : nullptr;
        return connection && isInsideWayland(*connection);
    }();
    return isInside;
#else
    return false;
#endif
}

} // namespace

double displayPixelsPerScreenPixel()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    const QSizeF display = mainDisplay()->mainDisplaySize();
    if (!screen || display.isEmpty() || !isToolkitInsideWayland())
        return 1;
    const QSizeF shown = QSizeF(screen->geometry().size()) * screen->devicePixelRatio();
    // That server cuts one side of a monitor to a multiple of eight, which makes the ratio of that side too large.
    return shown.isEmpty() ? 1 : std::min(display.width() / shown.width(), display.height() / shown.height());
}

ToolkitScale displayScale(const QScreen &screen)
{
    return { screen.geometry().topLeft(), screen.devicePixelRatio() * displayPixelsPerScreenPixel() };
}

} // namespace vornic
