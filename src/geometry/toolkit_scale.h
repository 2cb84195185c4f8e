#pragma once

#include <QPoint>
#include <QRect>

class QScreen;

namespace vornic {

/// How the toolkit sees the pixels of one screen. The only header that knows of its logical coordinates: from
/// a screen's upper left on they are the desktop's pixels divided by the screen's scale factor. Windows stand
/// at whole logical coordinates only.
class ToolkitScale
{
public:
    explicit ToolkitScale(const QScreen &screen);
    ToolkitScale(QPoint origin, double factor);
    /// Where the pixels' own coordinates of the screen's upper left are \a originInPixels.
    ToolkitScale(QPoint origin, double factor, QPoint originInPixels);

    /// The smallest whole logical rectangle whose pixels hold \a onDesktop.
    [[nodiscard]] QRect logicalAround(const QRect &onDesktop) const;
    /// The pixels that the toolkit gives to a window at \a logical.
    [[nodiscard]] QRect pixelsOf(const QRect &logical) const;

private:
    QPoint m_origin;
    QPoint m_originInPixels;
    double m_factor;
};

} // namespace vornic
