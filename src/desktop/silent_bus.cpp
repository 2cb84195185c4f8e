#include "desktop/silent_bus.h"

#include "base/log.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <optional>

namespace vornic {

namespace {

constexpr int timeoutMs = 2000;

/// The name of the first local socket in \a address, as D-Bus writes it: "unix:path=/run/user/1000/bus,guid=…;…". One that
/// is not a file's begins with a zero.
std::optional<QByteArray> socketName(const QString &address)
{
    for (const QString &server : address.split(u';')) {
        if (!server.startsWith(QStringLiteral("unix:")))
            continue;
        for (const QString &entry : server.sliced(5).split(u',')) {
            const QByteArray value = QByteArray::fromPercentEncoding(entry.section(u'=', 1).toUtf8());
            if (entry.startsWith(QStringLiteral("path=")))
                return value;
            if (entry.startsWith(QStringLiteral("abstract=")))
                return '\0' + value;
        }
    }
    return std::nullopt;
}

bool connectTo(int socket, const QByteArray &name)
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    const auto length = static_cast<std::size_t>(name.size());
    if (length >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, name.constData(), length);
    const bool isFile = name.front() != '\0';
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length + (isFile ? 1 : 0));
    return ::connect(socket, reinterpret_cast<const sockaddr *>(&address), size) == 0;
}

/// As D-Bus begins a conversation: a server answers the first line, with whatever.
bool answersGreeting(int socket)
{
    const QByteArray greeting = '\0' + QByteArray("AUTH EXTERNAL ")
        + QByteArray::number(static_cast<uint>(::getuid())).toHex() + "\r\n";
    if (::send(socket, greeting.constData(), static_cast<std::size_t>(greeting.size()), MSG_NOSIGNAL) < 0)
        return false;
    pollfd waited { socket, POLLIN, 0 };
    return ::poll(&waited, 1, timeoutMs) != 0;
}

/// True where it cannot be asked, as its address is not that of a local socket.
bool answers(const QString &address)
{
    const std::optional<QByteArray> name = socketName(address);
    if (!name || name->isEmpty())
        return true;
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket < 0)
        return true;
    // Where nobody takes connections, whoever connects in earnest finds that out at once; a queue of connections that is
    // full would be waited for.
    const bool answers = connectTo(socket, *name) ? answersGreeting(socket) : errno != EAGAIN;
    ::close(socket);
    return answers;
}

constexpr auto sessionVariable = "DBUS_SESSION_BUS_ADDRESS";
constexpr auto systemVariable = "DBUS_SYSTEM_BUS_ADDRESS";

QString sessionAddress()
{
    return qEnvironmentVariable(
        sessionVariable, QStringLiteral("unix:path=%1/bus").arg(qEnvironmentVariable("XDG_RUNTIME_DIR")));
}

QString systemAddress()
{
    return qEnvironmentVariable(systemVariable, QStringLiteral("unix:path=/var/run/dbus/system_bus_socket"));
}

void disregardIfSilent(const char *variable, const QString &address)
{
    if (answers(address))
        return;
    logMessage(QCoreApplication::translate("vornic", "The message bus %1 does not answer.").arg(address));
    qputenv(variable, "unix:path=/dev/null/silent"); // where no bus can be
}

} // namespace

void disregardSilentBuses()
{
    disregardIfSilent(sessionVariable, sessionAddress());
    disregardIfSilent(systemVariable, systemAddress());
}

bool sessionBusAnswers()
{
    return answers(sessionAddress());
}

} // namespace vornic
