#include "controls/push_button.h"

#include "controls/button_painting.h"
#include "controls/skin_colors.h"
#include "controls/skin_pictures.h"

#include <QPainter>

namespace vornic {

namespace {

constexpr ButtonMetrics metrics {
    .height = skinFieldHeight, .minWidth = 72, .margin = 14, .gap = 6, .radius = 4
};

constexpr double disabledOpacity = 0.4;

ButtonFaces faces(bool isDefault)
{
    if (isDefault)
        return { skin::defaultFace(), skin::defaultFaceOver(), skin::defaultFaceDown() };
    return { skin::face(), skin::faceOver(), skin::faceDown() };
}

/// In points; 0 without an icon.
int iconSide(const QPushButton &button)
{
    return button.icon().isNull() ? 0 : button.iconSize().height();
}

} // namespace

void paintPushButton(QPainter &painter, const QPushButton &button)
{
    paintButtonFace(painter, button, faces(button.isDefault()), metrics.radius);
    const SkinText text = buttonLabel(button, button.font());
    const int side = iconSide(button);
    const ButtonContents contents = buttonContents(button.rect(), metrics, side, skinTextWidth(text));
    drawSkinText(painter, contents.text, text);
    painter.setOpacity(button.isEnabled() ? 1 : disabledOpacity);
    button.icon().paint(&painter, contents.picture.toRect());
}

QSize pushButtonSize(const QPushButton &button)
{
    return buttonSize(metrics, iconSide(button), buttonLabel(button, button.font()));
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

void PushButton::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintPushButton(painter, *this);
}

QSize PushButton::sizeHint() const
{
    return pushButtonSize(*this);
}

QSize PushButton::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
