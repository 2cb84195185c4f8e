#pragma once

#include "codec/av_support.h"
#include "decoded_movie.h"

#include <QSize>

#include <cstdint>
#include <vector>

namespace vornic::testing {

/// Encodes pictures one by one, whether they are new or not, with one encoder and the movies' own settings, and decodes
/// them again: what a movie is held against that was written with less work.
///
/// Made by a test, used on its thread.
class ReferenceEncoder
{
public:
    ReferenceEncoder(QSize size, std::int64_t bitRate);

    /// \a picture is shown until \a end, ticks.
    void add(const TimedPicture &picture, std::int64_t end);
    /// All that were added, as a player shows them.
    [[nodiscard]] std::vector<TimedPicture> finish();

private:
    void send(const AVFrame *frame);
    void decode(const AVPacket *packet);

    QSize m_size;
    AvPtr<AVCodecContext> m_encoder;
    AvPtr<AVCodecContext> m_decoder;
    std::vector<TimedPicture> m_decoded;
    std::int64_t m_keyFrameTime = 0; ///< ticks
    bool m_isFirst = true;
};

} // namespace vornic::testing
