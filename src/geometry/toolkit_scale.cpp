#include "geometry/toolkit_scale.h"

#include <QScreen>

#include <cmath>

namespace vornic {

ToolkitScale::ToolkitScale(const QScreen &screen)
    : ToolkitScale(screen.geometry().topLeft(), screen.devicePixelRatio())
{
}

ToolkitScale::ToolkitScale(QPoint origin, double factor)
    : ToolkitScale(origin, factor, origin)
{
}

ToolkitScale::ToolkitScale(QPoint origin, double factor, QPoint originInPixels)
    : m_origin(origin)
    , m_originInPixels(originInPixels)
    , m_factor(factor)
{
}

QRect ToolkitScale::pixelsOf(const QRect &logical) const
{
    return { (logical.topLeft() - m_origin) * m_factor + m_originInPixels, logical.size() * m_factor };
}

QRect ToolkitScale::logicalAround(const QRect &onDesktop) const
{
    const QPointF topLeft = QPointF(onDesktop.topLeft() - m_originInPixels) / m_factor + m_origin;
    QRect logical(static_cast<int>(std::floor(topLeft.x())), static_cast<int>(std::floor(topLeft.y())), 1, 1);
    const QSizeF size = QSizeF(onDesktop.size()) / m_factor;
    logical.setSize({ static_cast<int>(size.width()), static_cast<int>(size.height()) });
    // Position and size are rounded each by itself, so what is missing is found by trying.
    while (pixelsOf(logical).right() < onDesktop.right())
        logical.setWidth(logical.width() + 1);
    while (pixelsOf(logical).bottom() < onDesktop.bottom())
        logical.setHeight(logical.height() + 1);
    return logical;
}

} // namespace vornic
