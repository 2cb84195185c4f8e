#include "desktop/dbus_inhibition.h"

#include "bus/dbus_call.h"

#include <QCoreApplication>
#include <QDBusObjectPath>

#include <utility>

namespace vornic {

DBusInhibition::DBusInhibition(InhibitRequest request)
    : m_request(std::move(request))
{
    if (!m_request.bus.isConnected())
        return;
    connect(&m_watcher,
            &QDBusServiceWatcher::serviceOwnerChanged,
            this,
            [this](const QString &, const QString &, const QString &newOwner) { serviceMoved(newOwner); });
    m_watcher.setConnection(m_request.bus);
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_watcher.addWatchedService(m_request.service);
    ask();
}

void DBusInhibition::ask()
{
    ++m_pendingQuestions;
    askAt(++m_lastQuestion, m_request.paths);
}

void DBusInhibition::askAt(int question, const QStringList &paths)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        m_request.service, paths.first(), m_request.interface, QStringLiteral("Inhibit"));
    call.setArguments(m_request.arguments);
    call.setAutoStartService(false);
    // An answer that is given up could come all the same, and nobody would release what it grants.
    callLater(
        m_request.bus,
        call,
        this,
        [this, question, paths](const QDBusMessage &answer) { takeAnswer(question, paths, answer); },
        waitForEver);
}

void DBusInhibition::takeAnswer(int question, const QStringList &paths, const QDBusMessage &answer)
{
    const bool isWanted = !m_isReleased && question == m_lastQuestion;
    if (isWanted && !isReply(answer) && paths.size() > 1)
        return askAt(question, paths.mid(1));
    if (isWanted && isReply(answer))
        m_grant = { answer, paths.first() };
    else if (isReply(answer))
        giveBack({ answer, paths.first() });
    --m_pendingQuestions;
    if (m_isReleased && m_pendingQuestions == 0)
        deleteLater();
}

void DBusInhibition::serviceMoved(const QString &newOwner)
{
    giveBack();
    if (!newOwner.isEmpty())
        ask();
}

void DBusInhibition::giveBack()
{
    if (m_grant)
        giveBack(*m_grant);
    m_grant.reset();
}

void DBusInhibition::giveBack(const Grant &grant) const
{
    if (m_request.releaseMethod.isEmpty())
        return;
    const bool isObject = !m_request.releaseInterface.isEmpty();
    const QString object = grant.reply.arguments().value(0).value<QDBusObjectPath>().path();
    // To the process that gave it: to another one the cookie may mean somebody else's.
    QDBusMessage call
        = QDBusMessage::createMethodCall(grant.reply.service(),
                                         isObject ? object : grant.path,
                                         isObject ? m_request.releaseInterface : m_request.interface,
                                         m_request.releaseMethod);
    if (!isObject)
        call.setArguments(grant.reply.arguments());
    m_request.bus.send(call);
}

void DBusInhibition::release()
{
    m_isReleased = true;
    disconnect(&m_watcher, nullptr, this, nullptr);
    giveBack();
    if (m_pendingQuestions > 0 && QCoreApplication::instance())
        setParent(QCoreApplication::instance());
    else
        delete this;
}

} // namespace vornic
