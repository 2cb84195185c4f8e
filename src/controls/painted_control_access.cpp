#include "controls/painted_control_access.h"

#include "controls/VNColorWell.h"
#include "controls/VNComboboxView.h"
#include "controls/VNDragDropImageView.h"
#include "controls/VNSliderCell.h"
#include "controls/level_access.h"
#include "controls/level_meter.h"
#include "controls/slider_access.h"

#include <QMenu>

namespace vornic {

namespace {

QAccessibleInterface *makeInterface(const QString & /*className*/, QObject *object)
{
    if (auto *slider = qobject_cast<VNSliderCell *>(object))
        return new SliderAccess(slider);
    if (auto *meter = qobject_cast<LevelMeter *>(object))
        return new LevelAccess(meter);
    if (auto *view = qobject_cast<VNComboboxView *>(object))
        return new PaintedControlAccess(view, QAccessible::ComboBox);
    if (auto *well = qobject_cast<VNColorWell *>(object))
        return new PaintedControlAccess(well, QAccessible::Button);
    if (auto *view = qobject_cast<VNDragDropImageView *>(object))
        return new PaintedControlAccess(view, QAccessible::Button);
    return nullptr;
}

} // namespace

void PaintedControlAccess::install()
{
    static const bool isInstalled = (QAccessible::installFactory(makeInterface), true);
    Q_UNUSED(isInstalled)
}

PaintedControlAccess::PaintedControlAccess(QWidget *control, QAccessible::Role role)
    : QAccessibleWidget(control, role)
{
}

QString PaintedControlAccess::shownText() const
{
    if (const auto *view = qobject_cast<VNComboboxView *>(widget()))
        return view->shownTitle();
    return widget()->property("stringValue").toString();
}

QString PaintedControlAccess::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Value)
        return shownText();
    const QString known = QAccessibleWidget::text(kind);
    return known.isEmpty() && kind == QAccessible::Name ? shownText() : known;
}

QAccessible::State PaintedControlAccess::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.hasPopup = true;
    state.readOnly = role() == QAccessible::ComboBox;
    if (auto *view = qobject_cast<VNComboboxView *>(widget())) {
        state.expandable = true;
        state.expanded = view->menu().isVisible();
        state.collapsed = !state.expanded;
    }
    return state;
}

QStringList PaintedControlAccess::actionNames() const
{
    QStringList names = QAccessibleWidget::actionNames();
    if (widget()->isEnabled())
        names.prepend(role() == QAccessible::ComboBox ? showMenuAction() : pressAction());
    return names;
}

void PaintedControlAccess::doAction(const QString &name)
{
    if (name == showMenuAction() || name == pressAction())
        QMetaObject::invokeMethod(widget(), "popUp");
    else
        QAccessibleWidget::doAction(name);
}

void *PaintedControlAccess::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

void PaintedControlAccess::selection(int /*index*/, int *startOffset, int *endOffset) const
{
    *startOffset = *endOffset = 0;
}

QString PaintedControlAccess::text(int startOffset, int endOffset) const
{
    return shownText().mid(startOffset, endOffset - startOffset);
}

int PaintedControlAccess::characterCount() const
{
    return static_cast<int>(shownText().size());
}

QRect PaintedControlAccess::characterRect(int offset) const
{
    return offset >= 0 && offset < characterCount() ? rect() : QRect();
}

int PaintedControlAccess::offsetAtPoint(const QPoint &point) const
{
    return characterCount() > 0 && rect().contains(point) ? 0 : -1;
}

QString PaintedControlAccess::attributes(int /*offset*/, int *startOffset, int *endOffset) const
{
    *startOffset = 0;
    *endOffset = characterCount();
    return {};
}

} // namespace vornic
