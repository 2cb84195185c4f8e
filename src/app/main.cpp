#include "app/VornicAppDelegate.h"
#include "app/command_line.h"
#include "app/main_window.h"
#include "app/record_command.h"
#include "app/unix_signals.h"
#include "app/window_front_end.h"
#include "audio/PKAudioControl.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"
#include "platform/display/display_backend.h"
#include "platform/log.h"

#include <QApplication>

#include <csignal>
#include <cstdio>

namespace {

using namespace vornic;

int runWindow(int &argc, char **argv)
{
    // Asked before the toolkit, which would end the program without a display.
    if (const QString reason = noDisplayReason(); !reason.isEmpty()) {
        logMessage(reason);
        return 1;
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    WindowFrontEnd frontEnd;
    VornicAppDelegate delegate(frontEnd);
    delegate.setAudioControl(&PKAudioControl::sharedAudioControl());
    VNRecorderWndCtrl &overlay = VNRecorderWndCtrl::shareRecorderWndCtrl();
    delegate.setRecorderWndCtrl(&overlay);
    delegate.applicationDidFinishLaunching();
    const UnixSignals signalled;
    MainWindow window(delegate);
    frontEnd.setWindow(&window, &delegate);
    overlay.window()->setWindowAbove(&window);
    QObject::connect(&signalled, &UnixSignals::terminationAsked, &delegate, &VornicAppDelegate::terminate);
    QObject::connect(&window, &MainWindow::closed, &delegate, &VornicAppDelegate::terminate);
    QObject::connect(&delegate,
                     &VornicAppDelegate::readyToTerminate,
                     &application,
                     &QCoreApplication::quit,
                     Qt::QueuedConnection);
    window.show();
    const int status = QApplication::exec();
    delegate.applicationWillTerminate();
    overlay.window()->orderOut();
    overlay.window()->setWindowAbove(nullptr);
    return status;
}

int printAndEnd(const QString &text, std::FILE *stream, int status)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    return status;
}

int listDevices()
{
    const QStringList names = PKAudioControl::sharedAudioControl().inputDevicesName();
    if (names.isEmpty())
        return printAndEnd(
            QStringLiteral("vornic: There is no audio input device; is the sound server running?\n"),
            stderr,
            1);
    return printAndEnd(names.join(u'\n') + u'\n', stdout, 0);
}

int run(int &argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    QCoreApplication::setApplicationName(QStringLiteral("vornic"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VORNIC_VERSION));
    const CommandLine line = parseCommandLine(arguments);
    switch (line.action) {
    case CommandLine::Action::Window:
        return runWindow(argc, argv);
    case CommandLine::Action::Record: {
        const QCoreApplication application(argc, argv);
        return runRecordCommand(line);
    }
    case CommandLine::Action::Devices: {
        const QCoreApplication application(argc, argv);
        return listDevices();
    }
    case CommandLine::Action::Help:
        return printAndEnd(line.helpText, stdout, 0);
    case CommandLine::Action::Version:
        return printAndEnd(QStringLiteral("vornic " VORNIC_VERSION "\n"), stdout, 0);
    case CommandLine::Action::WrongUsage:
        break;
    }
    return printAndEnd(
        QStringLiteral("vornic: %1\nvornic: --help lists what there is.\n").arg(line.problem), stderr, 2);
}

} // namespace

int main(int argc, char **argv)
{
    // Neither a reader of the output that goes away may end a recording, nor a limit on the size of files:
    // the write fails, and what was spooled becomes a movie.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    return run(argc, argv);
}
