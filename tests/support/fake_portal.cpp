#include "support/fake_portal.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QList>

#include <unistd.h>

namespace vornic::test {

namespace {

/// As D-Bus has it: (ua{sv}).
struct StreamEntry {
    uint node = 0;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const StreamEntry &entry)
{
    argument.beginStructure();
    argument << entry.node << entry.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, StreamEntry &entry)
{
    argument.beginStructure();
    argument >> entry.node >> entry.properties;
    argument.endStructure();
    return argument;
}

/// As D-Bus has it: (sa{sv}).
struct KeyEntry {
    QString id;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const KeyEntry &entry)
{
    argument.beginStructure();
    argument << entry.id << entry.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, KeyEntry &entry)
{
    argument.beginStructure();
    argument >> entry.id >> entry.properties;
    argument.endStructure();
    return argument;
}

QString pathOf(const QDBusMessage &call, const QString &kind, const QString &token)
{
    const QString sender = call.service().mid(1).replace(u'.', u'_');
    return QStringLiteral("/org/freedesktop/portal/desktop/%1/%2/%3").arg(kind, sender, token);
}

QVariantMap optionsOf(const QDBusMessage &call)
{
    return qdbus_cast<QVariantMap>(call.arguments().constLast());
}

} // namespace

FakePortal::FakePortal(const PrivateBus &bus)
    : m_service(bus, QStringLiteral("org.freedesktop.portal.Desktop"))
{
    qDBusRegisterMetaType<StreamEntry>();
    qDBusRegisterMetaType<QList<StreamEntry>>();
    qDBusRegisterMetaType<KeyEntry>();
    qDBusRegisterMetaType<QList<KeyEntry>>();
    m_service.setAnswer([this](const QDBusMessage &call) { return answer(call); });
}

QDBusMessage FakePortal::answer(const QDBusMessage &call)
{
    const QString method = call.member();
    if (refused.contains(method))
        return call.createErrorReply(QStringLiteral("org.freedesktop.portal.Error.Failed"),
                                     QStringLiteral("Not in the mood."));
    if (method == QStringLiteral("GetAll"))
        return call.createReply(QVariantMap { { QStringLiteral("version"), version },
                                              { QStringLiteral("AvailableCursorModes"), cursorModes } });
    if (method == QStringLiteral("OpenPipeWireRemote")) {
        const int connection = remote ? remote() : ::dup(STDIN_FILENO);
        const QDBusUnixFileDescriptor descriptor(connection); // keeps a copy
        ::close(connection);
        return call.createReply(QVariant::fromValue(descriptor));
    }
    return method == QStringLiteral("Close") ? call.createReply() : answerRequest(call);
}

/// The answer is sent before the request's name is, as it may be.
QDBusMessage FakePortal::answerRequest(const QDBusMessage &call)
{
    const QVariantMap options = optionsOf(call);
    if (call.member() == QStringLiteral("CreateSession"))
        m_sessionPath = pathOf(call,
                               QStringLiteral("session"),
                               options.value(QStringLiteral("session_handle_token")).toString());
    const QString path
        = pathOf(call, QStringLiteral("request"), options.value(QStringLiteral("handle_token")).toString());
    if (!unanswered.contains(call.member())) {
        QDBusMessage response = QDBusMessage::createSignal(
            path, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        response.setArguments({ answers.value(call.member()), resultsOf(call) });
        m_service.send(response);
    }
    return call.createReply(QVariant::fromValue(QDBusObjectPath(path)));
}

QVariantMap FakePortal::resultsOf(const QDBusMessage &call) const
{
    if (call.member() == QStringLiteral("CreateSession"))
        return { { QStringLiteral("session_handle"), m_sessionPath } };
    if (call.member() == QStringLiteral("Start"))
        return streams();
    if (call.member() != QStringLiteral("BindShortcuts"))
        return {};
    const auto asked = qdbus_cast<QList<KeyEntry>>(call.arguments().value(1));
    return { { QStringLiteral("shortcuts"), keys(asked.isEmpty() ? QString() : asked.first().id) } };
}

QVariantMap FakePortal::streams() const
{
    QList<StreamEntry> streams;
    QVariantMap properties { { QStringLiteral("source_type"), 1U } };
    if (position.isValid())
        properties[QStringLiteral("position")] = position;
    if (node != 0)
        streams += { node, properties };
    QVariantMap results { { QStringLiteral("streams"), QVariant::fromValue(streams) } };
    if (!restoreToken.isEmpty())
        results[QStringLiteral("restore_token")] = restoreToken;
    return results;
}

QVariant FakePortal::keys(const QString &id) const
{
    KeyEntry key { id, { { QStringLiteral("description"), QStringLiteral("Something") } } };
    if (trigger.isValid())
        key.properties[QStringLiteral("trigger_description")] = trigger;
    return QVariant::fromValue(QList<KeyEntry> { key });
}

void FakePortal::tellKey(const QString &signal, const QString &id)
{
    QDBusMessage told = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/portal/desktop"),
                                                   QStringLiteral("org.freedesktop.portal.GlobalShortcuts"),
                                                   signal);
    constexpr qulonglong time = 4711;
    told.setArguments({ QVariant::fromValue(QDBusObjectPath(m_sessionPath)), id, time, QVariantMap() });
    m_service.send(told);
}

void FakePortal::tellKeysChanged(const QString &id)
{
    QDBusMessage told = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/portal/desktop"),
                                                   QStringLiteral("org.freedesktop.portal.GlobalShortcuts"),
                                                   QStringLiteral("ShortcutsChanged"));
    told.setArguments({ QVariant::fromValue(QDBusObjectPath(m_sessionPath)), keys(id) });
    m_service.send(told);
}

QVariantMap FakePortal::options(const QString &method) const
{
    const auto calls = m_service.calls(method);
    return calls.empty() ? QVariantMap() : optionsOf(calls.back());
}

QVariantList FakePortal::arguments(const QString &method) const
{
    const auto calls = m_service.calls(method);
    return calls.empty() ? QVariantList() : calls.back().arguments();
}

QVariantMap FakePortal::wish() const
{
    const auto asked = qdbus_cast<QList<KeyEntry>>(arguments(QStringLiteral("BindShortcuts")).value(1));
    return asked.isEmpty() ? QVariantMap() : asked.first().properties;
}

QStringList FakePortal::closed() const
{
    QStringList paths;
    for (const QDBusMessage &call : m_service.calls(QStringLiteral("Close")))
        paths += call.path();
    return paths;
}

void FakePortal::closeSession()
{
    QDBusMessage signal = QDBusMessage::createSignal(
        m_sessionPath, QStringLiteral("org.freedesktop.portal.Session"), QStringLiteral("Closed"));
    signal.setArguments({ QVariantMap() });
    m_service.send(signal);
}

} // namespace vornic::test
