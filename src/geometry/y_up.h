#pragma once

#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QRectF>

namespace vornic {

/// Flips between the toolkit's y, which grows downwards from a surface's upper edge, and coordinates with the
/// origin at its lower left and y up. Movie frames, logo, overlay and screen coordinates are of the second
/// kind; whatever goes from one kind to the other is flipped here. \a height is the surface's: of the movie, the
/// overlay's view, the main display.

/// From here on \a painter, which has its origin at the upper left, draws with y up.
inline void flipPainter(QPainter &painter, double height)
{
    painter.translate(0, height);
    painter.scale(1, -1);
}

/// From either kind of coordinates to the other.
[[nodiscard]] inline QPointF flipped(QPointF point, double height)
{
    return { point.x(), height - point.y() };
}

[[nodiscard]] inline QRectF flipped(const QRectF &rectangle, double height)
{
    return { QPointF(rectangle.x(), height - (rectangle.y() + rectangle.height())), rectangle.size() };
}

/// Draws \a picture upright into \a rectangle of a painter that has y up: the picture's bottom row lies along
/// rectangle.y(). Where the sizes differ it is scaled smoothly; otherwise the painter's render hints say
/// whether a rotated picture is smooth.
inline void drawImageYUp(QPainter &painter, const QRectF &rectangle, const QImage &picture)
{
    painter.save();
    painter.translate(rectangle.x(), rectangle.y());
    flipPainter(painter, rectangle.height());
    if (rectangle.size() != QSizeF(picture.size()))
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(QPointF(0, 0), rectangle.size()), picture);
    painter.restore();
}

} // namespace vornic
