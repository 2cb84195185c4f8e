#include "controls/push_button.h"

#include "controls/button_painting.h"
#include "controls/skin_colors.h"
#include "controls/skin_painting.h"
#include "controls/skin_pictures.h"

#include <QPainter>

namespace vornic {

namespace {

constexpr ButtonMetrics metrics {
    .height = skinFieldHeight, .leastWidth = 72, .margin = 14, .gap = 6, .radius = 4
};

constexpr double disabledOpacity = 0.4;

ButtonFace face(const PushButtonLook &look)
{
    if (!look.isEnabled)
        return skin::disabledFace();
    if (look.isDown)
        return look.isDefault ? skin::defaultFaceDown() : skin::faceDown();
    if (look.isHovered)
        return look.isDefault ? skin::defaultFaceOver() : skin::faceOver();
    return look.isDefault ? skin::defaultFace() : skin::face();
}

SkinText label(const PushButtonLook &look)
{
    return { .text = look.text,
             .font = look.font,
             .color = look.isEnabled ? skin::value() : skin::disabledTitle(),
             .hasShadow = false,
             .flags = Qt::AlignLeft | look.mnemonic };
}

} // namespace

void paintPushButton(QPainter &painter, const QRectF &bounds, const PushButtonLook &look)
{
    paintButtonFace(painter, bounds, face(look), metrics.radius);
    const SkinText text = label(look);
    const ButtonContents contents = buttonContents(bounds, metrics, look.iconSide, skinTextWidth(text));
    if (look.iconSide > 0) {
        painter.save();
        painter.setOpacity(look.isEnabled ? 1 : disabledOpacity);
        look.icon.paint(&painter, contents.picture.toRect());
        painter.restore();
    }
    drawSkinText(painter, contents.text, text);
    if (look.hasFocus)
        drawFocusOutline(painter, bounds, metrics.radius);
}

PushButton::PushButton(QWidget *parent)
    : PushButton(QString(), parent)
{
}

PushButton::PushButton(const QString &text, QWidget *parent)
    : QPushButton(text, parent)
{
    setAttribute(Qt::WA_Hover);
}

PushButtonLook PushButton::look() const
{
    return { .text = text(),
             .font = font(),
             .icon = icon(),
             .iconSide = icon().isNull() ? 0 : iconSize().height(),
             .mnemonic = mnemonicFlag(*this),
             .isDefault = isDefault(),
             .isEnabled = isEnabled(),
             .isHovered = underMouse(),
             .isDown = isDown() || isChecked(),
             .hasFocus = hasFocus() };
}

void PushButton::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintPushButton(painter, rect(), look());
}

QSize PushButton::sizeHint() const
{
    const PushButtonLook now = look();
    return buttonSize(metrics, now.iconSide, label(now));
}

QSize PushButton::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
