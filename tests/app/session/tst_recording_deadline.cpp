#include "app/session/bare_session_fixture.h"
#include "capture/spool/VNBufferMgr.h"
#include "movie_test_support.h"
#include "support/wait_until.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>

namespace vornic {
namespace {

using test::waitUntil;

/// A recording of a small fake display that is to end by itself.
class RecordingDeadlineTest : public BareSessionTest
{
protected:
    RecordingDeadlineTest()
        : BareSessionTest({ 64, 48 })
    {
    }

    void record(double seconds)
    {
        makeSession();
        session->wishes().clock = absoluteTimeSeconds;
        options.setEnableAudio(!audioControl.names.isEmpty());
        session->wishes().length = seconds;
        session->recorded();
        ASSERT_TRUE(waitUntil([this] { return session->isRecording(); }));
        sinceStart.start();
    }
    bool hasEnded()
    {
        return waitUntil([this] { return !session->isRecording(); });
    }

    double movieSeconds() const
    {
        const QJsonObject probed = testing::probe(*frontEnd.path);
        const auto video = testing::streamOf(probed, "video");
        return video["start_time"].toString().toDouble() + video["duration"].toString().toDouble();
    }

    QElapsedTimer sinceStart;
};

TEST_F(RecordingDeadlineTest, ItEndsTheRecording)
{
    record(0.3);
    ASSERT_TRUE(hasEnded());
    EXPECT_TRUE(session->recording().isTimeOver);
    EXPECT_GT(session->counts().framesWritten, 2U);
}

TEST_F(RecordingDeadlineTest, ItEndsARecordingThatWaitsForSoundToo)
{
    audioControl.names += "Microphone";
    record(0.3);
    ASSERT_TRUE(hasEnded());
    EXPECT_TRUE(session->recording().isTimeOver);
    EXPECT_EQ(session->counts().framesWritten, 1U);
    EXPECT_GE(sinceStart.elapsed(), 2900) << "sound has some time to come";
}

TEST_F(RecordingDeadlineTest, SoundThatIsGivenUpProlongsNothing)
{
    audioControl.names += "Microphone";
    record(6);
    ASSERT_TRUE(waitUntil([this] { return static_cast<bool>(frontEnd.goOnWithoutSound); }));
    const double waited = static_cast<double>(sinceStart.elapsed()) / 1000;
    frontEnd.goOnWithoutSound();
    ASSERT_TRUE(hasEnded());
    EXPECT_TRUE(session->recording().isTimeOver);
    EXPECT_LT(static_cast<double>(session->counts().framesWritten), 30 * (6 - waited) + 10)
        << "what was left of the six seconds, at 30 pictures a second";
}

TEST_F(RecordingDeadlineTest, WhatWasWaitedForSoundThatCameDoesNotCount)
{
    audioControl.names += "Microphone";
    record(0.4);
    ASSERT_TRUE(waitUntil([this] { return sinceStart.elapsed() >= 200; }));
    const QByteArray samples(1920, '\0');
    audioControl.recorder->deliver(samples.constData(), 1920);
    ASSERT_TRUE(hasEnded());
    EXPECT_GE(sinceStart.elapsed(), 560) << "0.4 s from the first picture on";
    EXPECT_GT(session->counts().framesWritten, 2U);
}

TEST_F(RecordingDeadlineTest, NoTimePassesWhileTheRecordingIsPaused)
{
    record(0.6);
    ASSERT_TRUE(waitUntil([this] { return session->mayPause(); }));
    session->pauseOrResume();
    QElapsedTimer sincePause;
    sincePause.start();
    ASSERT_TRUE(waitUntil([&] { return sincePause.elapsed() >= 1000; }));
    ASSERT_EQ(session->phase(), RecordingSession::Phase::Capturing);
    const std::uint64_t before = session->counts().framesGrabbed;
    session->pauseOrResume();
    ASSERT_TRUE(hasEnded());
    EXPECT_TRUE(session->recording().isTimeOver);
    EXPECT_GT(session->counts().framesGrabbed, before) << "what was left of it is recorded";
}

TEST_F(RecordingDeadlineTest, TheMovieIsAsLongAsItWasToBeWithoutItsPause)
{
    record(0.6);
    ASSERT_TRUE(waitUntil([this] { return session->mayPause(); }));
    session->pauseOrResume();
    QElapsedTimer sincePause;
    sincePause.start();
    ASSERT_TRUE(waitUntil([&] { return sincePause.elapsed() >= 300; }));
    session->pauseOrResume();
    ASSERT_TRUE(hasEnded());
    EXPECT_NEAR(movieSeconds(), 0.6, 0.001);
}

/// Passes wait for the main thread, and the timer runs on it: neither makes the movie shorter or longer.
TEST_F(RecordingDeadlineTest, ABusyMainThreadChangesNothingInTheMoviesLength)
{
    record(0.6);
    ASSERT_TRUE(waitUntil([this] { return session->counts().framesGrabbed >= 2; }));
    const auto now = [] { return std::chrono::steady_clock::now(); };
    const auto until = now() + std::chrono::milliseconds(900);
    while (now() < until) { }
    ASSERT_TRUE(hasEnded());
    EXPECT_TRUE(session->recording().isTimeOver);
    EXPECT_NEAR(movieSeconds(), 0.6, 0.001);
}

TEST_F(RecordingDeadlineTest, ItsSoundEndsWithIt)
{
    audioControl.names += "Microphone";
    record(0.5);
    ASSERT_TRUE(
        waitUntil([this] { return audioControl.recorder && audioControl.recorder->startCount == 1; }));
    const QByteArray tenth(19'200, 'a');
    for (int i = 0; i < 20; ++i)
        audioControl.recorder->deliver(tenth.constData(), 19'200);
    ASSERT_TRUE(hasEnded());
    EXPECT_NEAR(session->counts().audioSeconds, 0.5, 0.001);
    EXPECT_NEAR(frontEnd.announcedSeconds, 0.5, 0.001) << "the pictures begin behind the sound";
}

TEST_F(RecordingDeadlineTest, SoundThatBeganEarlierThanItsLengthLeavesAPicture)
{
    audioControl.names += "Microphone";
    record(0.05);
    ASSERT_TRUE(
        waitUntil([this] { return audioControl.recorder && audioControl.recorder->startCount == 1; }));
    const QByteArray tenth(19'200, 'a');
    audioControl.recorder->deliver(tenth.constData(), 19'200);
    ASSERT_TRUE(hasEnded());
    EXPECT_EQ(session->counts().framesWritten, 1U);
}

TEST_F(RecordingDeadlineTest, WhatIsLeftIsTold)
{
    record(1.5);
    ASSERT_TRUE(hasEnded());
    ASSERT_FALSE(frontEnd.secondsLeft.isEmpty());
    EXPECT_EQ(frontEnd.secondsLeft.first(), 2);
    EXPECT_EQ(frontEnd.secondsLeft.last(), 1);
    EXPECT_TRUE(std::ranges::is_sorted(frontEnd.secondsLeft, std::greater()));
}

TEST_F(RecordingDeadlineTest, TheOptionsGiveALengthToo)
{
    options.setStopsAfterTime(true);
    options.setStopAfter(1);
    session = std::make_unique<RecordingSession>(frontEnd.frontEnd(), options, &audioControl);
    session->bufferMgr().setFreeSpaceProbe([] { return std::uint64_t { 100'000'000'000 }; });
    session->recorded();
    ASSERT_TRUE(waitUntil([this] { return session->isRecording(); }));
    ASSERT_TRUE(hasEnded());
    EXPECT_TRUE(session->recording().isTimeOver);
    EXPECT_NEAR(movieSeconds(), 1, 0.001);
}

TEST_F(RecordingDeadlineTest, WhoStopsItEarlierGetsAShorterMovie)
{
    record(600);
    ASSERT_TRUE(waitUntil([this] { return session->counts().framesGrabbed >= 3; }));
    session->stopRecord();
    ASSERT_TRUE(hasEnded());
    EXPECT_FALSE(session->recording().isTimeOver);
    EXPECT_LT(movieSeconds(), 60);
}

TEST_F(RecordingDeadlineTest, WhoIsStoppedWhilePausedIsNotOutOfTime)
{
    record(0.6);
    ASSERT_TRUE(waitUntil([this] { return session->mayPause(); }));
    session->pauseOrResume();
    session->stopRecord();
    ASSERT_TRUE(hasEnded());
    EXPECT_FALSE(session->recording().isTimeOver);
}

TEST_F(RecordingDeadlineTest, ATimeThatIsOverWhileTheMovieIsWrittenWasNotReached)
{
    record(1);
    ASSERT_TRUE(waitUntil([this] { return session->counts().framesGrabbed >= 1; }));
    // Begun before the capture has ended: the movie is not ready until that has.
    session->executeStopRecord();
    ASSERT_EQ(session->phase(), RecordingSession::Phase::Writing);
    QElapsedTimer sincePicture;
    sincePicture.start();
    EXPECT_TRUE(waitUntil([&] { return sincePicture.elapsed() >= 1200; }));
    session->stopRecord();
    ASSERT_TRUE(hasEnded());
    EXPECT_FALSE(session->recording().isTimeOver);
}

} // namespace
} // namespace vornic
