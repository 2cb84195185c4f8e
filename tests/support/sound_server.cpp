#include "support/sound_server.h"

#include "support/wait_until.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace vornic::test {

namespace {

constexpr const char *serverVariable = "PULSE_SERVER";

/// The programs that make up the server, in the order of their start.
QStringList programsOf(SoundServer::Kind kind)
{
    if (kind == SoundServer::Kind::PulseAudio)
        return { "pulseaudio" };
    return { "dbus-daemon", "pipewire", "wireplumber", "pipewire-pulse" };
}

} // namespace

bool SoundServer::isInstalled(Kind kind)
{
    const QStringList programs = programsOf(kind) + QStringList { "pactl" };
    return std::all_of(programs.begin(), programs.end(), [](const QString &program) {
        return !QStandardPaths::findExecutable(program).isEmpty();
    });
}

std::unique_ptr<SoundServer> SoundServer::start(Kind kind, int quantum)
{
    std::unique_ptr<SoundServer> server(new SoundServer(kind, quantum));
    if (!server->launch()) {
        std::fprintf(stderr, "The sound server does not come up.\n");
        return nullptr;
    }
    return server;
}

SoundServer::SoundServer(Kind kind, int quantum)
    : m_kind(kind)
    , m_serverBefore(qgetenv(serverVariable))
{
    qputenv(serverVariable, address());
    if (quantum > 0) {
        QDir().mkpath(path("pipewire/pipewire.conf.d"));
        QFile settings(path("pipewire/pipewire.conf.d/test.conf"));
        static_cast<void>(settings.open(QIODevice::WriteOnly));
        // The last one, too: 2048 are its maximum otherwise, whatever is asked for.
        settings.write("context.properties = {");
        for (const char *key : { "min-quantum", "quantum", "max-quantum" })
            settings.write(" default.clock." + QByteArray(key) + " = " + QByteArray::number(quantum));
        settings.write(" }\n");
    }
}

SoundServer::~SoundServer()
{
    for (auto process = m_processes.rbegin(); process != m_processes.rend(); ++process)
        (*process)->stop();
    m_serverBefore.isEmpty() ? qunsetenv(serverVariable) : qputenv(serverVariable, m_serverBefore);
}

QByteArray SoundServer::address() const
{
    return "unix:" + path(m_kind == Kind::PulseAudio ? "native" : "pulse/native").toLocal8Bit();
}

QStringList SoundServer::environment() const
{
    return { "HOME=" + m_folder.path(),
             "XDG_RUNTIME_DIR=" + m_folder.path(),
             "XDG_CONFIG_HOME=" + m_folder.path(),
             "XDG_STATE_HOME=" + m_folder.path(),
             "PIPEWIRE_RUNTIME_DIR=" + m_folder.path(),
             "PULSE_RUNTIME_PATH=" + path("pulse"),
             "PULSE_SERVER=" + QString::fromLocal8Bit(address()),
             "DBUS_SESSION_BUS_ADDRESS=unix:path=" + path("bus"),
             "DBUS_SYSTEM_BUS_ADDRESS=unix:path=" + path("nobus") };
}

QStringList SoundServer::optionsOf(const QString &program) const
{
    if (program == "dbus-daemon")
        return { "--session", "--nofork", "--address=unix:path=" + path("bus") };
    if (program == "pulseaudio")
        return { "-n",
                 "--daemonize=no",
                 "--exit-idle-time=-1",
                 "--use-pid-file=no",
                 "--disable-shm=yes",
                 "--log-target=file:" + path("log"),
                 "--load=module-native-protocol-unix auth-anonymous=1 socket=" + path("native"),
                 "--load=module-cli-protocol-unix socket=" + path("cli") };
    return {};
}

bool SoundServer::launch()
{
    m_processes.clear();
    for (const QString &program : programsOf(m_kind)) {
        const QStringList command = QStringList { program } + optionsOf(program);
        m_processes.push_back(ChildProcess::start(printingTo(path("log"), command), environment()));
        // Each finds the one before through its socket.
        const QString socket = path(program == "dbus-daemon" ? "bus" : "pipewire-0");
        if (m_kind == Kind::PipeWire && !waitUntil([&] { return QFile::exists(socket); }))
            return false;
    }
    return waitUntil([this] { return !pactl({ "info" }).isEmpty(); });
}

void SoundServer::kill()
{
    for (auto process = m_processes.rbegin(); process != m_processes.rend(); ++process)
        (*process)->stop(SIGKILL);
    for (const char *socket : { "native", "cli", "pulse/native", "pipewire-0", "bus" })
        QFile::remove(path(socket));
}

bool SoundServer::restart()
{
    kill();
    return launch();
}

void SoundServer::suspend()
{
    for (const auto &process : m_processes)
        ::kill(process->pid(), SIGSTOP);
}

void SoundServer::resume()
{
    for (const auto &process : m_processes)
        ::kill(process->pid(), SIGCONT);
}

QString SoundServer::pactl(const QStringList &arguments) const
{
    const QTemporaryDir folder;
    const QString answer = folder.filePath("answer");
    const QStringList shell { "sh", "-c", "exec pactl \"$@\" >" + answer + " 2>&1", "sh" };
    const auto process = ChildProcess::start(shell + arguments, environment());
    QFile file(answer);
    if (!process || process->wait() != 0 || !file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).trimmed();
}

bool SoundServer::setDefault(const QString &kind, const QString &name) const
{
    return waitUntil([&] {
        pactl({ "set-default-" + kind, name });
        return pactl({ "get-default-" + kind }) == name;
    });
}

QString SoundServer::addOutput(const QString &name, const QString &description)
{
    return pactl({ "load-module",
                   "module-null-sink",
                   "sink_name=" + name,
                   "rate=48000",
                   "channels=2",
                   "sink_properties='device.description=\"" + description + "\"'" });
}

QString SoundServer::addMicrophone(const QString &name, const QString &description)
{
    if (m_kind == Kind::PulseAudio)
        return pactl({ "load-module",
                       "module-null-source",
                       "source_name=" + name,
                       "rate=48000",
                       "description=\"" + description + "\"" });
    return pactl({ "load-module",
                   "module-null-sink",
                   "media.class=Audio/Source/Virtual",
                   "sink_name=" + name,
                   "rate=48000",
                   "sink_properties='device.description=\"" + description + "\"'" });
}

void SoundServer::remove(const QString &device)
{
    pactl({ "unload-module", device });
}

void SoundServer::rename(const QString &name, const QString &description)
{
    const int socketNumber = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path("cli").toLocal8Bit().constData(), sizeof address.sun_path - 1);
    if (::connect(socketNumber, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0) {
        const QByteArray line = QStringLiteral("update-source-proplist %1 device.description=\"%2\"\n")
                                    .arg(name, description)
                                    .toUtf8();
        // It does not say when it has done so.
        if (::write(socketNumber, line.constData(), static_cast<std::size_t>(line.size())) == line.size())
            static_cast<void>(waitUntil([&] {
                return pactl({ "list", "sources" }).contains("Description: " + description);
            }));
    }
    ::close(socketNumber);
}

} // namespace vornic::test
