#include "app/cli/answer.h"
#include "app/cli/command_line.h"
#include "app/cli/devices_command.h"
#include "app/cli/exit_status.h"
#include "app/cli/record_command.h"
#include "app/cli/recover_command.h"
#include "app/cli/telling.h"
#include "app/session/translations.h"
#include "app/session/unix_signals.h"
#include "app/window/application_icon.h"
#include "app/window/window_program.h"
#include "base/exception_text.h"
#include "base/exit_guard.h"
#include "base/log.h"
#include "base/native_path.h"
#include "base/standard_output.h"
#include "base/thread.h"
#include "controls/skin_colors.h"
#include "desktop/silent_bus.h"
#include "desktop/single_instance.h"
#include "display/display_backend.h"
#include "overlay/toolkit_platform.h"

#include <QApplication>
#include <QFileInfo>

#include <malloc.h>

#include <csignal>
#include <optional>
#include <utility>

namespace {

using namespace vornic;

/// Goes on with the next event when the handling of one throws: a recording that runs must not end by it.
template<typename Application>
class GuardedApplication final : public Application
{
public:
    using Application::Application;

    bool notify(QObject *receiver, QEvent *event) override
    {
        bool isHandled = false;
        runGuarded("main", [&] { isHandled = Application::notify(receiver, event); });
        return isHandled;
    }
};

/// What \a task returns; where it throws, a sentence is said and the status is 1.
template<typename Task>
int statusOf(const Task &task)
{
    try {
        return task();
    } catch (...) {
        logMessage(
            QCoreApplication::translate("vornic", "Vornic has to end: %1.").arg(textOfHandledException()));
        return 1;
    }
}

/// Empty where a recording can have the threads that it always needs, the toolkit's and the encoder's among them.
QString noThreadsReason()
{
    constexpr int neededThreads = 16;
    return areThreadsAvailable(neededThreads)
        ? QString()
        : QCoreApplication::translate(
              "vornic",
              "Vornic needs %1 threads, and the system does not give it so many: the limit of "
              "processes or of memory is reached.")
              .arg(neededThreads);
}

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
    case CommandLine::Task::Toggle:
        return QLatin1StringView(WindowProgram::toggleAction);
    case CommandLine::Task::Pause:
        return QLatin1StringView(WindowProgram::pauseAction);
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

/// Whether \a task is one of a recording that runs, so that without a window there is nothing to do.
bool needsRecording(CommandLine::Task task)
{
    return task == CommandLine::Task::Stop || task == CommandLine::Task::Pause;
}

/// Why the window that runs does not do \a task now, or that there is none that could.
QString refusalOf(CommandLine::Task task)
{
    if (needsRecording(task))
        return QCoreApplication::translate("vornic", "Vornic is not recording.");
    if (task == CommandLine::Task::Toggle)
        return QCoreApplication::translate(
            "vornic", "Vornic cannot record now: it writes a movie, or waits for an answer.");
    return QCoreApplication::translate(
        "vornic",
        "Vornic cannot record now: it is recording already, writes a movie, or waits for an answer.");
}

/// Leaves what \a line asks for to the window that runs already; the exit status, or nothing where none takes it.
std::optional<int> handOver(SingleInstance &instance, const CommandLine &line)
{
    const QString path = movieFile(line);
    // The bus takes text only, and a path need be none.
    const QString file = path.isValidUtf16() ? path : fileUri(path);
    const auto answer
        = instance.isOnly() ? SingleInstance::Answer::None : instance.handOver(actionFor(line.task), file);
    if (answer == SingleInstance::Answer::Taken)
        return 0;
    const bool hasNoAnswer = answer == SingleInstance::Answer::None;
    if (hasNoAnswer && !needsRecording(line.task))
        return std::nullopt;
    logMessage(hasNoAnswer && !instance.isOnly()
                   ? QCoreApplication::translate("vornic", "The Vornic that runs does not answer.")
                   : refusalOf(line.task));
    return 1;
}

/// The toolkit waits for the display's server, while the program is to end.
void giveUpDisplay()
{
    logMessage(QCoreApplication::translate("vornic",
                                           "Vornic has to end, and cannot wait for the display any longer."));
    abandonDisplay();
}

int runWindow(int &argc, char **argv, const CommandLine &line)
{
    // Asked before the toolkit, which would end the program without a display.
    for (const auto &reasonNotTo : { noThreadsReason, noDisplayReason }) {
        if (const QString reason = reasonNotTo(); !reason.isEmpty()) {
            logMessage(reason);
            return 1;
        }
    }
    ExitGuard guard;
    std::optional<ToolkitPlatform> platform(std::in_place);
    GuardedApplication<QApplication> application(argc, argv);
    platform.reset();
    const Translations translations;
    return statusOf([&] {
        SingleInstance instance;
        if (const std::optional<int> status = handOver(instance, line))
            return *status;
        QApplication::setQuitOnLastWindowClosed(false);
        setAppearance();
        const UnixSignals signalled(giveUpDisplay);
        WindowProgram program(application, signalled, instance);
        guard.setLastWork([&program] { return program.endWithoutDisplay(); });
        const int status = program.run(actionFor(line.task), movieFile(line));
        guard.setLastWork([status] { return status; });
        leaveSilentDisplay();
        return status;
    });
}

/// What needs no display of its own, and waits for none: only the bus is asked.
int runRequest(int &argc, char **argv, const CommandLine &line)
{
    const GuardedApplication<QCoreApplication> application(argc, argv);
    const Translations translations;
    return statusOf([&] {
        SingleInstance instance;
        return handOver(instance, line).value_or(1);
    });
}

int runCommand(const CommandLine &line)
{
    switch (line.action) {
    case CommandLine::Action::Record:
    case CommandLine::Action::Recover:
        if (const QString reason = noThreadsReason(); !reason.isEmpty()) {
            tellError(reason);
            return exit_status::failed;
        }
        return line.action == CommandLine::Action::Record ? runRecordCommand(line) : runRecoverCommand(line);
    case CommandLine::Action::Devices:
        return runDevicesCommand();
    case CommandLine::Action::Help:
        return answer(line.helpText.toUtf8(), exit_status::done, exit_status::failed);
    case CommandLine::Action::Version:
        return answer("vornic " VORNIC_VERSION "\n", exit_status::done, exit_status::failed);
    case CommandLine::Action::Window:
    case CommandLine::Action::WrongUsage:
        break;
    }
    tellError(line.problem);
    tell(QCoreApplication::translate("vornic", "vornic --help lists all commands and options."));
    return exit_status::wrongUsage;
}

/// Everything that needs no window, in the user's language.
int runWithoutWindow(int &argc, char **argv, const QStringList &arguments)
{
    const GuardedApplication<QCoreApplication> application(argc, argv);
    const Translations translations;
    return statusOf([&] { return runCommand(parseCommandLine(arguments)); });
}

int run(int &argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += pathFromNative(argv[i]);
    QCoreApplication::setApplicationName(QStringLiteral("vornic"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VORNIC_VERSION));
    const CommandLine line = parseCommandLine(arguments);
    if (line.action == CommandLine::Action::Window || line.action == CommandLine::Action::Record)
        disregardSilentBuses();
    if (line.action != CommandLine::Action::Window)
        return runWithoutWindow(argc, argv, arguments);
    return needsRecording(line.task) ? runRequest(argc, argv, line) : runWindow(argc, argv, line);
}

} // namespace

int main(int argc, char **argv)
{
    occupyClosedStandardDescriptors();
    // Neither a reader of the output that goes away may end a recording, nor a limit on the size of files:
    // the write fails, and what was spooled becomes a movie.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
#ifdef M_ARENA_MAX
    // Blocks of a megabyte go from thread to thread. With a heap for each thread they leave holes in all of them.
    mallopt(M_ARENA_MAX, 2); // NOLINT(concurrency-mt-unsafe): there is one thread yet
#endif
    return statusOf([&] { return run(argc, argv); });
}
