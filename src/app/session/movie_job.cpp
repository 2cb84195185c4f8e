#include "app/session/movie_job.h"

#include "app/session/recording.h"
#include "base/PKTimebase.h"
#include "base/log.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/frame_composer.h"
#include "capture/spool/VNBufferMgr.h"
#include "codec/PKAudioFrame2.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKMuxerTask.h"
#include "codec/PKVideoFrame2.h"

#include <chrono>
#include <utility>

namespace vornic {

namespace {

/// How long sound may go on behind the last picture, seconds.
constexpr double longestTail = 10;

constexpr std::chrono::seconds longestWait { 2 };

} // namespace

MovieJob::MovieJob(std::shared_ptr<const Recording> recording, VNBufferMgr &spool, VNLogoContext *logo)
    : m_recording(std::move(recording))
    , m_spool(spool)
    , m_logo(logo)
    , m_composer(std::make_unique<FrameComposer>())
    , m_sound([this] { return m_spool.popAudioBuffer(); })
{
}

MovieJob::~MovieJob() = default;

void MovieJob::start(std::function<void(const QString &, const QVariant &)> report)
{
    const std::shared_ptr<PKMuxerTask> task = PKMuxerTask::create(m_spool.muxerContext());
    task->setDataSource(this);
    m_work = MovieWork(m_spool.recordSizes());
    m_task = task;
    task->startMuxerWithBlock(std::move(report));
}

void MovieJob::cancel()
{
    // First the task, which then takes no missing frame for the end of the recording.
    if (const std::shared_ptr<PKMuxerTask> task = m_task.lock())
        task->cancel();
    m_isCancelled = true;
}

bool MovieJob::hasMovie() const
{
    const std::shared_ptr<PKMuxerTask> task = m_task.lock();
    return task && task->waitForMovie(longestWait);
}

std::int64_t MovieJob::PKMuxerTaskLength()
{
    return m_spool.lastBufferTimestamp();
}

std::shared_ptr<const PKVideoFrame2> MovieJob::PKMuxerTaskGetVideoFrame()
{
    while (!m_isCancelled) {
        const std::unique_ptr<VNBufferDiscr> record = m_spool.popRecordBuffer();
        if (!record)
            break;
        const auto next = static_cast<std::uint64_t>(m_spool.nextBufferTimestamp());
        const bool hasSuccessor = next > record->timestamp();
        record->setDuration(hasSuccessor ? next - record->timestamp() : lastDuration(record->timestamp()));
        m_picturesEnd = static_cast<double>(record->timestamp()) / PKTimebase;
        if (auto frame = record->getVideoFrameWithLogoContext(m_logo, m_spool.recordRect(), m_composer.get()))
            return frame;
        // No frame means the end to the encoder; a damaged picture in the middle is not the end.
        logMessage(QStringLiteral("A spooled frame holds no readable picture and is left out."));
        ++m_unusableFrames;
    }
    return nullptr;
}

/// Of the last picture, in ticks. A recording of a certain length lasts to its end, also where passes were late.
std::uint64_t MovieJob::lastDuration(std::uint64_t timestamp) const
{
    const auto end = static_cast<std::uint64_t>(m_recording->end.value_or(0));
    return end > timestamp ? end - timestamp : std::uint64_t { PKTimebase / 30 };
}

std::shared_ptr<const PKAudioFrame2> MovieJob::PKMuxerTaskGetAudioFrame()
{
    if (!m_recording->clock.awaitsSound())
        return nullptr;
    return m_sound.next(m_picturesEnd + longestTail);
}

std::optional<double> MovieJob::shareOfWork(std::int64_t ticks)
{
    return m_work.shareBefore(ticks);
}

} // namespace vornic
