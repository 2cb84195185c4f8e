#include "app/session/recording_session.h"

#include "app/session/audio_device_list.h"
#include "app/session/audio_input.h"
#include "app/session/desktop_services.h"
#include "app/session/disk_watch.h"
#include "app/session/end_text.h"
#include "app/session/error_text.h"
#include "app/session/movie_flaws.h"
#include "app/session/movie_job.h"
#include "app/session/new_movie_file.h"
#include "app/session/output_check.h"
#include "app/session/recording.h"
#include "app/session/recording_deadline.h"
#include "app/session/recording_progress.h"
#include "app/session/recording_questions.h"
#include "app/session/recording_settings.h"
#include "app/session/time_text.h"
#include "base/PKTimebase.h"
#include "base/error.h"
#include "base/main_queue.h"
#include "base/native_path.h"
#include "base/serial_queue.h"
#include "capture/VNCGDisplay.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/recording_description.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKMuxerTask.h"
#include "display/display_backend.h"
#include "geometry/screen_geometry.h"
#include "options/VNOption.h"

#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace vornic {

RecordingSession::RecordingSession(const FrontEnd &frontEnd, VNOption &options, AudioControl *audio)
    : m_frontEnd(frontEnd)
    , m_options(options)
    , m_now(absoluteTimeSeconds)
    , m_spool(std::make_unique<VNBufferMgr>(4))
    , m_diskWatch(std::make_unique<DiskWatch>(*m_spool, frontEnd.progress))
    , m_audio(std::make_unique<AudioInput>(*m_spool, audio))
{
    adopt(std::make_shared<Recording>());
    if (!m_audio->fillDevices())
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
    releaseDisplay();
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
    m_job = std::make_unique<MovieJob>(m_recording, *m_spool, m_options.logoContext());
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
    beginAsking([this] { startRecordSelectOutFile(); });
}

void RecordingSession::recordNow(const QString &file)
{
    beginAsking([this, file] {
        choose(file.isEmpty() ? newMovieFile() : file);
        if (!isThere(m_chosenFile)) {
            prepareDisplay();
            return;
        }
        m_frontEnd.questions.alertError(tr("The file %1 exists already.").arg(m_chosenFile));
        refuse();
    });
}

/// With the choice its user agrees that the file is replaced that stands there now, and no other.
void RecordingSession::choose(const QString &file)
{
    m_chosenFile = file;
    m_replacedFile = identityOfFile(file);
}

/// Asks what every recording needs to know first, and goes on with \a next.
void RecordingSession::beginAsking(std::function<void()> next)
{
    if (m_phase != Phase::Idle)
        return;
    setPhase(Phase::Asking);
    const auto answered = [this, next = std::move(next)](bool goOn) {
        if (goOn)
            askAboutSound(next);
        else
            refuse();
    };
    if (m_spool->freespaceIsEough())
        answered(true);
    else
        m_frontEnd.questions.askAboutFreeSpace(answered);
}

void RecordingSession::askAboutSound(const std::function<void()> &next)
{
    if (!m_options.enableAudio() || m_audio->hasDevices()) {
        next();
        return;
    }
    m_frontEnd.questions.askToRecordWithoutSound([this, next](bool goOn) {
        if (goOn)
            next();
        else
            refuse();
    });
}

void RecordingSession::startRecordSelectOutFile()
{
    m_frontEnd.questions.runSavePanel(
        tr("Untitled"), QStringLiteral("mp4"), [this](const std::optional<QString> &path) {
            if (!path) {
                refuse();
                return;
            }
            choose(*path);
            main_queue::async([this] { startRecorderWithHintWindow(); });
        });
}

void RecordingSession::startRecorderWithHintWindow()
{
    m_frontEnd.questions.showHint([this](int response) {
        if (response == RecordingQuestions::responseContinue)
            main_queue::async([this] { prepareDisplay(); });
        else
            refuse();
    });
}

void RecordingSession::prepareDisplay()
{
    m_awaitsDisplay = true;
    m_claimedDisplay = mainDisplay();
    m_claimedDisplay->prepare(m_frontEnd.questions.parentWindow(),
                              [session = QPointer(this)](const DisplayAccess &access) {
                                  if (session)
                                      session->displayAnswered(access);
                              });
}

void RecordingSession::displayAnswered(const DisplayAccess &access)
{
    m_awaitsDisplay = false;
    if (access.state == DisplayAccess::State::Granted) {
        countDown();
        return;
    }
    if (access.state == DisplayAccess::State::Declined)
        m_frontEnd.questions.displayDeclined();
    else
        m_frontEnd.questions.alertError(access.whyNot);
    refuse();
}

void RecordingSession::releaseDisplay()
{
    m_awaitsDisplay = false;
    if (const auto display = std::exchange(m_claimedDisplay, nullptr))
        display->release();
}

void RecordingSession::countDown()
{
    m_frontEnd.questions.countDown([this](bool goOn) {
        if (goOn)
            startRecorderAnyway();
        else
            refuse();
    });
}

void RecordingSession::refuse()
{
    releaseDisplay();
    setPhase(Phase::Idle);
    emit recordingRefused();
}

bool RecordingSession::outputAndSpoolAreReady()
{
    QString reason = whyNoMovieCanBeWritten(m_chosenFile);
    if (reason.isEmpty())
        reason = whyNothingCanBeSpooled();
    if (!reason.isEmpty())
        m_frontEnd.questions.alertError(reason);
    return reason.isEmpty();
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
    if (m_terminating || !outputAndSpoolAreReady()) {
        refuse();
        return;
    }
    adopt(
        std::make_shared<Recording>(m_chosenFile, m_options, regionToRecord(), m_audio->hasDevices(), m_now));
    limitLength();
    if (m_maxSize)
        m_recording->sizeLimit.emplace(*m_maxSize);
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
        m_frontEnd.progress.setBusy(true);
    m_frontEnd.progress.whenScreenIsClear([session = QPointer(this), recording = m_recording] {
        if (session && session->m_recording == recording)
            session->beginCapture();
    });
}

std::optional<double> RecordingSession::askedLength() const
{
    if (m_askedLength || !m_options.stopsAfterTime())
        return m_askedLength;
    return m_options.stopAfter();
}

/// The deadline ends the recording, and the clock keeps out what comes before that is done.
void RecordingSession::limitLength()
{
    m_deadline.reset();
    const std::optional<double> seconds = askedLength();
    if (!seconds)
        return;
    m_recording->clock.setLength(*seconds);
    m_deadline = std::make_unique<RecordingDeadline>(*this, *seconds);
}

bool RecordingSession::isTimeOver() const
{
    return m_deadline && (m_deadline->isReached() || m_recording->end);
}

bool RecordingSession::isSizeReached() const
{
    return m_recording->sizeIsReached;
}

bool RecordingSession::isTooLarge() const
{
    return m_recording->isTooLarge;
}

std::optional<std::int64_t> RecordingSession::secondsLeft(std::int64_t timestamp) const
{
    if (!m_deadline)
        return std::nullopt;
    const double left = m_deadline->seconds() - static_cast<double>(timestamp) / PKTimebase;
    return std::max<std::int64_t>(0, std::llround(std::ceil(left)));
}

void RecordingSession::beginCapture()
{
    if (std::exchange(m_recording->isCaptured, true))
        return;
    m_loop->start(m_settlingTime ? m_settlingTime() : std::chrono::nanoseconds(0),
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
    context->setReplacedFile(m_replacedFile);
    describePicture(*context, quality);
    if (audio) {
        m_audio->setChoice({ m_usesInput,
                             m_options.inputLevel(),
                             m_options.recordsSystemSound(),
                             m_options.systemLevel(),
                             m_separateTracks });
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
    if (const std::optional<std::int64_t> left = secondsLeft(timestamp))
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
    m_frontEnd.progress.soundIsMissing([session = QPointer(this), recording = m_recording] {
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
    m_frontEnd.progress.soundIsLost(isLost);
}

void RecordingSession::oneSoundIsLost(const QString &name, bool isLost)
{
    if (m_phase != Phase::Capturing)
        return;
    m_recording->soundLostOfTwo = name;
    m_frontEnd.progress.oneSoundIsLost(name, isLost);
}

void RecordingSession::followSound()
{
    connect(m_audio.get(), &AudioInput::soundIsLost, this, &RecordingSession::soundIsLost);
    connect(m_audio.get(), &AudioInput::oneSoundIsLost, this, &RecordingSession::oneSoundIsLost);
    connect(m_audio.get(), &AudioInput::levelHeard, this, [this](double peak) {
        if (m_phase == Phase::Capturing)
            m_frontEnd.progress.showLevel(peak);
    });
    connect(m_audio.get(), &AudioInput::nothingHeard, this, [this](const QString &name) {
        if (m_phase == Phase::Capturing)
            m_frontEnd.progress.nothingIsHeard(name);
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
    releaseDisplay();
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
    if (m_awaitsDisplay)
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

bool RecordingSession::countsOnSound() const
{
    return m_recording->clock.awaitsSound();
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
    setPhase(Phase::Writing);
    hideStopRecordingBtn();
    m_frontEnd.progress.setBusy(true);
    if (m_recording->hasSound)
        m_audio->stop();
    if (m_recording->isPutOff)
        muxerFailed({ .kind = ErrorKind::Cancelled, .name = m_recording->path, .reason = {} });
    else
        startWriting();
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
    m_frontEnd.progress.setBusy(true);
    startWriting();
}

void RecordingSession::later()
{
    if (m_phase == Phase::Writing)
        m_job->cancel();
}

void RecordingSession::startWriting()
{
    try {
        m_job = std::make_unique<MovieJob>(m_recording, *m_spool, m_options.logoContext());
        m_job->start([this](const QString &action, const QVariant &value) { muxerReported(action, value); });
    } catch (const std::bad_alloc &) {
        muxerFailed({ ErrorKind::OutOfMemory, ErrorSubject::File, m_recording->path, {} });
    }
}

void RecordingSession::muxerReported(const QString &action, const QVariant &value)
{
    RecordingProgress &progress = m_frontEnd.progress;
    if (action == PKMuxerTaskActionStart) {
        progress.beginProgress(m_recording->framesGrabbed);
        progress.setProgress(0.0);
    } else if (action == PKMuxerTaskActionProgress) {
        progress.setProgress(value.toDouble());
    } else if (action == PKMuxerTaskActionComplete) {
        m_recording->movie = value.value<MovieStatistics>();
        if (writeSmaller())
            return;
        recordcomplete();
        progress.setProgress(100.0);
        progress.endProgress();
        if (m_options.showInFinderWhenFinished() || m_options.openRecordedWhenFinished())
            progress.stepAside();
    } else if (action == PKMuxerTaskActionFailed) {
        progress.endProgress();
        muxerFailed(value.value<Error>());
    }
}

/// A full disk must not cost an hour of work: the spool is still there and can be written elsewhere, or later.
void RecordingSession::muxerFailed(const Error &error)
{
    m_recording->failure = errorText(error);
    if (error.kind == ErrorKind::Cancelled) {
        becomeIdle();
        return;
    }
    m_frontEnd.questions.alertError(m_recording->failure);
    if (m_recording->framesGrabbed == 0) {
        becomeIdle();
        return;
    }
    m_frontEnd.questions.askForOtherFile(QStringLiteral("mp4"), [this](const std::optional<QString> &path) {
        if (path)
            writeTo(*path);
        else
            becomeIdle();
    });
}

void RecordingSession::writeTo(const QString &path)
{
    m_recording->path = path;
    m_recording->failure.clear();
    writeWith(std::make_shared<PKMuxerContext>(*m_spool->muxerContext()));
}

/// To the recording's path.
void RecordingSession::writeWith(const std::shared_ptr<PKMuxerContext> &context)
{
    context->setFilename(m_recording->path);
    context->setReplacedFile(identityOfFile(m_recording->path));
    m_spool->setMuxerContext(context);
    m_spool->rewind();
    startWriting();
}

/// False where the movie may be as large as it is, or cannot be made smaller.
bool RecordingSession::writeSmaller()
{
    if (!m_recording->sizeLimit)
        return false;
    const MovieStatistics &movie = m_recording->movie;
    const QString &path = movie.file.isEmpty() ? m_recording->path : movie.file;
    const auto size = static_cast<std::uint64_t>(QFileInfo(path).size());
    const auto context = std::make_shared<PKMuxerContext>(*m_spool->muxerContext());
    const auto bitRate = m_recording->sizeLimit->lowerBitRate(*context, size, movie.audioSeconds);
    m_recording->isTooLarge = !bitRate && !m_recording->sizeLimit->holds(size);
    if (!bitRate)
        return false;
    m_recording->path = path;
    context->setVideoBitrate(*bitRate);
    m_frontEnd.progress.movieIsWrittenAgain();
    writeWith(context);
    return true;
}

void RecordingSession::recordcomplete()
{
    DesktopServices &desktop = m_frontEnd.desktop;
    if (const QString &file = m_recording->movie.file; !file.isEmpty() && file != m_recording->path) {
        m_frontEnd.progress.movieRenamed(m_recording->path, file);
        m_recording->path = file;
    }
    if (m_options.showInFinderWhenFinished())
        desktop.reveal(m_recording->path);
    if (m_options.openRecordedWhenFinished())
        desktop.open(m_recording->path);
    desktop.announceMovie(m_recording->path, m_recording->movie.seconds, movieFlaws(*m_recording, counts()));
    becomeIdle();
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
        m_frontEnd.progress.recordingKept(id);
    hideStopRecordingBtn();
    m_frontEnd.progress.setBusy(false);
    m_frontEnd.desktop.inhibitIdle(false);
    setPhase(Phase::Idle);
    if (m_terminating)
        main_queue::async([this] { emit readyToTerminate(); });
}

void RecordingSession::showStopRecordingBtn()
{
    m_recording->stopItemIsShown = true;
    m_frontEnd.progress.showStopItem(stringFromeTimestamp(0), regionToRecord());
    m_frontEnd.progress.minimiseMainWindow();
}

void RecordingSession::hideStopRecordingBtn()
{
    if (std::exchange(m_recording->stopItemIsShown, false))
        m_frontEnd.progress.hideStopItem();
    m_frontEnd.progress.bringMainWindowToFront();
}

// ---- the end of the program

void RecordingSession::terminate()
{
    const bool isInsisted = std::exchange(m_terminating, true);
    if (!isRecording()) {
        releaseDisplay();
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
    m_job->cancel(); // before the spool seems to be at its end
    if (m_job->hasMovie()) {
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

const QString &RecordingSession::outfileName() const
{
    return m_recording->path;
}

const QString &RecordingSession::failure() const
{
    return m_recording->failure;
}

RecordingCounts RecordingSession::counts() const
{
    return { m_recording->framesGrabbed,
             static_cast<std::uint64_t>(m_recording->movie.framesWritten),
             m_job->unusableFrameCount() + static_cast<std::uint64_t>(m_recording->movie.framesSkipped)
                 + m_spool->skippedBlockCount(),
             m_recording->movie.audioSeconds };
}

} // namespace vornic
