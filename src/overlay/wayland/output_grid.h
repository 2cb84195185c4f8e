#pragma once

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRegion>

namespace vornic {

/// The pixels of a monitor in the logical coordinates of its compositor, both from the monitor's upper left, y down.
///
/// A plain value; any thread.
class OutputGrid
{
public:
    /// \a factor is that of device pixels for each logical coordinate, as 1.25.
    explicit OutputGrid(double factor = 1)
        : m_factor(factor)
    {
    }

    /// The pixel in which \a logical lies.
    [[nodiscard]] QPoint pixelAt(QPointF logical) const;
    /// The smallest rectangle of pixels that holds \a logical.
    [[nodiscard]] QRect pixelsAround(const QRect &logical) const;
    /// The smallest whole logical rectangle that holds \a pixels.
    [[nodiscard]] QRect logicalAround(const QRect &pixels) const;
    /// All whole logical coordinates whose pixels are all among \a pixels.
    [[nodiscard]] QRegion logicalInside(const QRegion &pixels) const;

private:
    double m_factor;
};

} // namespace vornic
