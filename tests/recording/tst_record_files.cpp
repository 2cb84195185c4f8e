#include "base/native_path.h"
#include "program_fixture.h"
#include "support/built_program.h"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace vornic {
namespace {

/// What stands where a movie is to be put: before, while and after it is recorded. On a fake display.
class RecordFilesTest : public ProgramTest
{
protected:
    QProcessEnvironment environment() const override
    {
        QProcessEnvironment variables = ProgramTest::environment();
        variables.remove("DISPLAY");
        variables.remove("WAYLAND_DISPLAY");
        variables.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        variables.insert("VORNIC_DISPLAY", "fake");
        return variables;
    }
    void putFile(const QString &name, const QByteArray &contents = "precious") const
    {
        QFile file(movie(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
    QByteArray contentsOf(const QString &name) const
    {
        QFile file(movie(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Of a file of the one recording that there is; 0 where there is none.
    qint64 sizeInSpool(const QString &name) const
    {
        const QString recordings = QStringLiteral("cache/com.kavlor.vornic/recordings");
        const QStringList ids = QDir(movie(recordings)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        return QFileInfo(movie(recordings + u'/' + ids.value(0) + u'/' + name)).size();
    }
    QStringList files() const
    {
        return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }
    /// A recording of a small region that runs; null where it does not begin.
    std::unique_ptr<QProcess> begin(const QStringList &options = {}, const QString &file = "o.mp4") const
    {
        auto process = startVornic(QStringList { "record", "--ignore-low-space", "--region", "0,0,64,48" }
                                   + options + QStringList { file });
        QString seen;
        if (waitForText(*process, "00:00:00", seen))
            return process;
        ADD_FAILURE() << seen.toStdString();
        return nullptr;
    }
    static Result end(QProcess &process)
    {
        signal(process, SIGTERM);
        return finish(process);
    }
    Result recordBriefly(const QStringList &options, const QString &file = "o.mp4") const
    {
        return record(QStringList { "--region", "0,0,64,48", "--duration", "0.3" } + options, file);
    }
};

TEST_F(RecordFilesTest, AnOldMovieStaysUntilTheNewOneIsThere)
{
    putFile("o.mp4");
    const auto process = begin({ "--overwrite" });
    ASSERT_TRUE(process);
    EXPECT_EQ(contentsOf("o.mp4"), "precious");
    const Result result = end(*process);
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sizeOf(movie()), QSize(64, 48));
    EXPECT_EQ(files(), QStringList { "o.mp4" });
}

TEST_F(RecordFilesTest, AnOldMovieOutlivesARecordingThatIsKilled)
{
    putFile("o.mp4");
    const auto process = begin({ "--overwrite" });
    ASSERT_TRUE(process);
    process->kill();
    finish(*process);
    EXPECT_EQ(contentsOf("o.mp4"), "precious");
}

TEST_F(RecordFilesTest, OfTwoRecordingsToOneNewNameTheSecondGetsANameOfItsOwn)
{
    for (const QStringList &options : { QStringList(), QStringList { "--overwrite" } }) {
        const auto first = begin(options);
        const auto second = begin(options);
        ASSERT_TRUE(first && second);
        const Result one = end(*first);
        ASSERT_EQ(one.status, 0) << one.error.toStdString();
        const QByteArray finished = contentsOf("o.mp4");
        const Result two = end(*second);
        ASSERT_EQ(two.status, 0) << two.error.toStdString();
        EXPECT_EQ(one.output.trimmed().split('\n').last(), "o.mp4");
        EXPECT_EQ(two.output.trimmed().split('\n').last(), "o 2.mp4");
        EXPECT_TRUE(two.error.contains(
            "vornic: Another file has come to stand in o.mp4 and is kept; the movie is o 2.mp4.\n"))
            << two.error.toStdString();
        EXPECT_EQ(contentsOf("o.mp4"), finished);
        EXPECT_EQ(sizeOf(movie("o 2.mp4")), QSize(64, 48));
        EXPECT_EQ(files(), (QStringList { "o 2.mp4", "o.mp4" }));
        ASSERT_TRUE(QFile::remove(movie("o 2.mp4")));
    }
}

TEST_F(RecordFilesTest, WhatCanBecomeNoMovieIsRefusedAtTheStart)
{
    ASSERT_EQ(::mkfifo(QFile::encodeName(movie("fifo.mp4")).constData(), 0600), 0);
    ASSERT_EQ(::mknod(QFile::encodeName(movie("socket.mp4")).constData(), S_IFSOCK | 0600, 0), 0);
    ASSERT_TRUE(QFile::link("/dev/null", movie("device.mp4")));
    for (const QString name : { "fifo.mp4", "socket.mp4", "device.mp4" }) {
        const Result result = recordBriefly({ "--overwrite" }, name);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.error, "vornic: " + name + " is no ordinary file; the movie needs another name.\n");
        EXPECT_EQ(recordBriefly({}, name).status, 1);
    }
    struct stat file {
    };
    ASSERT_EQ(::lstat(QFile::encodeName(movie("fifo.mp4")).constData(), &file), 0);
    EXPECT_TRUE(S_ISFIFO(file.st_mode));
    const QString tooLong = QString(252, 'x') + ".mp4";
    EXPECT_EQ(recordBriefly({}, tooLong).error,
              "vornic: No movie can be written to " + tooLong + ": File name too long.\n");
    EXPECT_EQ(recordBriefly({}, tooLong.mid(1)).status, 0);
}

TEST_F(RecordFilesTest, ALinkIsFollowed)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir("disk"));
    putFile("disk/old.mp4");
    ASSERT_TRUE(QFile::link("disk/old.mp4", movie("o.mp4")));
    EXPECT_EQ(recordBriefly({}).status, 1);
    EXPECT_EQ(contentsOf("disk/old.mp4"), "precious");
    const Result result = recordBriefly({ "--overwrite" });
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(result.output.trimmed().split('\n').last(), "o.mp4");
    EXPECT_TRUE(QFileInfo(movie()).isSymLink());
    EXPECT_EQ(sizeOf(movie("disk/old.mp4")), QSize(64, 48));
    EXPECT_EQ(entries("disk"), QStringList { "old.mp4" });
    // One that leads to nothing yet has nothing to be replaced.
    ASSERT_TRUE(QFile::link("disk/new.mp4", movie("n.mp4")));
    EXPECT_EQ(recordBriefly({}, "n.mp4").status, 0);
    EXPECT_EQ(sizeOf(movie("disk/new.mp4")), QSize(64, 48));
}

TEST_F(RecordFilesTest, ANameThatIsNotUtf8KeepsItsBytes)
{
    const QByteArray name = QFile::encodeName(folder.path()) + "/Gr\366\337e.mp4";
    // No text could hand this name over.
    const auto record = [this](const QString &rest) {
        return start("sh",
                     { "-c",
                       test::vornicProgram() + " record --ignore-low-space --region 0,0,64,48 " + rest
                           + " \"$PWD/$(printf 'Gr\\366\\337e.mp4')\"" });
    };
    const auto process = record("--duration 0.3");
    ASSERT_TRUE(process->waitForFinished());
    EXPECT_EQ(process->exitCode(), 0) << process->readAllStandardError().toStdString();
    EXPECT_EQ(process->readAllStandardOutput().trimmed().split('\n').last(), name);
    EXPECT_EQ(::access(name.constData(), R_OK), 0);
    const auto refused = record("--duration 0.3");
    ASSERT_TRUE(refused->waitForFinished());
    EXPECT_EQ(refused->exitCode(), 1);
    // So does what is found again.
    ASSERT_EQ(::unlink(name.constData()), 0);
    const auto killed = start("sh",
                              { "-c",
                                "exec " + test::vornicProgram()
                                    + " record --ignore-low-space --region 0,0,64,48"
                                      " \"$PWD/$(printf 'Gr\\366\\337e.mp4')\"" });
    QString seen;
    ASSERT_TRUE(waitForText(*killed, "00:00:0", seen)) << seen.toStdString();
    // The journal tells of a picture only once that is in the file.
    ASSERT_TRUE(test::waitUntil([this] { return sizeInSpool("vornicvideo.tmp") > 0; }));
    const qint64 journal = sizeInSpool("journal");
    ASSERT_TRUE(test::waitUntil([&] { return sizeInSpool("journal") > journal; }));
    killed->kill();
    finish(*killed);
    const QString id = vornic({ "recover" }).output.section(' ', 0, 0);
    const auto recover = startVornic({ "recover", id });
    ASSERT_TRUE(recover->waitForFinished());
    EXPECT_EQ(recover->exitCode(), 0) << recover->readAllStandardError().toStdString();
    EXPECT_EQ(recover->readAllStandardOutput().trimmed().split('\n').last(), name);
    EXPECT_EQ(::unlink(name.constData()), 0);
}

TEST_F(RecordFilesTest, ACacheThatOthersCanWriteToIsRefused)
{
    const QString cache = movie("cache/com.kavlor.vornic");
    ASSERT_TRUE(QDir().mkpath(cache));
    ASSERT_EQ(::chmod(QFile::encodeName(cache).constData(), 0777), 0);
    const QString sentence = "vornic: The folder " + cache
        + ", where recordings are kept, belongs to another user, or others can write to it: it is not "
          "used.\n";
    const Result result = recordBriefly({});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, sentence);
    EXPECT_EQ(files(), QStringList());
    EXPECT_TRUE(vornic({ "recover" }).error.startsWith(sentence));
}

TEST_F(RecordFilesTest, WhatIsRecordedIsItsUsersAloneAndTheMovieIsAsTheUmaskSays)
{
    const auto process = start("sh",
                               { "-c",
                                 "umask 013; exec " + test::vornicProgram()
                                     + " record --ignore-low-space --region 0,0,64,48 o.mp4" });
    QString seen;
    ASSERT_TRUE(waitForText(*process, "00:00:0", seen)) << seen.toStdString();
    QString cache = movie("cache/com.kavlor.vornic");
    const auto modeOf = [](const QString &path) {
        struct stat file {
        };
        return ::stat(QFile::encodeName(path).constData(), &file) == 0 ? file.st_mode & 0777U : 0U;
    };
    EXPECT_EQ(modeOf(cache), 0700U);
    EXPECT_EQ(modeOf(cache += "/recordings"), 0700U);
    EXPECT_EQ(modeOf(cache += '/' + QDir(cache).entryList(QDir::NoDotAndDotDot | QDir::Dirs).value(0)),
              0700U);
    for (const QString &name : QDir(cache).entryList(QDir::Files))
        EXPECT_EQ(modeOf(cache + '/' + name), 0600U) << name.toStdString();
    EXPECT_EQ(end(*process).status, 0);
    EXPECT_EQ(modeOf(movie()), 0664U);
}

TEST_F(RecordFilesTest, WhereNothingCanBeStoredNothingIsRecorded)
{
    if (QProcess::execute("unshare", { "-Urm", "sh", "-c", "mount -t tmpfs tmpfs /mnt" }) != 0)
        GTEST_SKIP() << "this machine allows no mount namespaces";
    ASSERT_TRUE(QDir(folder.path()).mkdir("volume"));
    // Room for the folders and for one file in them, but not for the three of a recording.
    const auto process
        = start("unshare",
                { "-Urm",
                  "sh",
                  "-c",
                  "mount -t tmpfs -o size=2g,nr_inodes=6 tmpfs volume && XDG_CACHE_HOME=$PWD/volume "
                      + test::vornicProgram()
                      + " record --ignore-low-space --region 0,0,64,48 --duration 0.3 o.mp4" });
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.endsWith("vornic: The recording needs the folder "
                                      + movie("volume/com.kavlor.vornic/recordings")
                                      + ", which cannot be written to: No space left on device.\n"))
        << result.error.toStdString();
    EXPECT_FALSE(result.error.contains("Recording for")) << result.error.toStdString();
    EXPECT_FALSE(QFile::exists(movie()));
}

} // namespace
} // namespace vornic
