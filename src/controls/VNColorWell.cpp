#include "controls/VNColorWell.h"

#include "controls/color_panel.h"
#include "controls/mouse_button.h"
#include "controls/painted_control_access.h"
#include "controls/press_keys.h"
#include "controls/skin_painting.h"
#include "controls/skin_pictures.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QPainter>

namespace vornic {

namespace {

constexpr QSize wellSize(103, skinFieldHeight);
constexpr double swatchInset = 6;
constexpr double focusRadius = 5;

} // namespace

QRectF colorWellSwatch(const QRectF &bounds)
{
    return bounds.adjusted(swatchInset, swatchInset, -swatchInset, -swatchInset);
}

void paintColorWell(QPainter &painter, const QRectF &bounds, const ColorWellLook &look)
{
    if (look.isEnabled)
        drawSkinPicture(painter,
                        look.mouseButtonIsDown ? QStringLiteral("colorBtnDown.png")
                                               : QStringLiteral("colorBtn.png"),
                        bounds);
    painter.fillRect(colorWellSwatch(bounds), look.color);
    if (look.hasFocus)
        drawFocusOutline(painter, bounds, focusRadius);
}

VNColorWell::VNColorWell(QWidget *parent)
    : VNColorWell(QRect(), parent)
{
}

VNColorWell::VNColorWell(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    PaintedControlAccess::install();
    setFocusPolicy(Qt::StrongFocus);
    setFixedSize(wellSize);
    setFrame(frame);
}

void VNColorWell::setFrame(const QRect &frame)
{
    setGeometry(QRect(frame.topLeft(), wellSize));
}

void VNColorWell::setColor(const QColor &color)
{
    if (color == mColor)
        return;
    mColor = color;
    update();
    emit colorChanged();
    QAccessibleValueChangeEvent changed(this, stringValue());
    QAccessible::updateAccessibility(&changed);
}

QString VNColorWell::stringValue() const
{
    return mColor.isValid() ? mColor.name(mColor.alpha() < 255 ? QColor::HexArgb : QColor::HexRgb)
                            : QString();
}

void VNColorWell::changeColor(const QColorDialog &sender)
{
    setColor(sender.currentColor());
    m_action.send(*this);
}

void VNColorWell::popUp()
{
    if (!isEnabled())
        return;
    ColorPanel &panel = ColorPanel::shared();
    panel.setTarget(*this);
    panel.orderFront();
}

void VNColorWell::drawRect(QPainter &view)
{
    paintColorWell(view,
                   rect(),
                   { .color = mColor,
                     .isEnabled = isEnabled(),
                     .mouseButtonIsDown = paintsMouseButtonDown(*this),
                     .hasFocus = hasFocus() });
}

void VNColorWell::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawRect(painter);
}

void VNColorWell::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    update();
    popUp();
}

void VNColorWell::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    update();
}

void VNColorWell::keyPressEvent(QKeyEvent *event)
{
    if (isPressKey(*event))
        popUp();
    else
        event->ignore();
}

QSize VNColorWell::sizeHint() const
{
    return wellSize;
}

} // namespace vornic
