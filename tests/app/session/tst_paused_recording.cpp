#include "app/session/bare_session_fixture.h"
#include "base/PKTimebase.h"
#include "capture/spool/VNBufferMgr.h"
#include "movie_test_support.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>

#include <atomic>

namespace vornic {
namespace {

using Phase = RecordingSession::Phase;
using test::waitUntil;

/// A recording of a fake display by a clock that moves on by a quarter of a second with each picture that is kept.
class PausedRecordingTest : public BareSessionTest
{
protected:
    PausedRecordingTest() { makeSession(); }

    void recordUntilPaused()
    {
        session->recorded();
        ASSERT_TRUE(waitForFrames(2));
        ASSERT_TRUE(waitUntil([this] { return session->mayPause(); }));
        session->pauseOrResume();
        ASSERT_TRUE(session->isPaused());
        ASSERT_TRUE(waitForPasses(3)); // one may have been on its way
    }
    bool waitForFrames(qsizetype count)
    {
        return waitUntil([=, this] { return timestamps.size() >= count; });
    }
    bool waitForPasses(int count)
    {
        return waitUntil(
            [=, this, before = display->grabCount()] { return display->grabCount() >= before + count; });
    }
    bool waitUntilIdle()
    {
        return waitUntil([this] { return session->phase() == Phase::Idle; });
    }
    QList<qint64> keyFrames() const { return testing::keyFrameTimes(testing::probeDecoded(*frontEnd.path)); }
};

TEST_F(PausedRecordingTest, NoPictureIsKeptAndTheMovieGoesOnWhereItWasPaused)
{
    ASSERT_NO_FATAL_FAILURE(recordUntilPaused());
    const qsizetype before = timestamps.size();
    EXPECT_EQ(static_cast<int>(session->isRecording()), 1);
    time = time + 1000;
    ASSERT_TRUE(waitForPasses(3));
    EXPECT_EQ(timestamps.size(), before);
    session->pauseOrResume();
    EXPECT_FALSE(session->isPaused());
    ASSERT_TRUE(waitForFrames(before + 2));
    session->stopRecord();
    ASSERT_TRUE(waitUntilIdle());
    for (qsizetype i = 0; i < timestamps.size(); ++i)
        EXPECT_EQ(timestamps[i], i * PKTimebase / 4);
    EXPECT_EQ(keyFrames(), (QList<qint64> { 0, timestamps[before] }))
        << "the screen stands still: nothing else asks for one";
    EXPECT_EQ(frontEnd.pauses, (QList<bool> { true, false }));
}

TEST_F(PausedRecordingTest, BeforeTheFirstPictureThereIsNothingToPause)
{
    session->pauseOrResume();
    EXPECT_FALSE(session->isPaused());
    frontEnd.holdsScreen = true;
    session->recorded();
    ASSERT_TRUE(waitUntil([this] { return static_cast<bool>(frontEnd.screenIsClear); }));
    EXPECT_FALSE(session->mayPause());
    session->pauseOrResume();
    EXPECT_FALSE(session->isPaused());
    EXPECT_TRUE(frontEnd.pauses.isEmpty());
    session->stopRecord();
    frontEnd.screenIsClear();
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(timestamps.size(), 1);
}

TEST_F(PausedRecordingTest, AStopEndsItAndTheNextRecordingRuns)
{
    ASSERT_NO_FATAL_FAILURE(recordUntilPaused());
    int changes = 0;
    QObject::connect(session.get(), &RecordingSession::pausedChanged, [&] { ++changes; });
    session->stopRecord();
    EXPECT_FALSE(session->mayPause());
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(session->isPaused());
    EXPECT_TRUE(session->recording().failure.isEmpty());
    EXPECT_EQ(session->counts().framesGrabbed, static_cast<std::uint64_t>(timestamps.size()));

    timestamps.clear();
    session->recorded();
    ASSERT_TRUE(waitForFrames(3));
    session->stopRecord();
    ASSERT_TRUE(waitUntilIdle());
}

TEST_F(PausedRecordingTest, WhoQuitsGetsTheMovie)
{
    ASSERT_NO_FATAL_FAILURE(recordUntilPaused());
    bool isReady = false;
    QObject::connect(session.get(), &RecordingSession::readyToTerminate, [&] { isReady = true; });
    session->terminate();
    ASSERT_TRUE(waitUntil([&] { return isReady; }));
    EXPECT_TRUE(session->recording().failure.isEmpty());
    EXPECT_TRUE(QFile::exists(*frontEnd.path));
}

TEST_F(PausedRecordingTest, AFullDiskEndsIt)
{
    ASSERT_NO_FATAL_FAILURE(recordUntilPaused());
    freeBytes = 1;
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(frontEnd.alerts.size(), 1);
    EXPECT_TRUE(session->recording().failure.isEmpty());
}

TEST_F(PausedRecordingTest, ADisplayThatGoesEndsIt)
{
    ASSERT_NO_FATAL_FAILURE(recordUntilPaused());
    display->setRefusesGrabs(true);
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_TRUE(session->recording().failure.isEmpty());
}

TEST_F(PausedRecordingTest, SoundThatIsLostIsTold)
{
    audioControl.names += "Microphone";
    options.setEnableAudio(true);
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return audioControl.recorder && audioControl.recorder->startCount == 1; }));
    const QByteArray tenth(19'200, 'a');
    audioControl.recorder->deliver(tenth.constData(), 19'200);
    ASSERT_TRUE(waitUntil([this] { return session->mayPause(); }));
    session->pauseOrResume();
    audioControl.recorder->lose();
    EXPECT_TRUE(waitUntil([this] { return frontEnd.told.contains("soundIsLost"); }));
    audioControl.recorder->comeBack();
    EXPECT_TRUE(waitUntil([this] { return frontEnd.told.contains("soundIsBack"); }));
    session->stopRecord();
    ASSERT_TRUE(waitUntilIdle());
}

TEST_F(PausedRecordingTest, SoundIsCutWithThePicture)
{
    audioControl.names += "Microphone";
    options.setEnableAudio(true);
    session->recorded();
    ASSERT_TRUE(waitUntil([&] { return audioControl.recorder && audioControl.recorder->startCount == 1; }));
    const auto deliverTenth = [this] {
        const QByteArray tenth(19'200, 'a');
        audioControl.recorder->deliver(tenth.constData(), 19'200);
    };
    deliverTenth(); // begins a tenth of a second before now
    ASSERT_TRUE(waitForFrames(2));
    ASSERT_TRUE(waitUntil([this] { return session->mayPause(); }));
    session->pauseOrResume();
    ASSERT_TRUE(waitForPasses(3));
    time = time + 0.25;
    session->pauseOrResume();
    for (int tenth = 1; tenth < 100; ++tenth)
        deliverTenth();
    session->stopRecord();
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_NEAR(session->counts().audioSeconds, 10 - 0.25, 0.001);
}

} // namespace
} // namespace vornic
