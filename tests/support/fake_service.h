#pragma once

#include "support/private_bus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QStringList>

#include <functional>
#include <vector>

namespace vornic::test {

/// Plays a service of the desktop, on a connection of its own: takes every call to it, at any path.
///
/// Made by a test, lives on its main thread. Its end is the end of the service's process, as others see it.
class FakeService : public QDBusVirtualObject
{
    Q_OBJECT

public:
    using Answer = std::function<QDBusMessage(const QDBusMessage &)>;

    FakeService(const PrivateBus &bus, const QString &name);
    ~FakeService() override;

    /// Calls are answered with what \a answer makes of them; an invalid message is no answer. At first no
    /// call is answered.
    void setAnswer(Answer answer) { m_answer = std::move(answer); }
    /// All calls with the method's name \a member, in the order in which they came.
    [[nodiscard]] std::vector<QDBusMessage> calls(const QString &member) const;
    /// Answers a call that has not been answered, or sends a signal.
    void send(const QDBusMessage &message);
    /// Stays on the bus, but another process may be the service now.
    void leaveName();
    void emitSignal(const QString &path, const QString &member, const QVariantList &arguments);

    /// Runs the event loop until all that this process has sent on \a sender before has come here, and all
    /// that was sent back has come there.
    [[nodiscard]] bool settle(const QDBusConnection &sender);
    /// Whether \a uniqueName, the sender of a call, has left the bus since this service came.
    [[nodiscard]] bool hasLeft(const QString &uniqueName) const { return m_left.contains(uniqueName); }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;
    QString introspect(const QString &path) const override;

private slots:
    void noteOwner(const QString &name, const QString &before, const QString &now);

private:
    QString m_connectionName;
    QDBusConnection m_connection;
    QString m_name;
    Answer m_answer;
    std::vector<QDBusMessage> m_calls;
    QStringList m_left;
};

} // namespace vornic::test
