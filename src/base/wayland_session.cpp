#include "base/wayland_session.h"

#include <QByteArray>
#include <QtGlobal>

namespace vornic {

bool isWaylandSession()
{
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        || qgetenv("XDG_SESSION_TYPE") == QByteArray("wayland");
}

} // namespace vornic
