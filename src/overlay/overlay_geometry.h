#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <QRegion>

#include <array>
#include <optional>

namespace vornic {

class VNLogoContext;

/// Where things lie on the overlay and what dragging them does. Pure functions; points are device pixels, y
/// up. Frames are window frames in screen coordinates: the recorded rectangle and its margin.

/// How far the window reaches beyond the recorded rectangle on every side.
inline constexpr double overlayMargin = 8;

/// What the mouse can take hold of. The numbers of the handles are those of their hot regions.
enum class DragRegion : int {
    TopLeft = 0,
    Top = 1,
    TopRight = 2,
    Left = 3,
    Right = 4,
    BottomLeft = 5,
    Bottom = 6,
    BottomRight = 7,
    Centre = 8,
    Logo = 9,
    Elsewhere = 10,
};

/// A distance that the mouse has gone, in whole points.
struct DragDistance {
    qint64 dx = 0;
    qint64 dy = 0;

    /// Truncated towards zero.
    [[nodiscard]] static DragDistance between(QPointF start, QPointF end);
    [[nodiscard]] QPointF toPoint() const { return { static_cast<double>(dx), static_cast<double>(dy) }; }
};

/// The disc of handle \a region (0 to 8) of a view with \a bounds; nothing for another number.
[[nodiscard]] std::optional<QPainterPath> hotRegion(const QRectF &bounds, int region);
/// The eight handles at the edges.
[[nodiscard]] QPainterPath hotScaleRegion(const QRectF &bounds);
/// The bars of the frame: 4 points thick, 2 points in from the edges.
[[nodiscard]] QPainterPath hotBounds(const QRectF &bounds);
/// The same bars one by one: left, right, bottom, top.
[[nodiscard]] std::array<QRectF, 4> hotBars(const QRectF &bounds);
/// Four bars inside the edges of \a outer that do not lie over each other.
[[nodiscard]] std::array<QRectF, 4> frameBars(const QRectF &outer, double thickness);
/// What is tinted.
[[nodiscard]] QRectF subjectRadiusBound(const QRectF &bounds);
/// The outline of the turned logo; empty without a logo, and when it is switched off.
[[nodiscard]] QPainterPath logoOutline(const VNLogoContext *logo);

/// What a press at \a point of the view takes hold of while a rectangle is edited. A handle is also held by what
/// is up to \a slack beside it, unless the logo is there.
[[nodiscard]] DragRegion
regionAt(QPointF point, const QRectF &bounds, const VNLogoContext *logo, double slack = 0);
/// The same while the full display is recorded, when only the logo moves.
[[nodiscard]] DragRegion regionAtFullScreen(QPointF point, const VNLogoContext *logo);

/// The pointer's shape over what a press would take hold of.
[[nodiscard]] Qt::CursorShape cursorOver(DragRegion region);
/// The pixels of a view with \a bounds where a press may take hold of the logo; y down from its upper left.
[[nodiscard]] QRegion logoHitPixels(const QRectF &bounds, const VNLogoContext *logo);

/// \a frame with an edge moved by \a distance; \a bound is the screen. The left and the bottom edge stop 8
/// points below 0 whatever the screen, the other two 8 points beyond it; no side gets shorter than 76 points,
/// but for the top and the right edge the screen comes first. An edge at the bottom takes 4 points off the
/// top.
[[nodiscard]] QRectF adjustedLeftEdge(const QRectF &frame, qint64 distance);
[[nodiscard]] QRectF adjustedTopEdge(const QRectF &frame, qint64 distance, const QRectF &bound);
[[nodiscard]] QRectF adjustedRightEdge(const QRectF &frame, qint64 distance, const QRectF &bound);
[[nodiscard]] QRectF adjustedBottomEdge(const QRectF &frame, qint64 distance);
/// The origin of \a frame moved by a distance and kept on the screen with its margin. From 4 points beyond
/// the right limit on it snaps to the limit of 8.
[[nodiscard]] QPointF movedOrigin(const QRectF &frame, DragDistance distance, const QRectF &bound);
/// \a frame after its \a region was dragged; itself for the logo.
[[nodiscard]] QRectF
draggedFrame(const QRectF &frame, DragRegion region, DragDistance distance, const QRectF &bound);

} // namespace vornic
