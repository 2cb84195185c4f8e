// The recording session: the start sequence, the capture passes, the stop sequence.

#include "app/VornicAppDelegate.h"
#include "app/session/audio_device_list.h"
#include "app/session/front_end.h"
#include "app/session/output_check.h"
#include "app/session/recording_settings.h"
#include "app/session/time_text.h"
#include "audio/audio_recorder.h"
#include "base/PKTimebase.h"
#include "base/clock.h"
#include "base/log.h"
#include "base/main_queue.h"
#include "base/serial_queue.h"
#include "capture/VNCGDisplay.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/spool/VNBufferMgr.h"
#include "display/bitmap_image.h"
#include "geometry/screen_geometry.h"
#include "options/VNLogoContext.h"
#include "options/VNOption.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"

#include <chrono>
#include <cmath>
#include <utility>

namespace vornic {

namespace {

/// How long a pass waits for the sound that gives the recording its time origin.
constexpr std::chrono::nanoseconds audioWait(25'000'000);

/// Origins below this are none: the absolute clock never shows them.
constexpr double unsetOrigin = 0.001;

} // namespace

SerialQueue &VornicAppDelegate::imgCaptureQueue()
{
    if (!_imgCaptureQueue)
        _imgCaptureQueue = std::make_unique<SerialQueue>();
    return *_imgCaptureQueue;
}

void VornicAppDelegate::recorded()
{
    if (m_state != 0)
        return;
    if (mBufferMgr->freespaceIsEough()) {
        startRecordSelectOutFile();
        return;
    }
    m_frontEnd.askAboutFreeSpace([this](bool goOn) {
        if (goOn)
            startRecordSelectOutFile();
        else
            emit recordingRefused();
    });
}

void VornicAppDelegate::startRecordSelectOutFile()
{
    m_frontEnd.runSavePanel(
        tr("Untitled"), QStringLiteral("mp4"), [this](const std::optional<QString> &path) {
            if (!path) {
                emit recordingRefused();
                return;
            }
            m_outfileName = *path;
            main_queue::async([this] { startRecorderWithHintWindow(); });
        });
}

void VornicAppDelegate::startRecorderWithHintWindow()
{
    m_frontEnd.showHint([this](int response) {
        if (response == FrontEnd::responseContinue)
            main_queue::async([this] { startRecorderAnyway(); });
        else
            emit recordingRefused();
    });
}

bool VornicAppDelegate::outputAndSpoolAreReady()
{
    QString reason = whyNoMovieCanBeWritten(m_outfileName);
    if (reason.isEmpty())
        reason = whyNothingCanBeSpooled();
    if (!reason.isEmpty())
        alertError(reason);
    return reason.isEmpty();
}

QRectF VornicAppDelegate::regionToRecord()
{
    const QRectF selected = options()->selectedRect();
    const QRect pixels = truncatedRect(VNOption::convertScreenRectToQuartz(selected));
    const QRect visible = pixels & QRect(QPoint(0, 0), VNOption::screenFrame().size().toSize());
    // Where none of it is on the display, the grab finds that out and ends the recording.
    return visible.isEmpty() ? selected : VNOption::convertScreenRectFromQuartz(QRectF(visible));
}

void VornicAppDelegate::startRecorderAnyway()
{
    if (m_state != 0)
        return;
    if (m_terminating || !outputAndSpoolAreReady()) {
        emit recordingRefused();
        return;
    }
    VNOption &chosen = *options();
    showStopRecordingBtn();
    mBufferMgr->readyToRecord();
    m_failure.clear();
    m_framesGrabbed = 0;
    m_framesUnusable = 0;
    m_framesWritten = 0;
    m_framesOutOfOrder = 0;
    m_movieSeconds = 0;
    m_audioSeconds = 0;
    m_audioWaits = 0;
    setState(1);
    m_frontEnd.inhibitIdle(true);

    const QVariantList arguments { m_outfileName, chosen.recordQuality(), chosen.enableAudio() ? 1 : 0 };
    m_recordsAudio = chosen.enableAudio();
    _audioValidate = m_recordsAudio;
    _audioStartTime = 0.0;
    m_startedRecorder = nullptr;
    const double frameRate = captureFrameRate(chosen.recordQuality());
    const bool part = chosen.recordsRectangle();
    const QRectF region = part ? regionToRecord() : VNOption::screenFrame();
    mBufferMgr->setRecordRect(region);
    mBufferMgr->setIsRecordPart(part);
    if (part)
        m_frontEnd.setSaving(true);
    const QRectF grabbed = part ? region : QRectF();
    imgCaptureQueue().after(overlayWait(), [this, grabbed, frameRate] {
        captureInBackground(absoluteTimeSeconds(), grabbed, frameRate);
    });
    startRecorder(arguments);
}

/// A compositing manager shows a moment later that the overlay's tint and handles are gone.
std::chrono::nanoseconds VornicAppDelegate::overlayWait() const
{
    const VNRecoderWindow *overlay = m_recorderWndCtrl ? m_recorderWndCtrl->window() : nullptr;
    return overlay && overlay->isVisible() ? std::chrono::milliseconds(100) : std::chrono::milliseconds(0);
}

void VornicAppDelegate::scheduleCapture(std::chrono::nanoseconds delay,
                                        double origin,
                                        const QRectF &rect,
                                        double frameRate)
{
    imgCaptureQueue().after(
        delay, [this, origin, rect, frameRate] { captureInBackground(origin, rect, frameRate); });
}

void VornicAppDelegate::captureInBackground(double origin, const QRectF &rect, double frameRate)
{
    if (mBufferMgr->cacheFull() || mBufferMgr->writeFailed())
        stopBecauseFull();
    if (mBufferMgr->exit()) {
        endCapture();
        return;
    }
    std::shared_ptr<const BitmapImage> image
        = rect == QRectF() ? mDisplay->readFullScreen() : mDisplay->readPartScreen(rect);
    if (!image) {
        logMessage(QStringLiteral("Failed to shot screen buffer."));
        mBufferMgr->setExit(true);
    } else if (!keepFrame(std::move(image), origin)) {
        scheduleCapture(audioWait, origin, rect, frameRate);
        return;
    }
    scheduleCapture(captureDelay(frameRate), origin, rect, frameRate);
}

void VornicAppDelegate::stopBecauseFull()
{
    mBufferMgr->setExit(true);
    const auto tell = [this] {
        m_frontEnd.alert(tr("Disk free space is too low"),
                         tr("It will terminate recording because of disk space is insufficient"));
    };
    main_queue::sync(tell, m_ending.get_token());
}

void VornicAppDelegate::endCapture()
{
    // One that is still starting is stopped by executeStopRecord(), which the main thread runs after that.
    if (AudioRecorder *recorder = m_startedRecorder)
        recorder->stopRecord();
    mBufferMgr->endVideoRecord();
    main_queue::async([this, ending = m_ending.get_token()] {
        if (!ending.stop_requested())
            executeStopRecord();
    });
}

/// False when there is no time origin yet: the frame is dropped.
bool VornicAppDelegate::keepFrame(std::shared_ptr<const BitmapImage> image, double origin)
{
    const std::unique_ptr<VNBufferDiscr> record = VNBufferDiscr::createWithScreenImage(std::move(image));
    const double now = absoluteTimeSeconds();
    if (_audioValidate) {
        origin = _audioStartTime;
        if (std::abs(origin) < unsetOrigin) {
            tellOfAudioWait();
            return false;
        }
    }
    const auto timestamp = static_cast<std::int64_t>((now - origin) * static_cast<double>(PKTimebase));
    record->setBufferTimestamp(static_cast<std::uint64_t>(timestamp));
    const auto showClock = [this, timestamp] {
        if (m_stopItemShown)
            m_frontEnd.setStopItemTitle(stringFromeTimestamp(timestamp));
        emit clockTicked(timestamp);
    };
    main_queue::sync(showClock, m_ending.get_token());
    mBufferMgr->pushRecordBuffer(*record);
    ++m_framesGrabbed;
    return true;
}

/// A device begins within a few passes; whoever waits longer is told what for, after a second.
void VornicAppDelegate::tellOfAudioWait()
{
    constexpr int patience = 40;
    if (++m_audioWaits != patience)
        return;
    main_queue::async([this, ending = m_ending.get_token()] {
        if (!ending.stop_requested() && m_stopItemShown)
            m_frontEnd.setStopItemTitle(tr("waiting for audio"));
    });
}

void VornicAppDelegate::stopRecord()
{
    mBufferMgr->setExit(true);
}

void VornicAppDelegate::recordcomplete()
{
    if (options()->showInFinderWhenFinished())
        m_frontEnd.reveal(m_outfileName);
    if (options()->openRecordedWhenFinished())
        m_frontEnd.open(m_outfileName);
    m_frontEnd.announceMovie(m_outfileName, m_movieSeconds);
    becomeIdle();
}

void VornicAppDelegate::recordFailed(const QString &sentence)
{
    m_failure = sentence;
    becomeIdle();
}

void VornicAppDelegate::becomeIdle()
{
    mBufferMgr->clear();
    hideStopRecordingBtn();
    m_muxing = false;
    m_frontEnd.setSaving(false);
    m_frontEnd.inhibitIdle(false);
    setState(0);
    if (m_terminating)
        main_queue::async([this] { emit readyToTerminate(); });
}

void VornicAppDelegate::showStopRecordingBtn()
{
    m_stopItemShown = true;
    const bool part = options()->recordsRectangle();
    m_frontEnd.showStopItem(stringFromeTimestamp(0), part ? regionToRecord() : VNOption::screenFrame());
    m_frontEnd.minimiseMainWindow();
}

void VornicAppDelegate::hideStopRecordingBtn()
{
    if (m_stopItemShown)
        m_frontEnd.hideStopItem();
    m_stopItemShown = false;
    m_frontEnd.bringMainWindowToFront();
}

void VornicAppDelegate::setState(int state)
{
    m_state = state;
    notifyChanged({ "state" });
    enableAudioDevices();
    reloadOverlay();
    m_frontEnd.reloadData();
}

RecordingCounts VornicAppDelegate::counts() const
{
    return { m_framesGrabbed,
             m_framesWritten,
             m_framesUnusable + m_framesOutOfOrder + mBufferMgr->skippedBlockCount(),
             m_audioSeconds };
}

} // namespace vornic
