#include "overlay/overlay_geometry.h"

#include "geometry/y_up.h"
#include "options/VNLogoContext.h"

#include <QTransform>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace vornic {

namespace {

constexpr double handleSize = 8;
constexpr double minSide = 76;
constexpr double lowestOrigin = -overlayMargin;
/// Where a press counts for the logo, from where it was.
constexpr QPointF logoTestShift(-4, -4);

double toDouble(qint64 distance)
{
    return static_cast<double>(distance);
}

/// The lower left corner of a handle's square.
QPointF handleOrigin(const QRectF &bounds, DragRegion region)
{
    const double left = bounds.x();
    const double middle = bounds.x() + bounds.width() / 2 - handleSize / 2;
    const double right = bounds.x() + bounds.width() - handleSize;
    const double bottom = bounds.y();
    const double centre = bounds.y() + bounds.height() / 2 - handleSize / 2;
    const double top = bounds.y() + bounds.height() - handleSize;
    const std::array<QPointF, 9> origins { { { left, top },
                                             { middle, top },
                                             { right, top },
                                             { left, centre },
                                             { right, centre },
                                             { left, bottom },
                                             { middle, bottom },
                                             { right, bottom },
                                             { middle, centre } } };
    return origins[static_cast<std::size_t>(region)];
}

QPainterPath handle(const QRectF &bounds, DragRegion region)
{
    QPainterPath disc;
    disc.addEllipse(QRectF(handleOrigin(bounds, region), QSizeF(handleSize, handleSize)));
    return disc;
}

bool isOnLogo(QPointF point, const VNLogoContext *logo)
{
    return logoOutline(logo).contains(point + logoTestShift);
}

/// The span of a row that is \a y high that \a shape, which is convex, takes; nothing where it is not. Ends
/// that are no numbers take nothing.
std::optional<std::pair<double, double>> spanAt(const QPolygonF &shape, double y)
{
    std::optional<std::pair<double, double>> span;
    for (qsizetype index = 0; index < shape.size(); ++index) {
        const QPointF from = shape.at(index);
        const QPointF to = shape.at((index + 1) % shape.size());
        if ((from.y() <= y) == (to.y() <= y))
            continue;
        const double x = from.x() + (to.x() - from.x()) * (y - from.y()) / (to.y() - from.y());
        span = span ? std::pair(std::min(span->first, x), std::max(span->second, x)) : std::pair(x, x);
    }
    return span;
}

/// The pixels inside \a around whose middle row \a shape, y down and convex, touches.
QRegion pixelsOfShape(const QPolygonF &shape, const QRect &around)
{
    std::vector<QRect> rows;
    for (int y = around.top(); y <= around.bottom(); ++y) {
        const auto span = spanAt(shape, y + 0.5);
        if (!span)
            continue;
        const QRect row = QRectF(QPointF(std::max(span->first, double(around.left())), y),
                                 QPointF(std::min(span->second, double(around.right() + 1)), y + 1))
                              .toAlignedRect();
        if (!(span->second > around.left() && span->first < around.right() + 1) || row.isEmpty())
            continue;
        if (!rows.empty() && rows.back().left() == row.left() && rows.back().right() == row.right()
            && rows.back().bottom() + 1 == y)
            rows.back().setBottom(y);
        else
            rows.push_back(row);
    }
    QRegion pixels;
    pixels.setRects(rows.data(), static_cast<int>(rows.size()));
    return pixels;
}

} // namespace

DragDistance DragDistance::between(QPointF start, QPointF end)
{
    return { static_cast<qint64>(end.x() - start.x()), static_cast<qint64>(end.y() - start.y()) };
}

std::optional<QPainterPath> hotRegion(const QRectF &bounds, int region)
{
    if (region < 0 || region > static_cast<int>(DragRegion::Centre))
        return std::nullopt;
    return handle(bounds, static_cast<DragRegion>(region));
}

QPainterPath hotScaleRegion(const QRectF &bounds)
{
    using enum DragRegion;
    QPainterPath handles;
    handles.setFillRule(Qt::WindingFill);
    for (const DragRegion region : { Left, TopLeft, Top, TopRight, Right, BottomRight, Bottom, BottomLeft })
        handles.addPath(handle(bounds, region));
    return handles;
}

std::array<QRectF, 4> hotBars(const QRectF &bounds)
{
    constexpr double inset = 2;
    constexpr double thickness = 4;
    const QRectF outer = bounds.adjusted(inset, inset, -inset, -inset);
    return { QRectF(outer.x(), outer.y(), thickness, outer.height()),
             QRectF(outer.x() + outer.width() - thickness, outer.y(), thickness, outer.height()),
             QRectF(outer.x(), outer.y(), outer.width(), thickness),
             QRectF(outer.x(), outer.y() + outer.height() - thickness, outer.width(), thickness) };
}

std::array<QRectF, 4> frameBars(const QRectF &outer, double thickness)
{
    const double between = outer.height() - 2 * thickness;
    return { QRectF(outer.x(), outer.y() + thickness, thickness, between),
             QRectF(outer.x() + outer.width() - thickness, outer.y() + thickness, thickness, between),
             QRectF(outer.x(), outer.y(), outer.width(), thickness),
             QRectF(outer.x(), outer.y() + outer.height() - thickness, outer.width(), thickness) };
}

QPainterPath hotBounds(const QRectF &bounds)
{
    QPainterPath bars;
    bars.setFillRule(Qt::WindingFill);
    for (const QRectF &bar : hotBars(bounds))
        bars.addRect(bar);
    return bars;
}

QRectF subjectRadiusBound(const QRectF &bounds)
{
    return bounds.adjusted(4, 4, -4, -4);
}

QPainterPath logoOutline(const VNLogoContext *logo)
{
    QPainterPath outline;
    if (!logo || !logo->LogoValidate())
        return outline;
    const QRectF rectangle = logo->getLogoRect();
    outline.addRect(rectangle);
    const auto degrees = static_cast<double>(logo->LogoRotation() % 360);
    if (degrees == 0)
        return outline;
    // A picture turns about its centre, a text about the start of its line.
    const QPointF pivot = logo->type() == LogoType::Picture ? rectangle.center() : rectangle.topLeft();
    QTransform turn;
    turn.translate(pivot.x(), pivot.y());
    turn.rotate(degrees);
    turn.translate(-pivot.x(), -pivot.y());
    return turn.map(outline);
}

DragRegion regionAt(QPointF point, const QRectF &bounds, const VNLogoContext *logo, double slack)
{
    using enum DragRegion;
    constexpr std::array edges { TopLeft, Top, TopRight, Right, BottomRight, BottomLeft, Bottom, Left };
    for (const DragRegion region : edges) {
        if (handle(bounds, region).contains(point))
            return region;
    }
    if (isOnLogo(point, logo))
        return Logo;
    for (const DragRegion region : edges) {
        const QPointF fromMiddle = point - handle(bounds, region).boundingRect().center();
        if (slack > 0 && std::hypot(fromMiddle.x(), fromMiddle.y()) <= handleSize / 2 + slack)
            return region;
    }
    return handle(bounds, Centre).contains(point) ? Centre : Elsewhere;
}

DragRegion regionAtFullScreen(QPointF point, const VNLogoContext *logo)
{
    return isOnLogo(point, logo) ? DragRegion::Logo : DragRegion::Elsewhere;
}

Qt::CursorShape cursorOver(DragRegion region)
{
    switch (region) {
    case DragRegion::TopLeft:
    case DragRegion::BottomRight:
        return Qt::SizeFDiagCursor;
    case DragRegion::TopRight:
    case DragRegion::BottomLeft:
        return Qt::SizeBDiagCursor;
    case DragRegion::Top:
    case DragRegion::Bottom:
        return Qt::SizeVerCursor;
    case DragRegion::Left:
    case DragRegion::Right:
        return Qt::SizeHorCursor;
    case DragRegion::Logo:
        return Qt::OpenHandCursor;
    case DragRegion::Centre:
    case DragRegion::Elsewhere:
        break;
    }
    return Qt::SizeAllCursor;
}

QRegion logoHitPixels(const QRectF &bounds, const VNLogoContext *logo)
{
    QPolygonF outline = logoOutline(logo).toFillPolygon();
    outline.translate(-logoTestShift);
    for (QPointF &corner : outline)
        corner = flipped(corner, bounds.height());
    const QRectF around = outline.boundingRect().intersected(bounds);
    return around.isEmpty() ? QRegion() : pixelsOfShape(outline, around.toAlignedRect());
}

QRectF adjustedLeftEdge(const QRectF &frame, qint64 distance)
{
    const double s = toDouble(distance);
    const double width = std::trunc(frame.width() - s);
    const double x = std::trunc(frame.x() + s);
    QRectF adjusted = frame;
    if (width < minSide)
        adjusted.setRect(frame.x() + (frame.width() - minSide), frame.y(), minSide, frame.height());
    else if (x >= lowestOrigin)
        adjusted.setRect(x, frame.y(), width, frame.height());
    else
        adjusted.setRect(lowestOrigin, frame.y(), frame.width() + frame.x() + 8, frame.height());
    return adjusted;
}

QRectF adjustedBottomEdge(const QRectF &frame, qint64 distance)
{
    const double s = toDouble(distance);
    const double height = std::trunc(frame.height() - s);
    const double y = std::trunc(frame.y() + s);
    QRectF adjusted = frame;
    if (height < minSide)
        adjusted.setRect(frame.x(), frame.y() + (frame.height() - minSide), frame.width(), minSide);
    else if (y >= lowestOrigin)
        adjusted.setRect(frame.x(), y, frame.width(), height);
    else // 4, not the 8 of the left edge
        adjusted.setRect(frame.x(), lowestOrigin, frame.width(), frame.height() + frame.y() + 4);
    return adjusted;
}

QRectF adjustedTopEdge(const QRectF &frame, qint64 distance, const QRectF &bound)
{
    const double limit = bound.y() + bound.height() + overlayMargin;
    double height = frame.height() + toDouble(distance);
    if (frame.y() + height > limit)
        height = limit - frame.y();
    else if (height < minSide)
        height = minSide;
    return { frame.topLeft(), QSizeF(frame.width(), height) };
}

QRectF adjustedRightEdge(const QRectF &frame, qint64 distance, const QRectF &bound)
{
    const double limit = bound.x() + bound.width() + overlayMargin;
    double width = frame.width() + toDouble(distance);
    if (frame.x() + width > limit)
        width = limit - frame.x();
    else if (width < minSide)
        width = minSide;
    return { frame.topLeft(), QSizeF(width, frame.height()) };
}

QPointF movedOrigin(const QRectF &frame, DragDistance distance, const QRectF &bound)
{
    const double right = bound.x() + bound.width();
    const double top = bound.y() + bound.height();
    QPointF origin = frame.topLeft() + distance.toPoint();
    if (origin.y() + frame.height() > top + overlayMargin)
        origin.setY(top + overlayMargin - frame.height());
    else if (origin.y() < lowestOrigin)
        origin.setY(lowestOrigin);
    if (origin.x() + frame.width() > right + 4)
        origin.setX(right + overlayMargin - frame.width());
    else if (origin.x() < lowestOrigin)
        origin.setX(lowestOrigin);
    return origin;
}

QRectF draggedFrame(const QRectF &frame, DragRegion region, DragDistance distance, const QRectF &bound)
{
    const auto [dx, dy] = distance;
    switch (region) {
    case DragRegion::TopLeft:
        return adjustedLeftEdge(adjustedTopEdge(frame, dy, bound), dx);
    case DragRegion::Top:
        return adjustedTopEdge(frame, dy, bound);
    case DragRegion::TopRight:
        return adjustedRightEdge(adjustedTopEdge(frame, dy, bound), dx, bound);
    case DragRegion::Left:
        return adjustedLeftEdge(frame, dx);
    case DragRegion::Right:
        return adjustedRightEdge(frame, dx, bound);
    case DragRegion::BottomLeft:
        return adjustedLeftEdge(adjustedBottomEdge(frame, dy), dx);
    case DragRegion::Bottom:
        return adjustedBottomEdge(frame, dy);
    case DragRegion::BottomRight:
        return adjustedRightEdge(adjustedBottomEdge(frame, dy), dx, bound);
    case DragRegion::Logo:
        return frame;
    case DragRegion::Centre:
    case DragRegion::Elsewhere:
        break;
    }
    return { movedOrigin(frame, distance, bound), frame.size() };
}

} // namespace vornic
