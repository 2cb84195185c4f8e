#pragma once

#include "codec/av_support.h"
#include "codec/encoder_settings.h"
#include "codec/frame_timeline.h"

#include <cstdint>
#include <deque>
#include <functional>

namespace vornic {

class PKMuxerContext;

using PacketSink = std::function<void(AVPacket &packet)>;

/// H.264 High, yuv420p, BT.709 in limited range, times in PKTimebase ticks, without reordered frames.
///
/// Made by a MovieWriter on its thread (the library encodes on more). Throws MovieFailure.
class VideoEncoder
{
public:
    /// \a context gives codec, size, rate and bit rate.
    explicit VideoEncoder(const PKMuxerContext &context, const char *preset = encoder_settings::videoPreset);

    [[nodiscard]] const AVCodecContext &codec() const { return *m_codec; }
    [[nodiscard]] AVRational timeBase() const { return m_codec->time_base; }

    /// Encodes a YUV frame of the context's size. Gives \a sink the packets that are ready, which may belong to earlier
    /// frames.
    void encode(const FrameTimeline::Shown &shown, const PacketSink &sink);
    /// Gives the packets that are left.
    void finish(const PacketSink &sink);

private:
    [[nodiscard]] bool isKeyFrameDue(const FrameTimeline::Shown &shown) const;
    void send(const AVFrame *frame, const PacketSink &sink);

    AvPtr<AVCodecContext> m_codec;
    AvPtr<AVPacket> m_packet;
    std::deque<std::int64_t> m_durations; ///< of the frames inside the encoder, first in first out
    std::int64_t m_stillKeyFrameSeconds;  ///< from one key frame to the next while nothing changes
    std::int64_t m_keyFrameTime = 0;      ///< of the last frame that was made a key frame, ticks
    bool m_hasChanged = false;            ///< since that
    bool m_isFirst = true;
};

} // namespace vornic
