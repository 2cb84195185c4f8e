#pragma once

#include "codec/PKPixelFormat.h"

#include <QString>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <array>
#include <memory>

namespace vornic {

class PKVideoFrame2;

/// Frees whatever the media libraries allocate.
struct AvDeleter {
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(AVCodecContext *codec) const { avcodec_free_context(&codec); }
    void operator()(AVFormatContext *format) const { avformat_free_context(format); }
    void operator()(AVAudioFifo *fifo) const { av_audio_fifo_free(fifo); }
    void operator()(SwrContext *resampler) const { swr_free(&resampler); }
    void operator()(SwsContext *scaler) const { sws_freeContext(scaler); }
};

template<typename T>
using AvPtr = std::unique_ptr<T, AvDeleter>;

/// What the media libraries call one of their error numbers; empty where they do not know either.
[[nodiscard]] QString avErrorText(int error);

/// Sends the errors that the media libraries report to our log, and drops their other messages.
void routeAvLog();

/// Throws std::bad_alloc for null.
template<typename T>
AvPtr<T> owned(T *allocated)
{
    if (!allocated)
        throw std::bad_alloc();
    return AvPtr<T>(allocated);
}

/// The pixels of \a frame, not copied: the result keeps them alive where it can (a YUV frame's planes); an
/// RGB frame must outlive it. \a width x \a height is the part that is seen, from the top left.
[[nodiscard]] AvPtr<AVFrame> avFrameOver(const PKVideoFrame2 &frame, int width, int height);

} // namespace vornic
