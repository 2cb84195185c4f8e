#include "controls/VNComboBoxCell.h"
#include "controls/VNComboboxView.h"
#include "controls/combobox_typing.h"

#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>

namespace vornic {

namespace {

constexpr int wheelStep = 120;

} // namespace

bool VNComboboxView::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(),
                       popupToolTip(popupText(stringValue(), font(), isEnabled()), width(), toolTip()),
                       this);
    return true;
}

void VNComboboxView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    popUp();
    update();
}

bool VNComboboxView::eventFilter(QObject *watched, QEvent *event)
{
    // A press on the view while its menu is open closes the menu, and must not open it again.
    if (watched == mPopupMenu && event->type() == QEvent::MouseButtonPress) {
        const QPointF mouse = static_cast<QMouseEvent *>(event)->globalPosition();
        if (rect().contains(mapFromGlobal(mouse).toPoint()))
            mPopupMenu->setAttribute(Qt::WA_NoMouseReplay);
    }
    return QWidget::eventFilter(watched, event);
}

void VNComboboxView::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    update();
}

void VNComboboxView::mouseMoveEvent(QMouseEvent *event)
{
    trackMouse(event->position().toPoint());
}

void VNComboboxView::enterEvent(QEnterEvent *event)
{
    trackMouse(event->position().toPoint());
}

void VNComboboxView::leaveEvent(QEvent * /*event*/)
{
    trackMouse({ -1, -1 });
}

void VNComboboxView::trackMouse(QPoint position)
{
    for (const QRect &rectangle : m_trackingRects) {
        const bool was = rectangle.contains(m_lastMouse);
        const bool is = rectangle.contains(position);
        if (is && !was)
            mouseEntered();
        if (was && !is)
            mouseExited();
    }
    m_lastMouse = position;
}

void VNComboboxView::mouseEntered()
{
    if (isEnabled())
        update();
}

void VNComboboxView::mouseExited()
{
    if (isEnabled())
        update();
}

void VNComboboxView::keyPressEvent(QKeyEvent *event)
{
    const bool opens = event->key() == Qt::Key_Space || event->key() == Qt::Key_Select
        || event->key() == Qt::Key_F4
        || (event->key() == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier));
    const bool isText = !event->text().isEmpty() && event->text()[0].isPrint()
        && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const bool isMiddleOfText = isText && !m_typed.isEmpty() && m_sinceTyped.isValid()
        && !m_sinceTyped.hasExpired(QApplication::keyboardInputInterval());
    if (opens && !(isMiddleOfText && event->key() == Qt::Key_Space))
        popUp();
    else if (isText)
        chooseByTyping(event->text());
    else if (!chooseByKey(event->key()))
        event->ignore();
}

bool VNComboboxView::chooseByKey(int key)
{
    const qint64 last = numberOfMenuItems() - 1;
    const qint64 selected = std::clamp<qint64>(m_indexOfSelected, -1, last);
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Left:
        choose(std::max<qint64>(0, selected - 1));
        return true;
    case Qt::Key_Down:
    case Qt::Key_Right:
        choose(std::min(last, selected + 1));
        return true;
    case Qt::Key_Home:
    case Qt::Key_PageUp:
        choose(0);
        return true;
    case Qt::Key_End:
    case Qt::Key_PageDown:
        choose(last);
        return true;
    default:
        return false;
    }
}

void VNComboboxView::chooseByTyping(const QString &text)
{
    if (!m_sinceTyped.isValid() || m_sinceTyped.hasExpired(QApplication::keyboardInputInterval()))
        m_typed.clear();
    m_typed += text;
    m_sinceTyped.start();
    QStringList titles;
    for (qint64 index = 0; index < numberOfMenuItems(); ++index)
        titles += titleOfItem(index);
    choose(titleForTyping(titles, m_typed, m_indexOfSelected));
}

void VNComboboxView::wheelEvent(QWheelEvent *event)
{
    m_wheelAngle += event->angleDelta().y();
    const int items = m_wheelAngle / wheelStep;
    m_wheelAngle -= items * wheelStep;
    const qint64 last = numberOfMenuItems() - 1;
    if (items != 0 && last >= 0)
        choose(std::clamp<qint64>(std::clamp<qint64>(m_indexOfSelected, -1, last) - items, 0, last));
    event->accept();
}

void VNComboboxView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        updateGeometry();
}

} // namespace vornic
