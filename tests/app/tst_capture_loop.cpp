#include "app/session/session_fixture.h"
#include "base/serial_queue.h"

#include <dlfcn.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <chrono>

namespace {

using namespace std::chrono_literals;

/// The longest wait that a thread has set a timer to. Timers of a minute and more are those of a queue that has
/// nothing to wait for.
struct Waits {
    static constexpr std::chrono::nanoseconds none = 1min;
    std::atomic<std::chrono::nanoseconds> longest = 0ns;
};

/// Null on threads whose waits nobody looks at.
thread_local Waits *waitsOfThisThread = nullptr;

} // namespace

/// Stands before the system's, so that a test can see for how long a queue means to wait, without measuring time.
extern "C" int timerfd_settime(int timer, int flags, const itimerspec *asked, itimerspec *before) noexcept
{
    const std::chrono::nanoseconds wait
        = std::chrono::seconds(asked->it_value.tv_sec) + std::chrono::nanoseconds(asked->it_value.tv_nsec);
    if (waitsOfThisThread && (flags & TFD_TIMER_ABSTIME) == 0 && wait < Waits::none)
        waitsOfThisThread->longest = std::max(waitsOfThisThread->longest.load(), wait);
    using Function = int (*)(int, int, const itimerspec *, itimerspec *);
    static const auto systems = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "timerfd_settime"));
    return systems(timer, flags, asked, before);
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
    /// A timer is set to what is left of a pause, a little less each time: sooner or later to nearly all of it, and
    /// never to more.
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
}

} // namespace
} // namespace vornic
