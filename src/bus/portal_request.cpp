#include "bus/portal_request.h"

#include "bus/dbus_call.h"

#include <QDBusArgument>
#include <QRandomGenerator>

#include <utility>

namespace vornic {

QDBusMessage portalCall(const QString &interface, const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QLatin1StringView(portal_names::service), QLatin1StringView(portal_names::path), interface, method);
    call.setArguments(arguments);
    return call;
}

QDBusMessage portalPropertiesCall(const QString &interface)
{
    return portalCall(
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"), { interface });
}

QVariantMap portalPropertiesIn(const QDBusMessage &answer)
{
    if (!isReply(answer) || answer.signature() != QLatin1StringView("a{sv}"))
        return {};
    return qdbus_cast<QVariantMap>(answer.arguments().value(0));
}

QDBusMessage portalSessionClosing(const QString &path)
{
    return QDBusMessage::createMethodCall(QLatin1StringView(portal_names::service),
                                          path,
                                          QLatin1StringView(portal_names::session),
                                          QStringLiteral("Close"));
}

QString portalToken()
{
    constexpr int hexadecimal = 16;
    return QStringLiteral("vornic") + QString::number(QRandomGenerator::system()->generate64(), hexadecimal);
}

QString portalPath(const QString &kind, const QString &token)
{
    const QString sender = sessionBus().baseService().mid(1).replace(u'.', u'_');
    return QStringLiteral("%1/%2/%3/%4").arg(QLatin1StringView(portal_names::path), kind, sender, token);
}

PortalRequest::PortalRequest(const QString &interface,
                             const QString &method,
                             QVariantList arguments,
                             QVariantMap options,
                             Answer answer)
    : m_answer(std::move(answer))
    , m_path(portalPath(QStringLiteral("request"), options[QStringLiteral("handle_token")].toString()))
{
    listen();
    arguments += options;
    callLater(
        sessionBus(),
        portalCall(interface, method, arguments),
        this,
        [this](const QDBusMessage &reply) {
            // The answer itself comes as a signal.
            if (!isReply(reply))
                responded(Failed, { { QStringLiteral("error"), reply.errorMessage() } });
        },
        waitForEver);
}

/// Before the call: the answer may come at once. Its path is known beforehand, by the token.
void PortalRequest::listen()
{
    // The toolkit ends the program over a signal that holds something else than its slot takes: only those with the right
    // signature may come so far. No service is named, as whose it is would be asked for and waited for; nobody else knows
    // the path.
    sessionBus().connect({},
                         m_path,
                         QLatin1StringView(portal_names::request),
                         QStringLiteral("Response"),
                         QStringLiteral("ua{sv}"),
                         this,
                         SLOT(responded(uint, QVariantMap)));
}

PortalRequest::~PortalRequest()
{
    if (!m_isAnswered)
        sessionBus().send(QDBusMessage::createMethodCall(QLatin1StringView(portal_names::service),
                                                         m_path,
                                                         QLatin1StringView(portal_names::request),
                                                         QStringLiteral("Close")));
}

void PortalRequest::responded(uint response, const QVariantMap &results)
{
    if (std::exchange(m_isAnswered, true))
        return;
    // Whoever is told may end this object.
    const Answer answer = m_answer;
    answer(response, results);
}

} // namespace vornic
