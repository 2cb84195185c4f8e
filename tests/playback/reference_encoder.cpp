#include "reference_encoder.h"

#include "base/PKTimebase.h"
#include "codec/encoder_settings.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vornic::testing {

namespace {

template<typename Visit>
void visitRows(QSize size, const Visit &visit)
{
    for (int plane = 0; plane < 3; ++plane) {
        const int shrunk = plane == 0 ? 1 : 2;
        for (int y = 0; y < size.height() / shrunk; ++y)
            visit(plane, y, size.width() / shrunk);
    }
}

} // namespace

ReferenceEncoder::ReferenceEncoder(QSize size, std::int64_t bitRate)
    : m_size(size)
    , m_encoder(owned(avcodec_alloc_context3(avcodec_find_encoder_by_name("libx264"))))
    , m_decoder(owned(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_H264))))
{
    m_encoder->width = size.width();
    m_encoder->height = size.height();
    m_encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    m_encoder->time_base = { 1, static_cast<int>(PKTimebase) };
    m_encoder->framerate = { 30, 1 };
    m_encoder->bit_rate = bitRate;
    m_encoder->rc_max_rate = encoder_settings::peakRateFactor * bitRate;
    m_encoder->rc_buffer_size = static_cast<int>(encoder_settings::bufferFactor * bitRate);
    m_encoder->gop_size = static_cast<int>(encoder_settings::keyFrameSeconds * 120);
    m_encoder->level = encoder_settings::videoLevel;
    m_encoder->max_b_frames = 0;
    m_encoder->thread_count = 1; // with more, chance has its part in the bit rate
    AVDictionary *options = nullptr;
    av_dict_set(&options, "preset", encoder_settings::videoPreset, 0);
    av_dict_set(&options, "profile", "high", 0);
    av_dict_set(&options, "forced-idr", "1", 0);
    av_dict_set(&options, "x264-params", encoder_settings::x264Parameters, 0);
    EXPECT_GE(avcodec_open2(m_encoder.get(), nullptr, &options), 0);
    av_dict_free(&options);
    m_decoder->thread_count = 1;
    EXPECT_GE(avcodec_open2(m_decoder.get(), nullptr, nullptr), 0);
}

void ReferenceEncoder::add(const TimedPicture &picture, std::int64_t end)
{
    const auto frame = owned(av_frame_alloc());
    frame->width = m_size.width();
    frame->height = m_size.height();
    frame->format = AV_PIX_FMT_YUV420P;
    ASSERT_GE(av_frame_get_buffer(frame.get(), 0), 0);
    const char *from = picture.planes.constData();
    visitRows(m_size, [&](int plane, int y, int width) {
        std::memcpy(frame->data[plane] + std::ptrdiff_t { y } * frame->linesize[plane],
                    from,
                    static_cast<std::size_t>(width));
        from += width;
    });
    frame->pts = picture.ticks;
    if (m_isFirst || end - m_keyFrameTime > encoder_settings::keyFrameSeconds * PKTimebase) {
        frame->pict_type = AV_PICTURE_TYPE_I;
        m_keyFrameTime = picture.ticks;
        m_isFirst = false;
    }
    send(frame.get());
}

std::vector<TimedPicture> ReferenceEncoder::finish()
{
    send(nullptr);
    decode(nullptr);
    return std::move(m_decoded);
}

void ReferenceEncoder::send(const AVFrame *frame)
{
    ASSERT_GE(avcodec_send_frame(m_encoder.get(), frame), 0);
    const auto packet = owned(av_packet_alloc());
    while (avcodec_receive_packet(m_encoder.get(), packet.get()) >= 0)
        decode(packet.get());
}

void ReferenceEncoder::decode(const AVPacket *packet)
{
    ASSERT_GE(avcodec_send_packet(m_decoder.get(), packet), 0);
    const auto frame = owned(av_frame_alloc());
    while (avcodec_receive_frame(m_decoder.get(), frame.get()) >= 0) {
        TimedPicture picture { frame->pts, {}, frame->key_frame != 0 };
        visitRows(m_size, [&](int plane, int y, int width) {
            picture.planes.append(reinterpret_cast<const char *>(
                                      frame->data[plane] + std::ptrdiff_t { y } * frame->linesize[plane]),
                                  width);
        });
        m_decoded.push_back(std::move(picture));
    }
}

} // namespace vornic::testing
