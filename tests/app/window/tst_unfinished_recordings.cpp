#include "app/window/unfinished_recordings.h"
#include "app/window/unfinished_text.h"
#include "stored_recording_maker.h"
#include "support/wait_until.h"
#include "window_main.h"

#include <QLocale>
#include <QPixmap>
#include <QSignalSpy>

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>

namespace {

const pthread_t mainThread = pthread_self();
std::atomic<int> locksOnMainThread = 0;
std::atomic<int> locksElsewhere = 0;

} // namespace

/// Stands before the system's: whoever looks into a recording locks it, so that a test sees which thread does.
extern "C" int flock(int file, int operation)
{
    ++(pthread_equal(pthread_self(), mainThread) != 0 ? locksOnMainThread : locksElsewhere);
    return static_cast<int>(syscall(SYS_flock, file, operation));
}

namespace vornic {
namespace {

using test::waitUntil;

TEST(UnfinishedTextTest, TheDayIsCalledAsPeopleCallIt)
{
    const QDateTime now({ 2026, 11, 24 }, { 9, 30 }); // a Tuesday
    const auto text = [&](QDate date) { return startText(QDateTime(date, { 14, 5 }), now).toStdString(); };
    const QString time = QLocale().toString(QTime(14, 5), QLocale::ShortFormat);
    const auto expected = [&](const QString &day) { return (day + ", " + time).toStdString(); };
    EXPECT_EQ(text({ 2026, 11, 24 }), expected("today"));
    EXPECT_EQ(text({ 2026, 11, 23 }), expected("yesterday"));
    EXPECT_EQ(text({ 2026, 11, 22 }), expected(QLocale().dayName(7)));
    EXPECT_EQ(text({ 2026, 11, 18 }), expected(QLocale().dayName(3)));
    // A week ago and "Tuesday" could be either; a clock that was set back shows what it said.
    for (const QDate date : { QDate(2026, 11, 17), QDate(2025, 11, 23), QDate(2026, 11, 25) })
        EXPECT_EQ(text(date), expected(QLocale().toString(date, QLocale::ShortFormat)));
    // What is stored is in UTC.
    EXPECT_EQ(startText(QDateTime({ 2026, 11, 24 }, { 14, 5 }).toUTC(), now).toStdString(),
              expected("today"));
}

TEST(UnfinishedTextTest, OneSentenceForOneAndForSeveral)
{
    StoredRecording recording;
    recording.isReadable = true;
    recording.start = QDateTime::currentDateTimeUtc();
    recording.seconds = 42 * 60 + 10.7;
    recording.bytes = 3 << 20;
    EXPECT_EQ(unfinishedSentence({}), QString());
    EXPECT_TRUE(unfinishedSentence({ recording }).startsWith("A recording of 42:10 from today, "));
    EXPECT_TRUE(unfinishedSentence({ recording }).endsWith(" was not finished."));
    EXPECT_EQ(unfinishedSentence({ recording, recording, recording }), "3 recordings were not finished.");
    EXPECT_TRUE(unfinishedEntry(recording).startsWith("Today, "));
    EXPECT_TRUE(unfinishedEntry(recording).endsWith("\n42:10 long, 3.0 MiB"));
    recording.hasSound = true;
    EXPECT_TRUE(unfinishedEntry(recording).contains("with sound"));
    recording.isReadable = false;
    EXPECT_EQ(unfinishedSentence({ recording }), "A recording of 3.0 MiB cannot be read any more.");
    EXPECT_EQ(unfinishedEntry(recording), "Cannot be read any more\n3.0 MiB");
}

class UnfinishedRecordingsTest : public testing::Test
{
protected:
    UnfinishedRecordingsTest() { test::removeAllRecordings(); }
    ~UnfinishedRecordingsTest() override { test::removeAllRecordings(); }

    bool read()
    {
        const QSignalSpy changed(&recordings, &UnfinishedRecordings::changed);
        recordings.read();
        return waitUntil([&] { return !changed.isEmpty(); });
    }

    UnfinishedRecordings recordings;
};

TEST_F(UnfinishedRecordingsTest, ManyAreReadWhileTheWindowGoesOn)
{
    const QString first = test::storeRecording("/nowhere/a.mp4", 1);
    for (int number = 1; number < 300; ++number)
        test::copyRecording(first, QStringLiteral("20990101-000000-%1").arg(number, 4, 16, QChar('0')));
    const QSignalSpy changed(&recordings, &UnfinishedRecordings::changed);
    locksOnMainThread = 0;
    locksElsewhere = 0;
    recordings.read();
    ASSERT_TRUE(waitUntil([&] { return !changed.isEmpty(); }));
    EXPECT_EQ(locksOnMainThread, 0) << "the window stands still for nothing";
    EXPECT_EQ(locksElsewhere, 300);
    EXPECT_EQ(recordings.all().size(), 300);
    EXPECT_EQ(recordings.all().first().id, first);
    EXPECT_EQ(recordings.find("20990101-000000-012b")->frames, 2U);
    EXPECT_EQ(recordings.find("20990101-000000-012c"), nullptr);
}

TEST_F(UnfinishedRecordingsTest, OneThatRunsIsLeftAlone)
{
    VNBufferMgr running(4);
    test::beginRecording(running, "/nowhere/a.mp4", 2);
    const QString id = running.recordingId();
    ASSERT_TRUE(read());
    EXPECT_TRUE(recordings.all().isEmpty());
    const QSignalSpy failed(&recordings, &UnfinishedRecordings::removalFailed);
    const QSignalSpy changed(&recordings, &UnfinishedRecordings::changed);
    recordings.remove(id);
    // They are read again behind it, and that must not be taken for the answer to the next question.
    ASSERT_TRUE(waitUntil([&] { return !changed.isEmpty(); }));
    ASSERT_EQ(failed.size(), 1);
    EXPECT_TRUE(failed.first().first().toString().contains(id));
    EXPECT_TRUE(QFile::exists(running.tempVideoPathfile()));
    running.keep();
    ASSERT_TRUE(read());
    EXPECT_EQ(recordings.all().size(), 1);
}

TEST_F(UnfinishedRecordingsTest, WhatNobodyWantsIsCleanedUpFirst)
{
    test::storeRecording("/nowhere/a.mp4", 1);
    {
        VNBufferMgr empty(4);
        empty.readyToRecord();
    }
    ASSERT_EQ(QDir(test::recordingsFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 2);
    const QSignalSpy changed(&recordings, &UnfinishedRecordings::changed);
    recordings.cleanUpAndRead();
    ASSERT_TRUE(waitUntil([&] { return !changed.isEmpty(); }));
    EXPECT_EQ(QDir(test::recordingsFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
    EXPECT_EQ(recordings.all().size(), 1);
}

TEST_F(UnfinishedRecordingsTest, ThePictureIsOneFromTheMiddle)
{
    const QString id = test::storeRecording("/nowhere/a.mp4", 8, Qt::blue);
    const QSignalSpy pictures(&recordings, &UnfinishedRecordings::pictureRead);
    recordings.askForPicture(id);
    recordings.askForPicture("20990101-000000-0000");
    ASSERT_TRUE(waitUntil([&] { return pictures.size() == 2; }));
    EXPECT_EQ(pictures[0][0].toString(), id);
    const auto picture = pictures[0][1].value<QImage>();
    ASSERT_FALSE(picture.isNull());
    EXPECT_GT(picture.pixelColor(picture.rect().center()).blue(), 200);
    EXPECT_LT(picture.pixelColor(picture.rect().center()).red(), 60) << "the first one is white";
    EXPECT_TRUE(pictures[1][1].value<QImage>().isNull());
    // As large as it is shown, whatever its shape.
    for (const double ratio : { 1.0, 2.0 }) {
        EXPECT_EQ(thumbnail(picture, ratio).deviceIndependentSize(), QSizeF(thumbnailSize));
        EXPECT_EQ(thumbnail({}, ratio).deviceIndependentSize(), QSizeF(thumbnailSize));
    }
}

TEST_F(UnfinishedRecordingsTest, WhatIsLetGoCanBeOpened)
{
    const QString id = test::storeRecording("/nowhere/a.mp4", 8);
    ASSERT_TRUE(read());
    for (int i = 0; i < 20; ++i)
        recordings.askForPicture(id);
    bool isOpened = false;
    bool wasCalled = false;
    VNBufferMgr spool(4);
    recordings.whenLetGo([&] {
        QString whyNot;
        isOpened = spool.openRecording(id, whyNot);
        wasCalled = true;
    });
    EXPECT_FALSE(wasCalled);
    ASSERT_TRUE(waitUntil([&] { return wasCalled; }));
    EXPECT_TRUE(isOpened);
}

TEST_F(UnfinishedRecordingsTest, ADeletedOneIsGone)
{
    const QString id = test::storeRecording("/nowhere/a.mp4", 1);
    const QString other = test::storeRecording("/nowhere/b.mp4", 1);
    ASSERT_TRUE(read());
    recordings.remove(id);
    ASSERT_TRUE(waitUntil([&] { return recordings.all().size() == 1; }));
    EXPECT_EQ(recordings.all().first().id, other);
    EXPECT_FALSE(QDir(test::recordingsFolder() + "/" + id).exists());
    recordings.forget(other);
    EXPECT_TRUE(recordings.all().isEmpty());
    EXPECT_TRUE(QDir(test::recordingsFolder() + "/" + other).exists());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
