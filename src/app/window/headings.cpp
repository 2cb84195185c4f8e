#include "app/window/headings.h"

#include "controls/skin_colors.h"

#include <QVariant>
#include <QWidget>

namespace vornic {

void emboldenHeadings(const QWidget &window)
{
    const QList<QWidget *> controls = window.findChildren<QWidget *>();
    for (QWidget *control : controls) {
        if (!control->property("heading").toBool())
            continue;
        QFont bold = control->font();
        bold.setBold(true);
        control->setFont(bold);
        // Brighter than the labels beneath; the skin's check boxes paint their titles in a grey of their own.
        QPalette bright = control->palette();
        bright.setColor(QPalette::Active, QPalette::WindowText, skin::heading());
        bright.setColor(QPalette::Inactive, QPalette::WindowText, skin::heading());
        control->setPalette(bright);
    }
}

} // namespace vornic
