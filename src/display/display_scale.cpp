#include "display/display_scale.h"

#include "display/display_backend.h"
#include "display/main_display.h"
#ifdef VORNIC_X11
#    include "x11/x11_connection.h"
#    include "x11/x11_nesting.h"
#    include "x11/x11_windows.h"
#endif

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <iterator>

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

/// In pixels of the toolkit's server.
QRectF pixelsOf(const QScreen &screen)
{
    const QRectF logical = screen.geometry();
    return { logical.topLeft(), logical.size() * screen.devicePixelRatio() };
}

/// The main one first.
QList<QScreen *> allScreens()
{
    QList<QScreen *> screens = QGuiApplication::screens();
    if (const qsizetype main = screens.indexOf(QGuiApplication::primaryScreen()); main > 0)
        screens.move(main, 0);
    return screens;
}

} // namespace

double pixelsPerScreenPixel(const QSizeF &display, const QSizeF &screen)
{
    if (display.isEmpty() || screen.isEmpty())
        return 1;
    // That server cuts one side of a monitor to a multiple of eight, which makes the ratio of that side too large.
    return std::min(display.width() / screen.width(), display.height() / screen.height());
}

/// Both know the place that the compositor has given the monitor: the display in its own pixels, the screen in logical
/// coordinates. Sizes need not differ.
qsizetype screenThatShows(const DisplayPlacement &display, const QList<QRectF> &screens)
{
    const auto distance = [&display](const QRectF &screen) {
        const QPointF place = screen.topLeft() * pixelsPerScreenPixel(display.size, screen.size());
        return (place - display.origin).manhattanLength();
    };
    const auto nearest = std::ranges::min_element(screens, {}, distance);
    return nearest == screens.end() ? -1 : std::distance(screens.begin(), nearest);
}

const QScreen *displayScreen()
{
    const QList<QScreen *> screens = allScreens();
    const DisplayPlacement display = mainDisplayPlacement();
    if (screens.size() < 2 || display.size.isEmpty())
        return screens.value(0);
    if (isToolkitInsideWayland()) {
        QList<QRectF> pixels;
        for (const QScreen *screen : screens)
            pixels += pixelsOf(*screen);
        return screens.at(screenThatShows(display, pixels));
    }
    const auto begins
        = [&display](const QScreen *screen) { return screen->geometry().topLeft() == display.origin; };
    const auto found = std::ranges::find_if(screens, begins);
    return found == screens.end() ? screens.first() : *found;
}

double displayPixelsPerScreenPixel()
{
    const QScreen *screen = isToolkitInsideWayland() ? displayScreen() : nullptr;
    return screen ? pixelsPerScreenPixel(mainDisplay()->mainDisplaySize(), pixelsOf(*screen).size()) : 1;
}

/// The server inside a Wayland session has all its screens in logical coordinates, also where they begin.
ToolkitScale displayScale(const QScreen &screen)
{
    const double scale = displayPixelsPerScreenPixel();
    const QPoint origin = screen.geometry().topLeft();
    return { origin, screen.devicePixelRatio() * scale, origin * scale };
}

} // namespace vornic
