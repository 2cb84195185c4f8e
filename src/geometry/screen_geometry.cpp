#include "geometry/screen_geometry.h"

#include "geometry/y_up.h"

#include <QMargins>

#include <algorithm>

namespace vornic {

namespace {

/// Truncates toward zero; what is no number becomes 0, and what no int can hold the nearest that stays
/// far from its limits, so that sums of two do not overflow.
int truncated(double value)
{
    constexpr double farthest = 1 << 29;
    return value == value ? static_cast<int>(std::clamp(value, -farthest, farthest)) : 0;
}

} // namespace

QRect truncatedRect(const QRectF &rectangle)
{
    return { truncated(rectangle.x()),
             truncated(rectangle.y()),
             truncated(rectangle.width()),
             truncated(rectangle.height()) };
}

QRect desktopPixels(const QRectF &recorded, int margin, const DisplayPlacement &display)
{
    QRect pixels = truncatedRect(turnedOver(recorded, display.size.height()));
    pixels.setSize(pixels.size().expandedTo(QSize(0, 0)));
    return pixels.marginsAdded({ margin, margin, margin, margin }).translated(display.origin);
}

QPointF screenPoint(QPointF onDesktop, const DisplayPlacement &display)
{
    return turnedOver(onDesktop - display.origin, display.size.height());
}

} // namespace vornic
