#include "bus/dbus_call.h"

#include "base/thread.h"

#include <QDBusError>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QFileInfo>
#include <QList>
#include <QMetaObject>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <limits>
#include <vector>

namespace vornic {

namespace {

/// Whether the process can open \a count more files.
bool areDescriptorsAvailable(std::size_t count)
{
    std::vector<int> opened;
    while (opened.size() < count) {
        const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (descriptor < 0)
            break;
        opened.push_back(descriptor);
    }
    for (const int descriptor : opened)
        ::close(descriptor);
    return opened.size() == count;
}

/// The toolkit's thread for the bus still reads what has come while the program's statics end. What is made first ends
/// last: the list of types must be older than that thread, or the thread complains of types that are gone.
void makeListOfTypes()
{
    qDBusRegisterMetaType<QList<QDBusVariant>>();
}

/// The toolkit makes a thread at its first connection: where there is none to be had, it waits for it for good, and where
/// that thread finds no descriptors for its loop, it ends the process.
bool isBusThreadPossible()
{
    constexpr std::size_t neededDescriptors = 8;
    static std::atomic<bool> wasPossible = false;
    if (!wasPossible) {
        makeListOfTypes();
        wasPossible = areThreadsAvailable(1) && areDescriptorsAvailable(neededDescriptors);
    }
    return wasPossible;
}

/// Without an address the D-Bus library starts a bus that nobody else is on and that outlives the program.
bool isSessionBusThere()
{
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")
        || (!runtimeFolder.isEmpty() && QFileInfo::exists(runtimeFolder + QStringLiteral("/bus")));
}

QDBusMessage noBus()
{
    return QDBusMessage::createError(QDBusError::Disconnected, QStringLiteral("There is no bus"));
}

} // namespace

QDBusConnection sessionBus()
{
    return isSessionBusThere() && isBusThreadPossible() ? QDBusConnection::sessionBus()
                                                        : QDBusConnection(QString());
}

QDBusConnection systemBus()
{
    return isBusThreadPossible() ? QDBusConnection::systemBus() : QDBusConnection(QString());
}

QDBusMessage askSessionBus(const QDBusMessage &call, std::chrono::milliseconds timeout)
{
    if (!isSessionBusThere() || !isBusThreadPossible())
        return noBus();
    const QString name = QStringLiteral("question");
    const QDBusMessage answer = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
                                    .call(call, QDBus::Block, static_cast<int>(timeout.count()));
    QDBusConnection::disconnectFromBus(name);
    return answer;
}

void callLater(const QDBusConnection &bus,
               const QDBusMessage &call,
               QObject *context,
               const AnswerHandler &handler,
               std::chrono::milliseconds timeout)
{
    if (!bus.isConnected()) {
        const auto answer = [handler] { handler(noBus()); };
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
