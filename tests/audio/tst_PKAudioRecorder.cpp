#include "audio/PKAudioControl.h"
#include "audio/PKAudioRecorder.h"
#include "audio/PKAudioRecorderDelegate.h"
#include "audio/pulse_connection.h"
#include "base/clock.h"
#include "base/log.h"
#include "sound_server_test.h"
#include "support/built_program.h"

#include <QThread>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstddef>
#include <cstring>
#include <future>
#include <memory>
#include <mutex>
#include <new>
#include <set>
#include <vector>

namespace vornic {

using test::ChildProcess;
using test::SoundServer;
using test::waitUntil;

/// Collects what a recorder delivers.
class Collector final : public PKAudioRecorderDelegate
{
public:
    void dataRecord(AudioRecorder &,
                    const void *bytes,
                    std::uint32_t byteCount,
                    const AudioStreamBasicDescription &chunkFormat) override
    {
        EXPECT_FALSE(isStopped) << "a chunk after the stop";
        const std::lock_guard lock(m_mutex);
        format = chunkFormat;
        threads.insert(QThread::currentThreadId());
        if (sizes.empty())
            m_origin = absoluteTimeSeconds() - byteCount / (format.mBytesPerFrame * format.mSampleRate);
        sizes.push_back(byteCount);
        const auto *first = static_cast<const char *>(bytes);
        m_bytes.insert(m_bytes.end(), first, first + byteCount);
    }

    void soundWasLost(AudioRecorder &) override { ++losses; }
    void soundCameBack(AudioRecorder &) override { ++returns; }

    /// Seconds of sound so far.
    double seconds() const
    {
        const std::lock_guard lock(m_mutex);
        return m_bytes.empty()
            ? 0
            : static_cast<double>(m_bytes.size()) / format.mBytesPerFrame / format.mSampleRate;
    }
    /// The loudest 16-bit sample from \a second on.
    int loudestSince(double second) const
    {
        const std::lock_guard lock(m_mutex);
        int loudest = 0;
        for (auto i = static_cast<std::size_t>(second * 48000) * 4; i + 2 <= m_bytes.size(); i += 2) {
            std::int16_t sample = 0;
            std::memcpy(&sample, m_bytes.data() + i, sizeof sample);
            loudest = std::max(loudest, std::abs(static_cast<int>(sample)));
        }
        return loudest;
    }
    double origin() const
    {
        const std::lock_guard lock(m_mutex);
        return m_origin;
    }
    std::vector<char> bytes() const
    {
        const std::lock_guard lock(m_mutex);
        return m_bytes;
    }

    std::atomic<bool> isStopped = false;
    std::atomic<int> losses = 0;
    std::atomic<int> returns = 0;
    AudioStreamBasicDescription format;
    std::vector<std::uint32_t> sizes;
    std::set<Qt::HANDLE> threads;

private:
    mutable std::mutex m_mutex;
    std::vector<char> m_bytes;
    double m_origin = 0;
};

/// Stays in its first chunk until it is let go, as one does whose disk is slow.
class SlowDelegate final : public PKAudioRecorderDelegate
{
public:
    void
    dataRecord(AudioRecorder &, const void *, std::uint32_t, const AudioStreamBasicDescription &) override
    {
        std::unique_lock lock(m_mutex);
        isCalled = true;
        // The bound is for the case that the test fails, which would hang.
        m_letGo.wait_for(lock, std::chrono::seconds(5), [this] { return m_isLetGo; });
        m_isLetGo = true;
        ++chunks;
    }
    void letGo()
    {
        const std::lock_guard lock(m_mutex);
        m_isLetGo = true;
        m_letGo.notify_all();
    }

    std::atomic<bool> isCalled = false;
    std::atomic<int> chunks = 0;

private:
    std::mutex m_mutex;
    std::condition_variable m_letGo;
    bool m_isLetGo = false;
};

class AudioRecorderTest : public SoundServerTest
{
protected:
    void SetUp() override
    {
        SoundServerTest::SetUp();
        if (IsSkipped())
            return;
        speakers = server->addOutput("speakers", "Speakers");
        ASSERT_FALSE(server->addMicrophone("mic", "Desk microphone").isEmpty());
        control = std::make_unique<PKAudioControl>();
        ASSERT_EQ(control->inputDevicesName().size(), 2);
        setLogSink([this](const QString &line) {
            const std::lock_guard lock(m_mutex);
            m_logged += line;
        });
    }
    void TearDown() override { setLogSink({}); }

    std::unique_ptr<AudioRecorder> recorderOf(const QString &device)
    {
        auto recorder = control->createRecorder(control->deviceIDFromName(device));
        recorder->setDelegate(&collector);
        return recorder;
    }
    bool delivers(double seconds)
    {
        const double wanted = collector.seconds() + seconds;
        return waitUntil([&] { return collector.seconds() >= wanted; });
    }
    /// PipeWire 0.3.65 dies once in some thousand streams that end while sound arrives for them.
    bool hasCrashed() const { return GetParam() == SoundServer::Kind::PipeWire && !server->isRunning(); }
    /// Waits until the server has served another recorder: what it still had for the first is there by then.
    bool anotherIsServed()
    {
        Collector others;
        const auto recorder = control->createRecorder(control->deviceIDFromName("Desk microphone"));
        recorder->setDelegate(&others);
        return recorder->startRecordWithFormat(defaultAudioStreamBasicDescription())
            && waitUntil([&others] { return others.seconds() >= 0.3; });
    }
    std::unique_ptr<ChildProcess> playTone() const
    {
        return ChildProcess::start(
            { test::builtProgram("tests/support/vornic_play_sound"), "tone", "60", "1000", "0.5" });
    }
    QStringList logged()
    {
        const std::lock_guard lock(m_mutex);
        return m_logged;
    }

    QString speakers;
    std::unique_ptr<PKAudioControl> control;
    Collector collector;

private:
    std::mutex m_mutex;
    QStringList m_logged;
};

INSTANTIATE_TEST_SUITE_P(Servers,
                         AudioRecorderTest,
                         ::testing::Values(SoundServer::Kind::PulseAudio, SoundServer::Kind::PipeWire),
                         nameOfServer);

TEST_P(AudioRecorderTest, ChunksComeInTheFormatAskedForOnOneThreadOfItsOwn)
{
    const auto recorder = recorderOf("Monitor of Speakers");
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    EXPECT_EQ(recorder->currentDataFormat(), defaultAudioStreamBasicDescription());
    ASSERT_TRUE(delivers(1));
    recorder->stopRecord();
    EXPECT_EQ(collector.format, defaultAudioStreamBasicDescription());
    EXPECT_EQ(collector.threads.size(), 1U);
    EXPECT_FALSE(collector.threads.contains(QThread::currentThreadId()));
    for (const std::uint32_t size : collector.sizes) {
        EXPECT_GE(size, 3840U); // 20 ms
        EXPECT_LE(size, 7680U); // 40 ms
    }
}

TEST_P(AudioRecorderTest, ASlowDelegateHoldsUpNeitherTheControlNorAnotherRecorder)
{
    SlowDelegate slow;
    const auto recorder = control->createRecorder(control->deviceIDFromName("Monitor of Speakers"));
    recorder->setDelegate(&slow);
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    ASSERT_TRUE(waitUntil([&slow] { return slow.isCalled.load(); }));
    EXPECT_EQ(control->inputDevicesName().size(), 2);
    EXPECT_TRUE(anotherIsServed());
    EXPECT_EQ(slow.chunks, 0) << "what was asked waited for the delegate";
    slow.letGo();
    recorder->stopRecord();
    EXPECT_GT(slow.chunks, 3) << "chunks that came meanwhile are delivered";
}

TEST_P(AudioRecorderTest, TheSoundIsAsLongAsTheTimeSinceItsOrigin)
{
    const auto recorder = recorderOf("Monitor of Speakers");
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    ASSERT_TRUE(delivers(3));
    const double lasted = absoluteTimeSeconds() - collector.origin();
    EXPECT_NEAR(collector.seconds(), lasted, 0.15);
}

TEST_P(AudioRecorderTest, EightBitsAndOtherRatesAreDeliveredToo)
{
    AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
    format.mFormatFlags = AudioStreamBasicDescription::packed;
    format.mBitsPerChannel = 8;
    format.mChannelsPerFrame = 1;
    format.mBytesPerFrame = format.mBytesPerPacket = 1;
    format.mSampleRate = 22050;
    const auto recorder = recorderOf("Monitor of Speakers");
    ASSERT_TRUE(recorder->startRecordWithFormat(format));
    EXPECT_EQ(recorder->currentDataFormat(), format);
    ASSERT_TRUE(delivers(0.5));
    recorder->stopRecord();
    for (const char sample : collector.bytes())
        ASSERT_EQ(sample, static_cast<char>(0x80)) << "silence";
}

TEST_P(AudioRecorderTest, OtherFormatsAreRefused)
{
    const auto recorder = recorderOf("Monitor of Speakers");
    AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
    format.mBitsPerChannel = 24;
    EXPECT_FALSE(recorder->startRecordWithFormat(format));
    format = defaultAudioStreamBasicDescription();
    format.mFormatID = 0;
    EXPECT_FALSE(recorder->startRecordWithFormat(format));
    format = defaultAudioStreamBasicDescription();
    format.mChannelsPerFrame = 0;
    EXPECT_FALSE(recorder->startRecordWithFormat(format));
    format = defaultAudioStreamBasicDescription();
    format.mBytesPerFrame = 6;
    EXPECT_FALSE(recorder->startRecordWithFormat(format));
    format = defaultAudioStreamBasicDescription();
    format.mSampleRate = 0;
    EXPECT_FALSE(recorder->startRecordWithFormat(format));
}

TEST_P(AudioRecorderTest, ADeviceThatIsNotThereDoesNotStart)
{
    const auto none = control->createRecorder(0);
    EXPECT_FALSE(none->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    const auto gone = recorderOf("Monitor of Speakers");
    server->remove(speakers);
    ASSERT_TRUE(waitUntil([this] { return control->deviceIDFromName("Monitor of Speakers") == 0; }));
    EXPECT_FALSE(gone->startRecordWithFormat(defaultAudioStreamBasicDescription()));
}

TEST_P(AudioRecorderTest, StartsAndStopsAnyNumberOfTimes)
{
    const auto recorder = recorderOf("Monitor of Speakers");
    recorder->stopRecord();
    for (int i = 0; i < 12; ++i) {
        collector.isStopped = false;
        const bool starts = recorder->startRecordWithFormat(defaultAudioStreamBasicDescription());
        if (!starts && hasCrashed())
            GTEST_SKIP() << "the sound server has crashed";
        ASSERT_TRUE(starts);
        if (i % 3 == 0) {
            ASSERT_TRUE(delivers(0.1) || hasCrashed());
        }
        recorder->stopRecord();
        collector.isStopped = true;
        recorder->stopRecord();
    }
    EXPECT_TRUE(anotherIsServed() || hasCrashed());
}

TEST_P(AudioRecorderTest, AnAnswerOfTheServerThatComesAfterItsEndIsLeftAlone)
{
    const auto end = [](PKAudioRecorder *ended) { std::destroy_at(ended); };
    // Of the test's own, so that it can see whether it is used afterwards.
    alignas(PKAudioRecorder) std::array<std::byte, sizeof(PKAudioRecorder)> memory {};
    std::unique_ptr<PKAudioRecorder, decltype(end)> recorder(
        new (memory.data()) PKAudioRecorder(control->deviceIDFromName("Monitor of Speakers"), *control));
    recorder->setDelegate(&collector);
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    ASSERT_TRUE(delivers(0.5));
    {
        // With the chunks of this time the recorder asks the server for its own, and that has stopped by then.
        const PulseConnection::Lock lock(control->connection());
        const double asksAgain = absoluteTimeSeconds() + 0.15;
        waitUntil([asksAgain] { return absoluteTimeSeconds() >= asksAgain; });
        server->suspend();
        // The thread takes them while this one waits.
        control->connection().waitUntil(absoluteTimeSeconds() + 0.05, [] { return false; });
    }
    recorder.reset();
    memory.fill(std::byte { 0xA5 });
    server->resume();
    EXPECT_TRUE(anotherIsServed());
    EXPECT_TRUE(std::ranges::all_of(memory, [](std::byte byte) { return byte == std::byte { 0xA5 }; }));
}

TEST_P(AudioRecorderTest, SwitchesTheDeviceWhileRecording)
{
    const auto tone = playTone();
    const auto recorder = recorderOf("Desk microphone");
    ASSERT_TRUE(server->setDefault("sink", "speakers"));
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    ASSERT_TRUE(delivers(0.5));
    EXPECT_EQ(collector.loudestSince(0), 0);
    recorder->setDeviceID(control->deviceIDFromName("Monitor of Speakers"));
    ASSERT_TRUE(delivers(1.5));
    EXPECT_GT(collector.loudestSince(0.5), 10'000);
    recorder->setDeviceID(control->deviceIDFromName("Desk microphone"));
    const double switched = collector.seconds();
    ASSERT_TRUE(delivers(1.5));
    EXPECT_EQ(collector.loudestSince(switched + 0.5), 0);
    // What was missed between the devices is silence: time goes on.
    EXPECT_NEAR(collector.seconds(), absoluteTimeSeconds() - collector.origin(), 0.2);
}

TEST_P(AudioRecorderTest, ADeviceThatVanishesIsLoggedOnceAndAnotherIsNotTakenForIt)
{
    const auto recorder = recorderOf("Monitor of Speakers");
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    ASSERT_TRUE(delivers(0.5));
    server->remove(speakers);
    ASSERT_TRUE(waitUntil([this] { return !logged().isEmpty(); }));
    const double ended = collector.seconds();
    EXPECT_TRUE(anotherIsServed());
    EXPECT_EQ(collector.seconds(), ended);
    EXPECT_EQ(logged().size(), 1);
    EXPECT_EQ(collector.losses, 1);
    EXPECT_EQ(collector.returns, 0);
    recorder->stopRecord();
    recorder->setDeviceID(control->deviceIDFromName("Desk microphone"));
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    EXPECT_TRUE(delivers(0.3));
}

TEST_P(AudioRecorderTest, ADeviceThatComesBackIsRecordedAgainInItsTime)
{
    const auto recorder = recorderOf("Monitor of Speakers");
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    ASSERT_TRUE(delivers(0.3));
    for (const bool wholeServer : { false, true }) {
        const int before = collector.losses;
        if (wholeServer) {
            server->kill();
            ASSERT_TRUE(waitUntil([&] { return collector.losses > before; }));
            ASSERT_TRUE(server->restart());
        } else {
            server->remove(speakers);
            ASSERT_TRUE(waitUntil([&] { return collector.losses > before; }));
        }
        ASSERT_FALSE(server->addOutput("speakers", "Speakers").isEmpty());
        ASSERT_TRUE(delivers(0.5)) << wholeServer;
        EXPECT_EQ(collector.losses, before + 1);
        EXPECT_EQ(collector.returns, before + 1);
        const auto behind = [&] { return absoluteTimeSeconds() - collector.origin() - collector.seconds(); };
        EXPECT_TRUE(waitUntil([&] { return behind() < 0.3; })) << "what was missed is silence";
        EXPECT_GT(behind(), -0.1);
    }
    const auto player = playTone();
    ASSERT_TRUE(player);
    const double since = collector.seconds();
    EXPECT_TRUE(waitUntil([&] { return collector.loudestSince(since) > 5000; }));
    recorder->stopRecord();
    collector.isStopped = true;
}

TEST_P(AudioRecorderTest, RecordsAgainWhenTheServerHasComeBack)
{
    const auto recorder = recorderOf("Monitor of Speakers");
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    ASSERT_TRUE(delivers(0.3));
    server->kill();
    ASSERT_TRUE(waitUntil([this] { return !logged().isEmpty(); }));
    EXPECT_FALSE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    ASSERT_TRUE(server->restart());
    ASSERT_FALSE(server->addOutput("speakers", "Speakers").isEmpty());
    ASSERT_TRUE(waitUntil([this] { return control->deviceIDFromName("Monitor of Speakers") != 0; }));
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    EXPECT_TRUE(delivers(0.3));
}

TEST_P(AudioRecorderTest, AServerThatHasJustEndedIsWaitedFor)
{
    if (GetParam() == SoundServer::Kind::PipeWire)
        GTEST_SKIP() << "its start takes about as long as is waited";
    const auto recorder = recorderOf("Monitor of Speakers");
    server->kill();
    std::promise<void> isCalled;
    auto starts = std::async(std::launch::async, [&] {
        isCalled.set_value();
        return recorder->startRecordWithFormat(defaultAudioStreamBasicDescription());
    });
    isCalled.get_future().wait();
    ASSERT_TRUE(server->restart());
    ASSERT_FALSE(server->addOutput("speakers", "Speakers").isEmpty());
    EXPECT_TRUE(starts.get());
    EXPECT_TRUE(delivers(0.3));
    recorder->stopRecord();
}

TEST_P(AudioRecorderTest, ASleepingDeviceLeavesSilenceAndTimeGoesOn)
{
    if (GetParam() == SoundServer::Kind::PipeWire)
        GTEST_SKIP() << "this server wakes a suspended device for whoever records it";
    const auto recorder = recorderOf("Monitor of Speakers");
    ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
    ASSERT_TRUE(delivers(0.5));
    server->pactl({ "suspend-sink", "speakers", "1" });
    // A device that sleeps this long is what is tested; nothing tells of the time that passes.
    const double end = absoluteTimeSeconds() + 1.5;
    waitUntil([end] { return absoluteTimeSeconds() >= end; });
    server->pactl({ "suspend-sink", "speakers", "0" });
    ASSERT_TRUE(delivers(2));
    EXPECT_NEAR(collector.seconds(), absoluteTimeSeconds() - collector.origin(), 0.4);
}

} // namespace vornic
