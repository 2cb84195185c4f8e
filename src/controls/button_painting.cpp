#include "controls/button_painting.h"

#include "controls/skin_colors.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>
#include <QPushButton>

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

constexpr double textMarginAbove = 4;

ButtonFace currentFace(const QPushButton &button, const ButtonFaces &faces)
{
    if (!button.isEnabled())
        return skin::disabledFace();
    if (button.isDown() || button.isChecked())
        return faces.down;
    return button.underMouse() ? faces.hovered : faces.normal;
}

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
    return { std::max(metrics.minWidth, static_cast<int>(std::ceil(width))),
             std::max(metrics.height, static_cast<int>(std::ceil(height))) };
}

void paintButtonFace(QPainter &painter, const QPushButton &button, const ButtonFaces &faces, double radius)
{
    const QRectF bounds = button.rect();
    const ButtonFace face = currentFace(button, faces);
    QLinearGradient fill(bounds.topLeft(), bounds.bottomLeft());
    fill.setColorAt(0, face.top);
    fill.setColorAt(1, face.bottom);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(face.edge, 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(bounds.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
    painter.restore();
    if (button.hasFocus())
        drawFocusOutline(painter, bounds, radius);
}

SkinText buttonLabel(const QPushButton &button, const QFont &font)
{
    return { .text = button.text(),
             .font = font,
             .color = button.isEnabled() ? skin::value() : skin::disabledTitle(),
             .hasShadow = false,
             .flags = Qt::AlignLeft | mnemonicFlag(button) };
}

} // namespace vornic
