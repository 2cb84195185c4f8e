#include "app/session/session_fixture.h"
#include "audio/PKAudioRecorderData.h"
#include "base/PKTimebase.h"
#include "base/clock.h"
#include "base/serial_queue.h"
#include "capture/record/VNBufferDiscr.h"
#include "codec/PKAudioFrame2.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKVideoFrame2.h"
#include "movie_test_support.h"
#include "support/test_pictures.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QSignalSpy>

#include <algorithm>

namespace vornic {
namespace {

using test::noisePicture;
using testing::decodedPicture;
using testing::numbersOf;
using testing::probe;
using testing::streamOf;

/// A picture whose quarters have a colour each: cut or shifted, it is no longer quartered.
QImage quarteredPicture(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    const QSize quarter = size / 2;
    QPainter painter(&picture);
    painter.fillRect(QRect({ 0, 0 }, quarter), qRgb(200, 40, 40));
    painter.fillRect(QRect({ quarter.width(), 0 }, quarter), qRgb(40, 200, 40));
    painter.fillRect(QRect({ 0, quarter.height() }, quarter), qRgb(40, 40, 200));
    painter.fillRect(QRect(QPoint(quarter.width(), quarter.height()), quarter), qRgb(200, 200, 200));
    return picture;
}

/// Whether \a shown has those colours a tenth away from its corners and from its middle.
bool isQuartered(const QImage &shown)
{
    const QImage expected = quarteredPicture(shown.size());
    for (const int x : { 1, 4, 6, 9 })
        for (const int y : { 1, 4, 6, 9 }) {
            const QPoint point(shown.width() * x / 10, shown.height() * y / 10);
            const QRgb a = shown.pixel(point);
            const QRgb b = expected.pixel(point);
            if (std::abs(qRed(a) - qRed(b)) > 12 || std::abs(qGreen(a) - qGreen(b)) > 12
                || std::abs(qBlue(a) - qBlue(b)) > 12)
                return false;
        }
    return true;
}

class DelegateTest : public SessionTest
{
protected:
    /// Puts records with these timestamps into the spool, as if they had been grabbed.
    void spool(const std::vector<std::uint64_t> &timestamps)
    {
        for (const std::uint64_t time : timestamps) {
            display->setPicture(noisePicture({ 320, 200 }, static_cast<std::uint32_t>(time)));
            const auto record = VNBufferDiscr::createWithScreenImage(display->grab(QRect(0, 0, 320, 200)));
            record->setBufferTimestamp(time);
            delegate->bufferMgr().pushRecordBuffer(*record);
        }
        delegate->bufferMgr().endVideoRecord();
        delegate->bufferMgr().setExit(true);
    }

    /// All that the movie holds: one stands for equal frames.
    std::vector<QImage> storedPictures(QSize size) const
    {
        std::vector<QImage> pictures;
        const qsizetype count = numbersOf(probe(moviePath()), "packets", "video", "pts").size();
        for (int i = 0; i < count; ++i)
            pictures.push_back(decodedPicture(moviePath(), i, size));
        return pictures;
    }

    FakeAudioRecorder &addAudioDevice()
    {
        audioControl.names += "Microphone";
        delegate->audioControlInputDeviceChanged(audioControl);
        static_cast<void>(delegate->audioRecorder());
        return *audioControl.recorder;
    }
};

TEST_F(DelegateTest, ARecordingBecomesAMovie)
{
    ASSERT_TRUE(record(5));
    const RecordingCounts counts = delegate->counts();
    EXPECT_GE(counts.framesGrabbed, 5U);
    EXPECT_EQ(counts.framesWritten, counts.framesGrabbed);
    EXPECT_EQ(counts.framesSkipped, 0U);
    EXPECT_TRUE(delegate->failure().isEmpty());
    const QJsonObject probed = probe(moviePath());
    EXPECT_EQ(streamOf(probed, "video")["width"].toInt(), 320);
    EXPECT_EQ(streamOf(probed, "video")["height"].toInt(), 200);
    EXPECT_LT(numbersOf(probed, "packets", "video", "pts").size(),
              static_cast<qsizetype>(counts.framesGrabbed))
        << "what stays as it was only lasts longer";
    // The first frame is grabbed some ticks after the origin.
    const QJsonObject video = streamOf(probed, "video");
    EXPECT_NEAR(frontEnd.announcedSeconds,
                video["start_time"].toString().toDouble() + video["duration"].toString().toDouble(),
                0.001);
    EXPECT_FALSE(QFile::exists(delegate->bufferMgr().tempVideoPathfile()));
    EXPECT_TRUE(frontEnd.alerts.isEmpty());
    EXPECT_EQ(frontEnd.percents.first(), 0.0);
    EXPECT_EQ(frontEnd.percents.last(), 100.0);
}

TEST_F(DelegateTest, TheStartSequenceHasItsOrder)
{
    ASSERT_TRUE(record(1));
    QStringList told = frontEnd.told;
    told.removeAll("notBusy");
    EXPECT_EQ(told,
              (QStringList { "savePanel Untitled.mp4",
                             "hint",
                             "countDown",
                             "showStopItem",
                             "minimise",
                             "reloadData",
                             "inhibit",
                             "hideStopItem",
                             "toFront",
                             "busy",
                             "beginProgress",
                             "reveal " + moviePath(),
                             "announce " + moviePath(),
                             "toFront",
                             "release",
                             "reloadData",
                             "endProgress",
                             "stepAside" }));
    EXPECT_EQ(frontEnd.titles.first(), "00:00:00");
}

TEST_F(DelegateTest, AnswersThatEndTheStartChangeNothing)
{
    const QSignalSpy refused(&delegate->session(), &RecordingSession::recordingRefused);
    freeBytes = 5'000'000'000;
    frontEnd.goesOn = false;
    delegate->recorded();
    EXPECT_EQ(frontEnd.told, QStringList { "freeSpace" });

    frontEnd.goesOn = true;
    frontEnd.path.reset();
    delegate->recorded();
    EXPECT_EQ(frontEnd.told.last(), "savePanel Untitled.mp4");

    frontEnd.path = folder.filePath("movie.mp4");
    frontEnd.hintResponse = RecordingQuestions::responseStop;
    delegate->recorded();
    EXPECT_TRUE(runUntil([&] { return refused.size() == 3; }));
    EXPECT_TRUE(runPosted());
    EXPECT_EQ(delegate->state(), 0);
    EXPECT_EQ(frontEnd.told.last(), "hint");
    EXPECT_FALSE(QFile::exists(moviePath()));
}

TEST_F(DelegateTest, ContinuingWithLittleSpaceIsAllowed)
{
    freeBytes = 5'000'000'000;
    ASSERT_TRUE(record(1));
    EXPECT_EQ(frontEnd.told.first(), "freeSpace");
    EXPECT_TRUE(QFile::exists(moviePath()));
}

TEST_F(DelegateTest, RecordIsIgnoredWhileRecordingAndWhileEncoding)
{
    bool pressedWhileEncoding = false;
    frontEnd.onProgress = [&] {
        if (delegate->state() == 1) {
            pressedWhileEncoding = true;
            delegate->recorded();
        }
    };
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(2));
    delegate->recorded();
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    EXPECT_TRUE(pressedWhileEncoding);
    EXPECT_EQ(frontEnd.told.count("savePanel Untitled.mp4"), 1);
}

TEST_F(DelegateTest, ASecondRecordingWorksLikeTheFirst)
{
    ASSERT_TRUE(record(2));
    frontEnd.path = folder.filePath("second.mp4");
    ASSERT_TRUE(record(4));
    EXPECT_EQ(delegate->counts().framesWritten, delegate->counts().framesGrabbed);
    EXPECT_TRUE(QFile::exists(folder.filePath("movie.mp4")));
    EXPECT_TRUE(QFile::exists(folder.filePath("second.mp4")));
}

TEST_F(DelegateTest, WhatMayBeEditedFollowsStateAndOptions)
{
    VNOption &options = *delegate->options();
    const QSignalSpy regionSpy(delegate.get(), &VornicAppDelegate::allowedEditRecordRegionChanged);
    const QSignalSpy logoSpy(delegate.get(), &VornicAppDelegate::allowedEditLogoChanged);
    const QSignalSpy fontSpy(delegate.get(), &VornicAppDelegate::allowedEditFontChanged);
    const QSignalSpy optionsSpy(delegate.get(), &VornicAppDelegate::allowedEditOptionsChanged);
    EXPECT_TRUE(delegate->allowedEditOptions());
    EXPECT_FALSE(delegate->allowedEditRecordRegion());
    EXPECT_FALSE(delegate->allowedEditLogo());
    EXPECT_FALSE(delegate->allowedEditFont());
    EXPECT_FALSE(delegate->allowedAudioRecord());

    options.setRecordRegion(1);
    EXPECT_EQ(regionSpy.size(), 1);
    EXPECT_TRUE(delegate->allowedEditRecordRegion());
    options.logoContext()->setLogoValidate(true);
    EXPECT_EQ(logoSpy.size(), 1);
    EXPECT_TRUE(delegate->allowedEditLogo());
    EXPECT_TRUE(delegate->allowedEditFont());
    options.logoContext()->setLogoType(1);
    EXPECT_EQ(fontSpy.size(), 2);
    EXPECT_FALSE(delegate->allowedEditFont());
    options.logoContext()->setLogoType(0);
    addAudioDevice();
    EXPECT_TRUE(delegate->allowedAudioRecord());

    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(1));
    EXPECT_EQ(optionsSpy.size(), 1);
    EXPECT_EQ(delegate->state(), 1);
    for (const bool allowed : { delegate->allowedEditOptions(),
                                delegate->allowedEditRecordRegion(),
                                delegate->allowedEditLogo(),
                                delegate->allowedEditFont(),
                                delegate->allowedAudioRecord() })
        EXPECT_FALSE(allowed);
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(optionsSpy.size(), 2);
    EXPECT_TRUE(delegate->allowedEditFont());
    EXPECT_EQ(delegate->state(), 0);
}

TEST_F(DelegateTest, ASelectedRectangleIsWhatTheMovieShows)
{
    QImage picture(320, 200, QImage::Format_RGB32);
    picture.fill(qRgb(20, 60, 100));
    QPainter(&picture).fillRect(100, 50, 80, 60, qRgb(200, 60, 100));
    display->setPicture(picture);
    delegate->options()->setRecordRegion(1);
    delegate->options()->setSelectedRect(QRectF(100, 200 - 50 - 60, 80, 60));
    ASSERT_TRUE(record(2));
    const QImage shown = decodedPicture(moviePath(), 0, QSize(80, 60));
    // So small a movie may take 12 kbit a second.
    EXPECT_LE(std::abs(qRed(shown.pixel(40, 30)) - 200), 8);
    EXPECT_LE(std::abs(qRed(shown.pixel(2, 2)) - 200), 8);
    EXPECT_TRUE(frontEnd.told.contains("busy"));
}

TEST_F(DelegateTest, ARectanglePartlyOffTheDisplayIsRecordedWhereItLiesOnIt)
{
    delegate->options()->setRecordRegion(1);
    delegate->options()->setSelectedRect(QRectF(-40, -30, 100, 90));
    ASSERT_TRUE(record(2));
    const QJsonObject video = streamOf(probe(moviePath()), "video");
    EXPECT_EQ(video["width"].toInt(), 60);
    EXPECT_EQ(video["height"].toInt(), 60);
    EXPECT_EQ(delegate->bufferMgr().recordRect(), QRectF(0, 0, 60, 60));
}

TEST_F(DelegateTest, ANegativeFractionalOriginIsCutOffTowardsZero)
{
    delegate->options()->setRecordRegion(1);
    delegate->options()->setSelectedRect(QRectF(-10.75, -20.25, 100, 50));
    ASSERT_TRUE(record(2));
    // From -10 on: 100 - 10 columns. From 200 - (50 - 20.25) = 170.25 rows below the top on: 200 - 170.
    const QJsonObject video = streamOf(probe(moviePath()), "video");
    EXPECT_EQ(video["width"].toInt(), 90);
    EXPECT_EQ(video["height"].toInt(), 30);
    EXPECT_EQ(delegate->bufferMgr().recordRect(), QRectF(0, 0, 90, 30));
}

TEST_F(DelegateTest, ARectangleOnTheDisplayIsSpooledAsTheOptionsSayIt)
{
    const QRectF selected(10.5, 20.25, 100.75, 50.5);
    delegate->options()->setRecordRegion(1);
    delegate->options()->setSelectedRect(selected);
    ASSERT_TRUE(record(2));
    EXPECT_EQ(delegate->bufferMgr().recordRect(), selected);
    const QJsonObject video = streamOf(probe(moviePath()), "video");
    EXPECT_EQ(video["width"].toInt(), 100);
    EXPECT_EQ(video["height"].toInt(), 50);
}

/// All zeros mean the whole display to the capture; a place without a size is none.
TEST_F(DelegateTest, AnEmptyRectangleIsNotTheWholeDisplay)
{
    delegate->options()->setRecordRegion(1);
    delegate->options()->setSelectedRect(QRectF(10, 20, 0, 0));
    delegate->recorded();
    ASSERT_TRUE(runUntil([this] { return delegate->state() == 1; }));
    ASSERT_TRUE(runUntil([this] { return delegate->state() == 0 || delegate->counts().framesGrabbed > 0; }));
    EXPECT_EQ(delegate->counts().framesGrabbed, 0U);
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    EXPECT_TRUE(logged.contains("Failed to shot screen buffer."));
    EXPECT_FALSE(QFile::exists(moviePath()));
}

TEST_F(DelegateTest, ARectangleWhollyOffTheDisplayFailsInOneSentence)
{
    delegate->options()->setRecordRegion(1);
    delegate->options()->setSelectedRect(QRectF(1000, 1000, 100, 90));
    delegate->recorded();
    ASSERT_TRUE(runUntil([this] { return delegate->state() == 1; }));
    ASSERT_TRUE(runUntilIdle());
    EXPECT_TRUE(logged.contains("Failed to shot screen buffer."));
    EXPECT_EQ(frontEnd.alerts, QStringList { "Error|" + delegate->failure() });
    EXPECT_FALSE(delegate->failure().isEmpty());
    EXPECT_FALSE(QFile::exists(moviePath()));
}

TEST_F(DelegateTest, AFailedGrabEndsTheRecordingAndKeepsWhatThereIs)
{
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(3));
    display->setRefusesGrabs(true);
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(logged.count("Failed to shot screen buffer."), 1);
    EXPECT_EQ(delegate->counts().framesWritten, delegate->counts().framesGrabbed);
    EXPECT_TRUE(QFile::exists(moviePath()));
}

TEST_F(DelegateTest, ADisplayThatHasGrownSinceTheLaunchIsRecordedWhole)
{
    display->setPicture(quarteredPicture({ 640, 400 }));
    ASSERT_TRUE(record(2));
    const QJsonObject video = streamOf(probe(moviePath()), "video");
    EXPECT_EQ(video["width"].toInt(), 640);
    EXPECT_EQ(video["height"].toInt(), 400);
    EXPECT_TRUE(isQuartered(decodedPicture(moviePath(), 0, QSize(640, 400))));
}

TEST_F(DelegateTest, ADisplayOfAnotherSizeIsFittedIntoTheMovieThatRuns)
{
    display->setPicture(quarteredPicture({ 320, 200 }));
    delegate->recorded();
    const std::vector<QSize> sizes { { 320, 200 }, { 640, 400 }, { 160, 100 }, { 320, 200 } };
    for (const QSize size : sizes) {
        display->setPicture(quarteredPicture(size));
        // The first of them may have been grabbed before.
        ASSERT_TRUE(runUntilGrabbed(delegate->counts().framesGrabbed + 3));
    }
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(delegate->counts().framesWritten, delegate->counts().framesGrabbed);
    EXPECT_EQ(delegate->counts().framesSkipped, 0U);
    EXPECT_TRUE(frontEnd.alerts.isEmpty());
    const QJsonObject video = streamOf(probe(moviePath()), "video");
    EXPECT_EQ(video["width"].toInt(), 320);
    EXPECT_EQ(video["height"].toInt(), 200);
    const std::vector<QImage> pictures = storedPictures({ 320, 200 });
    EXPECT_GE(pictures.size(), sizes.size());
    for (const QImage &picture : pictures)
        EXPECT_TRUE(isQuartered(picture));
}

TEST_F(DelegateTest, ADisplayOfAnotherShapeIsShownBetweenBlackBars)
{
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(1));
    for (const QSize size : { QSize(160, 200), QSize(640, 200) }) {
        display->setPicture(quarteredPicture(size));
        ASSERT_TRUE(runUntilGrabbed(delegate->counts().framesGrabbed + 3));
    }
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    const std::vector<QImage> pictures = storedPictures({ 320, 200 });
    ASSERT_GE(pictures.size(), 3U);
    EXPECT_TRUE(std::ranges::any_of(pictures, [](const QImage &shown) {
        return isQuartered(shown.copy(80, 0, 160, 200)) && qGray(shown.pixel(40, 100)) < 5;
    }));
    EXPECT_TRUE(isQuartered(pictures.back().copy(0, 50, 320, 100)));
    EXPECT_LT(qGray(pictures.back().pixel(160, 25)), 5);
}

TEST_F(DelegateTest, ARectangleThatADisplayShrinksAwayFromIsRecordedAsFarAsItLiesOnIt)
{
    delegate->options()->setRecordRegion(1);
    delegate->options()->setSelectedRect(QRectF(100, 20, 200, 100));
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(2));
    display->setPicture(noisePicture({ 160, 100 }, 1));
    ASSERT_TRUE(runUntilGrabbed(delegate->counts().framesGrabbed + 3));
    // None of it is left now.
    display->setPicture(noisePicture({ 80, 100 }, 1));
    ASSERT_TRUE(runUntilIdle());
    EXPECT_TRUE(delegate->failure().isEmpty());
    EXPECT_EQ(delegate->counts().framesWritten, delegate->counts().framesGrabbed);
    EXPECT_EQ(streamOf(probe(moviePath()), "video")["width"].toInt(), 200);
}

TEST_F(DelegateTest, AFullCacheEndsTheRecordingWithAnAlert)
{
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(3));
    frontEnd.onAlert = [this] {
        EXPECT_TRUE(delegate->bufferMgr().exit()) << "sound that comes while the alert stands is too late";
    };
    freeBytes = 1'073'741'823;
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(frontEnd.alerts,
              QStringList { "Disk free space is too low|It will terminate recording because of disk space is "
                            "insufficient" });
    EXPECT_EQ(delegate->counts().framesWritten, delegate->counts().framesGrabbed);
}

TEST_F(DelegateTest, AMissingOutputFolderIsToldBeforeTheRecording)
{
    frontEnd.path = folder.filePath("none/movie.mp4");
    const QSignalSpy refused(&delegate->session(), &RecordingSession::recordingRefused);
    delegate->recorded();
    ASSERT_TRUE(runUntil([&] { return refused.size() == 1; }));
    EXPECT_EQ(delegate->state(), 0);
    ASSERT_EQ(frontEnd.alerts.size(), 1);
    EXPECT_TRUE(frontEnd.alerts.first().contains("does not exist"));
}

TEST_F(DelegateTest, AnExistingFileIsReplacedByTheFinishedMovieOnly)
{
    QFile old(moviePath());
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(1));
    frontEnd.onProgress = [&] { EXPECT_EQ(QFile(moviePath()).size(), 3); };
    delegate->stopRecord();
    ASSERT_TRUE(runUntil([&] { return !frontEnd.percents.isEmpty(); }));
    frontEnd.onProgress = {};
    ASSERT_TRUE(runUntilIdle());
    EXPECT_GT(QFile(moviePath()).size(), 500);
    EXPECT_EQ(delegate->outfileName(), moviePath());
}

TEST_F(DelegateTest, AFailedJobEndsWithASentenceAndIdle)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir("out"));
    frontEnd.path = folder.filePath("out/movie.mp4");
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(2));
    // The folder goes away under the recording.
    ASSERT_TRUE(QDir(folder.filePath("out")).removeRecursively());
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    ASSERT_EQ(frontEnd.alerts.size(), 1);
    EXPECT_EQ(frontEnd.alerts.first(), "Error|" + delegate->failure());
    EXPECT_EQ(delegate->counts().framesWritten, 0U);
    EXPECT_EQ(frontEnd.told.filter("reveal").size(), 0);
}

TEST_F(DelegateTest, AFailedJobLosesNothingWhenAnotherFileIsGiven)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir("out"));
    frontEnd.path = folder.filePath("out/movie.mp4");
    frontEnd.otherPath = folder.filePath("other.mp4");
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(4));
    ASSERT_TRUE(QDir(folder.filePath("out")).removeRecursively());
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(frontEnd.alerts.size(), 1);
    EXPECT_TRUE(delegate->failure().isEmpty());
    EXPECT_GE(delegate->counts().framesWritten, 4U);
    EXPECT_EQ(delegate->counts().framesWritten, delegate->counts().framesGrabbed);
    EXPECT_EQ(delegate->outfileName(), folder.filePath("other.mp4"));
    EXPECT_FALSE(numbersOf(probe(folder.filePath("other.mp4")), "packets", "video", "pts").isEmpty());
    EXPECT_FALSE(QFile::exists(delegate->bufferMgr().tempVideoPathfile()));
}

TEST_F(DelegateTest, WhenFinishedTheMovieIsRevealedAndOpenedAsChosen)
{
    delegate->options()->setOpenRecordedWhenFinished(true);
    ASSERT_TRUE(record(1));
    EXPECT_LT(frontEnd.told.indexOf("reveal " + moviePath()), frontEnd.told.indexOf("open " + moviePath()));
    EXPECT_GE(frontEnd.told.indexOf("reveal " + moviePath()), 0);

    frontEnd.told.clear();
    delegate->options()->setShowInFinderWhenFinished(false);
    delegate->options()->setOpenRecordedWhenFinished(false);
    ASSERT_TRUE(record(1));
    EXPECT_TRUE(frontEnd.told.filter("reveal").isEmpty());
    EXPECT_TRUE(frontEnd.told.filter("open").isEmpty());
    EXPECT_FALSE(frontEnd.told.contains("stepAside")) << "nothing has been opened in front of which it stood";
}

TEST_F(DelegateTest, TheSpoolIsThereUntilTheMovieIsShown)
{
    delegate->options()->setOpenRecordedWhenFinished(true);
    int shown = 0;
    frontEnd.onShown = [&] {
        ++shown;
        EXPECT_TRUE(QFile::exists(delegate->bufferMgr().tempVideoPathfile()));
        EXPECT_EQ(delegate->state(), 1);
    };
    ASSERT_TRUE(record(1));
    EXPECT_EQ(shown, 2) << "in its folder, and opened";
    EXPECT_FALSE(QFile::exists(delegate->bufferMgr().tempVideoPathfile()));
}

TEST_F(DelegateTest, QuittingIsAskedOnlyWhileRecording)
{
    EXPECT_TRUE(delegate->windowShouldClose());
    EXPECT_TRUE(frontEnd.told.isEmpty());
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(2));
    frontEnd.quits = false;
    EXPECT_FALSE(delegate->windowShouldClose());
    EXPECT_EQ(
        frontEnd.told.last(),
        "confirmQuit Are you sure to quit it?|The application is recording video, video recording will stop "
        "if it quit.");
    EXPECT_FALSE(delegate->bufferMgr().exit());
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
}

TEST_F(DelegateTest, ConfirmedQuittingStartsTheJobAndEndsWithTheMovieComplete)
{
    const QSignalSpy ready(&delegate->session(), &RecordingSession::readyToTerminate);
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(4));
    EXPECT_TRUE(delegate->windowShouldClose());
    EXPECT_FALSE(delegate->bufferMgr().exit());
    ASSERT_TRUE(runUntil([this] { return frontEnd.told.contains("beginProgress"); }));
    EXPECT_TRUE(ready.isEmpty());
    delegate->session().terminate();
    ASSERT_TRUE(runUntil([&] { return !ready.isEmpty(); }));
    EXPECT_EQ(delegate->state(), 0);
    EXPECT_EQ(frontEnd.told.count("beginProgress"), 1);
    const auto written = static_cast<qsizetype>(delegate->counts().framesWritten);
    EXPECT_GE(written, 4);
    EXPECT_FALSE(numbersOf(probe(moviePath()), "packets", "video", "pts").isEmpty());
}

/// Its last pass may be late in telling, and the spool is empty by then.
TEST_F(DelegateTest, AStopThatComesAfterTheMovieIsCompleteLeavesItAlone)
{
    ASSERT_TRUE(record(3));
    const QList<qint64> times = numbersOf(probe(moviePath()), "packets", "video", "pts");
    EXPECT_FALSE(times.isEmpty());
    delegate->executeStopRecord();
    EXPECT_TRUE(runPosted());
    EXPECT_EQ(delegate->state(), 0);
    EXPECT_EQ(frontEnd.told.count("beginProgress"), 1);
    EXPECT_EQ(frontEnd.told.last(), "stepAside");
    EXPECT_TRUE(frontEnd.alerts.isEmpty());
    EXPECT_EQ(numbersOf(probe(moviePath()), "packets", "video", "pts"), times);
}

/// Ends the delegate while a pass of the capture waits for the main thread, which runs no events.
class EndingDelegateTest : public DelegateTest
{
protected:
    void endDuringAPass(const std::function<bool()> &passHasBegun)
    {
        VornicAppDelegate &ending = *delegate;
        ending.bufferMgr().readyToRecord();
        ending.imgCaptureQueue().async(
            [&ending] { ending.captureInBackground(absoluteTimeSeconds(), QRectF(), 30); });
        while (!passHasBegun())
            std::this_thread::yield();
        delegate.reset();
        // What the pass has left for the main thread comes too late.
        QCoreApplication::processEvents();
    }
};

TEST_F(EndingDelegateTest, APassThatWaitsToShowTheClockIsLetGo)
{
    int ticks = 0;
    QObject::connect(
        &delegate->session(), &RecordingSession::clockTicked, &application, [&ticks] { ++ticks; });
    const int before = display->grabCount();
    endDuringAPass([&] { return display->grabCount() > before; });
    EXPECT_EQ(ticks, 0);
}

TEST_F(EndingDelegateTest, APassThatWaitsToTellOfAFullDiskIsLetGo)
{
    std::atomic<bool> hasAsked = false;
    delegate->bufferMgr().setFreeSpaceProbe([&hasAsked] {
        hasAsked = true;
        return std::uint64_t { 0 };
    });
    endDuringAPass([&] { return hasAsked.load(); });
    EXPECT_TRUE(frontEnd.told.isEmpty()) << frontEnd.told.join('\n').toStdString();
}

TEST_F(DelegateTest, TerminatingWhenIdleIsAtOnce)
{
    const QSignalSpy ready(&delegate->session(), &RecordingSession::readyToTerminate);
    delegate->session().terminate();
    EXPECT_EQ(ready.size(), 1);
}

TEST_F(DelegateTest, AFrameLastsUntilTheNextOneAndTheLastAThirtieth)
{
    delegate->bufferMgr().readyToRecord();
    spool({ 100, 4100, 4100, 9000 });
    EXPECT_EQ(delegate->PKMuxerTaskLength(), 9000);
    QList<qint64> times;
    QList<qint64> durations;
    while (const auto frame = delegate->PKMuxerTaskGetVideoFrame()) {
        times += frame->timeStamp();
        durations += frame->duration();
    }
    EXPECT_EQ(times, (QList<qint64> { 100, 4100, 4100, 9000 }));
    EXPECT_EQ(durations, (QList<qint64> { 4000, PKTimebase / 30, 4900, PKTimebase / 30 }));
}

TEST_F(DelegateTest, TimestampsThatWouldBeNegativeAreLargeOnes)
{
    constexpr std::uint64_t middle = std::uint64_t { 1 } << 63;
    delegate->bufferMgr().readyToRecord();
    spool({ middle - 100, middle + 100, 50 });
    QList<qint64> durations;
    while (const auto frame = delegate->PKMuxerTaskGetVideoFrame())
        durations += frame->duration();
    EXPECT_EQ(durations, (QList<qint64> { 200, PKTimebase / 30, PKTimebase / 30 }));
}

TEST_F(DelegateTest, ADamagedFrameInTheMiddleIsNotTheEnd)
{
    delegate->bufferMgr().readyToRecord();
    spool({ 0, 3000, 6000 });
    {
        QFile file(delegate->bufferMgr().tempVideoPathfile());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        const QByteArray all = file.readAll();
        const QByteArray start("\xFF\xD8\xFF");
        const qsizetype second = all.indexOf(start, all.indexOf(start) + 1);
        file.seek(second + 5000);
        file.write(QByteArray(300, '\xFF'));
    }
    QList<qint64> times;
    while (const auto frame = delegate->PKMuxerTaskGetVideoFrame())
        times += frame->timeStamp();
    EXPECT_EQ(times, (QList<qint64> { 0, 6000 }));
    EXPECT_EQ(delegate->counts().framesSkipped, 1U);
}

TEST_F(DelegateTest, TheMovieIsConfiguredByQuality)
{
    const auto configured = [this](int quality) {
        delegate->bufferMgr().readyToRecord();
        delegate->bufferMgr().setRecordRect(QRectF(0, 0, 1920, 1080));
        delegate->startRecorder({ moviePath(), quality, 0 });
        return delegate->bufferMgr().muxerContext();
    };
    const auto high = configured(0);
    EXPECT_EQ(high->filename(), moviePath());
    EXPECT_EQ(high->format(), 1);
    EXPECT_EQ(high->width(), 1920);
    EXPECT_EQ(high->height(), 1080);
    EXPECT_EQ(high->videoCodecID(), 1);
    EXPECT_EQ(high->frameRate(), 30.0);
    EXPECT_EQ(high->videoBitrate(), 5'184'000);
    EXPECT_EQ(high->audioCodecID(), 0);
    const auto medium = configured(1);
    EXPECT_EQ(medium->frameRate(), 25.0);
    EXPECT_EQ(medium->videoBitrate(), 2'488'320);
}

// ---- sound

TEST_F(DelegateTest, ALaunchFillsTheDeviceListAndSelectsTheFirst)
{
    audioControl.names = QStringList { "Microphone", "Monitor of Speakers" };
    auto options = std::make_unique<VNOption>();
    options->setEnableAudio(true);
    makeDelegate(std::move(options));
    const AudioDeviceList &list = delegate->audioDevicesView();
    EXPECT_EQ(list.titles(), audioControl.names);
    EXPECT_EQ(list.indexOfSelected(), 0);
    EXPECT_EQ(list.stringValue(), "Microphone");
    EXPECT_TRUE(list.isEnabled());
    EXPECT_EQ(delegate->currentAudioID(), 11U);
    EXPECT_TRUE(audioControl.delegate);

    delegate->options()->setEnableAudio(false);
    EXPECT_FALSE(list.isEnabled());
}

TEST_F(DelegateTest, ALaunchWithoutDevicesTurnsSoundOff)
{
    auto options = std::make_unique<VNOption>();
    options->setEnableAudio(true);
    makeDelegate(std::move(options));
    EXPECT_FALSE(delegate->options()->enableAudio());
    EXPECT_EQ(delegate->audioDevicesView().numberOfMenuItems(), 0);
    EXPECT_EQ(delegate->audioDevicesView().indexOfSelected(), -1);
    EXPECT_FALSE(delegate->audioDevicesView().isEnabled());
    EXPECT_EQ(delegate->currentAudioID(), 0U);
}

TEST_F(DelegateTest, ADeviceChangeAddsAllNamesAgainAndSelectsTheFirst)
{
    audioControl.names = QStringList { "Microphone", "Monitor of Speakers" };
    makeDelegate(std::make_unique<VNOption>());
    delegate->audioDevicesView().setIndexOfSelected(1);
    audioControl.delegate = nullptr;
    delegate->audioControlInputDeviceChanged(audioControl);
    EXPECT_EQ(delegate->audioDevicesView().titles(), audioControl.names + audioControl.names);
    EXPECT_EQ(delegate->audioDevicesView().indexOfSelected(), 0);
    EXPECT_TRUE(audioControl.delegate);
}

TEST_F(DelegateTest, ADeviceChangeToNothingLeavesTheListUntouched)
{
    audioControl.names = QStringList { "Microphone", "Monitor of Speakers" };
    makeDelegate(std::make_unique<VNOption>());
    delegate->audioDevicesView().setIndexOfSelected(1);
    const QSignalSpy spy(delegate.get(), &VornicAppDelegate::allowedAudioRecordChanged);
    const QStringList before = std::exchange(audioControl.names, QStringList());
    delegate->audioControlInputDeviceChanged(audioControl);
    EXPECT_EQ(delegate->audioDevicesView().titles(), before);
    EXPECT_EQ(delegate->audioDevicesView().indexOfSelected(), 1);
    EXPECT_EQ(spy.size(), 1);
    EXPECT_FALSE(delegate->allowedAudioRecord());
}

TEST_F(DelegateTest, ADeviceChangeToNothingLeavesTheListAsUsableAsItWas)
{
    for (const bool sound : { true, false }) {
        audioControl.names = QStringList { "Microphone" };
        makeDelegate(std::make_unique<VNOption>());
        delegate->options()->setEnableAudio(sound);
        audioControl.names.clear();
        delegate->audioControlInputDeviceChanged(audioControl);
        EXPECT_EQ(delegate->audioDevicesView().isEnabled(), sound);
    }
}

TEST_F(DelegateTest, TheRecorderIsMadeOnceAndSwitchedOnlyByTheUser)
{
    audioControl.names = QStringList { "Microphone", "Monitor of Speakers" };
    makeDelegate(std::make_unique<VNOption>());
    EXPECT_EQ(audioControl.recorder, nullptr);
    AudioRecorder *recorder = delegate->audioRecorder();
    EXPECT_EQ(audioControl.recorder->deviceID, 11U);
    EXPECT_EQ(delegate->audioRecorder(), recorder);
    delegate->audioDevicesView().setIndexOfSelected(1);
    EXPECT_EQ(audioControl.recorder->deviceID, 11U);
    delegate->selAudioDevice();
    EXPECT_EQ(audioControl.recorder->deviceID, 12U);
    delegate->audioControlInputDeviceChanged(audioControl);
    EXPECT_EQ(audioControl.recorder->deviceID, 12U);
    EXPECT_EQ(delegate->audioRecorder(), recorder);
}

TEST_F(DelegateTest, TheDeviceThatTheUserChoseIsRemembered)
{
    audioControl.names = { "Microphone", "Line in" };
    makeDelegate(nullptr);
    EXPECT_EQ(delegate->audioDevicesView().stringValue(), "Microphone");
    delegate->audioDevicesView().setIndexOfSelected(1);
    delegate->selAudioDevice();
    delegate->audioControlInputDeviceChanged(audioControl);
    EXPECT_EQ(delegate->audioDevicesView().stringValue(), "Line in") << "whatever comes or goes";
    makeDelegate(nullptr);
    EXPECT_EQ(delegate->audioDevicesView().stringValue(), "Line in") << "at the next start";
    makeDelegate(std::make_unique<VNOption>());
    EXPECT_EQ(delegate->audioDevicesView().stringValue(), "Microphone") << "only the window remembers";
    audioControl.names = { "Microphone" };
    makeDelegate(nullptr);
    EXPECT_EQ(delegate->audioDevicesView().stringValue(), "Microphone");
}

TEST_F(DelegateTest, TheDeviceListRestsWhileARecordingRuns)
{
    addAudioDevice();
    delegate->options()->setEnableAudio(true);
    EXPECT_TRUE(delegate->audioDevicesView().isEnabled());
    delegate->recorded();
    ASSERT_TRUE(runUntil([this] { return delegate->state() == 1; }));
    EXPECT_FALSE(delegate->audioDevicesView().isEnabled());
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    EXPECT_TRUE(delegate->audioDevicesView().isEnabled());
}

TEST_F(DelegateTest, AfterARecordingTheDeviceListMayBeUsedWhereThereIsADevice)
{
    addAudioDevice();
    EXPECT_FALSE(delegate->audioDevicesView().isEnabled());
    ASSERT_TRUE(record(1));
    EXPECT_TRUE(delegate->allowedAudioRecord());
    EXPECT_TRUE(delegate->audioDevicesView().isEnabled());
    delegate->recordRegionChanged();
    EXPECT_FALSE(delegate->audioDevicesView().isEnabled()) << "sound is switched off";
    audioControl.names.clear();
    ASSERT_TRUE(record(1));
    EXPECT_FALSE(delegate->audioDevicesView().isEnabled());
}

TEST_F(DelegateTest, WhoWaitsForSoundIsToldSoUntilItComes)
{
    FakeAudioRecorder &source = addAudioDevice();
    delegate->options()->setEnableAudio(true);
    delegate->recorded();
    ASSERT_TRUE(runUntil([this] { return frontEnd.titles.contains("waiting for audio"); }));
    source.deliver(QByteArray(3840, 'a').constData(), 3840);
    ASSERT_TRUE(runUntilGrabbed(1));
    EXPECT_EQ(frontEnd.titles.last(), "00:00:00");
    EXPECT_EQ(frontEnd.titles.count("waiting for audio"), 1);
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
}

TEST_F(DelegateTest, AudioIsConfiguredFromWhatIsReallyDelivered)
{
    FakeAudioRecorder &source = addAudioDevice();
    source.format.mBitsPerChannel = 8;
    source.format.mChannelsPerFrame = 1;
    source.format.mSampleRate = 22050.9;
    delegate->options()->setEnableAudio(true);
    delegate->startRecorder({ moviePath(), 0, 1 });
    const auto context = delegate->bufferMgr().muxerContext();
    EXPECT_EQ(context->audioCodecID(), 100);
    EXPECT_EQ(context->samplerate(), 22050);
    EXPECT_EQ(context->numberOfChannels(), 1);
    EXPECT_EQ(context->sampleFormat(), 0);
    EXPECT_EQ(source.startCount, 1);
}

TEST_F(DelegateTest, ACaptureThatEndsWhileTheSoundStartsDoesNotStopItInTheMiddle)
{
    audioControl.names += "Microphone";
    delegate->audioControlInputDeviceChanged(audioControl);
    delegate->options()->setEnableAudio(true);
    // Relaxed, so that these do not order what the two threads do elsewhere: the thread sanitizer looks on.
    constexpr auto relaxed = std::memory_order_relaxed;
    std::atomic<bool> isStarting = false;
    std::atomic<bool> isEnding = false;
    // Asked at the beginning of every pass, which then ends the capture.
    delegate->bufferMgr().setFreeSpaceProbe([&] {
        if (isStarting.load(relaxed)) {
            delegate->stopRecord();
            isEnding.store(true, relaxed);
        }
        return freeBytes.load();
    });
    int stopsWhileStarting = -1;
    audioControl.onStart = [&] {
        isStarting.store(true, relaxed);
        while (!isEnding.load(relaxed))
            std::this_thread::yield();
        delegate->imgCaptureQueue().sync([] {});
        stopsWhileStarting = audioControl.recorder->stops;
    };
    delegate->recorded();
    ASSERT_TRUE(runUntil([&] { return stopsWhileStarting >= 0; }));
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(stopsWhileStarting, 0);
    EXPECT_GE(audioControl.recorder->stops, 1);
}

TEST_F(DelegateTest, AnUnsupportedBitDepthIsRecordedWithoutSound)
{
    addAudioDevice().format.mBitsPerChannel = 24;
    delegate->options()->setEnableAudio(true);
    ASSERT_TRUE(record(2));
    EXPECT_TRUE(logged.contains("Only support 16bit & 8bit : 24"));
    EXPECT_TRUE(streamOf(probe(moviePath()), "audio").isEmpty());
    EXPECT_GE(delegate->counts().framesWritten, 2U);
}

TEST_F(DelegateTest, ARecorderOfAnUnsupportedBitDepthIsStoppedAtOnce)
{
    FakeAudioRecorder &source = addAudioDevice();
    source.format.mBitsPerChannel = 24;
    delegate->options()->setEnableAudio(true);
    delegate->startRecorder({ moviePath(), 0, 1 });
    EXPECT_EQ(source.startCount, 1);
    EXPECT_EQ(source.stops, 1);
}

TEST_F(DelegateTest, ARefusedFormatIsOnlyLogged)
{
    FakeAudioRecorder &source = addAudioDevice();
    source.starts = false;
    delegate->options()->setEnableAudio(true);
    delegate->recorded();
    ASSERT_TRUE(runUntil([this] { return logged.contains("Can support 16bit, 8bit record."); }));
    // No sound ever comes, so no frame is kept; a stop during the wait keeps one, and ends the recording.
    EXPECT_TRUE(runForPasses(5));
    EXPECT_EQ(delegate->counts().framesGrabbed, 0U);
    EXPECT_EQ(delegate->bufferMgr().muxerContext()->audioCodecID(), 0);
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    EXPECT_TRUE(delegate->failure().isEmpty());
    EXPECT_EQ(delegate->counts().framesWritten, 1U);
}

TEST_F(DelegateTest, FramesBeforeTheFirstChunkAreDroppedAndTheChunkIsTheOrigin)
{
    FakeAudioRecorder &source = addAudioDevice();
    delegate->options()->setEnableAudio(true);
    delegate->recorded();
    ASSERT_TRUE(runUntil([&] { return source.startCount == 1; }));
    EXPECT_TRUE(runForPasses(5));
    EXPECT_EQ(delegate->counts().framesGrabbed, 0U);

    // 19,200 bytes are 0.1 s: the origin lies that long before the chunk's arrival.
    const QByteArray samples(19'200, '\0');
    const double arrived = absoluteTimeSeconds();
    source.deliver(samples.constData(), 19'200);
    ASSERT_TRUE(runUntilGrabbed(1));
    const double kept = absoluteTimeSeconds();
    const auto first = delegate->bufferMgr().nextBufferTimestamp();
    EXPECT_GE(first, static_cast<std::int64_t>(0.1 * PKTimebase));
    EXPECT_LE(first, static_cast<std::int64_t>((kept - arrived + 0.1) * PKTimebase) + 1);
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    EXPECT_GE(source.stops, 1);
}

TEST_F(DelegateTest, AChunkOf19200BytesYields4800Samples)
{
    FakeAudioRecorder &source = addAudioDevice();
    delegate->options()->setEnableAudio(true);
    delegate->recorded();
    ASSERT_TRUE(runUntil([&] { return source.startCount == 1; }));
    const QByteArray samples(19'200, 'a');
    source.deliver(samples.constData(), 19'200);
    ASSERT_TRUE(runUntilGrabbed(1)); // a stop before would wait for it, on this thread
    delegate->stopRecord();
    const auto frame = delegate->PKMuxerTaskGetAudioFrame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->numberOfSamples(), 4800);
    EXPECT_EQ(frame->numberOfChannel(), 2);
    EXPECT_EQ(frame->sampleRate(), 48000);
    EXPECT_EQ(frame->sampleFormat(), 1);
    EXPECT_EQ(frame->samples(), samples);
    EXPECT_FALSE(delegate->PKMuxerTaskGetAudioFrame());
    ASSERT_TRUE(runUntilIdle());
}

TEST_F(DelegateTest, AChunkOf8BitsIsHandedOnAsSuch)
{
    FakeAudioRecorder &source = addAudioDevice();
    source.format = defaultAudioStreamBasicDescription();
    source.format.mBitsPerChannel = 8;
    source.format.mBytesPerFrame = 2;
    source.format.mBytesPerPacket = 2;
    delegate->options()->setEnableAudio(true);
    delegate->recorded();
    ASSERT_TRUE(runUntil([&] { return source.startCount == 1; }));
    const QByteArray samples(9'600, '\x70');
    source.deliver(samples.constData(), 9'600);
    ASSERT_TRUE(runUntilGrabbed(1)); // a stop before would wait for it, on this thread
    delegate->stopRecord();
    const auto frame = delegate->PKMuxerTaskGetAudioFrame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->sampleFormat(), 0);
    EXPECT_EQ(frame->numberOfSamples(), 4800);
    EXPECT_EQ(frame->numberOfChannel(), 2);
    EXPECT_EQ(frame->samples(), samples);
    ASSERT_TRUE(runUntilIdle());
}

TEST_F(DelegateTest, AChunkAfterTheStopIsNotSpooledAndEndsTheSpool)
{
    FakeAudioRecorder &source = addAudioDevice();
    delegate->bufferMgr().readyToRecord();
    const QByteArray samples(3840, 'a');
    source.deliver(samples.constData(), 3840);
    delegate->bufferMgr().setExit(true);
    source.deliver("abcd", 4);
    EXPECT_GT(QFileInfo(delegate->bufferMgr().tempAudioPathfile()).size(), 0) << "nothing stays in memory";
    const auto spooled = delegate->bufferMgr().getAudioBuffer();
    ASSERT_TRUE(spooled);
    EXPECT_EQ(spooled->data(), samples);
    EXPECT_FALSE(delegate->bufferMgr().getAudioBuffer());
}

TEST_F(DelegateTest, WithoutAudioTheAudioCallbackGivesNothing)
{
    delegate->bufferMgr().readyToRecord();
    delegate->bufferMgr().pushAudioBuffer(PKAudioRecorderData("abcd", defaultAudioStreamBasicDescription()));
    delegate->bufferMgr().setExit(true);
    EXPECT_FALSE(delegate->PKMuxerTaskGetAudioFrame());
}

TEST_F(DelegateTest, SpooledChunksBecomeAnAacTrackFromTimeZero)
{
    FakeAudioRecorder &source = addAudioDevice();
    delegate->options()->setEnableAudio(true);
    delegate->recorded();
    ASSERT_TRUE(runUntil([&] { return source.startCount == 1; }));
    // A second of a square wave of 480 Hz, in chunks of 20 ms.
    std::vector<std::int16_t> wave(48'000 * 2);
    for (std::size_t i = 0; i < wave.size(); ++i)
        wave[i] = i / 2 / 50 % 2 == 0 ? 8000 : -8000;
    constexpr std::size_t chunk = 960 * 2;
    for (std::size_t i = 0; i < wave.size(); i += chunk)
        source.deliver(wave.data() + i, chunk * 2);
    ASSERT_TRUE(runUntilGrabbed(3));
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    const QJsonObject audio = streamOf(probe(moviePath()), "audio");
    EXPECT_EQ(audio["codec_name"].toString(), "aac");
    EXPECT_EQ(audio["profile"].toString(), "LC");
    EXPECT_NEAR(delegate->counts().audioSeconds, 1.0, 0.001);
    const std::vector<std::int16_t> sound = testing::decodedSound(moviePath());
    EXPECT_NEAR(static_cast<double>(sound.size()) / 2 / 48'000, 1.0, 0.03);
    int edges = 0;
    bool high = false;
    for (std::size_t i = 0; i < sound.size(); i += 2) {
        const bool changes = high ? sound[i] < -4000 : sound[i] > 4000;
        edges += changes ? 1 : 0;
        high = high != changes;
    }
    EXPECT_NEAR(edges, 960, 4);
}

TEST_F(DelegateTest, AChunkThatIsLostOnTheDiskShiftsNoOther)
{
    FakeAudioRecorder &source = addAudioDevice();
    delegate->options()->setEnableAudio(true);
    delegate->recorded();
    ASSERT_TRUE(runUntil([&] { return source.startCount == 1; }));
    QFile spool(delegate->bufferMgr().tempAudioPathfile());
    const auto deliverAndWaitForDisk = [&](char value) {
        const qint64 before = spool.size();
        const QByteArray samples(19'200, value);
        source.deliver(samples.constData(), 19'200);
        EXPECT_TRUE(runUntil([&] { return spool.size() > before; }));
    };
    deliverAndWaitForDisk('a');
    const qint64 second = spool.size();
    deliverAndWaitForDisk('b');
    ASSERT_TRUE(spool.open(QIODevice::ReadWrite));
    ASSERT_TRUE(spool.seek(second) && spool.write("damage") == 6);
    spool.close();
    deliverAndWaitForDisk('c');
    ASSERT_TRUE(runUntilGrabbed(1)); // a stop before would wait for it, on this thread
    delegate->stopRecord();
    QByteArray heard;
    while (const auto block = delegate->PKMuxerTaskGetAudioFrame())
        heard += block->samples();
    EXPECT_EQ(heard, QByteArray(19'200, 'a') + QByteArray(19'200, '\0') + QByteArray(19'200, 'c'));
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(delegate->counts().framesSkipped, 1U) << "the lost chunk is told";
    EXPECT_TRUE(frontEnd.announcedFlaws.endsWith("could not be used: 1."))
        << frontEnd.announcedFlaws.toStdString();
}

// ---- stored options

TEST_F(DelegateTest, OptionsSurviveTheProgram)
{
    makeDelegate(nullptr);
    delegate->options()->setRecordQuality(1);
    delegate->options()->setSelectedRect(QRectF(1, 2, 300, 400));
    delegate->applicationWillTerminate();
    makeDelegate(nullptr);
    EXPECT_EQ(delegate->options()->recordQuality(), 1);
    EXPECT_EQ(delegate->options()->selectedRect(), QRectF(1, 2, 300, 400));
}

TEST_F(DelegateTest, WithoutANormalEndChangesAreLost)
{
    makeDelegate(nullptr);
    delegate->options()->setRecordQuality(1);
    makeDelegate(nullptr);
    EXPECT_EQ(delegate->options()->recordQuality(), 0);
}

TEST_F(DelegateTest, GivenOptionsAreNotStored)
{
    delegate->options()->setRecordQuality(1);
    delegate->applicationWillTerminate();
    makeDelegate(nullptr);
    EXPECT_EQ(delegate->options()->recordQuality(), 0);
}

} // namespace
} // namespace vornic
