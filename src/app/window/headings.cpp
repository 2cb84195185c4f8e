#include "app/window/headings.h"

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
    }
}

} // namespace vornic
