#pragma once

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRectF>

class QScreen;

namespace vornic {

/// Where windows stand. The only header that knows of the toolkit's logical coordinates; three kinds meet
/// here:
///
/// - screen coordinates: device pixels, origin at the lower left of the main display, y up;
/// - the desktop's pixels: whole device pixels from the upper left of the whole desktop, y down. The main
/// display
///   may lie anywhere on it;
/// - the toolkit's logical coordinates: from a screen's upper left on they are device pixels divided by the
///   screen's scale factor. Windows stand at whole logical coordinates only.

/// The pixels of a window with \a frame, in screen coordinates, around a recorded rectangle: exactly 8 beyond
/// the pixels that are recorded, also where the frame is not whole.
[[nodiscard]] QRect desktopPixels(const QRectF &frame);
/// A point of the desktop (a pixel's middle ends in .5) in screen coordinates.
[[nodiscard]] QPointF screenPoint(QPointF onDesktop);

/// How the toolkit sees the pixels of one screen.
class ToolkitScale
{
public:
    explicit ToolkitScale(const QScreen &screen);
    ToolkitScale(QPoint origin, double factor);

    /// The smallest whole logical rectangle whose pixels hold \a onDesktop.
    [[nodiscard]] QRect logicalAround(const QRect &onDesktop) const;
    /// The pixels that the toolkit gives to a window at \a logical.
    [[nodiscard]] QRect pixelsOf(const QRect &logical) const;

private:
    QPoint m_origin; ///< the same in both kinds of coordinates
    double m_factor;
};

} // namespace vornic
