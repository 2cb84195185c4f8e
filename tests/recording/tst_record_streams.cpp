#include "long_recording.h"
#include "program_fixture.h"
#include "support/built_program.h"
#include "support/pseudo_terminal.h"

#include <QFileInfo>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>

namespace vornic {
namespace {

/// The built program on fakes, and what it is connected with: signals, standard streams, a terminal.
class RecordStreamsTest : public ProgramTest
{
protected:
    QProcessEnvironment environment() const override
    {
        QProcessEnvironment variables = ProgramTest::environment();
        variables.remove("DISPLAY");
        variables.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        variables.insert("VORNIC_DISPLAY", "fake");
        variables.insert("VORNIC_AUDIO", "fake");
        return variables;
    }
    /// The program with \a arguments, behind \a shell: "exec $0 ..." with its redirections.
    Result inShell(const QString &shell, const QStringList &arguments) const
    {
        return finish(*startInShell(shell, arguments));
    }
    std::unique_ptr<QProcess> startInShell(const QString &shell, const QStringList &arguments) const
    {
        return start("sh",
                     QStringList { "-c", shell + "exec \"$0\" \"$@\"", test::vornicProgram() } + arguments);
    }
    static QStringList recording(const QStringList &options, const QString &file = "o.mp4")
    {
        return QStringList { "record", "--ignore-low-space", "--region", "0,0,160,120" } + options
            + QStringList { file };
    }
    /// Both at once, as far as the program can tell.
    static void signalTogether(const QProcess &process, std::initializer_list<int> numbers)
    {
        signal(process, SIGSTOP);
        for (const int number : numbers)
            signal(process, number);
        signal(process, SIGCONT);
    }
    QStringList unfinished() const { return vornic({ "recover" }).output.split('\n', Qt::SkipEmptyParts); }
    const QString unwritten = "vornic: Standard output could not be written: ";
};

TEST_F(RecordStreamsTest, ClosedDescriptorsAreNotThoseOfTheRecording)
{
    const auto process = startInShell("exec <&- >&- 2>&-; ", recording({}));
    const QString folders = "cache/com.kavlor.vornic/recordings";
    ASSERT_TRUE(test::waitUntil([&] {
        process->waitForFinished(10);
        const QString video = folders + '/' + entries(folders).value(0) + "/vornicvideo.tmp";
        return QFileInfo(folder.filePath(video)).size() > 0;
    }));
    for (const char *descriptor : { "0", "1", "2" })
        EXPECT_EQ(
            QFile::symLinkTarget(QStringLiteral("/proc/%1/fd/%2").arg(process->processId()).arg(descriptor)),
            "/dev/null");
    signal(*process, SIGTERM);
    EXPECT_EQ(finish(*process).status, 3) << "the movie is there, and its name could not be told";
    EXPECT_GT(secondsOf(movie()), 0);
    EXPECT_TRUE(unfinished().isEmpty());
}

TEST_F(RecordStreamsTest, AnAnswerThatCannotBeWrittenIsInTheStatus)
{
    const Result result = inShell("exec >/dev/full; ", recording({ "--duration", "0.3" }));
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(result.error.endsWith(unwritten + "No space left on device.\n"))
        << result.error.toStdString();
    EXPECT_GT(secondsOf(movie()), 0.1);
    for (const char *arguments : { "devices", "--help", "--version" }) {
        const Result other = inShell("exec >/dev/full; ", { arguments });
        EXPECT_EQ(other.status, 1) << arguments;
        EXPECT_EQ(other.error, unwritten + "No space left on device.\n") << arguments;
        EXPECT_EQ(inShell("exec >&-; ", { arguments }).error, unwritten + "Bad file descriptor.\n")
            << arguments;
    }
}

TEST_F(RecordStreamsTest, AStoppedTerminalStopsNoRecording)
{
    test::PseudoTerminal terminal;
    const int device = ::open(terminal.device().toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(device, 0);
    ASSERT_EQ(::tcflow(device, TCOOFF), 0) << "as Ctrl-S does";
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment());
    process->setWorkingDirectory(folder.path());
    process->setStandardErrorFile(terminal.device());
    process->start(test::vornicProgram(), recording({ "--duration", "2" }));
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 0);
    EXPECT_GT(secondsOf(movie()), 1);
    EXPECT_TRUE(terminal.written().isEmpty());
    ::close(device);
}

TEST_F(RecordStreamsTest, AnIgnoredHangUpStaysIgnored)
{
    const auto process = startInShell("trap '' HUP; ", recording({ "--duration", "2" }));
    QString error;
    ASSERT_TRUE(waitForText(*process, "00:00:00", error)) << error.toStdString();
    signal(*process, SIGHUP);
    EXPECT_EQ(finish(*process).status, 0);
    EXPECT_GT(secondsOf(movie()), 1);
}

TEST_F(RecordStreamsTest, WhoAsksTwiceIsToldWhatIsGoingOn)
{
    const auto process = startVornic(recording({}));
    QString error;
    ASSERT_TRUE(waitForText(*process, "00:00:00", error)) << error.toStdString();
    signalTogether(*process, { SIGINT, SIGTERM });
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 0) << "the second one does not put the movie off";
    error += result.error;
    EXPECT_TRUE(error.contains(
        "\nThe recording is being ended, and its movie is next; Ctrl-\\ keeps it for later.\n"))
        << error.toStdString();
    EXPECT_TRUE(error.contains("\nWriting the movie; Ctrl-C puts it off for later.\n"))
        << error.toStdString();
}

/// Programs that are asked to leave at once.
class LeavingTest : public RecordStreamsTest
{
protected:
    void expectOnlyTheRecordingIsLeft(QProcess &process, QString error) const
    {
        signal(process, SIGQUIT);
        const Result result = finish(process);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(entries(), QStringList { "cache" }) << "no movie, no part of one, no core";
        const QStringList left = unfinished();
        ASSERT_EQ(left.size(), 1);
        const QString id = left.first().section(' ', 0, 0);
        error += result.error;
        EXPECT_TRUE(
            error.endsWith("vornic: The recording is kept: vornic recover " + id + " makes the movie.\n"))
            << error.toStdString();
        EXPECT_EQ(vornic({ "recover", id }).status, 0);
        EXPECT_GT(secondsOf(movie()), 0.2);
    }
};

TEST_F(LeavingTest, AQuitWhileItIsRecordedLeavesNothingButTheRecording)
{
    const auto process = startVornic({ "record", "--ignore-low-space", "--duration", "3", "o.mp4" });
    QString error;
    ASSERT_TRUE(waitForText(*process, "00:00:00", error)) << error.toStdString();
    letPass(std::chrono::milliseconds(300));
    expectOnlyTheRecordingIsLeft(*process, error);
}

TEST_F(LeavingTest, AQuitWhileTheMovieIsWrittenLeavesNothingButTheRecording)
{
    const auto process = startVornic({ "recover", storeLongRecording(folder.filePath("cache"), movie()) });
    QString error;
    ASSERT_TRUE(waitForText(*process, "Writing the movie", error)) << error.toStdString();
    expectOnlyTheRecordingIsLeft(*process, error);
}

TEST_F(RecordStreamsTest, ADurationOfManyDaysDoesNotEndAtOnce)
{
    // As 32 bits of milliseconds they would be a tenth of a second, or none.
    for (const char *duration : { "4294967.4", "2147484", "31536000" }) {
        const auto process = startVornic(recording({ "--overwrite", "--duration", duration }));
        QString error;
        ASSERT_TRUE(waitForText(*process, "00:00:00", error)) << error.toStdString();
        EXPECT_TRUE(error.startsWith(QStringLiteral("Recording for %1 s;").arg(duration)))
            << error.toStdString();
        letPass(std::chrono::milliseconds(700));
        signal(*process, SIGINT);
        EXPECT_EQ(finish(*process).status, 0);
        EXPECT_GT(secondsOf(movie()), 0.4) << duration;
    }
}

TEST_F(RecordStreamsTest, TheShortestDurationHoldsAPicture)
{
    EXPECT_EQ(vornic(recording({ "--duration", "1e-300" })).status, 0);
    EXPECT_GT(secondsOf(movie()), 0);
}

} // namespace
} // namespace vornic
