#include "capture/spool/VNDataBlock.h"
#include "capture/spool/journal_contents.h"
#include "long_recording.h"
#include "program_fixture.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <csignal>

namespace vornic {
namespace {

using testing::numbersOf;
using testing::probe;

/// Recordings of the fake display by the built program, killed and found again. Whoever makes the movie has no display.
class RecoverCommandTest : public ProgramTest
{
protected:
    static constexpr const char *recordings = "cache/com.kavlor.vornic/recordings";

    QProcessEnvironment environment() const override
    {
        QProcessEnvironment variables = ProgramTest::environment();
        for (const char *name : { "DISPLAY", "WAYLAND_DISPLAY", "VORNIC_DISPLAY" })
            variables.remove(QLatin1StringView(name));
        if (records)
            variables.insert("VORNIC_DISPLAY", "fake");
        variables.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        variables.insert("HOME", folder.path());
        variables.insert("LC_ALL", "C.UTF-8");
        return variables;
    }

    std::unique_ptr<QProcess> startRecording(const QString &file = "o.mp4")
    {
        records = true;
        auto process = startVornic({ "record", "--ignore-low-space", "--region", region, file });
        records = false;
        QString error;
        EXPECT_TRUE(waitForText(*process, "00:00:00", error)) << error.toStdString();
        return process;
    }
    /// Whether each of the recordings \a ids has a picture that a crash leaves.
    bool isAPictureKept(const QStringList &ids) const
    {
        return std::ranges::all_of(ids, [this](const QString &id) {
            return !readJournal(bytesOf(pathOf(id, "journal"))).video.empty();
        });
    }
    /// A recording of about \a time, or until a picture of it is kept, whose program was killed; its id.
    QString killedRecording(std::chrono::milliseconds time, const QString &file = "o.mp4")
    {
        const QStringList before = ids();
        const auto process = startRecording(file);
        letPass(time);
        EXPECT_TRUE(test::waitUntil([this] { return isAPictureKept(entries(recordings)); }));
        process->kill();
        process->waitForFinished();
        QStringList found = ids();
        found.removeIf([&before](const QString &id) { return before.contains(id); });
        EXPECT_EQ(found.size(), 1);
        return found.value(0);
    }
    /// Of the recordings that are listed.
    QStringList ids() const
    {
        QStringList found;
        for (const QString &line : vornic({ "recover" }).output.split('\n', Qt::SkipEmptyParts))
            found += line.section(' ', 0, 0);
        return found;
    }
    QString pathOf(const QString &id, const QString &file) const
    {
        return folder.filePath(QLatin1StringView(recordings) + "/" + id + "/" + file);
    }
    static std::string lastLine(const QString &text)
    {
        return text.trimmed().section('\n', -1).toStdString();
    }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// The rate that a movie's encoder aimed at, in thousands of bits a second.
    static int bitRateOf(const QString &path)
    {
        static const QRegularExpression form("bitrate=(\\d+)");
        return form.match(QString::fromLatin1(bytesOf(path))).captured(1).toInt();
    }

    QString region = "0,0,640,480"; ///< that is recorded
    bool records = false;           ///< whether a program that is started has the fake display
};

TEST_F(RecoverCommandTest, NothingToRecoverIsOneSentence)
{
    const Result result = vornic({ "recover" });
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error, "vornic: There is no unfinished recording.\n");
}

TEST_F(RecoverCommandTest, AKilledRecordingIsListedAndBecomesAMovie)
{
    const QString before = QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm:ss");
    const QString id = killedRecording(std::chrono::milliseconds(2000));
    const Result list = vornic({ "recover" });
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.error, "");
    const QRegularExpression form("^([0-9]{8}-[0-9]{6}-[0-9a-f]{4})  (\\S+ \\S+)  00:00:0([1-9])  +[0-9.]+ "
                                  "[KM]iB  ([0-9]+) frames\n$");
    const QRegularExpressionMatch match = form.match(list.output);
    ASSERT_TRUE(match.hasMatch()) << list.output.toStdString();
    EXPECT_GE(match.captured(2), before);
    EXPECT_LE(match.captured(2), QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm:ss"));

    const Result result = vornic({ "recover", id });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    // Also that no display is missed.
    for (const QString &line : result.error.split('\n', Qt::SkipEmptyParts))
        EXPECT_TRUE(line.startsWith("Writing the movie: ")) << line.toStdString();
    EXPECT_EQ(lastLine(result.output), movie().toStdString());
    EXPECT_LE(numbersOf(probe(movie()), "packets", "video", "pts").size(), match.captured(4).toLongLong());
    EXPECT_EQ(sizeOf(movie()), QSize(640, 480));
    EXPECT_GE(secondsOf(movie()), 1.5) << "half a second may be lost";
    EXPECT_TRUE(ids().isEmpty());
    EXPECT_FALSE(QFile::exists(pathOf(id, {})));
}

TEST_F(RecoverCommandTest, TheQualityMayBeAnother)
{
    const QString high = killedRecording(std::chrono::milliseconds(300), "high.mp4");
    const QString medium = killedRecording(std::chrono::milliseconds(300), "medium.mp4");
    EXPECT_EQ(vornic({ "recover", high }).status, 0);
    EXPECT_EQ(vornic({ "recover", "--quality=medium", medium }).status, 0);
    EXPECT_EQ(bitRateOf(movie("high.mp4")), 768);
    EXPECT_EQ(bitRateOf(movie("medium.mp4")), 368);
}

TEST_F(RecoverCommandTest, AFileThatIsThereIsReplacedOnlyWhereThatIsAskedFor)
{
    const QString id = killedRecording(std::chrono::milliseconds(300));
    write(movie(), "precious");
    const Result refused = vornic({ "recover", id, "o.mp4" });
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.error, "vornic: o.mp4 exists; --overwrite replaces it.\n");
    EXPECT_EQ(bytesOf(movie()), "precious");
    ASSERT_EQ(ids(), QStringList { id });
    // Without a name it is put beside it.
    const Result beside = vornic({ "recover", id });
    EXPECT_EQ(lastLine(beside.output), movie("o 2.mp4").toStdString()) << beside.error.toStdString();
    EXPECT_EQ(bytesOf(movie()), "precious");

    const QString other = killedRecording(std::chrono::milliseconds(300), "new.mp4");
    EXPECT_EQ(vornic({ "recover", other, "o.mp4", "--overwrite" }).status, 0);
    EXPECT_EQ(sizeOf(movie()), QSize(640, 480));
}

TEST_F(RecoverCommandTest, OneThatIsNotThereIsOneSentence)
{
    for (const QStringList &arguments : { QStringList { "20261122-140512-3fa9" },
                                          QStringList { "--delete", "20261122-140512-3fa9" },
                                          QStringList { "--delete", "../../../config" } }) {
        const Result result = vornic(QStringList { "recover" } + arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.error.toStdString(),
                  "vornic: There is no recording " + arguments.last().toStdString() + ".\n");
    }
}

TEST_F(RecoverCommandTest, OneThatRunsIsLeftAlone)
{
    const auto process = startRecording();
    EXPECT_TRUE(ids().isEmpty());
    const QString id = entries(recordings).value(0);
    for (const QStringList &arguments : { QStringList { id }, QStringList { "--delete", id } }) {
        const Result result = vornic(QStringList { "recover" } + arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.error.toStdString(),
                  "vornic: The recording " + id.toStdString() + " is in use by another Vornic.\n");
    }
    signal(*process, SIGINT);
    EXPECT_EQ(finish(*process).status, 0);
    EXPECT_GT(secondsOf(movie()), 0);
}

TEST_F(RecoverCommandTest, OneThatCannotBeReadIsListedAndDeleted)
{
    const QString id = killedRecording(std::chrono::milliseconds(300));
    write(pathOf(id, "journal"), QByteArray(5000, 'x'));
    const Result list = vornic({ "recover" });
    EXPECT_EQ(list.status, 0);
    EXPECT_TRUE(
        QRegularExpression("^" + id + "  +[0-9.]+ [KM]iB  cannot be read\n$").match(list.output).hasMatch())
        << list.output.toStdString();
    const Result made = vornic({ "recover", id });
    EXPECT_EQ(made.status, 1);
    EXPECT_EQ(made.error.toStdString(),
              "vornic: The recording " + id.toStdString()
                  + " cannot be read: its journal is missing or damaged.\n");
    EXPECT_EQ(ids(), QStringList { id });
    const Result deleted = vornic({ "recover", "--delete", id });
    EXPECT_EQ(deleted.status, 0);
    EXPECT_EQ(deleted.output.toStdString(),
              "Deleted the recording " + id.toStdString() + ", which could not be read.\n");
    EXPECT_TRUE(ids().isEmpty());
}

TEST_F(RecoverCommandTest, TheBeginningOfAnIdIsEnoughWhereOneBeginsSo)
{
    const QString first = killedRecording(std::chrono::milliseconds(300), "first.mp4");
    const QString second = killedRecording(std::chrono::milliseconds(300), "second.mp4");
    const Result both = vornic({ "recover", "2" });
    EXPECT_EQ(both.status, 1);
    EXPECT_EQ(both.error.toStdString(),
              "vornic: Several recordings begin with 2: " + std::min(first, second).toStdString() + ", "
                  + std::max(first, second).toStdString() + ".\n");
    EXPECT_EQ(vornic({ "recover", "--delete", first.left(19) }).status, 1) << "not what is deleted";
    EXPECT_EQ(ids().size(), 2);
    const Result deleted = vornic({ "recover", "--delete", first });
    EXPECT_EQ(deleted.status, 0);
    EXPECT_TRUE(deleted.output.startsWith("Deleted the recording " + first + ": 00:00:0"));
    EXPECT_EQ(ids(), QStringList { second });
    EXPECT_EQ(vornic({ "recover", second.left(12), "short.mp4" }).status, 0);
    EXPECT_GT(secondsOf(movie("short.mp4")), 0);
}

TEST_F(RecoverCommandTest, ASecondSignalPutsTheMovieOff)
{
    records = true;
    const auto process = startVornic({ "record", "--ignore-low-space", "o.mp4" });
    records = false;
    QString error;
    ASSERT_TRUE(waitForText(*process, "00:00:00", error)) << error.toStdString();
    letPass(std::chrono::milliseconds(3000));
    for (const char *awaited : { "Writing the movie; Ctrl-C puts it off for later.\n", "recover" }) {
        signal(*process, SIGINT);
        ASSERT_TRUE(waitForText(*process, awaited, error)) << error.toStdString();
    }
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(entries(), QStringList { "cache" }) << "nothing half-written";
    const QStringList found = ids();
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ((error + result.error).section('\n', -2).trimmed().toStdString(),
              "vornic: The recording is kept: vornic recover " + found.first().toStdString()
                  + " makes the movie.");
    EXPECT_EQ(vornic({ "recover", found.first() }).status, 0);
    EXPECT_GT(secondsOf(movie()), 2.5);
}

TEST_F(RecoverCommandTest, AMovieThatCannotBeWrittenTellsTheWayOn)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir("sub"));
    const auto process = startRecording("sub/o.mp4");
    ASSERT_TRUE(QDir(folder.path()).rmdir("sub"));
    signal(*process, SIGTERM);
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 1);
    const QStringList found = ids();
    ASSERT_EQ(found.size(), 1) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("The folder " + movie("sub") + " does not exist.\n")
                || result.error.contains("The folder sub does not exist.\n"))
        << result.error.toStdString();
    EXPECT_TRUE(result.error.endsWith("vornic: The recording is kept: vornic recover " + found.first()
                                      + " makes the movie.\n"))
        << result.error.toStdString();
    // Its folder is still gone: it gets a name of its time, among the user's movies.
    const Result made = vornic({ "recover", found.first() });
    EXPECT_EQ(made.status, 0) << made.error.toStdString();
    EXPECT_TRUE(QString::fromStdString(lastLine(made.output)).startsWith(movie("Recording 2")))
        << made.output.toStdString();
}

TEST_F(RecoverCommandTest, WhatAKilledWriterLeftIsGoneAtTheNextStart)
{
    const QString id = storeLongRecording(folder.filePath("cache"), movie());
    const auto process = startVornic({ "recover", id });
    // The name is tried first, with an empty file that is gone again.
    const auto isWritten
        = [this](const QString &name) { return QFileInfo(folder.filePath(name)).size() > 0; };
    ASSERT_TRUE(test::waitUntil([&] { return std::ranges::any_of(entries().filter(".part"), isWritten); }));
    process->kill();
    process->waitForFinished();
    ASSERT_EQ(entries().filter(".part").size(), 1) << entries().join(' ').toStdString();
    const auto next = startRecording("next.mp4");
    EXPECT_TRUE(entries().filter(".part").isEmpty());
    signal(*next, SIGINT);
    EXPECT_EQ(finish(*next).status, 0);
    EXPECT_EQ(vornic({ "recover", id }).status, 0);
    EXPECT_GE(secondsOf(movie()), 1.5);
}

} // namespace
} // namespace vornic
