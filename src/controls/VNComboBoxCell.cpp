#include "controls/VNComboBoxCell.h"

#include "controls/skin_colors.h"
#include "controls/skin_painting.h"
#include "controls/skin_pictures.h"
#include "controls/skin_style.h"

#include <QAbstractItemView>
#include <QChildEvent>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QToolTip>

namespace vornic {

namespace {

constexpr double buttonSide = 28;
constexpr double textMargin = 8;
constexpr double textGap = 4; ///< before the button
constexpr double focusRadius = 4;
constexpr int minTextWidth = 24;

/// An item of the open list, which has a mark where it is the chosen one.
class MarkedItem : public QStyledItemDelegate
{
public:
    explicit MarkedItem(QComboBox *box)
        : QStyledItemDelegate(box)
        , m_box(box)
    {
    }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->features |= QStyleOptionViewItem::HasCheckIndicator;
        option->checkState = index.row() == m_box->currentIndex() ? Qt::Checked : Qt::Unchecked;
    }

private:
    const QComboBox *m_box;
};

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

SkinText popupText(const QString &title, const QFont &font, bool isEnabled)
{
    return { .text = title,
             .font = font,
             .color = isEnabled ? skin::value() : skin::disabledValue(),
             .hasShadow = false,
             .elision = Qt::ElideMiddle };
}

QString popupToolTip(const SkinText &title, int width, const QString &toolTip)
{
    if (!isSkinTextElided(title, popupTextRect(QRectF(0, 0, width, buttonSide)).width()))
        return toolTip;
    return toolTip.isEmpty() ? title.text : title.text + QLatin1Char('\n') + toolTip;
}

VNComboBoxCell::VNComboBoxCell(QWidget *parent)
    : QComboBox(parent)
{
    setStyle(SkinStyle::shared());
    setPalette(skinPalette());
    setFixedHeight(skinFieldHeight);
    setLayoutDirection(Qt::LeftToRight);
    view()->setStyle(SkinStyle::shared());
    setItemDelegate(new MarkedItem(this));
}

void VNComboBoxCell::drawWithFrame(const QRectF &frame, QPainter &view)
{
    drawFieldLeft(view, frame, true, buttonSide);
    drawSkinPicture(view, QStringLiteral("popupBtn.png"), popupButtonRect(frame));
    if (!isEditable())
        drawSkinText(view, popupTextRect(frame), shownText());
    if (hasFocus() || (isEditable() && lineEdit()->hasFocus()))
        drawFocusOutline(view, frame, focusRadius);
}

SkinText VNComboBoxCell::shownText() const
{
    return popupText(currentText(), font(), isEnabled());
}

bool VNComboBoxCell::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip || isEditable())
        return QComboBox::event(event);
    QToolTip::showText(
        static_cast<QHelpEvent *>(event)->globalPos(), popupToolTip(shownText(), width(), toolTip()), this);
    return true;
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
