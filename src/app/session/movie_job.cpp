#include "app/session/movie_job.h"

#include "app/session/recording.h"
#include "audio/PKAudioRecorderData.h"
#include "base/PKTimebase.h"
#include "base/log.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/frame_composer.h"
#include "capture/spool/VNBufferMgr.h"
#include "codec/PKAudioFrame2.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKMuxerTask.h"
#include "codec/PKVideoFrame2.h"

#include <optional>
#include <utility>

namespace vornic {

MovieJob::MovieJob(std::shared_ptr<const Recording> recording, VNBufferMgr &spool, VNLogoContext *logo)
    : m_recording(std::move(recording))
    , m_spool(spool)
    , m_logo(logo)
    , m_composer(std::make_unique<FrameComposer>())
{
}

MovieJob::~MovieJob() = default;

void MovieJob::start(std::function<void(const QString &, const QVariant &)> report)
{
    const std::shared_ptr<PKMuxerTask> task = PKMuxerTask::create(m_spool.muxerContext());
    task->setDataSource(this);
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
        record->setDuration(hasSuccessor ? next - record->timestamp() : std::uint64_t { PKTimebase / 30 });
        if (auto frame = record->getVideoFrameWithLogoContext(m_logo, m_spool.recordRect(), m_composer.get()))
            return frame;
        // No frame means the end to the encoder; a damaged picture in the middle is not the end.
        logMessage(QStringLiteral("A spooled frame holds no readable picture and is left out."));
        ++m_unusableFrames;
    }
    return nullptr;
}

std::shared_ptr<const PKAudioFrame2> MovieJob::PKMuxerTaskGetAudioFrame()
{
    if (!m_recording->clock.awaitsSound())
        return nullptr;
    const std::optional<PKAudioRecorderData> chunk = m_spool.popAudioBuffer();
    if (!chunk)
        return nullptr;
    const AudioStreamBasicDescription &format = chunk->dataFormat();
    const std::uint32_t bytesPerFrame = format.mBitsPerChannel * format.mChannelsPerFrame / 8;
    const auto bytes = static_cast<std::uint32_t>(chunk->data().size());
    const std::uint32_t samples = bytesPerFrame == 0 ? 0 : bytes / bytesPerFrame;
    return std::make_shared<const PKAudioFrame2>(format.mBitsPerChannel == 8
                                                     ? PKMuxerContext::sampleFormatUnsigned8
                                                     : PKMuxerContext::sampleFormatSigned16,
                                                 static_cast<std::int32_t>(format.mChannelsPerFrame),
                                                 static_cast<std::int32_t>(format.mSampleRate),
                                                 static_cast<std::int32_t>(samples),
                                                 chunk->data().constData());
}

} // namespace vornic
