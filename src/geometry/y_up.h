#pragma once

#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QRectF>

namespace vornic {

/// Surfaces turned over between the toolkit's y, which grows downwards from the upper edge, and coordinates
/// with the origin at the lower left and y up; movie frames, logo and overlay are drawn in these. \a height
/// is the surface's. Screen coordinates, which count from the main display's lower left, are not turned here.

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

/// Draws \a picture upright into \a rectangle of a painter that has y up: the picture's bottom row lies along
/// rectangle.y(). Where the sizes differ it is scaled smoothly; otherwise the painter's render hints say
/// whether a turned picture is smooth.
inline void drawImageYUp(QPainter &painter, const QRectF &rectangle, const QImage &picture)
{
    painter.save();
    painter.translate(rectangle.x(), rectangle.y());
    turnOver(painter, rectangle.height());
    if (rectangle.size() != QSizeF(picture.size()))
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(QPointF(0, 0), rectangle.size()), picture);
    painter.restore();
}

} // namespace vornic
