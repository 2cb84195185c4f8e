#include "app/window/window_placement.h"

#include "display/display_scale.h"
#include "display/main_display.h"
#include "geometry/screen_geometry.h"
#include "options/VNOption.h"
#include "overlay/overlay_geometry.h"

#include <algorithm>
#include <array>

namespace vornic {

namespace {

bool fits(QSize size, const QRect &room)
{
    return size.width() <= room.width() && size.height() <= room.height();
}

qint64 pixelCount(const QRect &room)
{
    return room.isEmpty() ? 0 : qint64(room.width()) * room.height();
}

/// The parts of \a available left of, right of, above and below \a area, the largest first.
std::array<QRect, 4> roomsBeside(const QRect &area, const QRect &available)
{
    std::array rooms { available, available, available, available };
    rooms[0].setRight(area.left() - 1);
    rooms[1].setLeft(area.right() + 1);
    rooms[2].setBottom(area.top() - 1);
    rooms[3].setTop(area.bottom() + 1);
    std::ranges::stable_sort(rooms, std::greater<>(), pixelCount);
    return rooms;
}

/// The nearest place that touches edges of \a areas or of \a available, for where there is room only between the
/// areas or beside some of them.
std::optional<QPoint> nearestGap(const QRect &window, const QRect &available, const QList<QRect> &areas)
{
    QList<int> lefts { window.x(), available.left(), available.right() + 1 - window.width() };
    QList<int> tops { window.y(), available.top(), available.bottom() + 1 - window.height() };
    for (const QRect &area : areas) {
        lefts += { area.left() - window.width(), area.right() + 1 };
        tops += { area.top() - window.height(), area.bottom() + 1 };
    }
    std::optional<QPoint> nearest;
    for (const int left : lefts) {
        for (const int top : tops) {
            const QRect place(QPoint(left, top), window.size());
            const int distance = (place.topLeft() - window.topLeft()).manhattanLength();
            if (available.contains(place) && !coversAny(place, areas)
                && (!nearest || distance < (*nearest - window.topLeft()).manhattanLength()))
                nearest = place.topLeft();
        }
    }
    return nearest;
}

} // namespace

bool coversAny(const QRect &window, const QList<QRect> &areas)
{
    return std::ranges::any_of(areas, [&window](const QRect &area) { return window.intersects(area); });
}

QPoint placeWithin(const QRect &window, const QRect &available)
{
    const int right = available.right() + 1 - window.width();
    const int bottom = available.bottom() + 1 - window.height();
    return { std::max(available.left(), std::min(window.x(), right)),
             std::max(available.top(), std::min(window.y(), bottom)) };
}

std::optional<QPoint> placeOff(const QRect &window, const QRect &available, const QList<QRect> &areas)
{
    if (!fits(window.size(), available))
        return std::nullopt;
    const QRect within(placeWithin(window, available), window.size());
    if (!coversAny(within, areas))
        return within.topLeft();
    QRect all;
    for (const QRect &area : areas)
        all |= area & available;
    for (const QRect &room : roomsBeside(all, available)) {
        if (fits(window.size(), room))
            return placeWithin(window, room);
    }
    return nearestGap(within, available, areas);
}

QList<QRect> recordedAreas(VNOption &options)
{
    const QScreen *screen = displayScreen();
    const DisplayPlacement display = mainDisplayPlacement();
    if (!screen || display.size.isEmpty())
        return {};
    QList<QRect> areas;
    const auto add = [&](const QRectF &area) {
        const QRect pixels = desktopPixels(area & VNOption::screenFrame(), 0, display);
        if (!pixels.isEmpty())
            areas += displayScale(*screen).logicalAround(pixels);
    };
    const QRectF recorded = options.recordsRectangle() ? options.selectedRect() : VNOption::screenFrame();
    if (options.recordsRectangle())
        add(recorded.marginsAdded({ overlayMargin, overlayMargin, overlayMargin, overlayMargin }));
    // The logo's place counts from the overlay's corner.
    const QRectF logo = logoOutline(options.logoContext()).boundingRect();
    if (!logo.isEmpty())
        add(logo.translated(recorded.topLeft() - QPointF(overlayMargin, overlayMargin)));
    return areas;
}

} // namespace vornic
