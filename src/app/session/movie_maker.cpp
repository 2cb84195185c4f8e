#include "app/session/movie_maker.h"

#include "app/session/desktop_services.h"
#include "app/session/error_text.h"
#include "app/session/movie_flaws.h"
#include "app/session/movie_job.h"
#include "app/session/movie_progress.h"
#include "app/session/program_windows.h"
#include "app/session/recording.h"
#include "app/session/recording_questions.h"
#include "base/error.h"
#include "capture/spool/VNBufferMgr.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKMuxerTask.h"
#include "codec/file_identity.h"
#include "options/VNOption.h"

#include <QFileInfo>

#include <new>
#include <utility>

namespace vornic {

MovieMaker::MovieMaker(const FrontEnd &frontEnd, VNOption &options, VNBufferMgr &spool)
    : m_frontEnd(frontEnd)
    , m_options(options)
    , m_spool(spool)
{
}

MovieMaker::~MovieMaker() = default;

void MovieMaker::adopt(std::shared_ptr<Recording> recording)
{
    m_recording = std::move(recording);
    m_job = std::make_unique<MovieJob>(m_recording, m_spool, m_options.logoContext());
}

void MovieMaker::putOff()
{
    muxerFailed({ .kind = ErrorKind::Cancelled, .name = m_recording->path, .reason = {} });
}

void MovieMaker::cancel()
{
    m_job->cancel();
}

void MovieMaker::start()
{
    try {
        m_job = std::make_unique<MovieJob>(m_recording, m_spool, m_options.logoContext());
        m_job->start([this](const QString &action, const QVariant &value) { muxerReported(action, value); });
    } catch (const std::bad_alloc &) {
        muxerFailed({ ErrorKind::OutOfMemory, ErrorSubject::File, m_recording->path, {} });
    }
}

void MovieMaker::muxerReported(const QString &action, const QVariant &value)
{
    MovieProgress &progress = m_frontEnd.movie;
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
            m_frontEnd.windows.stepAside();
    } else if (action == PKMuxerTaskActionFailed) {
        progress.endProgress();
        muxerFailed(value.value<Error>());
    }
}

/// A full disk must not cost an hour of work: the spool is still there and can be written elsewhere, or later.
void MovieMaker::muxerFailed(const Error &error)
{
    m_recording->failure = errorText(error);
    if (error.kind == ErrorKind::Cancelled) {
        emit ended();
        return;
    }
    m_frontEnd.questions.alertError(m_recording->failure);
    if (m_recording->framesGrabbed == 0) {
        emit ended();
        return;
    }
    m_frontEnd.questions.askForOtherFile(QStringLiteral("mp4"), [this](const std::optional<QString> &path) {
        if (path)
            writeTo(*path);
        else
            emit ended();
    });
}

void MovieMaker::writeTo(const QString &path)
{
    m_recording->path = path;
    m_recording->failure.clear();
    writeWith(std::make_shared<PKMuxerContext>(*m_spool.muxerContext()));
}

/// To the recording's path.
void MovieMaker::writeWith(const std::shared_ptr<PKMuxerContext> &context)
{
    context->setFilename(m_recording->path);
    context->setReplacedFile(identityOfFile(m_recording->path));
    m_spool.setMuxerContext(context);
    m_spool.rewind();
    start();
}

/// False where the movie may be as large as it is, or cannot be made smaller.
bool MovieMaker::writeSmaller()
{
    if (!m_recording->sizeLimit)
        return false;
    const MovieStatistics &movie = m_recording->movie;
    const QString &path = movie.file.isEmpty() ? m_recording->path : movie.file;
    const auto size = static_cast<std::uint64_t>(QFileInfo(path).size());
    const auto context = std::make_shared<PKMuxerContext>(*m_spool.muxerContext());
    const auto bitRate = m_recording->sizeLimit->lowerBitRate(*context, size, movie.audioSeconds);
    m_recording->isTooLarge = !bitRate && !m_recording->sizeLimit->holds(size);
    if (!bitRate)
        return false;
    m_recording->path = path;
    context->setVideoBitrate(*bitRate);
    m_frontEnd.movie.movieIsWrittenAgain();
    writeWith(context);
    return true;
}

void MovieMaker::recordcomplete()
{
    DesktopServices &desktop = m_frontEnd.desktop;
    if (const QString &file = m_recording->movie.file; !file.isEmpty() && file != m_recording->path) {
        m_frontEnd.movie.movieRenamed(m_recording->path, file);
        m_recording->path = file;
    }
    if (m_options.showInFinderWhenFinished())
        desktop.reveal(m_recording->path);
    if (m_options.openRecordedWhenFinished())
        desktop.open(m_recording->path);
    desktop.announceMovie(m_recording->path, m_recording->movie.seconds, movieFlaws(*m_recording, counts()));
    emit ended();
}

RecordingCounts MovieMaker::counts() const
{
    return { m_recording->framesGrabbed,
             static_cast<std::uint64_t>(m_recording->movie.framesWritten),
             m_job->unusableFrameCount() + static_cast<std::uint64_t>(m_recording->movie.framesSkipped)
                 + m_spool.skippedBlockCount(),
             m_recording->movie.audioSeconds };
}

} // namespace vornic
