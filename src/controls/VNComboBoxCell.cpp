#include "controls/VNComboBoxCell.h"

#include "controls/skin_colors.h"
#include "controls/skin_painting.h"
#include "controls/skin_pictures.h"
#include "controls/skin_style.h"

#include <QChildEvent>
#include <QLineEdit>
#include <QPainter>

namespace vornic {

namespace {

constexpr double buttonSide = 28;
constexpr double textMargin = 8;
constexpr double textGap = 4; ///< before the button
constexpr double focusRadius = 4;
constexpr int minTextWidth = 24;

} // namespace

QRectF popupButtonRect(const QRectF &frame)
{
    return {
        frame.right() - buttonSide, frame.y() + (frame.height() - buttonSide) / 2, buttonSide, buttonSide
    };
}

QRectF popupTextRect(const QRectF &frame)
{
    return frame.adjusted(textMargin, 0, -buttonSide - textGap, 0);
}

VNComboBoxCell::VNComboBoxCell(QWidget *parent)
    : QComboBox(parent)
{
    setStyle(SkinStyle::shared());
    setPalette(skinPalette());
    setFixedHeight(skinFieldHeight);
    setLayoutDirection(Qt::LeftToRight);
}

void VNComboBoxCell::drawWithFrame(const QRectF &frame, QPainter &view)
{
    drawFieldLeft(view, frame, true, buttonSide);
    drawSkinPicture(view, QStringLiteral("popupBtn.png"), popupButtonRect(frame));
    if (!isEditable())
        drawSkinText(view,
                     popupTextRect(frame),
                     { .text = currentText(),
                       .font = font(),
                       .color = isEnabled() ? skin::value() : skin::disabledValue(),
                       .hasShadow = false });
    if (hasFocus() || (isEditable() && lineEdit()->hasFocus()))
        drawFocusOutline(view, frame, focusRadius);
}

void VNComboBoxCell::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawWithFrame(rect(), painter);
}

void VNComboBoxCell::childEvent(QChildEvent *event)
{
    QComboBox::childEvent(event);
    // The editor, which comes and goes with setEditable(), is to paint no background.
    auto *editor = event->polished() ? qobject_cast<QLineEdit *>(event->child()) : nullptr;
    if (editor)
        editor->setStyle(SkinStyle::shared());
}

QSize VNComboBoxCell::sizeHint() const
{
    double widest = minTextWidth;
    for (int index = 0; index < count(); ++index)
        widest = std::max(widest, skinTextWidth({ .text = itemText(index), .font = font(), .color = {} }));
    return { static_cast<int>(textMargin + widest + textGap + buttonSide), skinFieldHeight };
}

QSize VNComboBoxCell::minimumSizeHint() const
{
    return { static_cast<int>(textMargin + minTextWidth + textGap + buttonSide), skinFieldHeight };
}

} // namespace vornic
