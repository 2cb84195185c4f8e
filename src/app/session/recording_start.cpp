#include "app/session/recording_start.h"

#include "app/session/audio_input.h"
#include "app/session/new_movie_file.h"
#include "app/session/output_check.h"
#include "app/session/recording_questions.h"
#include "base/main_queue.h"
#include "base/native_path.h"
#include "capture/spool/VNBufferMgr.h"
#include "display/display_backend.h"
#include "options/VNOption.h"

#include <QPointer>

#include <utility>

namespace vornic {

RecordingStart::RecordingStart(RecordingQuestions &questions,
                               const VNOption &options,
                               VNBufferMgr &spool,
                               AudioInput &sound)
    : m_questions(questions)
    , m_options(options)
    , m_spool(spool)
    , m_sound(sound)
{
}

RecordingStart::~RecordingStart()
{
    releaseDisplay();
}

void RecordingStart::begin(std::function<void()> next)
{
    const auto answered = [this, next = std::move(next)](bool goOn) {
        if (goOn)
            askAboutSound(next);
        else
            emit refused();
    };
    if (m_spool.freespaceIsEough())
        answered(true);
    else
        m_questions.askAboutFreeSpace(answered);
}

void RecordingStart::askAboutSound(const std::function<void()> &next)
{
    if (!m_options.enableAudio() || m_sound.hasDevices()) {
        next();
        return;
    }
    m_questions.askToRecordWithoutSound([this, next](bool goOn) {
        if (goOn)
            next();
        else
            emit refused();
    });
}

void RecordingStart::startRecordSelectOutFile()
{
    m_questions.runSavePanel(
        tr("Untitled"), QStringLiteral("mp4"), [this](const std::optional<QString> &path) {
            if (!path) {
                emit refused();
                return;
            }
            choose(*path);
            main_queue::async([this] { startRecorderWithHintWindow(); });
        });
}

void RecordingStart::useFile(const QString &file)
{
    choose(file.isEmpty() ? newMovieFile() : file);
    if (!isThere(m_file)) {
        prepareDisplay();
        return;
    }
    m_questions.alertError(tr("The file %1 exists already.").arg(m_file));
    emit refused();
}

/// With the choice its user agrees that the file is replaced that stands there now, and no other.
void RecordingStart::choose(const QString &file)
{
    m_file = file;
    m_replacedFile = identityOfFile(file);
}

void RecordingStart::startRecorderWithHintWindow()
{
    m_questions.showHint([this](int response) {
        if (response == RecordingQuestions::responseContinue)
            main_queue::async([this] { prepareDisplay(); });
        else
            emit refused();
    });
}

void RecordingStart::prepareDisplay()
{
    m_awaitsDisplay = true;
    m_display = mainDisplay();
    m_display->prepare(m_questions.parentWindow(), [start = QPointer(this)](const DisplayAccess &access) {
        if (start)
            start->displayAnswered(access);
    });
}

void RecordingStart::displayAnswered(const DisplayAccess &access)
{
    m_awaitsDisplay = false;
    if (access.state == DisplayAccess::State::Granted) {
        countDown();
        return;
    }
    if (access.state == DisplayAccess::State::Declined)
        m_questions.displayDeclined();
    else
        m_questions.alertError(access.whyNot);
    emit refused();
}

void RecordingStart::releaseDisplay()
{
    m_awaitsDisplay = false;
    if (const auto display = std::exchange(m_display, nullptr))
        display->release();
}

void RecordingStart::countDown()
{
    m_questions.countDown([this](bool goOn) {
        if (goOn)
            emit accepted();
        else
            emit refused();
    });
}

bool RecordingStart::isOutputReady() const
{
    QString reason = whyNoMovieCanBeWritten(m_file);
    if (reason.isEmpty())
        reason = whyNothingCanBeSpooled();
    if (!reason.isEmpty())
        m_questions.alertError(reason);
    return reason.isEmpty();
}

} // namespace vornic
