#include "codec/audio_encoder.h"

#include "codec/PKAudioFrame2.h"
#include "codec/PKMuxerContext.h"
#include "codec/encoder_settings.h"
#include "codec/movie_failure.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <vector>

namespace vornic {

namespace {

constexpr AVSampleFormat encodedFormat = AV_SAMPLE_FMT_FLTP;

const AVCodec &encoderFor(int codecId)
{
    if (codecId != PKMuxerContext::audioCodecAac) {
        throw MovieFailure(
            { ErrorKind::Unsupported, ErrorSubject::AudioEncoder, QString::number(codecId), {} });
    }
    const AVCodec *codec = avcodec_find_encoder(AV_CODEC_ID_AAC);
    if (!codec)
        throw MovieFailure({ ErrorKind::Unavailable, ErrorSubject::AudioEncoder, QStringLiteral("AAC"), {} });
    return *codec;
}

void checkAudio(int result)
{
    if (result < 0)
        throw MovieFailure({ ErrorKind::Failed, ErrorSubject::AudioEncoder, {}, avErrorText(result) });
}

/// A single channel goes to both sides at full volume. Of several channels without a standard layout, the
/// first two are taken.
void setMatrixWhereNeeded(SwrContext &resampler, int channels)
{
    AVChannelLayout layout {};
    av_channel_layout_default(&layout, channels);
    const bool hasStandardLayout = layout.order != AV_CHANNEL_ORDER_UNSPEC;
    av_channel_layout_uninit(&layout);
    if (channels > 1 && hasStandardLayout)
        return;
    const auto columns = static_cast<std::size_t>(channels);
    std::vector<double> matrix(2 * columns, 0.0);
    matrix[0] = 1;
    matrix[columns + (channels > 1 ? 1 : 0)] = 1;
    checkAudio(swr_set_matrix(&resampler, matrix.data(), channels));
}

} // namespace

AudioEncoder::AudioEncoder(int codecId)
    : m_codec(owned(avcodec_alloc_context3(&encoderFor(codecId))))
    , m_packet(owned(av_packet_alloc()))
    , m_fifo(owned(av_audio_fifo_alloc(encodedFormat, encoder_settings::audioChannels, 1)))
{
    m_codec->sample_fmt = encodedFormat;
    m_codec->sample_rate = encoder_settings::audioSampleRate;
    m_codec->time_base = { 1, encoder_settings::audioSampleRate };
    av_channel_layout_default(&m_codec->ch_layout, encoder_settings::audioChannels);
    m_codec->bit_rate = encoder_settings::audioBitrate;
    m_codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    checkAudio(avcodec_open2(m_codec.get(), nullptr, nullptr));
}

void AudioEncoder::add(const PKAudioFrame2 &block, const PacketSink &sink)
{
    if (block.numberOfSamples() == 0)
        return;
    takeFormatOf(block);
    resample(&block);
    m_seconds += static_cast<double>(block.numberOfSamples()) / block.sampleRate();
    encodeFullFrames(sink);
}

void AudioEncoder::finish(const PacketSink &sink)
{
    if (m_resampler)
        resample(nullptr);
    encodeFullFrames(sink);
    if (const int rest = av_audio_fifo_size(m_fifo.get()); rest > 0)
        encodeSamples(rest, sink);
    send(nullptr, sink);
}

void AudioEncoder::takeFormatOf(const PKAudioFrame2 &block)
{
    if (m_resampler && m_sampleFormat == block.sampleFormat() && m_channels == block.numberOfChannel()
        && m_sampleRate == block.sampleRate())
        return;
    if (m_resampler)
        resample(nullptr);
    m_sampleFormat = block.sampleFormat();
    m_channels = block.numberOfChannel();
    m_sampleRate = block.sampleRate();
    AVChannelLayout layout {};
    av_channel_layout_default(&layout, m_channels);
    SwrContext *resampler = nullptr;
    const int result = swr_alloc_set_opts2(&resampler,
                                           &m_codec->ch_layout,
                                           m_codec->sample_fmt,
                                           m_codec->sample_rate,
                                           &layout,
                                           m_sampleFormat == 1 ? AV_SAMPLE_FMT_S16 : AV_SAMPLE_FMT_U8,
                                           m_sampleRate,
                                           0,
                                           nullptr);
    m_resampler.reset(resampler);
    av_channel_layout_uninit(&layout);
    checkAudio(result);
    setMatrixWhereNeeded(*m_resampler, m_channels);
    checkAudio(swr_init(m_resampler.get()));
}

/// Null drains what the resampler holds.
void AudioEncoder::resample(const PKAudioFrame2 *block)
{
    const int samplesIn = block ? block->numberOfSamples() : 0;
    const int room = swr_get_out_samples(m_resampler.get(), samplesIn);
    checkAudio(room);
    std::vector<float> samples(static_cast<std::size_t>(room) * encoder_settings::audioChannels);
    std::array<float *, encoder_settings::audioChannels> channels { samples.data(), samples.data() + room };
    std::array<std::uint8_t *, encoder_settings::audioChannels> out {};
    for (std::size_t channel = 0; channel < out.size(); ++channel)
        out[channel] = reinterpret_cast<std::uint8_t *>(channels[channel]);
    const auto *in = block ? reinterpret_cast<const std::uint8_t *>(block->samples().constData()) : nullptr;
    const int count = swr_convert(m_resampler.get(), out.data(), room, block ? &in : nullptr, samplesIn);
    checkAudio(count);
    std::array<void *, encoder_settings::audioChannels> planes { channels[0], channels[1] };
    checkAudio(av_audio_fifo_write(m_fifo.get(), planes.data(), count));
}

void AudioEncoder::encodeFullFrames(const PacketSink &sink)
{
    while (av_audio_fifo_size(m_fifo.get()) >= m_codec->frame_size)
        encodeSamples(m_codec->frame_size, sink);
}

void AudioEncoder::encodeSamples(int count, const PacketSink &sink)
{
    const auto frame = owned(av_frame_alloc());
    frame->nb_samples = count;
    frame->format = m_codec->sample_fmt;
    frame->sample_rate = m_codec->sample_rate;
    checkAudio(av_channel_layout_copy(&frame->ch_layout, &m_codec->ch_layout));
    checkAudio(av_frame_get_buffer(frame.get(), 0));
    std::array<void *, encoder_settings::audioChannels> planes { frame->data[0], frame->data[1] };
    checkAudio(av_audio_fifo_read(m_fifo.get(), planes.data(), count));
    frame->pts = m_nextSample;
    m_nextSample += count;
    send(frame.get(), sink);
}

void AudioEncoder::send(const AVFrame *frame, const PacketSink &sink)
{
    int result = avcodec_send_frame(m_codec.get(), frame);
    while (result >= 0 && (result = avcodec_receive_packet(m_codec.get(), m_packet.get())) >= 0)
        sink(*m_packet);
    if (result != AVERROR(EAGAIN) && result != AVERROR_EOF)
        checkAudio(result);
}

} // namespace vornic
