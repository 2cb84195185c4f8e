#include "support/session_programs.h"

#include "support/wait_until.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <utility>

namespace vornic::test {

namespace {

const QString libraries = QStringLiteral("/usr/libexec/");
const QString permissionStore = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");

void write(const QString &path, const QString &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        qFatal("%s cannot be written", qPrintable(path));
}

bool wirePlumberIsThere()
{
    const auto list
        = ChildProcess::start({ "sh", "-c", "pw-cli ls Client 2>/dev/null | grep -q WirePlumber" });
    return list && list->wait() == 0;
}

/// As a user of the command line would: what it takes has types that QVariant does not know.
bool askPermissionStore(const QString &method, const QStringList &arguments)
{
    const QStringList call { "gdbus",
                             "call",
                             "--session",
                             "--dest",
                             permissionStore,
                             "--object-path",
                             "/org/freedesktop/impl/portal/PermissionStore",
                             "--method",
                             permissionStore + u'.' + method };
    const auto process
        = ChildProcess::start(QStringList { "sh", "-c", "exec \"$@\" > /dev/null", "sh" } + call + arguments);
    return process && process->wait() == 0;
}

} // namespace

SessionPrograms::SessionPrograms(QString desktop)
    : m_desktop(std::move(desktop))
{
    const std::pair<const char *, const char *> folders[] {
        { "XDG_RUNTIME_DIR", "run" },    { "HOME", "home" },
        { "XDG_CONFIG_HOME", "config" }, { "XDG_DATA_HOME", "data" },
        { "XDG_CACHE_HOME", "cache" },   { "XDG_STATE_HOME", "state" }
    };
    for (const auto &[variable, name] : folders) {
        const QString folder = filePath(name);
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        m_environment.set(variable, folder);
    }
    for (const char *variable : { "DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "PIPEWIRE_REMOTE" })
        m_environment.unset(variable);
    m_environment.set("XDG_SESSION_TYPE", "wayland");
    m_environment.set("XDG_CURRENT_DESKTOP", m_desktop);
}

SessionPrograms::~SessionPrograms()
{
    while (!m_programs.empty())
        m_programs.pop_back();
}

bool SessionPrograms::startBus()
{
    m_bus = PrivateBus::start();
    if (!m_bus)
        return false;
    m_environment.set("DBUS_SESSION_BUS_ADDRESS", QString::fromLatin1(m_bus->address()));
    m_bus->addActivatable(permissionStore, { libraries + "xdg-permission-store" });
    return true;
}

bool SessionPrograms::startPipeWire()
{
    const QString socket = filePath(QStringLiteral("run/pipewire-0"));
    return start(QStringLiteral("pipewire"), { "pipewire" }, [&] { return QFile::exists(socket); })
        && start(QStringLiteral("wireplumber"), { "wireplumber" }, wirePlumberIsThere);
}

bool SessionPrograms::startPortal(const QString &backend, const QStringList &environment)
{
    const QString service = QStringLiteral("org.freedesktop.impl.portal.desktop.") + backend;
    const QString portals = filePath(QStringLiteral("portals"));
    QDir().mkpath(portals);
    write(
        portals + u'/' + backend + ".portal",
        QStringLiteral("[portal]\nDBusName=%1\nInterfaces=org.freedesktop.impl.portal.ScreenCast\nUseIn=%2\n")
            .arg(service, m_desktop));
    m_environment.set("XDG_DESKTOP_PORTAL_DIR", portals);
    return start(
               QStringLiteral("backend"),
               { libraries + "xdg-desktop-portal-" + backend },
               [&] { return isOnBus(service); },
               environment)
        && start(QStringLiteral("portal"), { libraries + "xdg-desktop-portal" }, [] {
               return isOnBus(QStringLiteral("org.freedesktop.portal.Desktop"));
           });
}

bool SessionPrograms::start(const QString &name,
                            const QStringList &command,
                            const std::function<bool()> &isUp,
                            const QStringList &environment)
{
    auto program = ChildProcess::start(printingTo(filePath(name + ".log"), command), environment);
    const bool hasDecided
        = program && waitUntil([&] { return isUp() || !program->isRunning(); }, std::chrono::seconds(60));
    if (!hasDecided || !program->isRunning()) {
        std::fprintf(
            stderr, "%s does not come up:\n%s\n", qPrintable(command.first()), qPrintable(printedBy(name)));
        return false;
    }
    m_programs.push_back(std::move(program));
    return true;
}

bool SessionPrograms::isOnBus(const QString &service)
{
    const QString own = QStringLiteral("session programs");
    bool isThere = false;
    {
        const QDBusConnection bus
            = QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), own);
        isThere = bus.isConnected() && bus.interface()->isServiceRegistered(service);
    }
    QDBusConnection::disconnectFromBus(own);
    return isThere;
}

QString SessionPrograms::printedBy(const QString &name) const
{
    return contentsOf(filePath(name + ".log"));
}

bool SessionPrograms::grant(const QString &token, const QString &choice)
{
    const QStringList entry { "screencast", "true", token };
    return askPermissionStore(QStringLiteral("SetPermission"), entry + QStringList { "", "[\"yes\"]" })
        && askPermissionStore(QStringLiteral("SetValue"), entry + QStringList { u'<' + choice + u'>' });
}

} // namespace vornic::test
