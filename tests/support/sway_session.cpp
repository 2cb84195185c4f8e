#include "support/sway_session.h"

#include "support/wait_until.h"

#include <QDir>
#include <QFile>

#include <signal.h>
#include <unistd.h>

#include <cstdio>

namespace vornic::test {

namespace {

/// sway refuses to run as root. In a user namespace root is another user, who still owns root's files.
QStringList asAnotherThanRoot(const QStringList &command)
{
    const QStringList namespaceOfItsOwn { "unshare", "--user", "--map-user=1000", "--map-group=1000" };
    return geteuid() == 0 ? namespaceOfItsOwn + command : command;
}

QString firstSettings(const SwaySession::Options &options, const QString &namesFile)
{
    return QStringLiteral("output HEADLESS-1 mode %1x%2@60Hz position 0 0 scale %3\n"
                          "output * bg #%4 solid_color\n"
                          "for_window [title=\".*\"] floating enable, border none\n"
                          "xwayland %5\n"
                          "exec echo \"$WAYLAND_DISPLAY $SWAYSOCK $DISPLAY\" > %6.part && mv %6.part %6\n")
        .arg(options.size.width())
        .arg(options.size.height())
        .arg(options.scale)
        .arg(QString::number(SwaySession::background & 0xffffffU, 16).rightJustified(6, u'0'),
             options.hasXwayland ? "force" : "disable",
             namesFile);
}

} // namespace

std::unique_ptr<SwaySession> SwaySession::start(const Options &options)
{
    std::unique_ptr<SwaySession> session(new SwaySession);
    session->makeFolders();
    session->writeConfiguration(options);
    if (session->startCompositor())
        return session;
    std::fprintf(stderr,
                 "sway does not come up:\n%s\n",
                 qPrintable(contentsOf(session->filePath(QStringLiteral("sway.log")))));
    return nullptr;
}

SwaySession::SwaySession() = default;

SwaySession::~SwaySession()
{
    if (m_compositor && m_compositor->isRunning())
        setFrozen(false);
}

void SwaySession::makeFolders()
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
    for (const char *variable : { "DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY" })
        m_environment.unset(variable);
    m_environment.set("XDG_SESSION_TYPE", "wayland");
    m_environment.set("XDG_CURRENT_DESKTOP", "sway");
}

void SwaySession::writeConfiguration(const Options &options) const
{
    QFile file(filePath(QStringLiteral("sway.conf")));
    const QString settings
        = firstSettings(options, filePath(QStringLiteral("names"))) + options.settings.join('\n') + '\n';
    if (!file.open(QIODevice::WriteOnly) || file.write(settings.toUtf8()) < 0)
        qFatal("%s cannot be written", qPrintable(file.fileName()));
}

bool SwaySession::startCompositor()
{
    const QStringList environment { "WLR_BACKENDS=headless",
                                    "WLR_RENDERER=pixman",
                                    "WLR_LIBINPUT_NO_DEVICES=1" };
    const QStringList command
        = asAnotherThanRoot({ "sway", "--config", filePath(QStringLiteral("sway.conf")) });
    m_compositor
        = ChildProcess::start(printingTo(filePath(QStringLiteral("sway.log")), command), environment);
    return m_compositor && waitUntil([this] { return readNames() || !m_compositor->isRunning(); })
        && m_compositor->isRunning();
}

bool SwaySession::readNames()
{
    const QStringList names = contentsOf(filePath(QStringLiteral("names"))).split(' ', Qt::SkipEmptyParts);
    if (names.size() < 2)
        return false;
    m_environment.set("WAYLAND_DISPLAY", names.value(0));
    m_environment.set("SWAYSOCK", names.value(1));
    if (names.size() > 2)
        m_environment.set("DISPLAY", names.value(2));
    return true;
}

bool SwaySession::command(const QString &command) const
{
    const auto process = ChildProcess::start({ "swaymsg", "--quiet", command });
    return process && process->wait() == 0;
}

bool SwaySession::addMonitor(QSize pixels, QPoint place) const
{
    const QString second = QStringLiteral("HEADLESS-2");
    const auto settings = QStringLiteral("output %1 mode %2x%3@60Hz position %4 %5")
                              .arg(second)
                              .arg(pixels.width())
                              .arg(pixels.height())
                              .arg(place.x())
                              .arg(place.y());
    return command(QStringLiteral("create_output")) && command(settings)
        && waitUntil([&] { return screen(second).size() == pixels; });
}

QImage SwaySession::screen(const QString &monitor) const
{
    const QString file = filePath(QStringLiteral("screen.ppm"));
    const auto process = ChildProcess::start({ "grim", "-c", "-t", "ppm", "-o", monitor, file });
    return process && process->wait() == 0 ? QImage(file) : QImage();
}

void SwaySession::setFrozen(bool isFrozen)
{
    ::kill(m_compositor->pid(), isFrozen ? SIGSTOP : SIGCONT);
}

void SwaySession::kill()
{
    m_compositor->stop(SIGKILL);
}

} // namespace vornic::test
