#include "app/session/recording_session.h"

#include "app/session/audio_device_list.h"
#include "app/session/audio_input.h"
#include "app/session/desktop_services.h"
#include "app/session/disk_watch.h"
#include "app/session/end_text.h"
#include "app/session/movie_job.h"
#include "app/session/movie_maker.h"
#include "app/session/movie_progress.h"
#include "app/session/output_check.h"
#include "app/session/program_windows.h"
#include "app/session/recording.h"
#include "app/session/recording_deadline.h"
#include "app/session/recording_progress.h"
#include "app/session/recording_questions.h"
#include "app/session/recording_settings.h"
#include "app/session/recording_start.h"
#include "app/session/sound_notices.h"
#include "app/session/time_text.h"
#include "base/PKTimebase.h"
#include "base/main_queue.h"
#include "base/serial_queue.h"
#include "capture/VNCGDisplay.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/recording_description.h"
#include "codec/PKMuxerContext.h"
#include "codec/file_identity.h"
#include "geometry/screen_geometry.h"
#include "options/VNOption.h"

#include <QPointer>

#include <cmath>
#include <utility>

namespace vornic {

RecordingSession::RecordingSession(const FrontEnd &frontEnd, VNOption &options, AudioControl *audio)
    : m_frontEnd(frontEnd)
    , m_options(options)
    , m_spool(std::make_unique<VNBufferMgr>(4))
    , m_diskWatch(std::make_unique<DiskWatch>(*m_spool, frontEnd.progress))
    , m_audio(std::make_unique<AudioInput>(*m_spool, audio))
    , m_start(std::make_unique<RecordingStart>(frontEnd.questions, options, *m_spool, *m_audio))
    , m_maker(std::make_unique<MovieMaker>(frontEnd, options, *m_spool))
{
    connect(m_start.get(), &RecordingStart::accepted, this, &RecordingSession::startRecorderAnyway);
    connect(m_start.get(), &RecordingStart::refused, this, &RecordingSession::refuse);
    connect(m_maker.get(), &MovieMaker::ended, this, &RecordingSession::becomeIdle);
    adopt(std::make_shared<Recording>());
    if (!m_audio->hasDevices())
        m_options.setEnableAudio(false);
    enableAudioDevices();
    connect(&m_options, &VNOption::enableAudioChanged, this, &RecordingSession::enableAudioDevices);
    connect(m_audio.get(), &AudioInput::devicesChanged, this, [this] {
        if (m_audio->hasDevices())
            enableAudioDevices(); // an empty list stays as it is
    });
    followSound();
}

RecordingSession::~RecordingSession()
{
    // The capture queue is waited for, and its pass may itself be waiting for this thread.
    m_loop->abandon();
    m_start->releaseDisplay();
}

void RecordingSession::adopt(std::shared_ptr<Recording> recording)
{
    if (m_loop)
        m_loop->abandon();
    m_recording = std::move(recording);
    m_audio->adopt(m_recording);
    CaptureLoop::Listener &listener = *this;
    const CaptureLoop::Tools tools {
        imgCaptureQueue(), [this]() -> const VNCGDisplay & { return display(); }, *m_spool, *m_audio
    };
    m_loop = std::make_shared<CaptureLoop>(m_recording, tools, listener);
    m_maker->adopt(m_recording);
}

/// Made when a screen is to be looked at: whoever makes the movie of an earlier recording needs none.
const VNCGDisplay &RecordingSession::display()
{
    if (!m_display)
        m_display = std::make_unique<VNCGDisplay>();
    return *m_display;
}

SerialQueue &RecordingSession::imgCaptureQueue()
{
    if (!m_captureQueue)
        m_captureQueue = std::make_unique<SerialQueue>();
    return *m_captureQueue;
}

void RecordingSession::setPhase(Phase phase)
{
    const bool wasRecording = isRecording();
    const bool wasPaused = isPaused();
    m_phase = phase;
    if (wasPaused && !isPaused())
        emit pausedChanged();
    if (isRecording() == wasRecording)
        return;
    // Whether sound is switched on counts only where it is switched, where the region changes, and at the launch.
    m_audio->devices().setEnabled(!isRecording() && m_audio->hasDevices());
    emit stateChanged();
}

void RecordingSession::enableAudioDevices()
{
    m_audio->devices().setEnabled(m_options.enableAudio() && !isRecording() && m_audio->hasDevices());
}

// ---- the questions

void RecordingSession::recorded()
{
    if (beginAsking())
        m_start->begin([this] { startRecordSelectOutFile(); });
}

void RecordingSession::recordNow(const QString &file)
{
    if (beginAsking())
        m_start->begin([this, file] { m_start->useFile(file); });
}

bool RecordingSession::beginAsking()
{
    if (m_phase != Phase::Idle)
        return false;
    setPhase(Phase::Asking);
    return true;
}

void RecordingSession::startRecordSelectOutFile()
{
    m_start->startRecordSelectOutFile();
}

void RecordingSession::startRecorderWithHintWindow()
{
    m_start->startRecorderWithHintWindow();
}

bool RecordingSession::awaitsDisplay() const
{
    return m_start->awaitsDisplay();
}

void RecordingSession::refuse()
{
    m_start->releaseDisplay();
    setPhase(Phase::Idle);
    emit recordingRefused();
}

// ---- the capture

/// What the options say. Only a rectangle that reaches beyond the display is cut to what is on it, in whole pixels: the
/// grab gives no more, and the movie has the size of its pictures.
QRectF RecordingSession::regionToRecord() const
{
    if (!m_options.recordsRectangle())
        return VNOption::screenFrame();
    const QRectF selected = m_options.selectedRect();
    const QRect pixels = truncatedRect(VNOption::convertScreenRectToQuartz(selected));
    const QRect visible = pixels & QRect(QPoint(0, 0), VNOption::screenFrame().size().toSize());
    // Where none of it is on the display, the grab finds that out and ends the recording.
    return visible.isEmpty() || visible == pixels ? selected
                                                  : VNOption::convertScreenRectFromQuartz(QRectF(visible));
}

void RecordingSession::startRecorderAnyway()
{
    if (isRecording())
        return;
    if (m_terminating || !m_start->isOutputReady()) {
        refuse();
        return;
    }
    adopt(std::make_shared<Recording>(
        m_start->file(), m_options, regionToRecord(), m_audio->hasDevices(), m_wishes.clock));
    limitLength();
    if (m_wishes.maxSize)
        m_recording->sizeLimit.emplace(*m_wishes.maxSize);
    m_spool->readyToRecord();
    if (const QString &reason = m_spool->whyNothingIsStored(); !reason.isEmpty()) {
        m_frontEnd.questions.alertError(nothingCanBeSpooledText(reason));
        refuse();
        return;
    }
    showStopRecordingBtn();
    setPhase(Phase::Capturing);
    m_frontEnd.desktop.inhibitIdle(true);

    m_spool->setRecordRect(m_recording->rectangle);
    m_spool->setIsRecordPart(m_recording->isPart);
    m_spool->setRecordQuality(static_cast<int>(m_recording->quality));
    if (m_recording->isPart)
        m_frontEnd.windows.setBusy(true);
    m_frontEnd.windows.whenScreenIsClear([session = QPointer(this), recording = m_recording] {
        if (session && session->m_recording == recording)
            session->beginCapture();
    });
}

std::optional<double> RecordingSession::askedLength() const
{
    if (m_wishes.length || !m_options.stopsAfterTime())
        return m_wishes.length;
    return m_options.stopAfter();
}

/// The deadline ends the recording, and the clock keeps out what comes before that is done.
void RecordingSession::limitLength()
{
    m_deadline.reset();
    const std::optional<double> seconds = askedLength();
    if (!seconds)
        return;
    m_recording->length = seconds;
    m_recording->clock.setLength(*seconds);
    m_deadline = std::make_unique<RecordingDeadline>(*this, *seconds);
}

void RecordingSession::beginCapture()
{
    if (std::exchange(m_recording->isCaptured, true))
        return;
    m_loop->start(m_wishes.settlingTime(),
                  m_recording->isPart ? m_recording->rectangle : QRectF(),
                  captureFrameRate(m_recording->quality));
    startRecorder(
        { m_recording->path, static_cast<int>(m_recording->quality), m_recording->hasSound ? 1 : 0 });
}

void RecordingSession::startRecorder(const QVariantList &arguments)
{
    const QString path = arguments.value(0).toString();
    const auto quality = static_cast<RecordQuality>(arguments.value(1).toInt());
    const bool audio = arguments.value(2).toInt() == 1;

    const auto context = std::make_shared<PKMuxerContext>(path, PKMuxerContext::formatMp4);
    context->setReplacedFile(m_start->replacedFile());
    describePicture(*context, quality);
    if (audio) {
        m_audio->setChoice({ m_wishes.usesInput,
                             m_options.inputLevel(),
                             m_options.recordsSystemSound(),
                             m_options.systemLevel(),
                             m_wishes.separateTracks });
        m_audio->start(*context);
    } else {
        context->setAudioCodecID(PKMuxerContext::audioCodecNone);
    }
    m_spool->setMuxerContext(context);
    m_diskWatch->begin();
}

void RecordingSession::describePicture(PKMuxerContext &context, RecordQuality quality) const
{
    const std::int64_t width = m_spool->encodeWidth();
    const std::int64_t height = m_spool->encodeHeight();
    context.setWidth(static_cast<std::int32_t>(width));
    context.setHeight(static_cast<std::int32_t>(height));
    context.setVideoCodecID(PKMuxerContext::videoCodecH264);
    context.setFrameRate(movieFrameRate(quality));
    context.setVideoBitrate(movieBitRate(quality, width, height));
}

void RecordingSession::frameKept(std::int64_t timestamp)
{
    m_diskWatch->frameKept(static_cast<double>(timestamp) / PKTimebase, timestamp);
    if (m_recording->stopItemIsShown)
        showClock(timestamp);
    emit clockTicked(timestamp);
    watchSize(timestamp);
    if (m_recording->endsWithFirstFrame)
        m_spool->setExit(true);
}

void RecordingSession::watchSize(std::int64_t timestamp)
{
    const std::shared_ptr<const PKMuxerContext> movie = m_spool->muxerContext();
    const double seconds = static_cast<double>(timestamp) / PKTimebase;
    if (!m_recording->sizeLimit || m_recording->sizeIsReached || !movie
        || !m_recording->sizeLimit->isReached(*movie, seconds, m_spool->spooledPictureBytes()))
        return;
    m_recording->sizeIsReached = true;
    m_frontEnd.progress.sizeIsReached();
    m_spool->setExit(true);
}

void RecordingSession::showClock(std::int64_t timestamp)
{
    if (const std::optional<std::int64_t> left = m_recording->secondsLeft(timestamp))
        m_frontEnd.progress.showTimeLeft(*left);
    m_frontEnd.progress.setStopItemTitle(stringFromeTimestamp(timestamp));
}

void RecordingSession::soundAwaited()
{
    if (m_recording->stopItemIsShown)
        m_frontEnd.progress.setStopItemTitle(tr("waiting for audio"));
    if (m_recording->endsWithFirstFrame)
        goOnWithoutSound();
}

void RecordingSession::soundMissing()
{
    m_frontEnd.sound.soundIsMissing([session = QPointer(this), recording = m_recording] {
        if (session && session->m_recording == recording && session->m_phase == Phase::Capturing)
            session->goOnWithoutSound();
    });
}

/// Sound is to give the recording its origin, and none has come yet.
bool RecordingSession::awaitsOrigin() const
{
    return m_recording->clock.awaitsSound() && !m_recording->clock.timestamp();
}

/// What the device may still deliver is not wanted any more: the movie has no sound.
void RecordingSession::goOnWithoutSound()
{
    if (!awaitsOrigin() || !m_spool->muxerContext())
        return;
    m_audio->stop();
    const auto context = std::make_shared<PKMuxerContext>(*m_spool->muxerContext());
    context->setAudioCodecID(PKMuxerContext::audioCodecNone);
    m_spool->setMuxerContext(context);
    m_recording->clock.goOnWithoutSound();
}

void RecordingSession::soundIsLost(bool isLost)
{
    if (m_phase != Phase::Capturing)
        return;
    m_recording->soundWasLost = true;
    m_frontEnd.sound.soundIsLost(isLost);
}

void RecordingSession::oneSoundIsLost(const QString &name, bool isLost)
{
    if (m_phase != Phase::Capturing)
        return;
    m_recording->soundLostOfTwo = name;
    m_frontEnd.sound.oneSoundIsLost(name, isLost);
}

void RecordingSession::followSound()
{
    connect(m_audio.get(), &AudioInput::soundIsLost, this, &RecordingSession::soundIsLost);
    connect(m_audio.get(), &AudioInput::oneSoundIsLost, this, &RecordingSession::oneSoundIsLost);
    connect(m_audio.get(), &AudioInput::levelHeard, this, [this](double peak) {
        if (m_phase == Phase::Capturing)
            m_frontEnd.sound.showLevel(peak);
    });
    connect(m_audio.get(), &AudioInput::nothingHeard, this, [this](const QString &name) {
        if (m_phase == Phase::Capturing)
            m_frontEnd.sound.nothingIsHeard(name);
    });
}

void RecordingSession::spoolFull()
{
    QString text = tr("It will terminate recording because of disk space is insufficient");
    // It is not the space alone that keeps a file from growing.
    if (const QString reason = whySpoolingFailed(m_spool->writeError()); !reason.isEmpty())
        text += QStringLiteral(". ") + reason;
    m_frontEnd.questions.alert(tr("Disk free space is too low"), text);
}

void RecordingSession::captureEnded(const CaptureLoop &loop)
{
    if (&loop != m_loop.get())
        return;
    m_start->releaseDisplay();
    executeStopRecord();
}

bool RecordingSession::isPaused() const
{
    return m_phase == Phase::Capturing && m_recording->clock.isPaused();
}

bool RecordingSession::mayPause() const
{
    return m_phase == Phase::Capturing && m_recording->framesGrabbed > 0 && !m_spool->exit();
}

void RecordingSession::pauseOrResume()
{
    if (!mayPause())
        return;
    RecordingClock &clock = m_recording->clock;
    if (clock.isPaused())
        clock.resume();
    else
        clock.pause();
    m_frontEnd.progress.showPaused(clock.isPaused());
    emit pausedChanged();
}

void RecordingSession::stopRecord()
{
    if (awaitsDisplay())
        refuse();
    else if (!endWithFirstFrame())
        m_spool->setExit(true);
}

/// False where a picture is kept already, or this was asked for before.
bool RecordingSession::endWithFirstFrame()
{
    if (m_phase != Phase::Capturing || m_recording->framesGrabbed > 0
        || std::exchange(m_recording->endsWithFirstFrame, true))
        return false;
    beginCapture();
    goOnWithoutSound();
    return true;
}

// ---- the movie

void RecordingSession::executeStopRecord()
{
    // Quitting starts the job before the capture loop ends; the loop's own end comes here a second time, it
    // may be only once the movie is complete.
    if (m_phase != Phase::Capturing)
        return;
    beginCapture(); // when it ends before the screen was clear
    if (m_deadline && m_recording->isFullLength)
        m_recording->end = std::llround(m_deadline->seconds() * PKTimebase);
    m_recording->isTimeOver = m_deadline && (m_deadline->isReached() || m_recording->end);
    setPhase(Phase::Writing);
    hideStopRecordingBtn();
    m_frontEnd.windows.setBusy(true);
    if (m_recording->hasSound)
        m_audio->stop();
    if (m_recording->isPutOff)
        m_maker->putOff();
    else
        m_maker->start();
}

void RecordingSession::recover(const QString &id, const QString &file, std::optional<RecordQuality> quality)
{
    if (m_phase != Phase::Idle)
        return;
    QString whyNot = whyNoMovieCanBeWritten(file);
    if (!whyNot.isEmpty() || !m_spool->openRecording(id, whyNot)) {
        m_frontEnd.questions.alertError(whyNot);
        refuse();
        return;
    }
    const RecordingDescription description = m_spool->description();
    const auto recording = std::make_shared<Recording>(description, file);
    recording->quality = quality.value_or(recording->quality);
    recording->framesGrabbed = m_spool->recordBufferCount();
    adopt(recording);
    const auto context = description.movie ? std::make_shared<PKMuxerContext>(*description.movie)
                                           : std::make_shared<PKMuxerContext>(file);
    context->setFilename(file);
    context->setReplacedFile(identityOfFile(file));
    describePicture(*context, recording->quality);
    m_spool->setMuxerContext(context);
    setPhase(Phase::Writing);
    m_frontEnd.desktop.inhibitIdle(true);
    m_frontEnd.windows.setBusy(true);
    m_maker->start();
}

void RecordingSession::later()
{
    if (m_phase == Phase::Writing)
        m_maker->cancel();
}

void RecordingSession::recordcomplete()
{
    m_maker->recordcomplete();
}

/// The spool goes once its movie is complete, or when it holds nothing.
void RecordingSession::becomeIdle()
{
    const QString id = m_spool->recordingId();
    const bool isKept = !m_recording->failure.isEmpty() && m_recording->framesGrabbed > 0;
    if (isKept)
        m_spool->keep();
    else
        m_spool->clear();
    if (isKept && !id.isEmpty())
        m_frontEnd.movie.recordingKept(id);
    hideStopRecordingBtn();
    m_frontEnd.windows.setBusy(false);
    m_frontEnd.desktop.inhibitIdle(false);
    setPhase(Phase::Idle);
    if (m_terminating)
        main_queue::async([this] { emit readyToTerminate(); });
}

void RecordingSession::showStopRecordingBtn()
{
    m_recording->stopItemIsShown = true;
    m_frontEnd.progress.showStopItem(stringFromeTimestamp(0), regionToRecord());
    m_frontEnd.windows.minimiseMainWindow();
}

void RecordingSession::hideStopRecordingBtn()
{
    if (std::exchange(m_recording->stopItemIsShown, false))
        m_frontEnd.progress.hideStopItem();
    m_frontEnd.windows.bringMainWindowToFront();
}

// ---- the end of the program

void RecordingSession::terminate()
{
    const bool isInsisted = std::exchange(m_terminating, true);
    if (!isRecording()) {
        m_start->releaseDisplay();
        emit readyToTerminate();
    } else if (isInsisted && m_phase == Phase::Writing) {
        later();
    } else if (isInsisted || !m_recording->endsWithFirstFrame) {
        stopRecord();
    }
}

void RecordingSession::leave()
{
    m_recording->isPutOff = true;
    terminate();
    later();
}

QString RecordingSession::leaveRecording()
{
    if (!isRecording())
        return {};
    QString id = m_recording->framesGrabbed > 0 ? m_spool->recordingId() : QString();
    m_loop->abandon();
    m_maker->cancel(); // before the spool seems to be at its end
    if (m_maker->job().hasMovie()) {
        m_spool->clear();
        return {};
    }
    m_spool->keep();
    return id;
}

bool RecordingSession::mayQuit()
{
    if (!isRecording())
        return true;
    const bool quits = m_frontEnd.questions.confirmQuit(
        tr("Are you sure to quit it?"),
        tr("The application is recording video, video recording will stop if it quit."));
    // The recording may have ended while the question stood.
    if (quits && isRecording() && !endWithFirstFrame())
        executeStopRecord();
    return quits;
}

// ---- what has become of it

RecordingCounts RecordingSession::counts() const
{
    return m_maker->counts();
}

MovieJob &RecordingSession::movieJob()
{
    return m_maker->job();
}

} // namespace vornic
