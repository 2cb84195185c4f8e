#include "audio/PKAudioControl.h"
#include "audio/PKAudioRecorder.h"
#include "audio/PKAudioRecorderDelegate.h"
#include "base/clock.h"
#include "sound_server_test.h"
#include "support/built_program.h"

#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cmath>
#include <complex>
#include <cstring>
#include <mutex>
#include <numbers>
#include <thread>
#include <vector>

namespace vornic {

using test::ChildProcess;
using test::SoundServer;
using test::waitUntil;

namespace {

constexpr double framesPerSecond = 48'000;
constexpr double twoPi = 2 * std::numbers::pi;

/// Keeps the left channel of what a recorder delivers.
class Collector final : public PKAudioRecorderDelegate
{
public:
    void dataRecord(AudioRecorder &,
                    const void *bytes,
                    std::uint32_t byteCount,
                    const AudioStreamBasicDescription &) override
    {
        const std::lock_guard lock(m_mutex);
        if (m_samples.empty())
            m_origin = absoluteTimeSeconds() - byteCount / 4 / framesPerSecond;
        std::vector<std::int16_t> chunk(byteCount / 2);
        std::memcpy(chunk.data(), bytes, byteCount);
        for (std::size_t i = 0; i < chunk.size(); i += 2)
            m_samples.push_back(chunk[i]);
    }
    std::vector<std::int16_t> samples() const
    {
        const std::lock_guard lock(m_mutex);
        return m_samples;
    }
    double seconds() const
    {
        const std::lock_guard lock(m_mutex);
        return static_cast<double>(m_samples.size()) / framesPerSecond;
    }
    double origin() const
    {
        const std::lock_guard lock(m_mutex);
        return m_origin;
    }

    void clear()
    {
        const std::lock_guard lock(m_mutex);
        m_samples.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::int16_t> m_samples;
    double m_origin = 0;
};

/// A sound card whose clock is too fast, which hears a tone that keeps time with the absolute clock: writes what it
/// captures into the pipe that the server takes for a device.
class FastCard
{
public:
    static constexpr double hertz = 100;

    FastCard(const QString &pipe, double millionths)
        : m_pipe(::open(pipe.toLocal8Bit().constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC))
        , m_thread([this, millionths] { run(framesPerSecond * (1 + millionths * 1e-6)); })
    {
    }
    ~FastCard()
    {
        m_ends = true;
        m_thread.join();
        ::close(m_pipe);
    }
    FastCard(const FastCard &) = delete;
    FastCard &operator=(const FastCard &) = delete;

private:
    void run(double rate)
    {
        const double begin = absoluteTimeSeconds();
        for (std::int64_t frame = 0; !m_ends;) {
            // As much as a pipe takes whole, or not at all: what nobody records is lost.
            std::vector<std::int16_t> captured;
            for (;
                 begin + static_cast<double>(frame) / rate < absoluteTimeSeconds() && captured.size() < 2048;
                 ++frame) {
                const double time = begin + static_cast<double>(frame) / rate;
                const auto sample = static_cast<std::int16_t>(
                    std::lround(16'000 * std::sin(twoPi * std::fmod(time * hertz, 1.0))));
                captured.insert(captured.end(), 2, sample);
            }
            static_cast<void>(::write(m_pipe, captured.data(), captured.size() * 2) < 0);
            if (captured.size() < 2048)
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    int m_pipe;
    std::atomic<bool> m_ends = false;
    std::thread m_thread; ///< last: it uses what is above
};

} // namespace

class UntrueClockTest : public SoundServerTest
{
protected:
    /// As many frames at a time as PipeWire can: of a loaded machine that calls it late it loses none then.
    UntrueClockTest()
        : SoundServerTest(8192)
    {
    }
    /// Records \a device for so many seconds.
    void record(const QString &device, double seconds)
    {
        PKAudioControl control;
        ASSERT_TRUE(waitUntil([&] { return control.deviceIDFromName(device) != 0; }));
        const auto recorder = control.createRecorder(control.deviceIDFromName(device));
        recorder->setDelegate(&collector);
        ASSERT_TRUE(recorder->startRecordWithFormat(defaultAudioStreamBasicDescription()));
        ASSERT_TRUE(waitUntil([&] { return collector.seconds() >= seconds; }, std::chrono::seconds(90)));
        ended = absoluteTimeSeconds();
        recorder->stopRecord();
    }
    /// How late the card's tone is in the half second behind \a second, as against the absolute clock.
    double latenessAt(double second) const
    {
        const std::vector<std::int16_t> samples = collector.samples();
        std::complex<double> sum = 0;
        const auto first = static_cast<std::size_t>(second * framesPerSecond);
        for (std::size_t i = first; i < first + static_cast<std::size_t>(framesPerSecond / 2); ++i) {
            const double time = collector.origin() + static_cast<double>(i) / framesPerSecond;
            sum += double(samples.at(i)) * std::polar(1.0, -twoPi * std::fmod(time * FastCard::hertz, 1.0));
        }
        return -std::arg(sum * std::complex<double>(0, 1)) / (twoPi * FastCard::hertz);
    }
    /// The largest that any sample from \a second on is away from where the two before it say that a sine goes.
    double largestStepSince(double second, double hertz) const
    {
        const std::vector<std::int16_t> samples = collector.samples();
        const double factor = 2 * std::cos(twoPi * hertz / framesPerSecond);
        double largest = 0;
        for (auto i = static_cast<std::size_t>(second * framesPerSecond); i < samples.size(); ++i)
            largest = std::max(largest, std::abs(samples[i] - factor * samples[i - 1] + samples[i - 2]));
        return largest;
    }

    Collector collector;
    double ended = 0;
};

INSTANTIATE_TEST_SUITE_P(Servers,
                         UntrueClockTest,
                         ::testing::Values(SoundServer::Kind::PulseAudio, SoundServer::Kind::PipeWire),
                         nameOfServer);

TEST_P(UntrueClockTest, ACardThatIsTooFastIsFollowedWithoutAJump)
{
    if (GetParam() == SoundServer::Kind::PipeWire)
        GTEST_SKIP() << "this server makes a pipe keep time by itself";
    const QTemporaryDir folder;
    const QString pipe = folder.filePath("card");
    ASSERT_FALSE(server
                     ->pactl({ "load-module",
                               "module-pipe-source",
                               "file=" + pipe,
                               "source_name=card",
                               "rate=48000",
                               "channels=2",
                               "format=s16le",
                               "source_properties='device.description=\"Fast card\"'" })
                     .isEmpty());
    const FastCard card(pipe, 500);
    record("Fast card", 25);
    // Left alone, it would be 12 ms early by now.
    const double begin = latenessAt(1);
    for (double second = 2; second < 24; ++second)
        EXPECT_LT(std::abs(latenessAt(second) - begin), 0.0045) << second;
    EXPECT_LT(std::abs(latenessAt(24) - begin), 0.002);
    EXPECT_LT(largestStepSince(1, FastCard::hertz), 32.768) << "-60 dBFS";
}

TEST_P(UntrueClockTest, AnOutputOfAnOddRateIsRecordedWithoutAJump)
{
    ASSERT_FALSE(server
                     ->pactl({ "load-module",
                               "module-null-sink",
                               "sink_name=odd",
                               "rate=47990",
                               "channels=2",
                               "sink_properties='device.description=\"Odd\"'" })
                     .isEmpty());
    const auto player = ChildProcess::start(
        { test::builtProgram("tests/support/vornic_play_sound"), "tone", "60", "1000", "0.5" });
    ASSERT_TRUE(player);
    // On a busy machine the player or the server may be late by itself: that is no fault of each recording.
    constexpr double smallStep = 32.768; // -60 dBFS
    double largestStep = 0;
    for (int attempt = 0; attempt == 0 || (attempt < 3 && largestStep >= smallStep); ++attempt) {
        collector.clear();
        record("Monitor of Odd", 12);
        EXPECT_NEAR(collector.seconds(), ended - collector.origin(), 0.15 + quantum / framesPerSecond);
        // The player is heard from the start on, or after a second or two.
        largestStep = largestStepSince(4, 1000);
    }
    EXPECT_LT(largestStep, smallStep);
    const std::vector<std::int16_t> samples = collector.samples();
    EXPECT_GT(*std::max_element(samples.end() - 4800, samples.end()), 15'000);
}

} // namespace vornic
