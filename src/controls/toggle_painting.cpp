#include "controls/toggle_painting.h"

#include "controls/skin_colors.h"
#include "controls/skin_pictures.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

constexpr double gap = 4;
constexpr double textHeight = 15;
constexpr double leastHeight = 20;

} // namespace

QString togglePicture(const QString &name, bool on, bool enabled, bool mouseButtonIsDown)
{
    const QString row = name + (on ? QStringLiteral("On") : QStringLiteral("Off"));
    if (!enabled)
        return row + QStringLiteral("Disable.png");
    return row + (mouseButtonIsDown ? QStringLiteral("Down.png") : QStringLiteral(".png"));
}

QRectF toggleImagePosition(const QRectF &frame, double side)
{
    return { frame.x(), frame.y() + (frame.height() - side) / 2, side, side };
}

QRectF toggleTextPosition(const QRectF &frame, double side)
{
    return { frame.x() + side + gap,
             frame.y() + (frame.height() - textHeight) / 2,
             frame.width() - side - gap,
             textHeight };
}

QRectF toggleHitRect(const QRectF &frame, double side, double titleWidth)
{
    const double width = titleWidth > 0 ? side + gap + titleWidth : side;
    return { frame.x(), frame.y(), std::min(frame.width(), width), frame.height() };
}

QSizeF toggleSize(double side, const SkinText &title)
{
    const double titleWidth = skinTextWidth(title);
    const double width = titleWidth > 0 ? side + gap + titleWidth : side;
    return { width, std::max(leastHeight, std::ceil(QFontMetricsF(title.font).height()) + 1) };
}

void paintToggle(QPainter &painter, const ToggleLook &look)
{
    drawSkinPicture(painter, look.picture, look.imagePosition);
    SkinText title = look.title;
    if (look.hasFocus) {
        drawFocusOutline(painter, look.imagePosition, look.focusRadius);
        title.color = skin::value();
    }
    drawSkinText(painter, look.textPosition, title);
}

} // namespace vornic
