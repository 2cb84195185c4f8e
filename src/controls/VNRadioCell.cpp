#include "controls/VNRadioCell.h"

#include "controls/mouse_button.h"
#include "controls/skin_colors.h"
#include "controls/toggle_painting.h"

#include <QPainter>
#include <QStyle>

namespace vornic {

VNRadioCell::VNRadioCell(QWidget *parent)
    : VNRadioCell(QString(), parent)
{
}

VNRadioCell::VNRadioCell(const QString &title, QWidget *parent)
    : QRadioButton(title, parent)
{
}

QRectF VNRadioCell::calcImagePosition(const QRectF &frame)
{
    return toggleImagePosition(frame, pictureSide);
}

QRectF VNRadioCell::calcTextPosition(const QRectF &frame)
{
    return toggleTextPosition(frame, pictureSide);
}

SkinText VNRadioCell::title() const
{
    const bool underlines = style()->styleHint(QStyle::SH_UnderlineShortcut, nullptr, this) != 0;
    return { .text = text(),
             .font = font(),
             .color = skin::title(),
             .flags = Qt::AlignLeft | (underlines ? Qt::TextShowMnemonic : Qt::TextHideMnemonic) };
}

void VNRadioCell::drawWithFrame(const QRectF &frame, QPainter &view)
{
    const bool isDown = paintsMouseButtonDown(*this);
    paintToggle(view,
                { .imagePosition = calcImagePosition(frame),
                  .textPosition = calcTextPosition(frame),
                  .picture = togglePicture(QStringLiteral("radio"), isChecked(), isEnabled(), isDown),
                  .title = title(),
                  .hasFocus = hasFocus(),
                  .focusRadius = pictureSide / 2 });
}

void VNRadioCell::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawWithFrame(rect(), painter);
}

bool VNRadioCell::hitButton(const QPoint &position) const
{
    return toggleHitRect(rect(), pictureSide, skinTextWidth(title())).contains(position);
}

QSize VNRadioCell::sizeHint() const
{
    return toggleSize(pictureSide, title()).toSize();
}

QSize VNRadioCell::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
