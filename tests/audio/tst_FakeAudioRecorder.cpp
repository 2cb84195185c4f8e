#include "audio/PKAudioRecorderDelegate.h"
#include "audio/audio_recorder.h"
#include "audio/fake_audio_control.h"
#include "audio/fake_audio_recorder.h"
#include "base/clock.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <mutex>
#include <numbers>
#include <set>
#include <thread>
#include <vector>

using namespace vornic;
using test::waitUntil;

namespace {

constexpr std::size_t chunkFrames = 960;

/// Collects what a recorder delivers, as frames of two channels.
class Collector final : public PKAudioRecorderDelegate
{
public:
    void dataRecord(AudioRecorder & /*recorder*/,
                    const void *bytes,
                    std::uint32_t byteCount,
                    const AudioStreamBasicDescription &format) override
    {
        const std::lock_guard lock(m_mutex);
        EXPECT_EQ(format, defaultAudioStreamBasicDescription());
        EXPECT_EQ(byteCount, chunkFrames * format.mBytesPerFrame);
        const std::size_t before = m_samples.size();
        m_samples.resize(before + byteCount / sizeof(std::int16_t));
        std::memcpy(m_samples.data() + before, bytes, byteCount);
        m_threads.insert(std::this_thread::get_id());
        m_arrivals.push_back(absoluteTimeSeconds());
    }
    std::size_t frames() const
    {
        const std::lock_guard lock(m_mutex);
        return m_samples.size() / 2;
    }
    std::vector<std::int16_t> samples() const
    {
        const std::lock_guard lock(m_mutex);
        return m_samples;
    }
    std::vector<double> arrivals() const
    {
        const std::lock_guard lock(m_mutex);
        return m_arrivals;
    }
    std::set<std::thread::id> threads() const
    {
        const std::lock_guard lock(m_mutex);
        return m_threads;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::int16_t> m_samples;
    std::vector<double> m_arrivals;
    std::set<std::thread::id> m_threads;
};

class FakeAudioRecorderTest : public ::testing::Test
{
protected:
    std::unique_ptr<AudioRecorder> recorderOf(const QString &device)
    {
        auto recorder = control.createRecorder(control.deviceIDFromName(device));
        recorder->setDelegate(&collector);
        return recorder;
    }
    /// What \a recorder delivers until it is stopped after \a frames frames or a few more.
    std::vector<std::int16_t> record(AudioRecorder &recorder, std::size_t frames)
    {
        EXPECT_TRUE(recorder.startRecordWithFormat(defaultAudioStreamBasicDescription()));
        EXPECT_TRUE(waitUntil([&] { return collector.frames() >= frames; }));
        recorder.stopRecord();
        return collector.samples();
    }

    FakeAudioControl control;
    Collector collector;
};

TEST_F(FakeAudioRecorderTest, EverySampleIsAsItIsDescribed)
{
    const auto recorder = recorderOf("Fake microphone");
    const std::vector<std::int16_t> samples = record(*recorder, 30'000);
    for (std::size_t frame = 0; frame < samples.size() / 2; ++frame) {
        const bool isClick = frame % 48'000 >= 24'000 && frame % 48'000 < 24'048;
        const double sine
            = 0.0625 * std::sin(2 * std::numbers::pi * 440 * static_cast<double>(frame) / 48'000);
        ASSERT_NEAR(samples[2 * frame] / 32767.0, isClick ? 0.75 : sine, 1.0 / 32767) << frame;
        ASSERT_EQ(samples[2 * frame], samples[2 * frame + 1]) << frame;
    }
    EXPECT_EQ(recorder->currentDataFormat(), defaultAudioStreamBasicDescription());
    EXPECT_EQ(collector.threads().size(), 1U);
    EXPECT_FALSE(collector.threads().contains(std::this_thread::get_id()));
}

TEST_F(FakeAudioRecorderTest, NoChunkComesBeforeItsLastFrameIsDue)
{
    const auto recorder = recorderOf("Fake microphone");
    const double begin = absoluteTimeSeconds();
    record(*recorder, 20 * chunkFrames);
    const std::vector<double> arrivals = collector.arrivals();
    for (std::size_t i = 0; i < arrivals.size(); ++i)
        EXPECT_GE(arrivals[i], begin + 0.02 * static_cast<double>(i + 1));
}

TEST_F(FakeAudioRecorderTest, TheMonitorIsSilent)
{
    const auto recorder = recorderOf("Monitor of fake output");
    for (const std::int16_t sample : record(*recorder, 10 * chunkFrames))
        ASSERT_EQ(sample, 0);
}

TEST_F(FakeAudioRecorderTest, ARecordingThatIsStartedAgainBeginsAnew)
{
    const auto recorder = recorderOf("Fake microphone");
    const std::size_t first = record(*recorder, chunkFrames).size();
    recorder->stopRecord();
    const std::vector<std::int16_t> both = record(*recorder, first / 2 + chunkFrames);
    ASSERT_GE(both.size(), first + 2 * chunkFrames);
    EXPECT_TRUE(
        std::equal(both.begin(), both.begin() + 2 * chunkFrames, both.begin() + static_cast<long>(first)));
}

TEST_F(FakeAudioRecorderTest, SwitchesTheDeviceWhileRecordingAndEndsWithoutOne)
{
    const auto recorder = recorderOf("Monitor of fake output");
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    ASSERT_TRUE(waitUntil([&] { return collector.frames() > 0; }));
    recorder->setDeviceID(FakeAudioControl::microphoneID);
    const std::size_t switched = collector.frames();
    ASSERT_TRUE(waitUntil([&] { return collector.frames() >= switched + 3 * chunkFrames; }));
    recorder->setDeviceID(0);
    const std::vector<std::int16_t> samples = collector.samples();
    EXPECT_EQ(samples.front(), 0);
    EXPECT_NE(samples[samples.size() - 3 * 2], 0);
    EXPECT_FALSE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    EXPECT_EQ(collector.samples().size(), samples.size()) << "a chunk after the end";
}

TEST_F(FakeAudioRecorderTest, DevicesAndFormatsThatAreNotThereAreRefused)
{
    EXPECT_FALSE(recorderOf("Kitchen")->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    const auto recorder = recorderOf("Fake microphone");
    for (const std::uint32_t bits : { 8U, 24U, 32U }) {
        AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
        format.mBitsPerChannel = bits;
        EXPECT_FALSE(recorder->startRecordWithFormat(format)) << bits;
    }
    AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
    format.mChannelsPerFrame = 0;
    EXPECT_FALSE(recorder->startRecordWithFormat(format));
    format = defaultAudioStreamBasicDescription();
    format.mSampleRate = 0;
    EXPECT_FALSE(recorder->startRecordWithFormat(format));
}

} // namespace
