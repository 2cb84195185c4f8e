#include "audio/PKAudioRecorderDelegate.h"
#include "audio/mixed_recorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <numbers>
#include <vector>

namespace vornic {
namespace {

constexpr double rate = 48'000;
constexpr double twoPi = 2 * std::numbers::pi;

/// Delivers what the test gives it.
class SteppedRecorder final : public AudioRecorder
{
public:
    bool starts = true;
    std::atomic<int> stops = 0;
    std::uint32_t deviceID = 0;
    PKAudioRecorderDelegate *delegate = nullptr;

    void setDelegate(PKAudioRecorderDelegate *newDelegate) override { delegate = newDelegate; }
    void setDeviceID(std::uint32_t newID) override { deviceID = newID; }
    bool startRecordWithFormat(const AudioStreamBasicDescription &) override { return starts; }
    AudioStreamBasicDescription currentDataFormat() const override
    {
        return defaultAudioStreamBasicDescription();
    }
    void stopRecord() override { ++stops; }
};

/// One device that hears a sine, which keeps time with the absolute clock.
struct Device {
    SteppedRecorder *recorder = nullptr;
    double hertz = 0;
    double amplitude = 0; ///< of full scale
    double chunk = 0.03;  ///< seconds
    double delivered = 0; ///< up to this time of the clock
    bool hasBegun = false;
};

class MixedRecorderTest : public ::testing::Test, protected PKAudioRecorderDelegate
{
protected:
    MixedRecorderTest()
    {
        std::vector<std::unique_ptr<AudioRecorder>> recorders;
        for (Device *device : { &microphone, &system }) {
            auto recorder = std::make_unique<SteppedRecorder>();
            device->recorder = recorder.get();
            recorders.push_back(std::move(recorder));
        }
        mixer = std::make_unique<MixedRecorder>(std::move(recorders), [this] { return now.load(); });
        mixer->setDelegate(this);
    }
    void start(double microphoneLevel = 1,
               double systemLevel = 1,
               MixedRecorder::Layout layout = MixedRecorder::Layout::Mixed)
    {
        mixer->setParts(
            { { true, microphoneLevel, {}, [this](bool isLost) { microphoneTold += isLost ? 1 : -1; } },
              { true, systemLevel, {}, [this](bool isLost) { systemTold += isLost ? 1 : -1; } } },
            layout);
        ASSERT_TRUE(mixer->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    }
    /// Time goes on to \a end, and these devices deliver what they hear.
    void hear(double end, const std::vector<Device *> &devices)
    {
        for (; now < end; now = now + 0.003) {
            for (Device *device : devices)
                deliver(*device);
            settle();
        }
    }
    /// Waits until all that was delivered is mixed.
    void settle() const { static_cast<void>(mixer->currentDataFormat()); }

    /// The sine of that pitch in a channel of the mix in the tenth of a second from \a second on: its amplitude, and its
    /// phase as against one that keeps time with the absolute clock.
    std::complex<double> toneAt(double hertz, double second, std::size_t channel = 0) const
    {
        std::complex<double> sum = 0;
        const auto first = static_cast<std::size_t>(second * rate);
        const auto frames = static_cast<std::size_t>(rate / 10);
        for (std::size_t i = first; i < first + frames; ++i) {
            const double time = origin + static_cast<double>(i) / rate;
            sum += double(mixed.at(i * channels + channel))
                * std::polar(1.0, -twoPi * std::fmod(time * hertz, 1.0));
        }
        return sum * std::complex<double>(0, 2.0 / static_cast<double>(frames) / 32767);
    }
    double levelAt(double hertz, double second, std::size_t channel = 0) const
    {
        return 20 * std::log10(std::abs(toneAt(hertz, second, channel)));
    }
    static double decibels(double amplitude) { return 20 * std::log10(amplitude); }
    double length() const { return static_cast<double>(mixed.size() / channels) / rate; }

    void dataRecord(AudioRecorder &,
                    const void *bytes,
                    std::uint32_t byteCount,
                    const AudioStreamBasicDescription &format) override
    {
        channels = format.mChannelsPerFrame;
        const double seconds = byteCount / (format.mBytesPerFrame * format.mSampleRate);
        if (mixed.empty())
            origin = now - seconds;
        longest = std::max(longest, seconds);
        shortest = std::min(shortest, seconds);
        const std::size_t before = mixed.size();
        mixed.resize(before + byteCount / 2);
        std::memcpy(mixed.data() + before, bytes, byteCount);
    }
    void soundWasLost(AudioRecorder &) override { ++losses; }
    void soundCameBack(AudioRecorder &) override { ++returns; }

    std::atomic<double> now = 1000;
    Device microphone { .hertz = 440, .amplitude = 0.25, .chunk = 0.03 };
    Device system { .hertz = 1000, .amplitude = 0.125, .chunk = 0.021 };
    // On the mixer's queue; read once it has settled.
    std::vector<std::int16_t> mixed;
    std::size_t channels = 2;
    double origin = 0;
    double longest = 0;
    double shortest = 1;
    int losses = 0;
    int returns = 0;
    int microphoneTold = 0; ///< 1 once it is lost
    int systemTold = 0;
    std::unique_ptr<MixedRecorder> mixer; ///< last: it calls what is above

private:
    /// A first chunk of silence that ends now, and later what was heard meanwhile.
    void deliver(Device &device)
    {
        if (!device.hasBegun) {
            device.hasBegun = true;
            device.delivered = now;
            give(device, std::vector<std::int16_t>(static_cast<std::size_t>(rate / 50) * 2, 0));
        }
        while (now - device.delivered >= device.chunk) {
            const auto frames = static_cast<std::size_t>(std::lround(device.chunk * rate));
            std::vector<std::int16_t> samples(frames * 2);
            for (std::size_t i = 0; i < frames; ++i) {
                const double time = device.delivered + static_cast<double>(i) / rate;
                samples[2 * i] = samples[2 * i + 1] = static_cast<std::int16_t>(std::lround(
                    32767 * device.amplitude * std::sin(twoPi * std::fmod(time * device.hertz, 1.0))));
            }
            device.delivered += static_cast<double>(frames) / rate;
            give(device, samples);
        }
    }
    static void give(Device &device, const std::vector<std::int16_t> &samples)
    {
        device.recorder->delegate->dataRecord(*device.recorder,
                                              samples.data(),
                                              static_cast<std::uint32_t>(samples.size() * 2),
                                              defaultAudioStreamBasicDescription());
    }
};

TEST_F(MixedRecorderTest, BothAreHeardAtTheirLevelsAndTimes)
{
    start();
    hear(1000.137, { &microphone });
    hear(1030, { &microphone, &system });
    for (double second = 0.5; second < 29; second += 0.1) {
        EXPECT_NEAR(levelAt(440, second), decibels(0.25), 0.1) << second;
        EXPECT_NEAR(levelAt(1000, second), decibels(0.125), 0.1) << second;
        EXPECT_NEAR(std::arg(toneAt(440, second)), 0, 0.05) << second;
        EXPECT_NEAR(std::arg(toneAt(1000, second)), 0, 0.1) << "a frame of difference is 0.13; at " << second;
    }
    EXPECT_NEAR(length(), now - origin, 0.1);
    EXPECT_LE(longest, 0.04);
    EXPECT_GE(shortest, 0.02);
    EXPECT_EQ(losses, 0);
}

TEST_F(MixedRecorderTest, TheFirstChunkIsSilenceThatEndsAtItsDelivery)
{
    start();
    hear(1000.5, { &microphone, &system });
    EXPECT_NEAR(origin, 1000 - 0.02, 0.001);
    EXPECT_EQ(std::count(mixed.begin(), mixed.begin() + 1920, 0), 1920);
}

TEST_F(MixedRecorderTest, EachHasItsLevel)
{
    start(1.5, 0.5);
    hear(1002, { &microphone, &system });
    EXPECT_NEAR(levelAt(440, 1), decibels(0.375), 0.1);
    EXPECT_NEAR(levelAt(1000, 1), decibels(0.0625), 0.1);
    mixer->stopRecord();
    mixed.clear();
    microphone.hasBegun = system.hasBegun = false;
    start(1, 0);
    hear(1004, { &microphone, &system });
    EXPECT_LT(levelAt(1000, 1), -80);
}

TEST_F(MixedRecorderTest, WhatIsTooLoudIsTurnedDownAndNotWrapped)
{
    microphone.amplitude = 0.9;
    system.amplitude = 0.8;
    start();
    hear(1003, { &microphone, &system });
    // Where a sample wraps, it is on the other side of zero.
    for (std::size_t i = 2 * static_cast<std::size_t>(rate / 10); i < mixed.size(); i += 2)
        ASSERT_LT(std::abs(mixed[i] - mixed[i - 2]), 9000) << i;
    EXPECT_GT(*std::ranges::max_element(mixed), 32'000);
    EXPECT_NEAR(levelAt(440, 2) - levelAt(1000, 2), decibels(0.9 / 0.8), 0.2) << "both alike";
}

TEST_F(MixedRecorderTest, WhatIsNotTooLoudIsLeftAsItIs)
{
    microphone.amplitude = 1;
    start();
    hear(1002, { &microphone });
    for (std::size_t i = static_cast<std::size_t>(rate); i < static_cast<std::size_t>(rate) + 4800; ++i) {
        const double time = origin + static_cast<double>(i) / rate;
        EXPECT_NEAR(mixed[2 * i], 32767 * std::sin(twoPi * std::fmod(time * 440, 1.0)), 1000);
    }
    EXPECT_EQ(*std::ranges::max_element(mixed), 32767);
}

TEST_F(MixedRecorderTest, OneThatNeverBeginsIsNotWaitedFor)
{
    start();
    hear(1002, { &microphone });
    EXPECT_NEAR(length(), now - origin, 0.06);
    EXPECT_NEAR(levelAt(440, 1.5), decibels(0.25), 0.1);
}

TEST_F(MixedRecorderTest, OneThatDoesNotStartLeavesTheOther)
{
    system.recorder->starts = false;
    start();
    hear(1002, { &microphone });
    EXPECT_NEAR(length(), now - origin, 0.06);
    mixer->stopRecord();
    microphone.recorder->starts = false;
    EXPECT_FALSE(mixer->startRecordWithFormat(defaultAudioStreamBasicDescription()));
}

TEST_F(MixedRecorderTest, OneThatSleepsIsWaitedForForASecondAndThenLeftOut)
{
    start();
    hear(1002, { &microphone, &system });
    const double before = length();
    hear(1002.9, { &microphone });
    EXPECT_NEAR(length(), before, 0.06) << "it may still come";
    hear(1005, { &microphone });
    EXPECT_NEAR(length(), now - origin - 1, 0.06);
    EXPECT_LT(levelAt(1000, 3), -80);
    hear(1008, { &microphone, &system });
    EXPECT_NEAR(length(), now - origin, 0.1);
    for (double second = 0.5; second < 7.8; second += 0.1)
        EXPECT_NEAR(levelAt(440, second), decibels(0.25), 0.1) << second;
    for (double second = 5.5; second < 7.8; second += 0.1) {
        EXPECT_NEAR(levelAt(1000, second), decibels(0.125), 0.1) << second;
        EXPECT_NEAR(std::arg(toneAt(1000, second)), 0, 0.1) << "in its time again, " << second;
    }
}

TEST_F(MixedRecorderTest, OneThatIsLostIsNotWaitedForAndComesBackInItsTime)
{
    start();
    hear(1002, { &microphone, &system });
    system.recorder->delegate->soundWasLost(*system.recorder);
    hear(1002.5, { &microphone });
    EXPECT_NEAR(length(), now - origin, 0.06);
    hear(1012, { &microphone });
    EXPECT_EQ(losses, 0) << "there is sound";
    system.recorder->delegate->soundCameBack(*system.recorder);
    hear(1015, { &microphone, &system });
    for (double second = 0.5; second < 14.8; second += 0.1)
        EXPECT_NEAR(levelAt(440, second), decibels(0.25), 0.1) << second;
    EXPECT_LT(levelAt(1000, 8), -80);
    EXPECT_NEAR(levelAt(1000, 14), decibels(0.125), 0.1);
    EXPECT_NEAR(std::arg(toneAt(1000, 14)), 0, 0.1);
    EXPECT_EQ(returns, 0);
}

TEST_F(MixedRecorderTest, TheLossOfOneIsToldAsItsOwnAlone)
{
    start();
    hear(1001, { &microphone, &system });
    system.recorder->delegate->soundWasLost(*system.recorder);
    system.recorder->delegate->soundWasLost(*system.recorder);
    settle();
    EXPECT_EQ(losses, 0);
    EXPECT_EQ(systemTold, 1);
    microphone.recorder->delegate->soundWasLost(*microphone.recorder);
    settle();
    EXPECT_EQ(losses, 1);
    system.recorder->delegate->soundCameBack(*system.recorder);
    settle();
    EXPECT_EQ(returns, 1);
    EXPECT_EQ(systemTold, 1) << "which was told for both";
    microphone.recorder->delegate->soundCameBack(*microphone.recorder);
    settle();
    EXPECT_EQ(losses, 1);
    EXPECT_EQ(returns, 1);
    EXPECT_EQ(microphoneTold, -1) << "with sound there already, as one of two";
}

TEST_F(MixedRecorderTest, OneThatDoesNotStartIsLost)
{
    microphone.recorder->starts = false;
    start();
    settle();
    EXPECT_EQ(microphoneTold, 1);
    EXPECT_EQ(systemTold, 0);
    EXPECT_EQ(losses, 0);
}

TEST_F(MixedRecorderTest, SideBySideEachHasChannelsOfItsOwn)
{
    start(1, 1, MixedRecorder::Layout::SideBySide);
    EXPECT_EQ(mixer->currentDataFormat().mChannelsPerFrame, 4U);
    EXPECT_EQ(mixer->currentDataFormat().mBytesPerFrame, 8U);
    hear(1002, { &microphone, &system });
    EXPECT_EQ(channels, 4U);
    for (const std::size_t channel : { 0U, 1U }) {
        EXPECT_NEAR(levelAt(440, 1, channel), decibels(0.25), 0.1);
        EXPECT_LT(levelAt(1000, 1, channel), -80);
        EXPECT_NEAR(levelAt(1000, 1, channel + 2), decibels(0.125), 0.1);
        EXPECT_LT(levelAt(440, 1, channel + 2), -80);
    }
}

TEST_F(MixedRecorderTest, APartThatIsOffTakesNoPart)
{
    mixer->setParts({ { false, 1 }, { true, 1 } }, MixedRecorder::Layout::Mixed);
    microphone.recorder->starts = false;
    ASSERT_TRUE(mixer->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    hear(1002, { &system });
    EXPECT_NEAR(levelAt(1000, 1), decibels(0.125), 0.1);
    system.recorder->delegate->soundWasLost(*system.recorder);
    settle();
    EXPECT_EQ(losses, 1) << "nothing else is heard";
}

TEST_F(MixedRecorderTest, AStopGivesWhatHasComeAndNothingMore)
{
    start();
    hear(1002, { &microphone, &system });
    hear(1002.5, { &microphone });
    mixer->stopRecord();
    EXPECT_NEAR(length(), now - origin, 0.06) << "nothing is waited for any more";
    EXPECT_GE(microphone.recorder->stops, 1);
    EXPECT_GE(system.recorder->stops, 1);
}

TEST_F(MixedRecorderTest, TheDeviceIsThatOfTheFirst)
{
    mixer->setDeviceID(7);
    EXPECT_EQ(microphone.recorder->deviceID, 7U);
    EXPECT_EQ(system.recorder->deviceID, 0U);
}

} // namespace
} // namespace vornic
