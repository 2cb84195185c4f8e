#include "platform/screen_geometry.h"

#include "platform/display/display_backend.h"

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

QRectF mainDisplayFrame()
{
    return { QPointF(0, 0), QSizeF(mainDisplay()->mainDisplaySize()) };
}

QPointF pointerLocation()
{
    const auto display = mainDisplay();
    const QPointF middle = QPointF(display->pointerPosition()) + QPointF(0.5, 0.5);
    return { middle.x(), display->mainDisplaySize().height() - middle.y() };
}

QRect truncatedRect(const QRectF &rectangle)
{
    return { truncated(rectangle.x()),
             truncated(rectangle.y()),
             truncated(rectangle.width()),
             truncated(rectangle.height()) };
}

} // namespace vornic
