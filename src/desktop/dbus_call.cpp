#include "desktop/dbus_call.h"

#include "base/thread.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QFileInfo>
#include <QMetaObject>

#include <algorithm>
#include <atomic>
#include <limits>

namespace vornic {

namespace {

/// The toolkit makes a thread at its first connection, and where there is none to be had, waits for it for good.
bool isBusThreadPossible()
{
    static std::atomic<bool> wasPossible = false;
    if (!wasPossible)
        wasPossible = areThreadsAvailable(1);
    return wasPossible;
}

} // namespace

QDBusConnection sessionBus()
{
    // Without an address the D-Bus library starts a bus that nobody else is on and that outlives the program.
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const bool isThere = !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")
        || (!runtimeFolder.isEmpty() && QFileInfo::exists(runtimeFolder + QStringLiteral("/bus")));
    return isThere && isBusThreadPossible() ? QDBusConnection::sessionBus() : QDBusConnection(QString());
}

QDBusConnection systemBus()
{
    return isBusThreadPossible() ? QDBusConnection::systemBus() : QDBusConnection(QString());
}

void callLater(const QDBusConnection &bus,
               const QDBusMessage &call,
               QObject *context,
               const AnswerHandler &handler,
               std::chrono::milliseconds timeout)
{
    if (!bus.isConnected()) {
        const auto answer = [handler] {
            handler(QDBusMessage::createError(QDBusError::Disconnected, QStringLiteral("There is no bus")));
        };
        QMetaObject::invokeMethod(context, answer, Qt::QueuedConnection);
        return;
    }
    constexpr std::chrono::milliseconds::rep maxTimeout
        = std::numeric_limits<int>::max(); // taken as no limit
    const auto limit = static_cast<int>(std::min(timeout.count(), maxTimeout));
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, limit), context);
    QObject::connect(
        watcher, &QDBusPendingCallWatcher::finished, context, [handler](QDBusPendingCallWatcher *answered) {
            answered->deleteLater();
            handler(answered->reply());
        });
}

} // namespace vornic
