#pragma once

#include <QPainter>
#include <QPointF>
#include <QRectF>

namespace vornic {

/// The one place where surfaces are turned over, between the toolkit's y, which grows downwards from the
/// upper edge, and coordinates with the origin at the lower left and y up. \a height is the surface's.

/// From here on \a painter, which has its origin at the upper left, draws with y up.
inline void turnOver(QPainter &painter, double height)
{
    painter.translate(0, height);
    painter.scale(1, -1);
}

/// From either kind of coordinates to the other.
[[nodiscard]] inline QPointF turnedOver(QPointF point, double height)
{
    return { point.x(), height - point.y() };
}

[[nodiscard]] inline QRectF turnedOver(const QRectF &rectangle, double height)
{
    return { QPointF(rectangle.x(), height - (rectangle.y() + rectangle.height())), rectangle.size() };
}

/// Draws \a picture upright into \a rectangle of a painter that has y up.
inline void drawImageYUp(QPainter &painter, const QRectF &rectangle, const QImage &picture)
{
    painter.save();
    painter.translate(rectangle.x(), rectangle.y());
    turnOver(painter, rectangle.height());
    painter.drawImage(QRectF(QPointF(0, 0), rectangle.size()), picture);
    painter.restore();
}

} // namespace vornic
