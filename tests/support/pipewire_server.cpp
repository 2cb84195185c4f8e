#include "support/pipewire_server.h"

#include "support/wait_until.h"

#include <QFile>
#include <QStandardPaths>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>

namespace vornic::test {

bool PipeWireServer::isInstalled()
{
    for (const char *program : { "dbus-daemon", "pipewire", "wireplumber", "pw-cli" }) {
        if (QStandardPaths::findExecutable(QLatin1StringView(program)).isEmpty())
            return false;
    }
    return true;
}

std::unique_ptr<PipeWireServer> PipeWireServer::start()
{
    std::unique_ptr<PipeWireServer> server(new PipeWireServer);
    if (server->launch())
        return server;
    std::fprintf(stderr, "PipeWire does not come up.\n");
    return nullptr;
}

PipeWireServer::~PipeWireServer()
{
    m_wirePlumber.reset();
    m_pipeWire.reset();
    m_bus.reset();
}

QStringList PipeWireServer::environment() const
{
    const QString folder = m_folder.path();
    return { "HOME=" + folder,
             "XDG_RUNTIME_DIR=" + folder,
             "XDG_CONFIG_HOME=" + folder,
             "XDG_STATE_HOME=" + folder,
             "PIPEWIRE_RUNTIME_DIR=" + folder,
             "PIPEWIRE_REMOTE=pipewire-0",
             "DBUS_SESSION_BUS_ADDRESS=unix:path=" + folder + "/bus",
             "DBUS_SYSTEM_BUS_ADDRESS=unix:path=" + folder + "/nobus" };
}

bool PipeWireServer::run(std::unique_ptr<ChildProcess> &process,
                         const QString &command,
                         const std::function<bool()> &isUp) const
{
    const QString log = m_folder.filePath("log");
    process = ChildProcess::start({ "sh", "-c", "exec " + command + " >>" + log + " 2>&1" }, environment());
    return process && waitUntil([&] { return isUp() || !process->isRunning(); }) && process->isRunning();
}

bool PipeWireServer::launch()
{
    const QString bus = m_folder.filePath("bus");
    const QString socket = m_folder.filePath("pipewire-0");
    return run(m_bus,
               "dbus-daemon --session --nofork --address=unix:path=" + bus,
               [&] { return QFile::exists(bus); })
        && run(m_pipeWire, "pipewire", [&] { return QFile::exists(socket); })
        && run(m_wirePlumber, "wireplumber", [this] { return isWirePlumberThere(); });
}

bool PipeWireServer::isWirePlumberThere() const
{
    const auto list
        = ChildProcess::start({ "sh", "-c", "pw-cli ls Client | grep -q WirePlumber" }, environment());
    return list && list->wait() == 0;
}

int PipeWireServer::connect() const
{
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(m_folder.filePath("pipewire-0"));
    std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
    if (::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return socket;
    ::close(socket);
    return -1;
}

void PipeWireServer::killPipeWire()
{
    m_pipeWire->stop(SIGKILL);
}

void PipeWireServer::killWirePlumber()
{
    m_wirePlumber->stop(SIGKILL);
}

} // namespace vornic::test
