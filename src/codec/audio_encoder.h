#pragma once

#include "codec/video_encoder.h"

namespace vornic {

class PKAudioFrame2;

/// AAC-LC, 48 kHz stereo, from blocks of any rate and number of channels laid end to end from time 0.
///
/// Made by a MovieWriter on its thread. Throws MovieFailure.
class AudioEncoder
{
public:
    explicit AudioEncoder(int codecId);

    [[nodiscard]] const AVCodecContext &codec() const { return *m_codec; }
    [[nodiscard]] AVRational timeBase() const { return m_codec->time_base; }
    /// Where the next block will begin: the length of all blocks so far, in seconds.
    [[nodiscard]] double seconds() const { return m_seconds; }
    /// Given to the encoder so far, in each channel.
    [[nodiscard]] std::int64_t samples() const { return m_nextSample; }

    void add(const PKAudioFrame2 &block, const PacketSink &sink);
    /// Encodes what is left; the last packet is as short as the sound is.
    void finish(const PacketSink &sink);

private:
    void takeFormatOf(const PKAudioFrame2 &block);
    void resample(const PKAudioFrame2 *block);
    void encodeFullFrames(const PacketSink &sink);
    void encodeSamples(int count, const PacketSink &sink);
    void send(const AVFrame *frame, const PacketSink &sink);

    AvPtr<AVCodecContext> m_codec;
    AvPtr<AVPacket> m_packet;
    AvPtr<AVAudioFifo> m_fifo;       ///< resampled, not yet encoded
    AvPtr<SwrContext> m_resampler;   ///< null before the first block
    std::int32_t m_sampleFormat = 0; ///< what the resampler takes
    std::int32_t m_channels = 0;
    std::int32_t m_sampleRate = 0;
    std::int64_t m_nextSample = 0; ///< of the next frame for the encoder
    double m_seconds = 0;
};

} // namespace vornic
