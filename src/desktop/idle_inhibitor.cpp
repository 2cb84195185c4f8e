#include "desktop/idle_inhibitor.h"

#include "base/wayland_session.h"
#include "bus/dbus_call.h"
#include "bus/portal_request.h"
#include "desktop/application_id.h"
#include "desktop/blanking_pause.h"
#include "desktop/dbus_inhibition.h"
#ifdef VORNIC_X11
#    include "desktop/x11_blanking_pause.h"
#endif

namespace vornic {

namespace {

/// The one that most desktops have, and browsers and players use.
InhibitRequest screenSaver(const QString &reason)
{
    return { sessionBus(),
             QStringLiteral("org.freedesktop.ScreenSaver"),
             { QStringLiteral("/org/freedesktop/ScreenSaver"), QStringLiteral("/ScreenSaver") },
             QStringLiteral("org.freedesktop.ScreenSaver"),
             { applicationId(), reason },
             QStringLiteral("UnInhibit") };
}

InhibitRequest sessionManager(const QString &reason)
{
    constexpr uint noWindow = 0;
    constexpr uint suspend = 4;
    constexpr uint idle = 8;
    return { sessionBus(),
             QStringLiteral("org.gnome.SessionManager"),
             { QStringLiteral("/org/gnome/SessionManager") },
             QStringLiteral("org.gnome.SessionManager"),
             { applicationId(), noWindow, reason, suspend | idle },
             QStringLiteral("Uninhibit") };
}

InhibitRequest powerManagement(const QString &reason)
{
    return { sessionBus(),
             QStringLiteral("org.freedesktop.PowerManagement"),
             { QStringLiteral("/org/freedesktop/PowerManagement/Inhibit") },
             QStringLiteral("org.freedesktop.PowerManagement.Inhibit"),
             { applicationId(), reason },
             QStringLiteral("UnInhibit") };
}

InhibitRequest loginManager(const QString &reason)
{
    return { systemBus(),
             QStringLiteral("org.freedesktop.login1"),
             { QStringLiteral("/org/freedesktop/login1") },
             QStringLiteral("org.freedesktop.login1.Manager"),
             { QStringLiteral("sleep:idle"), QStringLiteral("Vornic"), reason, QStringLiteral("block") },
             {} };
}

/// The way of Wayland sessions, whose desktop may have none of the others.
InhibitRequest portal(const QString &reason)
{
    const QString noWindow;
    constexpr uint suspend = 4;
    constexpr uint idle = 8;
    return { sessionBus(),
             QLatin1StringView(portal_names::service),
             { QLatin1StringView(portal_names::path) },
             QStringLiteral("org.freedesktop.portal.Inhibit"),
             { noWindow,
               suspend | idle,
               QVariantMap { { QStringLiteral("handle_token"), portalToken() },
                             { QStringLiteral("reason"), reason } } },
             QStringLiteral("Close"),
             QLatin1StringView(portal_names::request) };
}

std::unique_ptr<BlankingPause> pauseBlanking()
{
#ifdef VORNIC_X11
    return std::make_unique<X11BlankingPause>();
#else
    return nullptr;
#endif
}

} // namespace

void IdleInhibitor::Release::operator()(DBusInhibition *inhibition) const
{
    inhibition->release();
}

IdleInhibitor::IdleInhibitor(const QString &reason)
    : m_blankingPause(pauseBlanking())
{
    for (const auto &request : { screenSaver, sessionManager, powerManagement, loginManager })
        m_inhibitions.emplace_back(new DBusInhibition(request(reason)));
    if (isWaylandSession())
        m_inhibitions.emplace_back(new DBusInhibition(portal(reason)));
}

IdleInhibitor::~IdleInhibitor() = default;

} // namespace vornic
