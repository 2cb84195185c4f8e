#include "controls/VNStepperCell.h"

#include "controls/skin_painting.h"
#include "controls/skin_pictures.h"
#include "controls/skin_style.h"

#include <QLineEdit>
#include <QPainter>

namespace vornic {

namespace {

constexpr double margin = 4;
constexpr double pictureWidth = 15;
constexpr double upHeight = 14;
constexpr double downHeight = 15;
constexpr double cornerRadius = 4.5;
constexpr QSize wholeSize(23, 30);

/// A rectangle in \a frame, from y up to y down.
QRectF flipped(const QRectF &rectangle, const QRectF &frame)
{
    return { QPointF(rectangle.x(), frame.top() + frame.bottom() - rectangle.bottom()), rectangle.size() };
}

} // namespace

QRectF stepUpPosition(const QRectF &frame)
{
    return { frame.x() + margin, frame.y() + frame.height() / 2, pictureWidth, upHeight };
}

QRectF stepDownPosition(const QRectF &frame)
{
    return { frame.x() + margin, frame.y() + frame.height() / 2 - downHeight, pictureWidth, downHeight };
}

QRectF stepUpRect(const QRectF &frame)
{
    return flipped(stepUpPosition(frame), frame);
}

QRectF stepDownRect(const QRectF &frame)
{
    return flipped(stepDownPosition(frame), frame);
}

void paintStepper(QPainter &painter, const QRectF &frame, bool isEnabled)
{
    const QString suffix = isEnabled ? QStringLiteral(".png") : QStringLiteral("Disable.png");
    drawSkinPicture(painter, QStringLiteral("stepUp") + suffix, stepUpRect(frame));
    drawSkinPicture(painter, QStringLiteral("stepDown") + suffix, stepDownRect(frame));
}

VNStepperCell::VNStepperCell(QWidget *parent)
    : QDoubleSpinBox(parent)
{
    setStyle(SkinStyle::shared());
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setLayoutDirection(Qt::LeftToRight);
    // The field is hidden: what is typed would not be seen.
    lineEdit()->setReadOnly(true);
    lineEdit()->hide();
    setContextMenuPolicy(Qt::PreventContextMenu);
}

void VNStepperCell::drawWithFrame(const QRectF &frame, QPainter &view)
{
    paintStepper(view, frame, isEnabled());
    if (hasFocus())
        drawFocusOutline(view, stepUpRect(frame).united(stepDownRect(frame)), cornerRadius);
}

void VNStepperCell::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawWithFrame(rect(), painter);
}

QSize VNStepperCell::sizeHint() const
{
    return wholeSize;
}

QSize VNStepperCell::minimumSizeHint() const
{
    return wholeSize;
}

} // namespace vornic
