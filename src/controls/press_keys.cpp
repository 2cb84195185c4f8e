#include "controls/press_keys.h"

#include <QKeyEvent>

namespace vornic {

bool isPressKey(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Space:
    case Qt::Key_Select:
    case Qt::Key_Enter:
    case Qt::Key_Return:
        return true;
    default:
        return false;
    }
}

} // namespace vornic
