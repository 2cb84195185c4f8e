#include "display/portal/portal_abilities.h"

#include "bus/dbus_call.h"
#include "bus/portal_request.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QVariantMap>

namespace vornic {

QDBusMessage portalAbilitiesCall()
{
    QDBusMessage call = QDBusMessage::createMethodCall(QLatin1StringView(portal_names::service),
                                                       QLatin1StringView(portal_names::path),
                                                       QStringLiteral("org.freedesktop.DBus.Properties"),
                                                       QStringLiteral("GetAll"));
    call.setArguments({ QString::fromLatin1(portal_names::screenCast) });
    return call;
}

PortalAbilities portalAbilitiesIn(const QDBusMessage &answer)
{
    if (!isReply(answer) || answer.signature() != QLatin1StringView("a{sv}"))
        return {};
    const auto properties = qdbus_cast<QVariantMap>(answer.arguments().value(0));
    return { properties.value(QStringLiteral("version")).toUInt(),
             properties.value(QStringLiteral("AvailableCursorModes")).toUInt() };
}

QString noPortalText()
{
    return QCoreApplication::translate(
        "vornic", "This desktop has no screen cast portal, through which its screen could be recorded.");
}

} // namespace vornic
