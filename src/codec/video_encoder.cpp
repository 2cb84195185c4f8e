#include "codec/video_encoder.h"

#include "base/PKTimebase.h"
#include "base/thread.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKVideoFrame2.h"
#include "codec/encoder_settings.h"
#include "codec/movie_failure.h"
#include "codec/planar_picture.h"

#include <algorithm>
#include <thread>

namespace vornic {

namespace {

/// Frames a second assumed where the context names none.
constexpr double defaultFrameRate = 30;

/// The encoder would set key frames by the number of frames, but encode() sets them by time.
constexpr int noKeyFrameByNumber = 1 << 30;

const AVCodec &encoderFor(int codecId)
{
    if (codecId != PKMuxerContext::videoCodecH264) {
        throw MovieFailure(
            { ErrorKind::Unsupported, ErrorSubject::VideoEncoder, QString::number(codecId), {} });
    }
    const AVCodec *codec = avcodec_find_encoder_by_name("libx264");
    if (!codec) {
        throw MovieFailure(
            { ErrorKind::Unavailable, ErrorSubject::VideoEncoder, QStringLiteral("libx264"), {} });
    }
    return *codec;
}

void describePicture(AVCodecContext &codec, const PKMuxerContext &context)
{
    codec.width = context.width() + (context.width() & 1); // the encoder takes even sizes only
    codec.height = context.height() + (context.height() & 1);
    codec.pix_fmt = AV_PIX_FMT_YUV420P;
    codec.sample_aspect_ratio = { 1, 1 };
    codec.color_range = AVCOL_RANGE_MPEG;
    codec.color_primaries = AVCOL_PRI_BT709;
    codec.color_trc = AVCOL_TRC_BT709;
    codec.colorspace = AVCOL_SPC_BT709;
    codec.chroma_sample_location = AVCHROMA_LOC_CENTER;
}

void describeRate(AVCodecContext &codec, const PKMuxerContext &context)
{
    const double frameRate = context.frameRate() > 0 ? context.frameRate() : defaultFrameRate;
    codec.time_base = { 1, static_cast<int>(PKTimebase) };
    codec.framerate = av_d2q(frameRate, 1001000);
    codec.bit_rate = std::max<std::int64_t>(context.videoBitrate(), encoder_settings::minVideoBitrate);
    codec.rc_max_rate = encoder_settings::peakRateFactor * codec.bit_rate;
    codec.rc_buffer_size = static_cast<int>(
        std::min<std::int64_t>(encoder_settings::bufferFactor * codec.bit_rate, INT32_MAX));
    codec.gop_size = noKeyFrameByNumber;
    const std::int64_t macroblocks = std::int64_t { (codec.width + 15) / 16 } * ((codec.height + 15) / 16);
    if (macroblocks <= encoder_settings::videoLevelMacroblocks)
        codec.level = encoder_settings::videoLevel;
}

/// How many threads the encoder is to take. Where it lacks a single one of those that it wants, it fails; on the
/// caller's alone it makes the same movie, later.
int usefulThreads()
{
    const int threads = std::clamp(
        static_cast<int>(std::thread::hardware_concurrency()), 1, encoder_settings::maxEncoderThreads);
    // As many look ahead.
    return areThreadsAvailable(2 * threads) ? threads : 1;
}

} // namespace

VideoEncoder::VideoEncoder(const PKMuxerContext &context, const char *preset)
    : m_codec(owned(avcodec_alloc_context3(&encoderFor(context.videoCodecID()))))
    , m_packet(owned(av_packet_alloc()))
    , m_stillKeyFrameSeconds(context.audioCodecID() == PKMuxerContext::audioCodecNone
                                 ? encoder_settings::stillKeyFrameSeconds
                                 : encoder_settings::stillKeyFrameSecondsWithSound)
{
    describePicture(*m_codec, context);
    describeRate(*m_codec, context);
    m_codec->max_b_frames = 0;
    m_codec->thread_count = usefulThreads();
    m_codec->thread_type = FF_THREAD_SLICE;
    m_codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    AVDictionary *options = nullptr;
    av_dict_set(&options, "preset", preset, 0);
    av_dict_set(&options, "profile", "high", 0);
    av_dict_set(&options, "forced-idr", "1", 0);
    av_dict_set(&options, "x264-params", encoder_settings::x264Parameters, 0);
    const int result = avcodec_open2(m_codec.get(), nullptr, &options);
    av_dict_free(&options);
    if (result < 0) {
        const QString size = QStringLiteral("%1 x %2").arg(context.width()).arg(context.height());
        throw MovieFailure({ ErrorKind::Failed, ErrorSubject::VideoEncoder, size, avErrorText(result) });
    }
}

void VideoEncoder::encode(const FrameTimeline::Shown &shown, const PacketSink &sink)
{
    const auto picture = avFrameOver(*shown.frame, m_codec->width, m_codec->height);
    picture->pts = shown.frame->timeStamp();
    m_hasChanged = m_hasChanged || shown.isNew;
    if (isKeyFrameDue(shown)) {
        picture->pict_type = AV_PICTURE_TYPE_I;
        m_keyFrameTime = picture->pts;
        m_hasChanged = false;
        m_isFirst = false;
    }
    m_durations.push_back(shown.end - picture->pts);
    send(picture.get(), sink);
}

/// Also where the next frame would come too late for one.
bool VideoEncoder::isKeyFrameDue(const FrameTimeline::Shown &shown) const
{
    const std::int64_t seconds = m_hasChanged ? encoder_settings::keyFrameSeconds : m_stillKeyFrameSeconds;
    return m_isFirst || shown.frame->isKey() || shown.end - m_keyFrameTime > seconds * PKTimebase;
}

void VideoEncoder::finish(const PacketSink &sink)
{
    send(nullptr, sink);
}

void VideoEncoder::send(const AVFrame *frame, const PacketSink &sink)
{
    int result = avcodec_send_frame(m_codec.get(), frame);
    while (result >= 0 && (result = avcodec_receive_packet(m_codec.get(), m_packet.get())) >= 0) {
        m_packet->duration = m_durations.front();
        m_durations.pop_front();
        sink(*m_packet);
    }
    if (result != AVERROR(EAGAIN) && result != AVERROR_EOF)
        throw MovieFailure({ ErrorKind::Failed, ErrorSubject::VideoEncoder, {}, avErrorText(result) });
}

} // namespace vornic
