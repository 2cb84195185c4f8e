#include "codec/drift_resampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <stdexcept>
#include <vector>

namespace vornic {
namespace {

constexpr int framesPerSecond = 48'000;

using Samples = std::vector<std::int16_t>;

/// One channel of a sine.
Samples tone(double hertz, double amplitude, std::size_t frames)
{
    Samples samples(frames);
    for (std::size_t i = 0; i < frames; ++i)
        samples[i] = static_cast<std::int16_t>(
            std::lround(32767 * amplitude
                        * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / framesPerSecond)));
    return samples;
}

/// What comes out, where \a samples go in in chunks of 30 ms, with a compensation for each chunk.
template<typename Compensation>
Samples resampled(DriftResampler &resampler, const Samples &samples, Compensation compensation)
{
    constexpr std::size_t chunk = framesPerSecond * 3 / 100;
    Samples out;
    for (std::size_t first = 0; first < samples.size(); first += chunk) {
        resampler.setCompensation(compensation(first / chunk));
        const std::size_t count = std::min(chunk, samples.size() - first);
        const QByteArray ready = resampler.resample(
            { reinterpret_cast<const char *>(samples.data() + first), static_cast<qsizetype>(count * 2) });
        const std::size_t before = out.size();
        out.resize(before + static_cast<std::size_t>(ready.size() / 2));
        std::memcpy(out.data() + before, ready.constData(), static_cast<std::size_t>(ready.size()));
    }
    return out;
}

Samples resampled(DriftResampler &resampler, const Samples &samples, int compensation)
{
    return resampled(resampler, samples, [compensation](std::size_t) { return compensation; });
}

double levelOf(const Samples &samples)
{
    double sum = 0;
    for (std::size_t i = samples.size() / 4; i < samples.size() * 3 / 4; ++i)
        sum += static_cast<double>(samples[i]) * samples[i];
    return 10 * std::log10(sum / static_cast<double>(samples.size() / 2));
}

TEST(DriftResampler, WithoutCompensationEachFrameKeepsItsPlace)
{
    DriftResampler resampler(16, 1, framesPerSecond);
    Samples click(framesPerSecond, 0);
    click[20'000] = 30'000;
    const Samples out = resampled(resampler, click, 0);
    EXPECT_EQ(std::ranges::max_element(out) - out.begin(), 20'000);
    EXPECT_NEAR(static_cast<double>(out.size()) + resampler.heldFrames(), framesPerSecond, 1);
    EXPECT_LT(resampler.heldFrames(), 0.001 * framesPerSecond);
}

TEST(DriftResampler, SoundBecomesLongerAndShorterByWhatIsAskedFor)
{
    for (const int compensation : { -1000, -300, -7, 1, 300, 1000, 5000 }) {
        DriftResampler resampler(16, 1, framesPerSecond);
        const Samples out = resampled(resampler, Samples(20 * framesPerSecond, 0), compensation);
        const double longer = static_cast<double>(out.size()) + resampler.heldFrames() - 20 * framesPerSecond;
        // A step of the library is a millionth.
        EXPECT_NEAR(
            longer / (20e-6 * framesPerSecond), std::min(compensation, DriftResampler::maxCompensation), 2);
    }
}

TEST(DriftResampler, ATonesLevelIsKept)
{
    for (const double hertz : { 50.0, 1000.0, 10'000.0, 19'000.0 }) {
        DriftResampler resampler(16, 1, framesPerSecond);
        const Samples in = tone(hertz, 0.5, framesPerSecond);
        EXPECT_NEAR(levelOf(resampled(resampler, in, 300)), levelOf(in), 0.1) << hertz;
    }
}

TEST(DriftResampler, AChangeMakesNoStep)
{
    DriftResampler resampler(16, 1, framesPerSecond);
    const Samples out = resampled(resampler, tone(1000, 0.5, 4 * framesPerSecond), [](std::size_t chunk) {
        return chunk % 2 == 0 ? 1000 : -1000;
    });
    // Of a sine, each sample follows from the two before it.
    const double factor = 2 * std::cos(2 * std::numbers::pi * 1000 / framesPerSecond);
    for (std::size_t i = framesPerSecond / 10; i < out.size(); ++i)
        ASSERT_LT(std::abs(out[i] - factor * out[i - 1] + out[i - 2]), 32.768) << "-60 dBFS, at " << i;
}

TEST(DriftResampler, EightBitsAreResampledToo)
{
    DriftResampler resampler(8, 2, 22'050);
    resampler.setCompensation(300);
    const QByteArray out = resampler.resample(QByteArray(22'050 * 2, '\x80'));
    EXPECT_GT(out.size(), 22'000 * 2);
    EXPECT_EQ(out.count('\x80'), out.size());
}

TEST(DriftResampler, SoundWithoutChannelsIsRefused)
{
    EXPECT_THROW(DriftResampler(16, 0, framesPerSecond), std::runtime_error);
}

} // namespace
} // namespace vornic
