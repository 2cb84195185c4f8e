#include "display/portal/portal_abilities.h"

#include "bus/portal_request.h"

#include <QCoreApplication>
#include <QVariantMap>

namespace vornic {

QDBusMessage portalAbilitiesCall()
{
    return portalPropertiesCall(QLatin1StringView(portal_names::screenCast));
}

PortalAbilities portalAbilitiesIn(const QDBusMessage &answer)
{
    const QVariantMap properties = portalPropertiesIn(answer);
    return { properties.value(QStringLiteral("version")).toUInt(),
             properties.value(QStringLiteral("AvailableCursorModes")).toUInt() };
}

QString noPortalText()
{
    return QCoreApplication::translate(
        "vornic", "This desktop has no screen cast portal, through which its screen could be recorded.");
}

} // namespace vornic
