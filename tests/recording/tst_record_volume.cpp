#include "recording_fixture.h"
#include "support/built_program.h"

#include <QRegularExpression>
#include <QStorageInfo>

namespace vornic {
namespace {

using testing::numbersOf;
using testing::probe;

/// Runs of the program in a mount namespace of their own, with small volumes.
class SmallVolumeTest : public RecordingTest
{
protected:
    /// Mounts \a size bytes at "volume" in the test's folder and runs \a script there; what it leaves outside
    /// of the volume stays.
    Result inVolume(qint64 size, const QString &script) const
    {
        QDir(folder.path()).mkdir("volume");
        const QString mounted
            = QStringLiteral("mount -t tmpfs -o size=%1 tmpfs volume && { %2; }").arg(size).arg(script);
        const auto process = start("unshare", { "-Urm", "sh", "-c", mounted });
        return finish(*process);
    }
    static bool namespacesWork()
    {
        return QProcess::execute("unshare", { "-Urm", "sh", "-c", "mount -t tmpfs tmpfs /mnt" }) == 0;
    }
    void SetUp() override
    {
        if (!namespacesWork())
            GTEST_SKIP() << "this machine allows no mount namespaces";
        startServer();
        scene = start(test::builtProgram("tests/support/vornic_show_scene"),
                      { "scroll", "--step", "300", "--seconds", "100" });
        ASSERT_TRUE(scene->waitForReadyRead(20'000)) << "a black screen fills no volume";
    }

    const QString program = test::vornicProgram();
    const qint64 gibibyte = 1LL << 30;
    std::unique_ptr<QProcess> scene;
};

TEST_F(SmallVolumeTest, AnOutputVolumeThatFillsLeavesNoPartialFile)
{
    const Result result = inVolume(
        30'000,
        program
            + " record --ignore-low-space --duration 1 volume/o.mp4; status=$?; ls -A volume; exit $status");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.error.contains("full")) << result.error.toStdString();
    // One sentence why, one with the way on.
    EXPECT_EQ(result.error.count("vornic: "), 2) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("The recording is kept")) << result.error.toStdString();
    EXPECT_EQ(result.error.contains("lies in memory"),
              QStorageInfo(folder.path()).fileSystemType() == "tmpfs")
        << "the cache is not on that volume";
}

TEST_F(SmallVolumeTest, ACacheVolumeThatFillsEndsTheRecordingWithAllThatWasSpooled)
{
    const Result result = inVolume(gibibyte + gibibyte / 128,
                                   "XDG_CACHE_HOME=$PWD/volume " + program
                                       + " record --ignore-low-space --duration 60 o.mp4");
    ASSERT_EQ(result.status, 3) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("Disk free space is too low")) << result.error.toStdString();
    const double seconds = secondsOf(movie());
    EXPECT_GT(seconds, 0.3);
    EXPECT_LT(seconds, 55.0);
    const QStringList words = result.output.split(' ');
    EXPECT_EQ(words[0], words[3]) << result.output.toStdString();
    EXPECT_GE(words[3].toLongLong(), numbersOf(probe(movie()), "packets", "video", "pts").size());
}

TEST_F(SmallVolumeTest, TheRoomIsToldAndWarnedOfOnce)
{
    const Result result = inVolume(gibibyte + gibibyte / 4,
                                   "XDG_CACHE_HOME=$PWD/volume " + program
                                       + " record --ignore-low-space --duration 11 o.mp4");
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains(QRegularExpression(
        "^00:00:10, \\d+ MB, room for (\\d min|less than a minute)$", QRegularExpression::MultilineOption)))
        << result.error.toStdString();
    EXPECT_EQ(result.error.count("vornic: At this rate there is room for "), 1) << result.error.toStdString();
    const QString cache = folder.filePath("volume/com.kavlor.vornic");
    EXPECT_EQ(result.error.count("The cache folder " + cache + " lies in memory: "), 1)
        << result.error.toStdString();
}

TEST_F(SmallVolumeTest, LittleSpaceIsRefusedNamingTheRule)
{
    const Result result
        = inVolume(2 * gibibyte, "XDG_CACHE_HOME=$PWD/volume " + program + " record --duration 1 o.mp4");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.contains("10.0 GiB")) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("--ignore-low-space"));
    EXPECT_FALSE(QFile::exists(movie()));
    const Result hopeless
        = inVolume(gibibyte / 2,
                   "XDG_CACHE_HOME=$PWD/volume " + program + " record --ignore-low-space --duration 1 o.mp4");
    EXPECT_EQ(hopeless.status, 1);
    EXPECT_TRUE(hopeless.error.contains("1.0 GiB")) << hopeless.error.toStdString();
}

TEST_F(SmallVolumeTest, ASpoolThatCannotGrowEndsTheRecordingNormally)
{
    // The limit stands in for a quota: the volume says that it has room, and takes no more.
    const auto process = start(
        "sh",
        { "-c", "ulimit -f 20000; exec " + program + " record --ignore-low-space --duration 60 o.mp4" });
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 3) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("disk space is insufficient. There is a limit on the size of files, "
                                      "and the recording has reached it.\n"))
        << result.error.toStdString();
    EXPECT_LT(secondsOf(movie()), 55.0);
    EXPECT_EQ(result.output.split(' ')[0], result.output.split(' ')[3]);
}

} // namespace
} // namespace vornic
