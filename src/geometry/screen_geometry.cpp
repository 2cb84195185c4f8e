#include "geometry/screen_geometry.h"

#include "geometry/y_up.h"

#include <QMargins>

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

/// Truncates toward zero. NaN becomes 0, and what is too large for an int a limit so far from the largest
/// int that sums of two do not overflow.
int truncated(double value)
{
    constexpr double limit = 1 << 29;
    return std::isnan(value) ? 0 : static_cast<int>(std::clamp(value, -limit, limit));
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
    QRect pixels = truncatedRect(flipped(recorded, display.size.height()));
    pixels.setSize(pixels.size().expandedTo(QSize(0, 0)));
    return pixels.marginsAdded({ margin, margin, margin, margin }).translated(display.origin);
}

QPointF screenPoint(QPointF onDesktop, const DisplayPlacement &display)
{
    return flipped(onDesktop - display.origin, display.size.height());
}

} // namespace vornic
