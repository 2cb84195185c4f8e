#include "controls/button_painting.h"

#include "controls/skin_painting.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

constexpr double textMarginAbove = 4;

} // namespace

ButtonContents
buttonContents(const QRectF &bounds, const ButtonMetrics &metrics, double pictureSide, double textWidth)
{
    const double beforeText = pictureSide > 0 && textWidth > 0 ? pictureSide + metrics.gap : pictureSide;
    const double room = std::max(0.0, bounds.width() - 2 * metrics.margin - beforeText);
    const double width = std::min(textWidth, room);
    const double x = std::floor(bounds.x() + (bounds.width() - beforeText - width) / 2);
    const double y = bounds.y() + std::floor((bounds.height() - pictureSide) / 2);
    return { .picture = { x, y, pictureSide, pictureSide },
             .text = { x + beforeText, bounds.y(), width, bounds.height() } };
}

QSize buttonSize(const ButtonMetrics &metrics, double pictureSide, const SkinText &text)
{
    const double textWidth = skinTextWidth(text);
    const double gap = pictureSide > 0 && textWidth > 0 ? metrics.gap : 0;
    const double width = 2 * metrics.margin + pictureSide + gap + textWidth;
    const double height = QFontMetricsF(text.font).height() + 2 * textMarginAbove;
    return { std::max(metrics.leastWidth, static_cast<int>(std::ceil(width))),
             std::max(metrics.height, static_cast<int>(std::ceil(height))) };
}

void paintButtonFace(QPainter &painter, const QRectF &bounds, const ButtonFace &face, double radius)
{
    QLinearGradient fill(bounds.topLeft(), bounds.bottomLeft());
    fill.setColorAt(0, face.top);
    fill.setColorAt(1, face.bottom);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(face.edge, 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(bounds.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
    painter.restore();
}

} // namespace vornic
