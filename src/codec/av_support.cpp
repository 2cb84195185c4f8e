#include "codec/av_support.h"

#include "base/log.h"
#include "codec/PKVideoFrame2.h"
#include "codec/planar_picture.h"

extern "C" {
#include <libavutil/log.h>
}

#include <array>
#include <mutex>

namespace vornic {

namespace {

void logAvMessage(void *context, int level, const char *format, va_list arguments)
{
    if (level > AV_LOG_ERROR)
        return;
    std::array<char, 512> line {};
    int printPrefix = 1;
    av_log_format_line2(
        context, level, format, arguments, line.data(), static_cast<int>(line.size()), &printPrefix);
    logMessage(QString::fromUtf8(line.data()).trimmed());
}

using PixelOwner = std::shared_ptr<const PlanarPicture>;

void releasePixels(void *opaque, std::uint8_t *)
{
    const std::unique_ptr<PixelOwner> owner(static_cast<PixelOwner *>(opaque));
}

} // namespace

QString avErrorText(int error)
{
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text {};
    const bool isKnown = error != AVERROR_UNKNOWN && av_strerror(error, text.data(), text.size()) == 0;
    return isKnown ? QString::fromUtf8(text.data()) : QString();
}

void routeAvLog()
{
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_callback(logAvMessage); });
}

AvPtr<AVFrame> avFrameOver(const PKVideoFrame2 &frame, int width, int height)
{
    auto result = owned(av_frame_alloc());
    const bool yuv = frame.pixFormat() == PKPixelFormatYUV420P;
    result->format = yuv ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_BGR0;
    result->width = width;
    result->height = height;
    for (int plane = 0; plane < (yuv ? 3 : 1); ++plane) {
        // The libraries' types have no const; the buffer below is marked read-only, so nobody writes to it.
        result->data[plane] = const_cast<uchar *>(frame.planeData(plane));
        result->linesize[plane] = static_cast<int>(frame.planeStride(plane));
    }
    auto owner = std::make_unique<PixelOwner>(frame.planes());
    const std::size_t bytes
        = yuv ? (*owner)->byteCount() : static_cast<std::size_t>(frame.planeStride(0) * frame.codeHeight());
    result->buf[0]
        = av_buffer_create(result->data[0], bytes, releasePixels, owner.get(), AV_BUFFER_FLAG_READONLY);
    if (!result->buf[0])
        throw std::bad_alloc();
    static_cast<void>(owner.release()); // the buffer's from here on
    return result;
}

} // namespace vornic
