#include "app/cli/command_line.h"
#include "app/cli/devices_command.h"
#include "app/cli/record_command.h"
#include "app/cli/recover_command.h"
#include "app/session/translations.h"
#include "app/session/unix_signals.h"
#include "app/window/application_icon.h"
#include "app/window/window_program.h"
#include "base/log.h"
#include "controls/skin_colors.h"
#include "desktop/single_instance.h"
#include "display/display_backend.h"

#include <QApplication>
#include <QFileInfo>

#include <csignal>
#include <cstdio>
#include <optional>

namespace {

using namespace vornic;

/// Dark as the controls are, also where the toolkit paints.
void setAppearance()
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
        return QLatin1StringView(WindowProgram::recordFullAction);
    case CommandLine::Task::RecordRectangle:
        return QLatin1StringView(WindowProgram::recordRectangleAction);
    case CommandLine::Task::Stop:
        return QLatin1StringView(WindowProgram::stopAction);
    case CommandLine::Task::Show:
        break;
    }
    return {};
}

/// Where the movie is to be put, whatever folder the window that runs was started in; empty: it asks.
QString movieFile(const CommandLine &line)
{
    return line.file.isEmpty() ? QString() : QFileInfo(line.file).absoluteFilePath();
}

/// Leaves what \a line asks for to the window that runs already; the exit status, or nothing where none takes it.
std::optional<int> handOver(SingleInstance &instance, const CommandLine &line)
{
    const QString file = movieFile(line);
    const auto answer
        = instance.isOnly() ? SingleInstance::Answer::None : instance.handOver(actionFor(line.task), file);
    if (answer == SingleInstance::Answer::Taken)
        return 0;
    if (answer == SingleInstance::Answer::None && line.task != CommandLine::Task::Stop)
        return std::nullopt;
    logMessage(line.task == CommandLine::Task::Stop
                   ? QCoreApplication::translate("vornic", "Vornic is not recording.")
                   : QCoreApplication::translate("vornic", "Vornic is recording already."));
    return 1;
}

int runWindow(int &argc, char **argv, const CommandLine &line)
{
    // Asked before the toolkit, which would end the program without a display.
    if (const QString reason = noDisplayReason(); !reason.isEmpty()) {
        logMessage(reason);
        return 1;
    }
    QApplication application(argc, argv);
    const Translations translations;
    SingleInstance instance;
    if (const std::optional<int> status = handOver(instance, line))
        return *status;
    QApplication::setQuitOnLastWindowClosed(false);
    setAppearance();
    const UnixSignals signalled;
    WindowProgram program(application, signalled, instance);
    return program.run(actionFor(line.task), movieFile(line));
}

int printAndEnd(const QString &text, std::FILE *stream, int status)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    return status;
}

/// Everything that needs no window, in the user's language.
int runCommand(int &argc, char **argv, const QStringList &arguments)
{
    const QCoreApplication application(argc, argv);
    const Translations translations;
    const CommandLine line = parseCommandLine(arguments);
    switch (line.action) {
    case CommandLine::Action::Record:
        return runRecordCommand(line);
    case CommandLine::Action::Recover:
        return runRecoverCommand(line);
    case CommandLine::Action::Devices:
        return runDevicesCommand();
    case CommandLine::Action::Help:
        return printAndEnd(line.helpText, stdout, 0);
    case CommandLine::Action::Version:
        return printAndEnd(QStringLiteral("vornic " VORNIC_VERSION "\n"), stdout, 0);
    case CommandLine::Action::Window:
    case CommandLine::Action::WrongUsage:
        break;
    }
    const QString hint
        = QCoreApplication::translate("vornic", "vornic --help lists all commands and options.");
    return printAndEnd(QStringLiteral("vornic: %1\n%2\n").arg(line.problem, hint), stderr, 2);
}

int run(int &argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    QCoreApplication::setApplicationName(QStringLiteral("vornic"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VORNIC_VERSION));
    const CommandLine line = parseCommandLine(arguments);
    return line.action == CommandLine::Action::Window ? runWindow(argc, argv, line)
                                                      : runCommand(argc, argv, arguments);
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
