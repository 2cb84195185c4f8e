#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <chrono>
#include <functional>

namespace vornic {

/// The bus of the desktop session, or one that is not connected. No bus is started where there is none.
[[nodiscard]] QDBusConnection sessionBus();
/// The machine's bus, or one that is not connected.
[[nodiscard]] QDBusConnection systemBus();

/// A call that is given up only when the bus is lost or the service goes away.
inline constexpr std::chrono::milliseconds waitForEver = std::chrono::milliseconds::max();
inline constexpr std::chrono::milliseconds defaultTimeout { 25000 };

/// Receives a reply, or an error where there is none for whatever reason.
using AnswerHandler = std::function<void(const QDBusMessage &)>;

/// Sends \a call and returns. \a handler runs later, once, on the thread of \a context (which must be the
/// calling one), or never when \a context ends before.
void callLater(const QDBusConnection &bus,
               const QDBusMessage &call,
               QObject *context,
               const AnswerHandler &handler,
               std::chrono::milliseconds timeout = defaultTimeout);

/// The session bus's answer to \a call, or an error, over a connection that lives no longer. Waits for it, also before
/// there is an application object.
[[nodiscard]] QDBusMessage askSessionBus(const QDBusMessage &call, std::chrono::milliseconds timeout);

[[nodiscard]] inline bool isReply(const QDBusMessage &answer)
{
    return answer.type() == QDBusMessage::ReplyMessage;
}

} // namespace vornic
