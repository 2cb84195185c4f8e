#pragma once

#include <QDBusMessage>
#include <QString>

namespace vornic {

/// What the desktop's screen cast portal can do; all zeros where there is none.
struct PortalAbilities {
    uint version = 0;
    uint cursorModes
        = 0; ///< how the pointer can come: 1 not at all, 2 in the pictures, 4 beside them; added up
};

/// Asks for all of it.
[[nodiscard]] QDBusMessage portalAbilitiesCall();
[[nodiscard]] PortalAbilities portalAbilitiesIn(const QDBusMessage &answer);

/// One sentence for the user of a desktop without such a portal.
[[nodiscard]] QString noPortalText();

} // namespace vornic
