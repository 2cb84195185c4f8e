#include "controls/number_field.h"

#include "controls/VNStepperCell.h"
#include "controls/VNTextFieldCell.h"
#include "controls/skin_painting.h"
#include "controls/skin_pictures.h"
#include "controls/skin_style.h"

#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace vornic {

namespace {

/// Of the arrows, which are two points higher than the field.
constexpr int wholeHeight = 30;
constexpr int stepperWidth = 19;
constexpr int minTextWidth = 24;
/// For the insertion point after the last digit.
constexpr int textSlack = 4;

} // namespace

QRectF numberTextRect(const QRectF &frame)
{
    return { frame.x(),
             frame.y() + (frame.height() - skinFieldHeight) / 2,
             frame.width() - stepperWidth,
             double(skinFieldHeight) };
}

QRectF numberStepperRect(const QRectF &frame)
{
    return { frame.right() - stepperWidth, frame.y(), double(stepperWidth), frame.height() };
}

NumberField::NumberField(QWidget *parent)
    : QDoubleSpinBox(parent)
{
    setStyle(SkinStyle::shared());
    setLayoutDirection(Qt::LeftToRight);
    setLineEdit(new VNTextFieldCell(this));
    setKeyboardTracking(false);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void NumberField::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintStepper(painter, numberStepperRect(rect()), isEnabled());
}

void NumberField::wheelEvent(QWheelEvent *event)
{
    if (hasFocus())
        QDoubleSpinBox::wheelEvent(event);
    else
        event->ignore();
}

QSize NumberField::sizeHint() const
{
    double widest = minTextWidth;
    for (const double number : { minimum(), maximum() })
        widest = std::max(
            widest,
            skinTextWidth(
                { .text = prefix() + textFromValue(number) + suffix(), .font = font(), .color = {} }));
    const QRectF wide(0, 0, 1000, wholeHeight);
    const double aroundText = wide.width() - textFieldTextRect(numberTextRect(wide)).width();
    return { static_cast<int>(widest + aroundText) + textSlack, wholeHeight };
}

QSize NumberField::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
