#include "base/PKTimebase.h"
#include "capture/spool/journal.h"
#include "capture/spool/spool_file.h"
#include "capture/spool/stored_recordings.h"
#include "kept_recording_fixture.h"
#include "support/wait_until.h"

namespace vornic {
namespace {

class StoredRecordings : public KeptRecordingTest
{
protected:
    [[nodiscard]] static QStringList listed()
    {
        QStringList ids;
        for (const StoredRecording &recording : storedRecordings(cache()))
            ids.push_back(recording.id);
        return ids;
    }
    static void finish(const QString &id)
    {
        RecordingFolder::Refusal refusal {};
        const auto folder = RecordingFolder::open(cache(), id, refusal);
        ASSERT_TRUE(folder);
        Journal(folder->journal()).finish();
    }
    /// The seed of the noise that \a picture is nearest to, as left() numbers it; JPEG keeps the difference small.
    [[nodiscard]] static int seedOf(const std::shared_ptr<const BitmapImage> &picture)
    {
        int nearest = 0;
        for (int seed = 1; seed <= 9 && picture; ++seed) {
            const QImage noise = test::noisePicture(pictureSize, static_cast<std::uint32_t>(seed));
            const auto distance = [&picture](const QImage &image) {
                qint64 sum = 0;
                for (int x = 0; x < image.width(); ++x)
                    for (int y = 0; y < image.height(); ++y)
                        sum += std::abs(qGreen(picture->view().pixel(x, y)) - qGreen(image.pixel(x, y)));
                return sum;
            };
            const auto best = static_cast<std::uint32_t>(nearest);
            if (nearest == 0 || distance(noise) < distance(test::noisePicture(pictureSize, best)))
                nearest = seed;
        }
        return nearest;
    }
};

TEST_F(StoredRecordings, AreToldByTheirJournals)
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const QString id = left(5);
    const QList<StoredRecording> recordings = storedRecordings(cache());
    ASSERT_EQ(recordings.size(), 1);
    const StoredRecording &recording = recordings.front();
    EXPECT_EQ(recording.id, id);
    EXPECT_TRUE(recording.isReadable);
    EXPECT_GE(recording.start, before.addMSecs(-1));
    EXPECT_LE(recording.start, QDateTime::currentDateTimeUtc());
    EXPECT_EQ(recording.seconds, 12000.0 / PKTimebase);
    EXPECT_EQ(recording.frames, 5U);
    EXPECT_TRUE(recording.hasSound);
    EXPECT_EQ(recording.movie, "/nowhere/movie.mp4");
    std::uint64_t bytes = 0;
    for (const char *name :
         { RecordingFolder::videoName, RecordingFolder::audioName, RecordingFolder::journalName })
        bytes += static_cast<std::uint64_t>(QFile(pathOf(id, name)).size());
    EXPECT_EQ(recording.bytes, bytes);
}

TEST_F(StoredRecordings, AreNoneThatRunOrAreFinishedOrEmpty)
{
    const QString kept = left(1);
    const QString finished = left(1);
    finish(finished);
    const QString empty = left(0);
    VNBufferMgr running(0);
    running.readyToRecord();
    push(running, 1, 0);
    running.endVideoRecord();
    EXPECT_EQ(listed(), QStringList(kept));
    EXPECT_TRUE(QFile::exists(pathOf(finished)));

    const QStringList movieFolders = cleanUpStoredRecordings(cache());
    EXPECT_EQ(movieFolders, QStringList("/nowhere"));
    EXPECT_TRUE(QFile::exists(pathOf(kept)));
    EXPECT_TRUE(QFile::exists(pathOf(running.recordingId())));
    EXPECT_FALSE(QFile::exists(pathOf(finished)));
    EXPECT_FALSE(QFile::exists(pathOf(empty)));
}

TEST_F(StoredRecordings, TellOfACutSpoolWhatIsThere)
{
    const QString id = left(5);
    const VNDataBlock third = journalOf(id).video.at(2);
    ASSERT_TRUE(QFile::resize(pathOf(id, RecordingFolder::videoName),
                              static_cast<qint64>(third.offset() + third.length())));
    const QList<StoredRecording> recordings = storedRecordings(cache());
    ASSERT_EQ(recordings.size(), 1);
    EXPECT_EQ(recordings.front().frames, 3U);
    EXPECT_EQ(recordings.front().seconds, 6000.0 / PKTimebase);
}

TEST_F(StoredRecordings, OneWithoutAJournalIsListedAndNeverCleanedUp)
{
    const QString id = left(5);
    ASSERT_TRUE(QFile::remove(pathOf(id, RecordingFolder::journalName)));
    cleanUpStoredRecordings(cache());
    const QList<StoredRecording> recordings = storedRecordings(cache());
    ASSERT_EQ(recordings.size(), 1);
    EXPECT_FALSE(recordings.front().isReadable);
    EXPECT_EQ(recordings.front().bytes,
              static_cast<std::uint64_t>(QFile(pathOf(id, RecordingFolder::videoName)).size()
                                         + QFile(pathOf(id, RecordingFolder::audioName)).size()));
    EXPECT_FALSE(storedPicture(cache(), id));
}

TEST_F(StoredRecordings, OneWithoutPicturesFilesIsListedAndNeverCleanedUp)
{
    const QString id = left(5);
    ASSERT_TRUE(QFile::remove(pathOf(id, RecordingFolder::videoName)));
    cleanUpStoredRecordings(cache());
    EXPECT_EQ(listed(), QStringList(id));
    EXPECT_TRUE(QFile::exists(pathOf(id, RecordingFolder::audioName)));
}

TEST_F(StoredRecordings, ThePictureIsOfTheMiddle)
{
    const QString id = left(9);
    EXPECT_EQ(seedOf(storedPicture(cache(), id)), 5);
    damage(id, 4);
    const auto beside = storedPicture(cache(), id);
    EXPECT_TRUE(beside);
    EXPECT_NE(seedOf(beside), 5);
}

TEST_F(StoredRecordings, ThereIsNoPictureOfWhatRunsOrIsNotThere)
{
    EXPECT_FALSE(storedPicture(cache(), "20200101-000000-abcd"));
    EXPECT_FALSE(storedPicture(cache(), left(0)));
    VNBufferMgr running(0);
    running.readyToRecord();
    push(running, 1, 0);
    ASSERT_TRUE(test::waitUntil([&] { return journalOf(running.recordingId()).video.size() == 1; }));
    EXPECT_FALSE(storedPicture(cache(), running.recordingId()));
}

TEST_F(StoredRecordings, AreDeletedButNotWhileTheyRun)
{
    const QString id = left(1);
    const QString other = left(1);
    QString whyNot;
    EXPECT_TRUE(deleteStoredRecording(cache(), id, whyNot));
    EXPECT_EQ(listed(), QStringList(other));
    EXPECT_FALSE(deleteStoredRecording(cache(), id, whyNot));
    EXPECT_EQ(whyNot, QStringLiteral("There is no recording %1.").arg(id));
    VNBufferMgr running(0);
    running.readyToRecord();
    EXPECT_FALSE(deleteStoredRecording(cache(), running.recordingId(), whyNot));
    EXPECT_EQ(whyNot,
              QStringLiteral("The recording %1 is in use by another Vornic.").arg(running.recordingId()));
    EXPECT_TRUE(QFile::exists(pathOf(running.recordingId())));
}

TEST_F(StoredRecordings, ADeletionThatIsKeptFromItsEndIsTold)
{
    const QString id = left(1);
    setBytes(pathOf(id, "notes"), "something else");
    QString whyNot;
    EXPECT_FALSE(deleteStoredRecording(cache(), id, whyNot));
    EXPECT_EQ(whyNot, QStringLiteral("The recording %1 could not be deleted: Directory not empty.").arg(id));
}

TEST_F(StoredRecordings, ThreeHundredAreListedAndANewOneIsMadeBesideThem)
{
    const QString id = left(1);
    const QString all = cache() + "/recordings/";
    QStringList expected(id);
    for (int number = 0; number < 299; ++number) {
        const QString copy = QStringLiteral("20200101-000000-%1").arg(number, 4, 16, QLatin1Char('0'));
        expected.push_back(copy);
        ASSERT_TRUE(QDir().mkdir(all + copy));
        for (const char *name :
             { RecordingFolder::videoName, RecordingFolder::audioName, RecordingFolder::journalName })
            ASSERT_TRUE(QFile::copy(pathOf(id, name), pathOf(copy, name)));
    }
    expected.sort();
    EXPECT_EQ(listed(), expected);
    cleanUpStoredRecordings(cache());
    const QString another = left(1);
    expected.push_back(another);
    expected.sort(); // of one second, the end of the name decides
    EXPECT_EQ(listed(), expected);
    EXPECT_TRUE(storedPicture(cache(), another));
}

} // namespace
} // namespace vornic
