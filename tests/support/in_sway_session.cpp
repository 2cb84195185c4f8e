// Runs a command inside a private Wayland desktop, which grants its monitor to whoever records:
//
//   vornic_in_sway_session [--size WxH] [--scale FACTOR] [--xwayland] [--no-portal] COMMAND [ARGUMENT...]
//
// The exit status is the command's; 90 when the desktop does not come up, or a signal ends it before the command.

#include "support/screen_cast_portal.h"
#include "support/sway_session.h"
#include "support/wait_until.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <chrono>
#include <csignal>

namespace {

using namespace vornic::test;

constexpr int notUp = 90;
volatile std::sig_atomic_t isToEnd = 0;

void end(int /*signalNumber*/)
{
    isToEnd = 1;
}

void describe(QCommandLineParser &line)
{
    line.addOption({ "size", "Device pixels of the monitor.", "WxH", "1280x720" });
    line.addOption({ "scale", "Device pixels for each logical coordinate.", "factor", "1" });
    line.addOption({ "xwayland", "With an X server for programs that want one." });
    line.addOption({ "no-portal", "Without bus, PipeWire and portal." });
    line.addPositionalArgument("command", "What is run.", "COMMAND [ARGUMENT...]");
    line.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    line.addHelpOption();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser line;
    describe(line);
    line.process(application);
    if (line.positionalArguments().isEmpty())
        line.showHelp(notUp);
    const QStringList size = line.value("size").split('x');
    SwaySession::Options options;
    options.size = QSize(size.value(0).toInt(), size.value(1).toInt());
    options.scale = line.value("scale").toDouble();
    options.hasXwayland = line.isSet("xwayland");
    const auto session = SwaySession::start(options);
    const auto portal = session && !line.isSet("no-portal") ? ScreenCastPortal::start(*session) : nullptr;
    if (!session || (!portal && !line.isSet("no-portal")))
        return notUp;
    std::signal(SIGINT, end);
    std::signal(SIGTERM, end);
    const auto command = ChildProcess::start(line.positionalArguments());
    waitUntil([&] { return !command || isToEnd != 0 || !command->isRunning(); }, std::chrono::hours(24));
    if (!command || command->isRunning())
        return notUp;
    return command->wait();
}
