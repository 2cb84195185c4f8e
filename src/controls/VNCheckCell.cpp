#include "controls/VNCheckCell.h"

#include "controls/mouse_button.h"
#include "controls/skin_colors.h"
#include "controls/toggle_painting.h"

#include <QPainter>
#include <QStyle>

namespace vornic {

VNCheckCell::VNCheckCell(QWidget *parent)
    : VNCheckCell(QString(), parent)
{
}

VNCheckCell::VNCheckCell(const QString &title, QWidget *parent)
    : QCheckBox(title, parent)
{
}

QRectF VNCheckCell::calcImagePosition(const QRectF &frame)
{
    return toggleImagePosition(frame, pictureSide);
}

QRectF VNCheckCell::calcTextPosition(const QRectF &frame)
{
    return toggleTextPosition(frame, pictureSide);
}

SkinText VNCheckCell::title() const
{
    const bool underlines = style()->styleHint(QStyle::SH_UnderlineShortcut, nullptr, this) != 0;
    return { .text = text(),
             .font = font(),
             .color = skin::title(),
             .flags = Qt::AlignLeft | (underlines ? Qt::TextShowMnemonic : Qt::TextHideMnemonic) };
}

void VNCheckCell::drawWithFrame(const QRectF &frame, QPainter &view)
{
    const bool isDown = paintsMouseButtonDown(*this);
    paintToggle(
        view,
        { .imagePosition = calcImagePosition(frame),
          .textPosition = calcTextPosition(frame),
          .picture = togglePicture(QStringLiteral("check"), checkState() == Qt::Checked, isEnabled(), isDown),
          .title = title(),
          .hasFocus = hasFocus(),
          .focusRadius = 3.5 });
}

void VNCheckCell::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawWithFrame(rect(), painter);
}

bool VNCheckCell::hitButton(const QPoint &position) const
{
    return toggleHitRect(rect(), pictureSide, skinTextWidth(title())).contains(position);
}

QSize VNCheckCell::sizeHint() const
{
    return toggleSize(pictureSide, title()).toSize();
}

QSize VNCheckCell::minimumSizeHint() const
{
    return sizeHint();
}

} // namespace vornic
