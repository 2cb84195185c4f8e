#include "desktop/notifier.h"

#include "bus/dbus_call.h"
#include "desktop/application_id.h"

#include <QDBusError>
#include <QDBusServiceWatcher>
#include <QVariantMap>

namespace vornic {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

QDBusMessage methodCall(const QString &method)
{
    return QDBusMessage::createMethodCall(service, path, service, method);
}

/// Keys and labels by turns; servers without actions may show them in a window that waits for an answer.
QStringList actionsOf(const Notification &notification, const QStringList &capabilities)
{
    if (!notification.action || notification.actionLabel.isEmpty()
        || !capabilities.contains(QStringLiteral("actions")))
        return {};
    // Without the "default" action, of which some desktops make a second button.
    return { QStringLiteral("act"), notification.actionLabel };
}

QString bodyOf(const Notification &notification, const QStringList &capabilities)
{
    const bool isMarkup = capabilities.contains(QStringLiteral("body-markup"));
    return isMarkup ? notification.body.toHtmlEscaped() : notification.body;
}

/// Nobody has answered, not even the bus.
bool isSilence(const QDBusMessage &answer)
{
    const QDBusError::ErrorType error = QDBusError(answer).type();
    return error == QDBusError::NoReply || error == QDBusError::TimedOut || error == QDBusError::Disconnected;
}

QStringList capabilitiesIn(const QDBusMessage &answer)
{
    return isReply(answer) ? answer.arguments().value(0).toStringList() : QStringList();
}

QDBusMessage notifyCall(const Notification &notification, const QStringList &capabilities)
{
    constexpr uint replacesNothing = 0;
    constexpr int defaultExpiry = -1;
    QDBusMessage call = methodCall(QStringLiteral("Notify"));
    call.setArguments({ QStringLiteral("Vornic"),
                        replacesNothing,
                        applicationId(),
                        notification.title,
                        bodyOf(notification, capabilities),
                        actionsOf(notification, capabilities),
                        QVariantMap { { QStringLiteral("desktop-entry"), applicationId() } },
                        defaultExpiry });
    return call;
}

} // namespace

Notifier::Notifier(QObject *parent)
    : QObject(parent)
{
}

void Notifier::listen()
{
    QDBusConnection bus = sessionBus();
    if (m_isListening || !bus.isConnected())
        return;
    m_isListening = true;
    // The toolkit ends the program over a signal that holds something else than its slot takes: only those with the
    // right signature may come so far.
    const auto connectTo = [&](const char *signal, const char *signature, const char *slot) {
        bus.connect(
            service, path, service, QString::fromLatin1(signal), QString::fromLatin1(signature), this, slot);
    };
    connectTo("ActionInvoked", "us", SLOT(actionInvoked(uint, QString)));
    connectTo("ActivationToken", "us", SLOT(activationTokenGiven(uint, QString)));
    connectTo("NotificationClosed", "uu", SLOT(notificationClosed(uint, uint)));
    // Whoever takes the service over gives the same numbers to the notifications of other programs.
    auto *watcher = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] { m_shown.clear(); });
}

void Notifier::show(const Notification &notification)
{
    callLater(sessionBus(),
              methodCall(QStringLiteral("GetCapabilities")),
              this,
              [this, notification](const QDBusMessage &answer) {
                  // What listening asks the bus is waited for, which must not be in vain.
                  if (isSilence(answer))
                      return;
                  listen();
                  send(notification, capabilitiesIn(answer));
              });
}

void Notifier::showBeforeExit(const Notification &notification)
{
    constexpr int timeoutMs = 1000;
    const QDBusConnection bus = sessionBus();
    if (!bus.isConnected())
        return;
    const QDBusMessage capabilities
        = bus.call(methodCall(QStringLiteral("GetCapabilities")), QDBus::Block, timeoutMs);
    bus.call(notifyCall(notification, capabilitiesIn(capabilities)), QDBus::Block, timeoutMs);
}

void Notifier::send(const Notification &notification, const QStringList &capabilities)
{
    const QDBusMessage call = notifyCall(notification, capabilities);
    callLater(sessionBus(), call, this, [this, action = notification.action](const QDBusMessage &answer) {
        if (isReply(answer) && action)
            m_shown.insert(answer.arguments().value(0).toUInt(), { action, QString() });
    });
}

void Notifier::activationTokenGiven(uint id, const QString &token)
{
    if (const auto shown = m_shown.find(id); shown != m_shown.end())
        shown->activationToken = token;
}

void Notifier::actionInvoked(uint id, const QString &key)
{
    Q_UNUSED(key); // all do the same
    const Shown shown = m_shown.value(id);
    if (shown.action)
        shown.action(shown.activationToken);
}

void Notifier::notificationClosed(uint id, uint reason)
{
    Q_UNUSED(reason);
    m_shown.remove(id);
}

} // namespace vornic
