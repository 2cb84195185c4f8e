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

} // namespace

PushButton::PushButton(QWidget *parent)
    : PushButton(QString(), parent)
{
}

PushButton::PushButton(const QString &text, QWidget *parent)
    : QPushButton(text, parent)
{
    setAttribute(Qt::WA_Hover);
}

int PushButton::iconSide() const
{
    return icon().isNull() ? 0 : iconSize().height();
}

void PushButton::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintButtonFace(painter, *this, faces(isDefault()), metrics.radius);
    const SkinText text = buttonLabel(*this, font());
    const ButtonContents contents = buttonContents(rect(), metrics, iconSide(), skinTextWidth(text));
    drawSkinText(painter, contents.text, text);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    icon().paint(&painter, contents.picture.toRect());
}

QSize PushButton::sizeHint() const
{
    return buttonSize(metrics, iconSide(), buttonLabel(*this, font()));
}

QSize PushButton::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
