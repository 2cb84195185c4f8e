#include "app/session/capture_loop.h"

#include "app/session/audio_input.h"
#include "app/session/end_text.h"
#include "app/session/recording.h"
#include "app/session/recording_settings.h"
#include "base/log.h"
#include "base/main_queue.h"
#include "base/serial_queue.h"
#include "base/thread.h"
#include "capture/VNCGDisplay.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/spool/VNBufferMgr.h"
#include "display/bitmap_image.h"

#include <utility>

namespace vornic {

namespace {

/// How long a pass waits for the sound that gives the recording its time origin, or for the end of a pause.
constexpr std::chrono::nanoseconds keepingWait(25'000'000);

} // namespace

CaptureLoop::CaptureLoop(std::shared_ptr<Recording> recording, Tools tools, Listener &listener)
    : m_recording(std::move(recording))
    , m_tools(std::move(tools))
    , m_listener(listener)
{
}

void CaptureLoop::start(std::chrono::nanoseconds delay, const QRectF &rectangle, double frameRate)
{
    m_tools.queue.after(delay, [self = shared_from_this(), rectangle, frameRate] {
        self->run(self->m_recording->clock.now(), rectangle, frameRate);
    });
}

void CaptureLoop::run(double origin, const QRectF &rectangle, double frameRate)
{
    m_recording->clock.passBegins(origin);
    m_rectangle = rectangle;
    m_frameRate = frameRate;
    passOrEnd();
}

/// Where memory is missing, what is spooled already becomes the movie.
void CaptureLoop::passOrEnd()
{
    try {
        pass();
        return;
    } catch (...) {
        m_tools.spool.setExit(true);
        m_reserve.giveBack();
        logUnhandledException("the capture, which ends here");
    }
    end();
}

void CaptureLoop::pass()
{
    VNBufferMgr &spool = m_tools.spool;
    if (spool.cacheFull() || spool.writeFailed()) {
        spool.setExit(true);
        tellNow([this] { m_listener.spoolFull(); });
    }
    if (spool.exit()) {
        end();
        return;
    }
    const double begin = m_recording->clock.now();
    std::shared_ptr<const BitmapImage> image = m_rectangle == QRectF()
        ? m_tools.display().readFullScreen()
        : m_tools.display().readPartScreen(m_rectangle);
    if (!image) {
        logMessage(QStringLiteral("Failed to shot screen buffer."));
        logMessage(whyNoPicture(m_rectangle));
        spool.setExit(true);
    } else if (!keepFrame(std::move(image), begin)) {
        schedule(keepingWait);
        return;
    }
    schedule(captureDelay(m_frameRate));
}

void CaptureLoop::schedule(std::chrono::nanoseconds delay)
{
    m_tools.queue.after(delay, [self = shared_from_this()] { self->passOrEnd(); });
}

/// False when there is no time origin yet, when the recording was paused since \a begin, where the pass began, or when all
/// that was asked for is recorded: the frame is dropped. It is taken all the same, so that a display that goes is noticed.
bool CaptureLoop::keepFrame(std::shared_ptr<const BitmapImage> image, double begin)
{
    if (m_recording->clock.wasPausedSince(begin))
        return false;
    const std::unique_ptr<VNBufferDiscr> record = VNBufferDiscr::createWithScreenImage(std::move(image));
    const std::optional<std::int64_t> timestamp = m_recording->clock.timestamp();
    if (!timestamp) {
        tellOfAudioWait();
        return false;
    }
    if (m_recording->clock.isOver() && m_recording->framesGrabbed > 0) { // no movie is without a picture
        m_recording->isFullLength = true;
        m_tools.spool.setExit(true);
        return false;
    }
    record->setBufferTimestamp(static_cast<std::uint64_t>(*timestamp));
    record->setFollowsPause(m_lastKept > 0 && m_recording->clock.wasPausedSince(m_lastKept));
    m_lastKept = begin;
    tellNow([this, timestamp] { m_listener.frameKept(*timestamp); });
    m_tools.spool.pushRecordBuffer(*record);
    ++m_recording->framesGrabbed;
    return true;
}

/// A device begins within a few passes; whoever waits longer is told what for, after a second.
void CaptureLoop::tellOfAudioWait()
{
    constexpr int passesInASecond = 40;
    ++m_passesWithoutOrigin;
    if (m_passesWithoutOrigin == passesInASecond)
        tellSoon([self = shared_from_this()] { self->m_listener.soundAwaited(); });
    else if (m_passesWithoutOrigin == 3 * passesInASecond)
        tellSoon([self = shared_from_this()] { self->m_listener.soundMissing(); });
}

void CaptureLoop::end()
{
    m_reserve.giveBack();
    constexpr auto where = "the end of a capture";
    runGuarded(where, [this] { m_tools.sound.endCapture(); });
    runGuarded(where, [this] { m_tools.spool.endVideoRecord(); });
    tellSoon([self = shared_from_this()] { self->m_listener.captureEnded(*self); });
}

void CaptureLoop::tellNow(const std::function<void()> &tell) const
{
    main_queue::sync(tell, m_abandoned.get_token());
}

void CaptureLoop::tellSoon(std::function<void()> tell) const
{
    main_queue::async([tell = std::move(tell), abandoned = m_abandoned.get_token()] {
        if (!abandoned.stop_requested())
            tell();
    });
}

} // namespace vornic
