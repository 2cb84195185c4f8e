// The encoder hand-off: the muxer's settings, its job, and the frames that it pulls out of the spool.

#include "app/VornicAppDelegate.h"
#include "app/session/front_end.h"
#include "app/session/recording_settings.h"
#include "audio/PKAudioRecorderData.h"
#include "audio/audio_recorder.h"
#include "base/PKTimebase.h"
#include "base/log.h"
#include "base/serial_queue.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/frame_composer.h"
#include "capture/spool/VNBufferMgr.h"
#include "codec/PKAudioFrame2.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKMuxerTask.h"
#include "codec/PKVideoFrame2.h"
#include "codec/movie_statistics.h"
#include "display/bitmap_image.h"
#include "options/VNLogoContext.h"
#include "options/VNOption.h"

#include <QFile>

#include <optional>

namespace vornic {

void VornicAppDelegate::startRecorder(const QVariantList &arguments)
{
    const QString path = arguments.value(0).toString();
    const std::int32_t quality = arguments.value(1).toInt();
    const bool audio = arguments.value(2).toInt() == 1;

    QFile::remove(path);
    const auto context = std::make_shared<PKMuxerContext>(path, PKMuxerContext::formatMp4);
    const std::int64_t width = mBufferMgr->encodeWidth();
    const std::int64_t height = mBufferMgr->encodeHeight();
    context->setWidth(static_cast<std::int32_t>(width));
    context->setHeight(static_cast<std::int32_t>(height));
    context->setVideoCodecID(PKMuxerContext::videoCodecH264);
    context->setFrameRate(movieFrameRate(quality));
    context->setVideoBitrate(movieBitRate(quality, width, height));
    if (audio)
        configureAudio(*context);
    else
        context->setAudioCodecID(PKMuxerContext::audioCodecNone);
    mBufferMgr->setMuxerContext(context);
}

void VornicAppDelegate::configureAudio(PKMuxerContext &context)
{
    AudioRecorder *recorder = audioRecorder();
    if (!recorder || !recorder->startRecordWithFormat(defaultAudioStreamBasicDescription())) {
        logMessage(QStringLiteral("Can support 16bit, 8bit record."));
        return;
    }
    const AudioStreamBasicDescription format = recorder->currentDataFormat();
    if (format.mBitsPerChannel != 8 && format.mBitsPerChannel != 16) {
        logMessage(QStringLiteral("Only support 16bit & 8bit : %1").arg(format.mBitsPerChannel));
        recorder->stopRecord();
        context.setAudioCodecID(PKMuxerContext::audioCodecNone);
        _audioValidate = false;
        return;
    }
    m_startedRecorder = recorder;
    context.setAudioCodecID(PKMuxerContext::audioCodecAac);
    context.setSamplerate(static_cast<std::int32_t>(format.mSampleRate));
    context.setNumberOfChannels(static_cast<std::int32_t>(format.mChannelsPerFrame));
    context.setSampleFormat(format.mBitsPerChannel == 16 ? PKMuxerContext::sampleFormatSigned16
                                                         : PKMuxerContext::sampleFormatUnsigned8);
}

void VornicAppDelegate::executeStopRecord()
{
    // Quitting starts the job before the capture loop ends; the loop's own end comes here a second time, it
    // may be only once the movie is complete.
    if (m_state != 1 || m_muxing)
        return;
    m_muxing = true;
    hideStopRecordingBtn();
    m_frontEnd.setSaving(true);
    if (m_recordsAudio && _audioRecorder)
        _audioRecorder->stopRecord();
    m_logoContext = options()->logoContext();
    startMuxing();
}

void VornicAppDelegate::startMuxing()
{
    m_composer = std::make_unique<FrameComposer>();
    const std::shared_ptr<PKMuxerTask> task = PKMuxerTask::create(mBufferMgr->muxerContext());
    task->setDataSource(this);
    task->startMuxerWithBlock(
        [this](const QString &action, const QVariant &value) { muxerReported(action, value); });
}

void VornicAppDelegate::muxerReported(const QString &action, const QVariant &value)
{
    if (action == PKMuxerTaskActionStart) {
        m_frontEnd.beginProgress(m_framesGrabbed);
        m_frontEnd.setProgress(0.0);
    } else if (action == PKMuxerTaskActionProgress) {
        m_frontEnd.setProgress(value.toDouble());
    } else if (action == PKMuxerTaskActionComplete) {
        const auto statistics = value.value<MovieStatistics>();
        m_framesWritten = static_cast<std::uint64_t>(statistics.framesWritten);
        m_framesOutOfOrder = static_cast<std::uint64_t>(statistics.framesSkipped);
        m_movieSeconds = statistics.seconds;
        m_audioSeconds = statistics.audioSeconds;
        m_composer.reset();
        recordcomplete();
        m_frontEnd.setProgress(100.0);
        m_frontEnd.endProgress();
    } else if (action == PKMuxerTaskActionFailed) {
        m_composer.reset();
        m_frontEnd.endProgress();
        alertError(value.toString());
        muxerFailed(value.toString());
    }
}

/// A full disk must not cost an hour of work: the spool is still there and can be written elsewhere.
void VornicAppDelegate::muxerFailed(const QString &sentence)
{
    if (m_framesGrabbed == 0) {
        recordFailed(sentence);
        return;
    }
    m_frontEnd.askForOtherFile(QStringLiteral("mp4"), [this, sentence](const std::optional<QString> &path) {
        if (!path) {
            recordFailed(sentence);
            return;
        }
        m_outfileName = *path;
        const auto context = std::make_shared<PKMuxerContext>(*mBufferMgr->muxerContext());
        context->setFilename(m_outfileName);
        mBufferMgr->setMuxerContext(context);
        mBufferMgr->rewind();
        m_framesUnusable = 0;
        startMuxing();
    });
}

std::int64_t VornicAppDelegate::PKMuxerTaskLength()
{
    return mBufferMgr->lastBufferTimestamp();
}

std::shared_ptr<const PKVideoFrame2> VornicAppDelegate::PKMuxerTaskGetVideoFrame()
{
    while (const std::unique_ptr<VNBufferDiscr> record = mBufferMgr->popRecordBuffer()) {
        const auto next = static_cast<std::uint64_t>(mBufferMgr->nextBufferTimestamp());
        const bool hasSuccessor = next > record->timestamp();
        record->setDuration(hasSuccessor ? next - record->timestamp() : std::uint64_t { PKTimebase / 30 });
        if (auto frame
            = record->getVideoFrameWithLogoContext(m_logoContext, mBufferMgr->recordRect(), m_composer.get()))
            return frame;
        // No frame means the end to the encoder; a damaged picture in the middle is not the end.
        logMessage(QStringLiteral("A spooled frame holds no readable picture and is left out."));
        ++m_framesUnusable;
    }
    return nullptr;
}

std::shared_ptr<const PKAudioFrame2> VornicAppDelegate::PKMuxerTaskGetAudioFrame()
{
    if (!_audioValidate)
        return nullptr;
    const std::optional<PKAudioRecorderData> chunk = mBufferMgr->popAudioBuffer();
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
