#include "overlay/wayland/output_grid.h"

#include <cmath>

namespace vornic {

namespace {

/// A product of factors like 1.2 is not whole where it should be, by so much at most.
constexpr double tolerance = 1e-6;

int roundedDown(double value)
{
    return static_cast<int>(std::floor(value + tolerance));
}

int roundedUp(double value)
{
    return static_cast<int>(std::ceil(value - tolerance));
}

QRect scaledAround(const QRect &rectangle, double factor)
{
    const QPoint from(roundedDown(rectangle.x() * factor), roundedDown(rectangle.y() * factor));
    const QPoint to(roundedUp((rectangle.x() + rectangle.width()) * factor),
                    roundedUp((rectangle.y() + rectangle.height()) * factor));
    return { from, QSize(to.x() - from.x(), to.y() - from.y()) };
}

} // namespace

QPoint OutputGrid::pixelAt(QPointF logical) const
{
    return { roundedDown(logical.x() * m_factor), roundedDown(logical.y() * m_factor) };
}

QRect OutputGrid::pixelsAround(const QRect &logical) const
{
    return scaledAround(logical, m_factor);
}

QRect OutputGrid::logicalAround(const QRect &pixels) const
{
    return scaledAround(pixels, 1 / m_factor);
}

/// What is around the pixels that are not meant is left out, so that parts that touch leave no gap between.
QRegion OutputGrid::logicalInside(const QRegion &pixels) const
{
    const QRect around = pixels.boundingRect();
    QRegion inside(logicalAround(around));
    const QRegion others = QRegion(pixelsAround(inside.boundingRect())) - pixels;
    for (const QRect &part : others)
        inside -= logicalAround(part);
    return inside;
}

} // namespace vornic
