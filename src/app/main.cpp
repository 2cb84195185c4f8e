#include "app/VornicAppDelegate.h"
#include "app/cli/command_line.h"
#include "app/cli/record_command.h"
#include "app/cli/unix_signals.h"
#include "app/session/translations.h"
#include "app/window/application_icon.h"
#include "app/window/help_document.h"
#include "app/window/main_window.h"
#include "app/window/window_front_end.h"
#include "audio/audio_backend.h"
#include "audio/audio_control.h"
#include "base/log.h"
#include "base/main_queue.h"
#include "controls/skin_colors.h"
#include "desktop/single_instance.h"
#include "display/display_backend.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"

#include <QApplication>

#include <csignal>
#include <cstdio>

namespace {

using namespace vornic;

/// Dark as the controls are, also where the toolkit paints.
void dress()
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setPalette(skinPalette());
    QApplication::setWindowIcon(applicationIcon());
    QGuiApplication::setDesktopFileName(QStringLiteral("com.kavlor.vornic"));
}

/// The name of \a task, for the window that runs already.
QString actionFor(CommandLine::Task task)
{
    switch (task) {
    case CommandLine::Task::RecordFullDisplay:
        return QStringLiteral("record-full");
    case CommandLine::Task::RecordRectangle:
        return QStringLiteral("record-rectangle");
    case CommandLine::Task::Stop:
        return QStringLiteral("stop");
    case CommandLine::Task::Show:
        break;
    }
    return {};
}

/// An action that another start, or the desktop, asks for.
void perform(const QString &action, MainWindow &window, WindowFrontEnd &frontEnd, VornicAppDelegate &delegate)
{
    if (action == actionFor(CommandLine::Task::Stop)) {
        delegate.stopRecord();
        return;
    }
    frontEnd.bringMainWindowToFront();
    for (const auto task : { CommandLine::Task::RecordFullDisplay, CommandLine::Task::RecordRectangle }) {
        if (action == actionFor(task))
            window.record(task == CommandLine::Task::RecordFullDisplay);
    }
}

int runWindow(int &argc, char **argv, CommandLine::Task task)
{
    // Asked before the toolkit, which would end the program without a display.
    if (const QString reason = noDisplayReason(); !reason.isEmpty()) {
        logMessage(reason);
        return 1;
    }
    QApplication application(argc, argv);
    SingleInstance instance;
    if (!instance.isOnly() && instance.handOver(actionFor(task)))
        return 0;
    if (task == CommandLine::Task::Stop) {
        logMessage(QCoreApplication::translate("vornic", "No window of Vornic is there that records."));
        return 1;
    }
    if (const QString reason = noAudioReason(); !reason.isEmpty())
        logMessage(reason);
    QApplication::setQuitOnLastWindowClosed(false);
    const Translations translations;
    dress();
    WindowFrontEnd frontEnd;
    VornicAppDelegate delegate(frontEnd.frontEnd());
    delegate.setAudioControl(&mainAudioControl());
    VNRecorderWndCtrl &overlay = VNRecorderWndCtrl::shareRecorderWndCtrl();
    delegate.setRecorderWndCtrl(&overlay);
    delegate.setHelpDocument(helpDocument());
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
    const auto act = [&](const QString &action) { perform(action, window, frontEnd, delegate); };
    QObject::connect(&instance, &SingleInstance::activated, &window, [&] { act({}); });
    QObject::connect(&instance, &SingleInstance::actionAsked, &window, act);
    // The session ends: the window goes on until it is told to end, but the options are kept now.
    QObject::connect(
        &application, &QGuiApplication::commitDataRequest, &delegate, &VornicAppDelegate::saveOptions);
    window.show();
    if (task != CommandLine::Task::Show)
        main_queue::async([&act, task] { act(actionFor(task)); });
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
    if (const QString reason = noAudioReason(); !reason.isEmpty())
        return printAndEnd(QStringLiteral("vornic: %1\n").arg(reason), stderr, 1);
    const QStringList names = mainAudioControl().inputDevicesName();
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
        return runWindow(argc, argv, line.task);
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
