#include "selection/selection_geometry.h"

#include "display/display_rectangle.h"
#include "geometry/y_up.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace vornic {

namespace {

QSize minSize(QSize display)
{
    return QSize(minSelectionSide, minSelectionSide).boundedTo(display);
}

/// \a rectangle, which is no larger than the display, pushed onto it.
QRect pushedOn(QRect rectangle, QSize display)
{
    rectangle.moveTo(std::clamp(rectangle.x(), 0, std::max(display.width() - rectangle.width(), 0)),
                     std::clamp(rectangle.y(), 0, std::max(display.height() - rectangle.height(), 0)));
    return rectangle;
}

/// The first of \a length pixels from \a from on, in the direction of \a to.
int firstPixel(int from, int to, int length)
{
    return to < from ? from - length + 1 : from;
}

/// How much of each of \a avoided lies under \a place.
std::vector<std::int64_t> coveredParts(const QRect &place, const std::vector<QRect> &avoided)
{
    std::vector<std::int64_t> parts;
    for (const QRect &other : avoided) {
        const QRect common = place.intersected(other);
        parts.push_back(common.isEmpty() ? 0 : std::int64_t { common.width() } * common.height());
    }
    return parts;
}

} // namespace

QPoint nearestPixel(QPoint point, QSize display)
{
    return { std::clamp(point.x(), 0, std::max(display.width() - 1, 0)),
             std::clamp(point.y(), 0, std::max(display.height() - 1, 0)) };
}

QRect fittedSelection(const QRect &rectangle, QSize display)
{
    QRect fitted = partOnDisplay(rectangle, display);
    fitted.setSize(fitted.size().expandedTo(minSize(display)));
    return pushedOn(fitted, display);
}

QRect drawnSelection(QPoint from, QPoint to, QSize display)
{
    from = nearestPixel(from, display);
    to = nearestPixel(to, display);
    const QSize span(std::abs(to.x() - from.x()) + 1, std::abs(to.y() - from.y()) + 1);
    const QSize size = span.expandedTo(minSize(display));
    const QPoint first(firstPixel(from.x(), to.x(), size.width()),
                       firstPixel(from.y(), to.y(), size.height()));
    return pushedOn(QRect(first, size), display);
}

QRect movedSelection(const QRect &rectangle, QPoint by, QSize display)
{
    return pushedOn(rectangle.translated(by), display);
}

QRect resizedSelection(const QRect &rectangle, QPoint by, QSize display)
{
    const QSize largest(display.width() - rectangle.x(), display.height() - rectangle.y());
    const QSize size = rectangle.size() + QSize(by.x(), by.y());
    return { rectangle.topLeft(), size.expandedTo(minSize(display)).boundedTo(largest) };
}

QRect selectionFromScreen(const QRectF &rectangle, QSize display)
{
    const QRect pixels = truncatedRect(flipped(rectangle, display.height()));
    if (partOnDisplay(pixels, display).isEmpty()) {
        const QSize half = display / 2;
        return fittedSelection({ QPoint(half.width() / 2, half.height() / 2), half }, display);
    }
    return fittedSelection(pixels, display);
}

QRectF selectionOnScreen(const QRect &rectangle, QSize display)
{
    return flipped(QRectF(rectangle), display.height());
}

std::vector<QRect> visibleFrames(const std::vector<QRect> &fromAbove, const DisplayPlacement &display)
{
    std::vector<QRect> frames;
    QRegion covered;
    for (const QRect &window : fromAbove) {
        const QRect frame = partOnDisplay(window.translated(-display.origin), display.size);
        if ((QRegion(frame) - covered).isEmpty())
            continue;
        frames.push_back(frame);
        covered += frame;
    }
    return frames;
}

QRegion frameAround(const QRect &rectangle, int thickness, QSize display)
{
    const QRect outside = rectangle.adjusted(-thickness, -thickness, thickness, thickness);
    const QRect outer = outside.intersected(QRect(QPoint(), display));
    return QRegion(outer) - outer.adjusted(thickness, thickness, -thickness, -thickness);
}

QRect leastCovering(const std::vector<QRect> &candidates, const std::vector<QRect> &avoided, QSize display)
{
    QRect best;
    std::vector<std::int64_t> coveredByBest;
    for (const QRect &candidate : candidates) {
        const QRect place = pushedOn(candidate, display);
        const std::vector<std::int64_t> covered = coveredParts(place, avoided);
        if (best.isNull() || covered < coveredByBest) {
            best = place;
            coveredByBest = covered;
        }
    }
    return best;
}

} // namespace vornic
