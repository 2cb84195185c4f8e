#include "app/session/session_fixture.h"
#include "base/serial_queue.h"

#include <dlfcn.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <ctime>

namespace {

using namespace std::chrono_literals;

/// The longest wait of a thread that had an end.
struct Waits {
    std::atomic<std::chrono::nanoseconds> longest = 0ns;
};

/// Null on threads whose waits nobody looks at.
thread_local Waits *waitsOfThisThread = nullptr;

} // namespace

/// Stands before the system's, so that a test can see for how long a queue means to wait, without measuring time.
extern "C" int pthread_cond_clockwait(pthread_cond_t *condition,
                                      pthread_mutex_t *mutex,
                                      clockid_t clock,
                                      const timespec *until)
{
    const auto nanoseconds = [](const timespec &time) {
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    };
    timespec now {};
    clock_gettime(clock, &now);
    if (waitsOfThisThread)
        waitsOfThisThread->longest
            = std::max(waitsOfThisThread->longest.load(), nanoseconds(*until) - nanoseconds(now));
    using Function = int (*)(pthread_cond_t *, pthread_mutex_t *, clockid_t, const timespec *);
    static const auto systems = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "pthread_cond_clockwait"));
    return systems(condition, mutex, clock, until);
}

namespace vornic {
namespace {

/// The passes of whole recordings, and the pauses between them.
class CaptureLoopTest : public SessionTest
{
protected:
    ~CaptureLoopTest() override
    {
        delegate.reset(); // ends the passes, which use what is below
        setLogSink({});
    }

    /// From here on the pauses that passes ask for are looked at.
    void watchPauses()
    {
        delegate->imgCaptureQueue().sync([this] { waitsOfThisThread = &pauses; });
    }
    /// What is left of a pause when the wait begins is a little less each time: sooner or later nearly all of it, and
    /// never more.
    void expectPausesOf(std::chrono::nanoseconds pause)
    {
        EXPECT_TRUE(runUntil([&] { return pauses.longest.load() > pause - 300us; }))
            << pauses.longest.load().count();
        EXPECT_LE(pauses.longest.load(), pause);
    }
    /// From here on every pass is counted at its beginning, when it asks how much is free.
    void countPasses()
    {
        delegate->bufferMgr().setFreeSpaceProbe([this, &queue = delegate->imgCaptureQueue()] {
            if (queue.isCurrent())
                ++passes;
            return freeBytes.load();
        });
    }
    FakeAudioRecorder &recordWithSound()
    {
        audioControl.names += "Microphone";
        delegate->audioControlInputDeviceChanged(audioControl);
        delegate->options()->setEnableAudio(true);
        static_cast<void>(delegate->audioRecorder());
        return *audioControl.recorder;
    }

    Waits pauses;
    std::atomic<int> passes = 0;
    std::atomic<int> passesAtFailure = 0;
    QStringList stops; ///< of the recorder: who has stopped it
};

TEST_F(CaptureLoopTest, AtHighQualityPassesAreAThirtiethOfASecondApart)
{
    delegate->options()->setRecordQuality(static_cast<int>(RecordQuality::High));
    watchPauses();
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(3));
    expectPausesOf(33'333'333ns);
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
}

TEST_F(CaptureLoopTest, AtMediumQualityPassesAreATwentiethOfASecondApart)
{
    delegate->options()->setRecordQuality(static_cast<int>(RecordQuality::Medium));
    watchPauses();
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(3));
    expectPausesOf(50ms);
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
}

TEST_F(CaptureLoopTest, WhileNoSoundHasComeAPassLooksAgainAfterAFortiethOfASecond)
{
    recordWithSound();
    watchPauses();
    delegate->recorded();
    ASSERT_TRUE(runForPasses(3));
    expectPausesOf(25ms);
    EXPECT_EQ(delegate->counts().framesGrabbed, 0U);
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
}

TEST_F(CaptureLoopTest, AfterAFailedGrabOneMorePassEndsTheRecording)
{
    setLogSink([this](const QString &line) {
        if (line == "Failed to shot screen buffer.")
            passesAtFailure = passes.load();
    });
    countPasses();
    delegate->recorded();
    ASSERT_TRUE(runUntilGrabbed(2));
    display->setRefusesGrabs(true);
    ASSERT_TRUE(runUntilIdle());
    EXPECT_GE(passesAtFailure, 3);
    EXPECT_EQ(passes, passesAtFailure + 1);
}

TEST_F(CaptureLoopTest, TheLastPassStopsTheSoundBeforeTheMovieIsBegun)
{
    FakeAudioRecorder &source = recordWithSound();
    source.onStop = [this, &queue = delegate->imgCaptureQueue()] {
        stops += queue.isCurrent() ? "last pass" : "movie";
    };
    delegate->recorded();
    ASSERT_TRUE(runUntil([&] { return source.startCount == 1; }));
    source.deliver(QByteArray(3840, 'a').constData(), 3840);
    ASSERT_TRUE(runUntilGrabbed(1));
    EXPECT_TRUE(stops.isEmpty());
    delegate->stopRecord();
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(stops, (QStringList { "last pass", "movie" }));
    source.onStop = {}; // the queue goes before the sound does
}

} // namespace
} // namespace vornic
