#include "support/mutter_session.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <initializer_list>

namespace vornic::test {

namespace {

const QString compositor = QStringLiteral("mutter");

void write(const QString &path, const QString &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        qFatal("%s cannot be written", qPrintable(path));
}

/// The monitor as the compositor remembers it from an earlier session.
QString monitorSettings(const MutterSession::Options &options)
{
    return QStringLiteral("<monitors version=\"2\"><configuration><logicalmonitor>"
                          "<x>0</x><y>0</y><scale>%1</scale><primary>yes</primary><monitor><monitorspec>"
                          "<connector>Meta-0</connector><vendor>MetaVendor</vendor>"
                          "<product>MetaVirtualMonitor</product><serial>0x00</serial></monitorspec>"
                          "<mode><width>%2</width><height>%3</height><rate>60.000</rate></mode>"
                          "</monitor></logicalmonitor></configuration></monitors>\n")
        .arg(options.scale)
        .arg(options.size.width())
        .arg(options.size.height());
}

} // namespace

const QString MutterSession::consentToken = QStringLiteral("00000000-0000-4000-8000-000000000001");

bool MutterSession::isInstalled()
{
    const auto isThere = [](const char *program) {
        return !QStandardPaths::findExecutable(QLatin1StringView(program)).isEmpty();
    };
    return QFile::exists(QStringLiteral("/usr/libexec/xdg-desktop-portal-gnome"))
        && std::ranges::all_of(
               std::initializer_list<const char *> {
                   "mutter", "Xwayland", "pipewire", "wireplumber", "gdbus" },
               isThere);
}

std::unique_ptr<MutterSession> MutterSession::start(const Options &options)
{
    std::unique_ptr<MutterSession> session(new MutterSession);
    session->writeSettings(options);
    SessionPrograms &programs = session->m_programs;
    const bool isUp = programs.startBus() && programs.startPipeWire() && session->startCompositor(options)
        && SessionPrograms::grant(
                          consentToken,
                          QStringLiteral("('GNOME', uint32 1, <(int64 1, int64 1, [(uint32 0, uint32 1, "
                                         "<'MetaVendor:MetaVirtualMonitor:0x00'>)])>)"))
        && programs.startPortal(QStringLiteral("gnome"), { QStringLiteral("GDK_BACKEND=wayland") });
    return isUp ? std::move(session) : nullptr;
}

MutterSession::MutterSession()
    : m_programs(compositor)
{
    m_programs.environment().set("NO_AT_BRIDGE", QStringLiteral("1"));
    m_programs.environment().set("GSETTINGS_BACKEND", QStringLiteral("keyfile"));
    m_programs.environment().set("LIBGL_ALWAYS_SOFTWARE", QStringLiteral("1"));
}

/// At another scale than 1 windows are enlarged by the compositor, as users of such scales have it.
void MutterSession::writeSettings(const Options &options) const
{
    if (options.scale == 1)
        return;
    const QString settings = filePath(QStringLiteral("config/glib-2.0/settings"));
    QDir().mkpath(settings);
    write(settings + "/keyfile",
          QStringLiteral("[org/gnome/mutter]\nexperimental-features=['scale-monitor-framebuffer']\n"));
    write(filePath(QStringLiteral("config/monitors.xml")), monitorSettings(options));
}

bool MutterSession::startCompositor(const Options &options)
{
    const QString size = QStringLiteral("%1x%2").arg(options.size.width()).arg(options.size.height());
    return m_programs.start(
        compositor,
        { compositor, "--headless", "--virtual-monitor", size, "--wayland-display", "wayland-1" },
        [this] {
            return readNames() && SessionPrograms::isOnBus(QStringLiteral("org.gnome.Mutter.ScreenCast"));
        });
}

bool MutterSession::readNames()
{
    static const QRegularExpression told(QStringLiteral("public X11 display (:[0-9]+)"));
    const auto match = told.match(m_programs.printedBy(compositor));
    const QDir run(filePath(QStringLiteral("run")));
    const QStringList keys = run.entryList({ ".mutter-Xwaylandauth.*" }, QDir::Files | QDir::Hidden);
    if (!match.hasMatch() || keys.isEmpty())
        return false;
    m_programs.environment().set("WAYLAND_DISPLAY", QStringLiteral("wayland-1"));
    m_programs.environment().set("DISPLAY", match.captured(1));
    m_programs.environment().set("XAUTHORITY", run.filePath(keys.first()));
    return true;
}

} // namespace vornic::test
