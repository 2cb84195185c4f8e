#pragma once

#include "support/child_process.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace vornic::test {

/// A message bus of the test's own: no other program knows its socket, and nothing is activated on it but
/// what the test names.
///
/// Made and destroyed on the test's main thread. Any number of them may run at once.
class PrivateBus
{
public:
    /// Returns once the bus takes connections; null, with the reason on standard error, when it does not
    /// come up.
    [[nodiscard]] static std::unique_ptr<PrivateBus> start();

    /// As in $DBUS_SESSION_BUS_ADDRESS.
    [[nodiscard]] const QByteArray &address() const { return m_address; }
    /// From now on \a command is started when somebody calls \a service.
    void addActivatable(const QString &service, const QStringList &command) const;
    void removeActivatable(const QString &service) const;

private:
    PrivateBus() = default;
    [[nodiscard]] QString serviceFile(const QString &service) const;
    [[nodiscard]] QString writeConfiguration() const;
    void readServicesAgain() const;

    QTemporaryDir m_folder;
    QByteArray m_address;
    std::unique_ptr<ChildProcess> m_process;
};

/// The buses of this process, which $DBUS_SESSION_BUS_ADDRESS and $DBUS_SYSTEM_BUS_ADDRESS name while
/// runBusTests() runs.
PrivateBus &sessionBusDaemon();
PrivateBus &systemBusDaemon();

/// Runs the tests with these two buses and an application object, but without a window system.
int runBusTests(int argc, char **argv);

/// Runs the event loop until \a isSo, or for so long that it will not be any more.
[[nodiscard]] bool eventually(const std::function<bool()> &isSo);

} // namespace vornic::test
