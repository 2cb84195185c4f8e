#include "controls/VNComboboxView.h"

#include "controls/VNComboBoxCell.h"
#include "controls/mouse_button.h"
#include "controls/painted_control_access.h"
#include "controls/skin_colors.h"
#include "controls/skin_painting.h"
#include "controls/skin_pictures.h"
#include "controls/skin_style.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QPainter>

#include <algorithm>

namespace vornic {

namespace {

constexpr double focusRadius = 4;
constexpr int fontSize = 13;
constexpr int minTextWidth = 60;
/// What the view asks for at most, in heights of its font: names of devices may be longer than a window.
constexpr int maxTextWidth = 24;

/// The first family where it is installed, else the application's.
QFont titleFont()
{
    QFont font = QApplication::font();
    font.setFamilies(QStringList { QStringLiteral("LucidaGrande"), QStringLiteral("Lucida Grande") }
                     + font.families());
    font.setPixelSize(fontSize);
    return font;
}

/// Menus take an ampersand for the mark of a mnemonic.
QString withoutMnemonics(QString title)
{
    return title.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

} // namespace

QString comboboxButtonPicture(const ComboboxLook &look)
{
    if (!look.isEnabled)
        return QStringLiteral("popupBtnDisable.png");
    if (!look.mouseIsOverButton)
        return QStringLiteral("popupBtn.png");
    return look.mouseButtonIsDown ? QStringLiteral("popupBtnDown.png") : QStringLiteral("popupBtnOver.png");
}

void paintCombobox(QPainter &painter, const QRectF &bounds, const ComboboxLook &look)
{
    const QRectF button = VNComboboxView::getSettingPos(bounds);
    drawFieldLeft(painter, bounds, look.isEnabled, button.width());
    drawSkinPicture(painter, comboboxButtonPicture(look), button);
    drawSkinText(painter, popupTextRect(bounds), popupText(look.title, look.font, look.isEnabled));
    if (look.hasFocus)
        drawFocusOutline(painter, bounds, focusRadius);
}

VNComboboxView::VNComboboxView(QWidget *parent)
    : VNComboboxView(QRect(0, 0, 0, skinFieldHeight), parent)
{
    resize(sizeHint());
}

VNComboboxView::VNComboboxView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
    , mPopupMenu(new QMenu(this))
{
    PaintedControlAccess::install();
    setFont(titleFont());
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setFixedHeight(skinFieldHeight);
    mPopupMenu->setStyle(SkinStyle::shared());
    mPopupMenu->setPalette(skinPalette());
    mPopupMenu->installEventFilter(this);
    setFrame(frame);
}

VNComboboxView::~VNComboboxView() = default;

QRectF VNComboboxView::getSettingPos(const QRectF &rectangle)
{
    return popupButtonRect(rectangle);
}

void VNComboboxView::setFrame(const QRect &frame)
{
    setGeometry(frame);
    addTrackingRect(getSettingPos(rect()).toRect());
}

void VNComboboxView::resizeEvent(QResizeEvent * /*event*/)
{
    addTrackingRect(getSettingPos(rect()).toRect());
}

void VNComboboxView::addTrackingRect(const QRect &rectangle)
{
    // The same one twice would only repaint twice.
    if (std::find(m_trackingRects.begin(), m_trackingRects.end(), rectangle) == m_trackingRects.end())
        m_trackingRects.push_back(rectangle);
}

void VNComboboxView::addMenuItem(const QString &title)
{
    const QString before = stringValue();
    QAction *item = mPopupMenu->addAction(withoutMnemonics(title));
    item->setData(title);
    item->setCheckable(true); // the selected one has a mark
    connect(item, &QAction::triggered, this, [this, item] { onMenuItemChanged(item); });
    updateGeometry();
    shownTitleChanged(before);
}

void VNComboboxView::removeAllItems()
{
    const QString before = stringValue();
    mPopupMenu->clear();
    updateGeometry();
    shownTitleChanged(before);
}

qint64 VNComboboxView::numberOfMenuItems() const
{
    return mPopupMenu->actions().size();
}

QString VNComboboxView::titleOfItem(qint64 index) const
{
    const QAction *item = mPopupMenu->actions().value(index);
    return item ? item->data().toString() : QString();
}

void VNComboboxView::setPlaceholderText(const QString &text)
{
    m_placeholderText = text;
    updateGeometry();
    update();
}

QString VNComboboxView::shownTitle() const
{
    return numberOfMenuItems() > 0 ? stringValue() : m_placeholderText;
}

void VNComboboxView::setIndexOfSelected(qint64 index)
{
    if (index == m_indexOfSelected)
        return;
    const QString before = stringValue();
    m_indexOfSelected = index;
    shownTitleChanged(before);
    emit indexOfSelectedChanged();
}

void VNComboboxView::shownTitleChanged(const QString &before)
{
    if (before == stringValue())
        return;
    update();
    emit stringValueChanged();
    QAccessibleValueChangeEvent changed(this, stringValue());
    QAccessible::updateAccessibility(&changed);
}

void VNComboboxView::onMenuItemChanged(QAction *item)
{
    setIndexOfSelected(mPopupMenu->actions().indexOf(item));
    mPopupMenu->close();
    m_action.send(*this);
}

void VNComboboxView::popUp()
{
    const QList<QAction *> items = mPopupMenu->actions();
    if (!isEnabled() || items.isEmpty())
        return;
    for (qint64 index = 0; index < items.size(); ++index)
        items.at(index)->setChecked(index == m_indexOfSelected);
    mPopupMenu->setMinimumWidth(width());
    mPopupMenu->setAttribute(Qt::WA_NoMouseReplay, false);
    mPopupMenu->popup(mapToGlobal(QPoint(0, height())), items.first());
    mPopupMenu->setActiveAction(items.value(m_indexOfSelected));
}

void VNComboboxView::choose(qint64 index)
{
    QAction *item = mPopupMenu->actions().value(index);
    if (item && index != m_indexOfSelected)
        onMenuItemChanged(item);
}

void VNComboboxView::drawRect(QPainter &view)
{
    const QPoint mouse = mapFromGlobal(QCursor::pos());
    paintCombobox(view,
                  rect(),
                  { .title = shownTitle(),
                    .font = font(),
                    .isEnabled = isEnabled(),
                    .mouseIsOverButton = getSettingPos(rect()).toRect().contains(mouse),
                    .mouseButtonIsDown = paintsMouseButtonDown(*this),
                    .hasFocus = hasFocus() });
}

void VNComboboxView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawRect(painter);
}

QSize VNComboboxView::sizeHint() const
{
    double widest = std::max<double>(minTextWidth,
                                     skinTextWidth({ .text = shownTitle(), .font = font(), .color = {} }));
    for (const QAction *item : mPopupMenu->actions())
        widest = std::max(widest,
                          skinTextWidth({ .text = item->data().toString(), .font = font(), .color = {} }));
    const int aroundText = minimumSizeHint().width() - minTextWidth;
    return { aroundText + static_cast<int>(std::min(widest, double(maxTextWidth * fontInfo().pixelSize()))),
             skinFieldHeight };
}

QSize VNComboboxView::minimumSizeHint() const
{
    const QRectF wide(0, 0, 1000, skinFieldHeight);
    const double aroundText = wide.width() - popupTextRect(wide).width();
    return { static_cast<int>(aroundText) + minTextWidth, skinFieldHeight };
}

} // namespace vornic
