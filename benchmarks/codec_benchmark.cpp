#include "base/PKTimebase.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKPixelFormat.h"
#include "codec/PKScaleContext.h"
#include "codec/PKVideoFrame2.h"
#include "codec/av_support.h"
#include "codec/bgrx_to_yuv.h"
#include "codec/planar_picture.h"
#include "codec/video_encoder.h"

#include <QImage>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

namespace vornic {
namespace {

constexpr int width = 1920;
constexpr int height = 1080;

/// Something like a page of text: short dark runs on white in rows with gaps.
QImage page(unsigned seed, int pageWidth = width, int pageHeight = height)
{
    QImage picture(pageWidth, pageHeight, QImage::Format_RGB32);
    picture.fill(Qt::white);
    std::mt19937 random(seed);
    for (int y = 0; y < pageHeight; ++y) {
        if (y % 16 > 9)
            continue;
        auto *row = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < pageWidth; ++x)
            row[x] = random() % 4 == 0 ? qRgb(30, 30, 60) : row[x];
    }
    return picture;
}

void convert(benchmark::State &state, ConversionCode code)
{
    const QImage picture = page(1);
    const BgrxView view { picture.constBits(), picture.bytesPerLine(), width, height };
    PlanarPicture planes(width, height);
    for (auto _ : state) {
        convertBgrxToYuv(view, planes, 0, height, code);
        benchmark::DoNotOptimize(planes.data(0));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * picture.sizeInBytes());
}
BENCHMARK_CAPTURE(convert, fastest, ConversionCode::Fastest)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(convert, portable, ConversionCode::Portable)->Unit(benchmark::kMillisecond);

void convertByScaler(benchmark::State &state)
{
    const PKVideoFrame2 rgb(page(1));
    const auto in = avFrameOver(rgb, width, height);
    const PKVideoFrame2 yuv(std::make_shared<PlanarPicture>(width, height), width, height);
    const auto out = avFrameOver(yuv, width, height);
    const AvPtr<SwsContext> scaler(sws_getContext(width,
                                                  height,
                                                  AV_PIX_FMT_BGR0,
                                                  width,
                                                  height,
                                                  AV_PIX_FMT_YUV420P,
                                                  SWS_BICUBIC | SWS_ACCURATE_RND,
                                                  nullptr,
                                                  nullptr,
                                                  nullptr));
    for (auto _ : state)
        sws_scale(scaler.get(), in->data, in->linesize, 0, height, out->data, out->linesize);
}
BENCHMARK(convertByScaler)->Unit(benchmark::kMillisecond);

void scaleFrame(benchmark::State &state, int fromWidth, int fromHeight)
{
    const PKVideoFrame2 rgb(page(1, fromWidth, fromHeight));
    PKScaleContext scaler(fromWidth, width, fromHeight, height, PKPixelFormatRGB32, PKPixelFormatYUV420P);
    for (auto _ : state)
        benchmark::DoNotOptimize(scaler.scaleFrame(rgb));
}
BENCHMARK_CAPTURE(scaleFrame, same, width, height)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scaleFrame, from1440p, 2560, 1440)->Unit(benchmark::kMillisecond)->UseRealTime();

void convertSixteenRows(benchmark::State &state)
{
    const PKVideoFrame2 rgb(page(1));
    PKScaleContext converter(width, width, height, height, PKPixelFormatRGB32, PKPixelFormatYUV420P);
    const auto yuv = converter.scaleFrame(rgb);
    for (auto _ : state) {
        const auto next = yuv->deepCopy();
        converter.convertRows(rgb, *next, 512, 16);
        benchmark::DoNotOptimize(next);
    }
}
BENCHMARK(convertSixteenRows)->Unit(benchmark::kMillisecond);

/// Two seconds of a page that scrolls by three lines a frame, or stands still.
void encode(benchmark::State &state, const char *preset, bool scrolls)
{
    constexpr int count = 60;
    PKScaleContext converter(width, width, height, height, PKPixelFormatRGB32, PKPixelFormatYUV420P);
    const QImage tall = page(1, width, 3 * height);
    std::vector<std::shared_ptr<PKVideoFrame2>> frames;
    for (int i = 0; i < count; ++i) {
        frames.push_back(scrolls || i == 0
                             ? converter.scaleFrame(PKVideoFrame2(tall.copy(0, i * 3, width, height)))
                             : frames.front()->sharingPixels());
        frames.back()->setTimeStamp(i * PKTimebase / 30);
    }
    PKMuxerContext context(QStringLiteral("unused"));
    context.setWidth(width);
    context.setHeight(height);
    context.setVideoCodecID(PKMuxerContext::videoCodecH264);
    context.setFrameRate(30);
    context.setVideoBitrate(5184000);
    std::int64_t bytes = 0;
    const PacketSink sink = [&bytes](AVPacket &packet) { bytes += packet.size; };
    routeAvLog();
    for (auto _ : state) {
        VideoEncoder encoder(context, preset);
        for (const auto &frame : frames)
            encoder.encode({ .frame = frame, .end = frame->timeStamp() + PKTimebase / 30 }, sink);
        encoder.finish(sink);
    }
    const auto encoded = static_cast<double>(state.iterations()) * count;
    state.counters["secondsPerFrame"]
        = benchmark::Counter(encoded, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["bytesPerFrame"] = static_cast<double>(bytes) / encoded;
}
#define ENCODE(preset)                                                                                       \
    BENCHMARK_CAPTURE(encode, preset##_still, #preset, false)->Unit(benchmark::kMillisecond)->UseRealTime(); \
    BENCHMARK_CAPTURE(encode, preset##_scrolling, #preset, true)->Unit(benchmark::kMillisecond)->UseRealTime()
ENCODE(ultrafast);
ENCODE(superfast);
ENCODE(veryfast);
ENCODE(faster);

} // namespace
} // namespace vornic

BENCHMARK_MAIN();
