#include "controls/VNRadioCell.h"

#include "controls/toggle_painting.h"

#include <QPainter>

namespace vornic {

namespace {

constexpr ToggleSkin radioButton { .name = "radio",
                                   .pictureSide = VNRadioCell::pictureSide,
                                   .focusRadius = VNRadioCell::pictureSide / 2 };

} // namespace

QRectF VNRadioCell::calcImagePosition(const QRectF &frame)
{
    return toggleImagePosition(frame, pictureSide);
}

QRectF VNRadioCell::calcTextPosition(const QRectF &frame)
{
    return toggleTextPosition(frame, pictureSide);
}

void VNRadioCell::drawWithFrame(const QRectF &frame, QPainter &view)
{
    paintToggle(view, toggleLook(*this, frame, radioButton, isChecked()));
}

void VNRadioCell::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawWithFrame(rect(), painter);
}

bool VNRadioCell::hitButton(const QPoint &position) const
{
    return toggleHitRect(*this, radioButton).contains(position);
}

QSize VNRadioCell::sizeHint() const
{
    return toggleSize(*this, radioButton);
}

QSize VNRadioCell::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
