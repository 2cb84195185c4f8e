#include "audio/AudioStreamBasicDescription.h"
#include "audio/sound_peak.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace vornic {
namespace {

TEST(SoundPeakTest, TheLoudestSampleCountsOnAnyChannelEitherWay)
{
    const std::array<std::int16_t, 6> samples { 0, 100, -16384, 5, 0, 8191 };
    EXPECT_NEAR(peakOf(samples.data(), sizeof samples, defaultAudioStreamBasicDescription()), 0.5, 0.001);
    const std::array<std::int16_t, 2> lowest { -32768, 0 };
    EXPECT_EQ(peakOf(lowest.data(), sizeof lowest, defaultAudioStreamBasicDescription()), 1);
}

TEST(SoundPeakTest, DigitalSilenceIsZeroAndTheSmallestNoiseIsNot)
{
    const std::array<std::int16_t, 4> silence {};
    EXPECT_EQ(peakOf(silence.data(), sizeof silence, defaultAudioStreamBasicDescription()), 0);
    EXPECT_EQ(peakOf(silence.data(), 0, defaultAudioStreamBasicDescription()), 0);
    const std::array<std::int16_t, 4> noise { 0, 0, -1, 0 };
    EXPECT_GT(peakOf(noise.data(), sizeof noise, defaultAudioStreamBasicDescription()), 0);
}

TEST(SoundPeakTest, SilenceOfUnsignedSamplesIsTheirMiddle)
{
    AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
    format.mBitsPerChannel = 8;
    const std::array<unsigned char, 3> silence { 128, 128, 128 };
    EXPECT_EQ(peakOf(silence.data(), sizeof silence, format), 0);
    const std::array<unsigned char, 3> loud { 128, 0, 129 };
    EXPECT_EQ(peakOf(loud.data(), sizeof loud, format), 1);
}

} // namespace
} // namespace vornic
