#include "app/window/dialog_placement.h"

#include "app/window/window_placement.h"

#include <QApplication>
#include <QDialog>
#include <QScreen>
#include <QShowEvent>

#include <utility>

namespace vornic {

namespace {

/// What a window manager puts around a dialog, for one that has no parent to learn it from.
constexpr QMargins usualFrame(4, 32, 4, 4);

const QWidget *shownParent(const QDialog &dialog)
{
    const QWidget *parent = dialog.parentWidget() ? dialog.parentWidget()->window() : nullptr;
    return parent && parent->isVisible() && !parent->isMinimized() ? parent : nullptr;
}

/// How much further than its contents a dialog's frame reaches.
QMargins frameOf(const QDialog &dialog)
{
    const QWidget *parent = shownParent(dialog);
    if (!parent)
        return usualFrame;
    const QRect outer = parent->frameGeometry();
    const QRect inner = parent->geometry();
    return { inner.left() - outer.left(),
             inner.top() - outer.top(),
             outer.right() - inner.right(),
             outer.bottom() - inner.bottom() };
}

/// Where the toolkit would put it: on the middle of its parent, or of the screen.
QRect naturalPlace(const QDialog &dialog, const QRect &available)
{
    const QWidget *parent = shownParent(dialog);
    QRect place(QPoint(0, 0), dialog.size().grownBy(frameOf(dialog)));
    place.moveCenter(parent ? parent->frameGeometry().center() : available.center());
    place.moveTopLeft(placeWithin(place, available));
    return place;
}

} // namespace

DialogPlacement::DialogPlacement(std::function<QList<QRect>()> areas, QObject *parent)
    : QObject(parent)
    , m_areas(std::move(areas))
{
    qApp->installEventFilter(this);
}

bool DialogPlacement::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show && !event->spontaneous()) {
        auto *dialog = qobject_cast<QDialog *>(watched);
        if (dialog && dialog->isWindow())
            place(*dialog);
    }
    return QObject::eventFilter(watched, event);
}

/// Before the dialog is mapped, so that not one picture shows it elsewhere.
void DialogPlacement::place(QDialog &dialog) const
{
    const QScreen *screen = dialog.parentWidget() ? dialog.parentWidget()->screen() : dialog.screen();
    const QRect available = screen->availableGeometry();
    const QList<QRect> areas = m_areas();
    const QRect place = naturalPlace(dialog, available);
    if (!coversAny(place, areas))
        return;
    if (const std::optional<QPoint> free = placeOff(place, available, areas))
        dialog.move(*free);
}

} // namespace vornic
