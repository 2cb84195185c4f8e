#include "support/fake_service.h"

#include <QDBusPendingCallWatcher>

namespace vornic::test {

namespace {

QString newConnectionName()
{
    static int made = 0;
    return QStringLiteral("fake%1").arg(++made);
}

const QString marker = QStringLiteral("Marker");

} // namespace

FakeService::FakeService(const PrivateBus &bus, const QString &name)
    : m_connectionName(newConnectionName())
    , m_connection(QDBusConnection::connectToBus(QString::fromLatin1(bus.address()), m_connectionName))
    , m_name(name)
{
    // Every name from the beginning, and not a caller from its call on: the bus may learn of the end of a process that
    // is killed just then before it is asked to tell of it.
    const bool isWatching = m_connection.connect("org.freedesktop.DBus",
                                                 "/org/freedesktop/DBus",
                                                 "org.freedesktop.DBus",
                                                 "NameOwnerChanged",
                                                 this,
                                                 SLOT(noteOwner(QString, QString, QString)));
    if (!isWatching || !m_connection.registerVirtualObject("/", this, QDBusConnection::SubPath)
        || !m_connection.registerService(m_name))
        qFatal("%s cannot be played", qPrintable(m_name));
}

FakeService::~FakeService()
{
    m_connection.unregisterObject("/", QDBusConnection::UnregisterTree);
    m_connection.unregisterService(m_name);
    QDBusConnection::disconnectFromBus(m_connectionName);
}

std::vector<QDBusMessage> FakeService::calls(const QString &member) const
{
    std::vector<QDBusMessage> found;
    for (const QDBusMessage &call : m_calls) {
        if (call.member() == member)
            found.push_back(call);
    }
    return found;
}

void FakeService::send(const QDBusMessage &message)
{
    m_connection.send(message);
}

void FakeService::leaveName()
{
    m_connection.unregisterService(m_name);
}

void FakeService::emitSignal(const QString &path, const QString &member, const QVariantList &arguments)
{
    QDBusMessage signal = QDBusMessage::createSignal(path, m_name, member);
    signal.setArguments(arguments);
    send(signal);
}

bool FakeService::settle(const QDBusConnection &sender)
{
    bool isBack = false;
    // Named as the connection, for a service may have been replaced in its name.
    QDBusPendingCallWatcher watcher(sender.asyncCall(
        QDBusMessage::createMethodCall(m_connection.baseService(), "/", "test.Marker", marker)));
    connect(&watcher, &QDBusPendingCallWatcher::finished, this, [&](QDBusPendingCallWatcher *answered) {
        isBack = !answered->isError();
    });
    return eventually([&] { return isBack; });
}

bool FakeService::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    if (message.member() == marker)
        return connection.send(message.createReply());
    m_calls.push_back(message);
    const QDBusMessage answer = m_answer ? m_answer(message) : QDBusMessage();
    if (message.isReplyRequired() && answer.type() != QDBusMessage::InvalidMessage)
        connection.send(answer);
    return true;
}

void FakeService::noteOwner(const QString &name, const QString &before, const QString &now)
{
    Q_UNUSED(before);
    if (now.isEmpty())
        m_left += name;
}

QString FakeService::introspect(const QString &path) const
{
    Q_UNUSED(path);
    return {};
}

} // namespace vornic::test
