#include "codec/drift_resampler.h"

#include "codec/av_support.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace vornic {

namespace {

/// Twice as long as is usual: what it takes away begins above 21 kHz.
constexpr int filterFrames = 64;

constexpr int million = 1'000'000;

AvPtr<SwrContext> createResampler(AVSampleFormat format, int channels, int framesPerSecond)
{
    AVChannelLayout layout {};
    av_channel_layout_default(&layout, channels);
    SwrContext *created = nullptr;
    const int result = swr_alloc_set_opts2(
        &created, &layout, format, framesPerSecond, &layout, format, framesPerSecond, 0, nullptr);
    AvPtr<SwrContext> resampler(created);
    av_channel_layout_uninit(&layout);
    if (result < 0 || !resampler)
        throw std::runtime_error("no resampler for this sound");
    // It is at work from the first frame on: were it switched on later, there would be a step. With filters for a
    // thousand positions between two frames, and lines between these, any ratio is the same work.
    av_opt_set_int(resampler.get(), "flags", SWR_FLAG_RESAMPLE, 0);
    av_opt_set_int(resampler.get(), "filter_size", filterFrames, 0);
    av_opt_set_int(resampler.get(), "linear_interp", 1, 0);
    av_opt_set_int(resampler.get(), "exact_rational", 0, 0);
    av_opt_set_sample_fmt(resampler.get(), "internal_sample_fmt", AV_SAMPLE_FMT_FLTP, 0);
    if (swr_init(resampler.get()) < 0)
        throw std::runtime_error("no resampler for this sound");
    return resampler;
}

} // namespace

struct DriftResampler::Impl {
    AvPtr<SwrContext> resampler;
    int bytesPerFrame = 0;
    int framesPerSecond = 0;
};

DriftResampler::DriftResampler(int bitsPerChannel, int channels, int framesPerSecond)
    : m_impl(std::make_unique<Impl>())
{
    const AVSampleFormat format = bitsPerChannel == 16 ? AV_SAMPLE_FMT_S16 : AV_SAMPLE_FMT_U8;
    m_impl->resampler = createResampler(format, channels, framesPerSecond);
    m_impl->bytesPerFrame = bitsPerChannel / 8 * channels;
    m_impl->framesPerSecond = framesPerSecond;
}

DriftResampler::~DriftResampler() = default;

void DriftResampler::setCompensation(int framesPerMillion)
{
    // It holds for a million frames, and is asked for anew long before that.
    swr_set_compensation(
        m_impl->resampler.get(), std::clamp(framesPerMillion, -maxCompensation, maxCompensation), million);
}

QByteArray DriftResampler::resample(QByteArrayView frames)
{
    const auto count = static_cast<int>(frames.size() / m_impl->bytesPerFrame);
    const int room = swr_get_out_samples(m_impl->resampler.get(), count);
    if (room <= 0)
        return {};
    QByteArray samples(qsizetype { room } * m_impl->bytesPerFrame, Qt::Uninitialized);
    auto *out = reinterpret_cast<std::uint8_t *>(samples.data());
    const auto *in = reinterpret_cast<const std::uint8_t *>(frames.data());
    const int made = swr_convert(m_impl->resampler.get(), &out, room, &in, count);
    samples.resize(qsizetype { std::max(made, 0) } * m_impl->bytesPerFrame);
    return samples;
}

double DriftResampler::heldFrames() const
{
    // In parts of a frame: whole ones would look like a clock that goes in jerks.
    constexpr int parts = 1000;
    const std::int64_t held
        = swr_get_delay(m_impl->resampler.get(), std::int64_t { m_impl->framesPerSecond } * parts);
    return static_cast<double>(held) / parts;
}

} // namespace vornic
