#include "app/session/disk_watch.h"
#include "app/session/recording_progress.h"
#include "app/session/recording_room.h"
#include "audio/PKAudioRecorderData.h"
#include "base/PKTimebase.h"
#include "base/free_space.h"
#include "capture/spool/VNBufferMgr.h"
#include "codec/PKMuxerContext.h"
#include "support/wait_until.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <semaphore>

namespace vornic {
namespace {

constexpr std::uint64_t gigabyte = 1'000'000'000;

class ToldProgress final : public RecordingProgress
{
public:
    QList<RecordingRoom> rooms;
    QList<RecordingRoom> warnings;

    void showRoom(const RecordingRoom &room) override { rooms += room; }
    void warnOfLittleRoom(const RecordingRoom &room) override { warnings += room; }
};

/// What the test says of the volumes; outlives the test where a thread still asks.
struct Volumes {
    DiskSpace space() const
    {
        const std::lock_guard lock(mutex);
        return told;
    }
    void set(const DiskSpace &space)
    {
        const std::lock_guard lock(mutex);
        told = space;
    }

    mutable std::mutex mutex;
    DiskSpace told;
    QStringList folders; ///< that were asked for
    std::atomic<int> timesAsked = 0;
    std::atomic<bool> isSilent = false;
    std::counting_semaphore<> wakes { 0 }; ///< ends a silence
};

/// Which cannot be compressed.
QByteArray randomBytes(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(1);
    for (char &byte : bytes)
        byte = static_cast<char>(generator.generate());
    return bytes;
}

/// A watch on a spool to which a test gives half a megabyte a second.
class DiskWatchTest : public ::testing::Test
{
protected:
    DiskWatchTest()
    {
        qputenv("XDG_CACHE_HOME", folder.filePath("cache").toUtf8());
        volumes->set({ .spoolFree = 100 * gigabyte, .movieFree = 100 * gigabyte });
        watch->setProbe([volumes = volumes](const QString &spoolFolder, const QString &movieFolder) {
            if (volumes->isSilent)
                volumes->wakes.acquire();
            const DiskSpace space = volumes->space();
            const std::lock_guard lock(volumes->mutex);
            volumes->folders = QStringList { spoolFolder, movieFolder };
            ++volumes->timesAsked;
            return space;
        });
        begin();
    }

    void begin()
    {
        spool.readyToRecord();
        const auto movie = std::make_shared<PKMuxerContext>(folder.filePath("movie.mp4"));
        movie->setVideoBitrate(800'000);
        spool.setMuxerContext(movie);
        watch->begin();
        begun = now;
        progress.rooms.clear();
    }
    void pass(double seconds)
    {
        now += seconds;
        watch->frameKept(now, static_cast<std::int64_t>((now - begun) * PKTimebase));
    }
    void spoolASecond()
    {
        spool.pushAudioBuffer({ samples, defaultAudioStreamBasicDescription() });
        pass(1);
    }
    /// Seconds pass, each with an answer, until the room is known.
    bool passUntilKnown()
    {
        return test::waitUntil([this] {
            const int asked = volumes->timesAsked;
            spoolASecond();
            return test::waitUntil([&] { return volumes->timesAsked > asked; },
                                   std::chrono::milliseconds(100))
                && !progress.rooms.isEmpty() && progress.rooms.last().seconds;
        });
    }

    int argc = 1;
    char name[5] = "test";
    char *argv[2] = { name, nullptr };
    QCoreApplication application { argc, argv };
    QTemporaryDir folder;
    std::shared_ptr<Volumes> volumes = std::make_shared<Volumes>();
    VNBufferMgr spool { 4 };
    ToldProgress progress;
    std::unique_ptr<DiskWatch> watch = std::make_unique<DiskWatch>(spool, progress);
    const QByteArray samples = randomBytes(500'000);
    double now = 1000;
    double begun = 1000;
};

TEST_F(DiskWatchTest, ItTellsOnceASecondWhatIsTakenAndHowLongItLasts)
{
    for (int i = 0; i < 30; ++i)
        pass(0.1);
    EXPECT_EQ(progress.rooms.size(), 2);
    EXPECT_FALSE(progress.rooms.last().seconds) << "in the first seconds nobody knows";
    ASSERT_TRUE(passUntilKnown());
    const RecordingRoom &room = progress.rooms.last();
    EXPECT_EQ(room.spooledBytes, spool.spooledBytes());
    EXPECT_GT(*room.seconds, 3600);
    EXPECT_FALSE(room.isForMovie);
    EXPECT_EQ(room.folder, VNBufferMgr::cachePath());
    const std::lock_guard lock(volumes->mutex);
    EXPECT_EQ(volumes->folders, (QStringList { VNBufferMgr::cachePath(), folder.path() }));
}

TEST_F(DiskWatchTest, ItWarnsOnceARecording)
{
    // 8 minutes at the movie's bit rate, which is 100 kB a second; the spool's volume lasts longer.
    volumes->set({ .spoolFree = 100 * gigabyte, .movieFree = 50'000'000 });
    ASSERT_TRUE(passUntilKnown());
    for (int i = 0; i < 5; ++i)
        spoolASecond();
    ASSERT_EQ(progress.warnings.size(), 1);
    EXPECT_TRUE(progress.warnings.last().isForMovie);
    EXPECT_EQ(progress.warnings.last().folder, folder.path());
    EXPECT_NEAR(*progress.warnings.last().seconds, 490, 20);
    begin();
    ASSERT_TRUE(passUntilKnown());
    EXPECT_EQ(progress.warnings.size(), 2) << "the next recording is warned of too";
}

TEST_F(DiskWatchTest, WithRoomForTenMinutesItDoesNotWarn)
{
    volumes->set({ .spoolFree = 100 * gigabyte, .movieFree = 70'000'000 });
    ASSERT_TRUE(passUntilKnown());
    EXPECT_GT(*progress.rooms.last().seconds, 600);
    EXPECT_TRUE(progress.warnings.isEmpty());
}

TEST_F(DiskWatchTest, AVolumeThatDoesNotAnswerIsNotWaitedFor)
{
    ASSERT_TRUE(passUntilKnown());
    volumes->isSilent = true;
    const int asked = volumes->timesAsked;
    for (int i = 0; i < 15; ++i)
        spoolASecond();
    EXPECT_FALSE(progress.rooms.last().seconds) << "what was true long ago is not told";
    EXPECT_EQ(progress.rooms.last().spooledBytes, spool.spooledBytes());
    EXPECT_LE(volumes->timesAsked, asked + 1) << "and it is not asked again meanwhile";
    volumes->isSilent = false;
    volumes->wakes.release();
    EXPECT_TRUE(passUntilKnown());
}

TEST_F(DiskWatchTest, ItEndsWhileAVolumeDoesNotAnswer)
{
    volumes->isSilent = true;
    pass(1);
    watch.reset();
    EXPECT_EQ(volumes->timesAsked, 0);
    volumes->wakes.release(); // the test leaves nobody behind
    EXPECT_TRUE(test::waitUntil([this] { return volumes->timesAsked == 1; }));
}

TEST_F(DiskWatchTest, TheFileSystemsAreAskedWhereNoTestIs)
{
    const auto roomOf = [this](const QString &path) {
        DiskWatch real(spool, progress);
        spool.setMuxerContext(std::make_shared<PKMuxerContext>(path));
        progress.rooms.clear();
        real.begin();
        EXPECT_TRUE(test::waitUntil([&] {
            spool.pushAudioBuffer({ QByteArray(1000, 'x'), defaultAudioStreamBasicDescription() });
            real.frameKept(now += 1, 0);
            return !progress.rooms.isEmpty() && progress.rooms.last().seconds;
        }));
        return progress.rooms.isEmpty() ? RecordingRoom() : progress.rooms.last();
    };
    const RecordingRoom full = roomOf("/proc/movie.mp4"); // where nothing can be written
    EXPECT_TRUE(full.isForMovie);
    EXPECT_EQ(full.seconds, 0);
    EXPECT_FALSE(roomOf("/none/such/movie.mp4").isForMovie);
    if (freeSpaceBytes(folder.path()) < 3 * VNBufferMgr::limitSpaceForRecord())
        GTEST_SKIP() << "where so little is free the spool ends it";
    EXPECT_FALSE(roomOf(folder.filePath("movie.mp4")).isForMovie) << "on one volume with the spool";
}

TEST_F(DiskWatchTest, TheSpoolLeavesRoomForTheMovieOnItsVolume)
{
    std::uint64_t freeBytes = VNBufferMgr::limitSpaceForRecord();
    spool.setFreeSpaceProbe([&freeBytes] { return freeBytes; });
    ASSERT_TRUE(passUntilKnown());
    EXPECT_FALSE(spool.cacheFull()) << "the movie goes elsewhere";
    volumes->set({ .spoolFree = gigabyte * 2, .movieFree = gigabyte * 2, .isOneVolume = true });
    const int asked = volumes->timesAsked;
    ASSERT_TRUE(test::waitUntil([&] {
        spoolASecond();
        return spool.cacheFull();
    }));
    EXPECT_GT(volumes->timesAsked, asked);
    freeBytes += static_cast<std::uint64_t>(100'000 * (now - begun)); // the bit rate, for the time so far
    EXPECT_FALSE(spool.cacheFull());
}

TEST_F(DiskWatchTest, WithoutAMovieItIsSilent)
{
    spool.setMuxerContext(nullptr);
    for (int i = 0; i < 5; ++i)
        pass(1);
    EXPECT_TRUE(progress.rooms.isEmpty());
}

} // namespace
} // namespace vornic
