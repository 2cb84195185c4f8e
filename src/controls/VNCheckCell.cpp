#include "controls/VNCheckCell.h"

#include "controls/toggle_painting.h"

#include <QPainter>

namespace vornic {

namespace {

constexpr ToggleSkin checkBox { .name = "check",
                                .pictureSide = VNCheckCell::pictureSide,
                                .focusRadius = 3.5 };

} // namespace

QRectF VNCheckCell::calcImagePosition(const QRectF &frame)
{
    return toggleImagePosition(frame, pictureSide);
}

QRectF VNCheckCell::calcTextPosition(const QRectF &frame)
{
    return toggleTextPosition(frame, pictureSide);
}

void VNCheckCell::drawWithFrame(const QRectF &frame, QPainter &view)
{
    paintToggle(view, toggleLook(*this, frame, checkBox, checkState() == Qt::Checked));
}

void VNCheckCell::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawWithFrame(rect(), painter);
}

bool VNCheckCell::hitButton(const QPoint &position) const
{
    return toggleHitRect(*this, checkBox).contains(position);
}

QSize VNCheckCell::sizeHint() const
{
    return toggleSize(*this, checkBox);
}

QSize VNCheckCell::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
