#include "controls/toggle_painting.h"

#include "controls/mouse_button.h"
#include "controls/skin_colors.h"
#include "controls/skin_pictures.h"

#include <QAbstractButton>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vornic {

namespace {

constexpr double gap = 4;
constexpr double textHeight = 15;
constexpr double minHeight = 20;

SkinText titleOf(const QAbstractButton &button)
{
    return { .text = button.text(),
             .font = button.font(),
             .color = skin::title(),
             .flags = Qt::AlignLeft | mnemonicFlag(button) };
}

/// How far the last letter leans over its end, as an "f" does.
double overhang(const QAbstractButton &button)
{
    const double bearing = QFontMetricsF(button.font()).rightBearing(button.text().back());
    return std::ceil(std::max(-bearing, 0.0));
}

double contentsWidth(const QAbstractButton &button, const ToggleSkin &skin)
{
    const double titleWidth = skinTextWidth(titleOf(button));
    return titleWidth > 0 ? skin.pictureSide + gap + titleWidth + overhang(button) : skin.pictureSide;
}

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

ToggleLook toggleLook(QAbstractButton &button, const QRectF &frame, const ToggleSkin &skin, bool on)
{
    const bool isDown = paintsMouseButtonDown(button);
    return { .imagePosition = toggleImagePosition(frame, skin.pictureSide),
             .textPosition = toggleTextPosition(frame, skin.pictureSide),
             .picture = togglePicture(QLatin1String(skin.name), on, button.isEnabled(), isDown),
             .title = titleOf(button),
             .hasFocus = button.hasFocus(),
             .focusRadius = skin.focusRadius };
}

QRectF toggleHitRect(const QAbstractButton &button, const ToggleSkin &skin)
{
    const QRectF frame = button.rect();
    return { frame.topLeft(), QSizeF(std::min(frame.width(), contentsWidth(button, skin)), frame.height()) };
}

QSize toggleSize(const QAbstractButton &button, const ToggleSkin &skin)
{
    const double height = std::ceil(QFontMetricsF(button.font()).height()) + 1;
    return QSizeF(contentsWidth(button, skin), std::max(minHeight, height)).toSize();
}

void paintToggle(QPainter &painter, const ToggleLook &look)
{
    drawSkinPicture(painter, look.picture, look.imagePosition);
    if (look.hasFocus)
        drawFocusOutline(painter, look.imagePosition, look.focusRadius);
    drawSkinText(painter, look.textPosition, look.title);
}

} // namespace vornic
