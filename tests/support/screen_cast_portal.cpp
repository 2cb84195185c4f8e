#include "support/screen_cast_portal.h"

#include "support/built_program.h"
#include "support/sway_session.h"
#include "support/wait_until.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>

#include <signal.h>

#include <cstdio>

namespace vornic::test {

namespace {

const QString libraries = QStringLiteral("/usr/libexec/");
const QString backendService = QStringLiteral("org.freedesktop.impl.portal.desktop.wlr");
const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");

void write(const QString &path, const QString &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        qFatal("%s cannot be written", qPrintable(path));
}

/// Whether somebody owns \a service on the session bus.
bool isOnBus(const QString &service)
{
    const QString own = QStringLiteral("screen cast portal");
    bool isThere = false;
    {
        const QDBusConnection bus
            = QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), own);
        isThere = bus.isConnected() && bus.interface()->isServiceRegistered(service);
    }
    QDBusConnection::disconnectFromBus(own);
    return isThere;
}

bool wirePlumberIsThere()
{
    const auto list
        = ChildProcess::start({ "sh", "-c", "pw-cli ls Client 2>/dev/null | grep -q WirePlumber" });
    return list && list->wait() == 0;
}

} // namespace

std::unique_ptr<ScreenCastPortal>
ScreenCastPortal::start(const SwaySession &session, Consent consent, const QString &monitor)
{
    std::unique_ptr<ScreenCastPortal> portal(new ScreenCastPortal(session));
    return portal->startBus() && portal->startPipeWire() && portal->startPortal(consent, monitor)
        ? std::move(portal)
        : nullptr;
}

ScreenCastPortal::ScreenCastPortal(const SwaySession &session)
    : m_session(session)
{
}

ScreenCastPortal::~ScreenCastPortal()
{
    for (const Part part : { Part::Portal, Part::Backend, Part::WirePlumber, Part::PipeWire })
        m_parts.erase(part);
}

void ScreenCastPortal::kill(Part part)
{
    m_parts.at(part)->stop(SIGKILL);
}

void ScreenCastPortal::setFrozen(Part part, bool isFrozen)
{
    ::kill(m_parts.at(part)->pid(), isFrozen ? SIGSTOP : SIGCONT);
}

bool ScreenCastPortal::startBus()
{
    m_bus = PrivateBus::start();
    if (!m_bus)
        return false;
    m_environment.set("DBUS_SESSION_BUS_ADDRESS", QString::fromLatin1(m_bus->address()));
    m_environment.set("GSETTINGS_BACKEND", QStringLiteral("memory"));
    m_bus->addActivatable(QStringLiteral("org.freedesktop.impl.portal.PermissionStore"),
                          { libraries + "xdg-permission-store" });
    return true;
}

bool ScreenCastPortal::startPipeWire()
{
    m_environment.unset("PIPEWIRE_REMOTE");
    const QString socket = m_session.filePath(QStringLiteral("run/pipewire-0"));
    return startPart(Part::PipeWire, { "pipewire" }, [&] { return QFile::exists(socket); })
        && startPart(Part::WirePlumber, { "wireplumber" }, wirePlumberIsThere);
}

bool ScreenCastPortal::startPortal(Consent consent, const QString &monitor)
{
    const QString portals = m_session.filePath(QStringLiteral("portals"));
    QDir().mkpath(portals);
    write(portals + "/wlr.portal",
          QStringLiteral(
              "[portal]\nDBusName=%1\nInterfaces=org.freedesktop.impl.portal.ScreenCast\nUseIn=sway\n")
              .arg(backendService));
    m_environment.set("XDG_DESKTOP_PORTAL_DIR", portals);
    const QString settings = m_session.filePath(QStringLiteral("portal-wlr.conf"));
    // What a user chooses is what the chooser prints.
    write(settings,
          consent == Consent::Granted
              ? QStringLiteral("[screencast]\noutput_name=%1\nchooser_type=none\n").arg(monitor)
              : QStringLiteral("[screencast]\nchooser_type=simple\nchooser_cmd=true\n"));
    return startPart(Part::Backend,
                     { libraries + "xdg-desktop-portal-wlr", "--config", settings, "--loglevel", "ERROR" },
                     [] { return isOnBus(backendService); },
                     { "LD_PRELOAD=" + builtProgram("tests/support/libvornic_no_gpu_format.so") })
        && startPart(
               Part::Portal, { libraries + "xdg-desktop-portal" }, [] { return isOnBus(portalService); });
}

bool ScreenCastPortal::startPart(Part part,
                                 const QStringList &command,
                                 const std::function<bool()> &isUp,
                                 const QStringList &environment)
{
    const QString program = command.first().section(u'/', -1);
    const QString log = m_session.filePath(program + ".log");
    auto process = ChildProcess::start(printingTo(log, command), environment);
    const bool hasDecided = process && waitUntil([&] { return isUp() || !process->isRunning(); });
    if (!hasDecided || !process->isRunning()) {
        std::fprintf(stderr, "%s does not come up:\n%s\n", qPrintable(program), qPrintable(contentsOf(log)));
        return false;
    }
    m_parts[part] = std::move(process);
    return true;
}

} // namespace vornic::test
