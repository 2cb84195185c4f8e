#include "audio/clocked_sound.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <functional>
#include <numbers>
#include <random>
#include <vector>

namespace vornic {
namespace {

constexpr double rate = 16'000;
constexpr double twoPi = 2 * std::numbers::pi;
constexpr double amplitude = 0.5;

AudioStreamBasicDescription mono()
{
    AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
    format.mSampleRate = rate;
    format.mChannelsPerFrame = 1;
    format.mBytesPerFrame = format.mBytesPerPacket = 2;
    return format;
}

/// A sound card that hears a tone which keeps time with the absolute clock, while its own clock does not, and a server
/// that is imprecise about it.
class ClockedSoundTest : public ::testing::Test
{
protected:
    /// By how many millionths the card's clock is too fast, at a time of the absolute clock.
    using Clock = std::function<double(double time)>;

    /// Hears a tone until \a end.
    void hear(double hertz, double end, const Clock &clock)
    {
        for (; m_now < end; m_now += 0.03) {
            std::vector<std::int16_t> captured;
            for (; m_frameTime < m_now; m_frameTime += 1 / (rate * (1 + clock(m_frameTime) * 1e-6)))
                captured.push_back(static_cast<std::int16_t>(
                    std::lround(32767 * amplitude * std::sin(twoPi * hertz * m_frameTime))));
            m_captured += static_cast<double>(captured.size());
            deliver({ reinterpret_cast<const char *>(captured.data()),
                      static_cast<qsizetype>(captured.size() * 2) });
        }
    }
    /// Nothing is captured for so long, though time goes on.
    void stop(double seconds)
    {
        m_now += seconds;
        m_frameTime += seconds;
    }

    /// How much later the tone is than it should be in the second that begins \a seconds after the start; it is
    /// known but for whole periods of the tone.
    double latenessAt(double hertz, double seconds) const
    {
        std::complex<double> sum = 0;
        const auto first = static_cast<std::size_t>(seconds * rate);
        for (std::size_t i = first; i < first + static_cast<std::size_t>(rate); ++i)
            sum += double(recorded.at(i)) * std::polar(1.0, -twoPi * hertz * (m_start + double(i) / rate));
        return -std::arg(sum * std::complex<double>(0, 1)) / (twoPi * hertz);
    }
    double length() const { return static_cast<double>(recorded.size()) / rate; }
    /// Until the last delivery, but for what the resampler holds.
    double elapsed() const { return m_now - 0.03 - m_start - 0.002; }

    std::vector<std::int16_t> recorded;

private:
    void deliver(QByteArrayView captured)
    {
        CaptureTimeline &timeline = m_sound.timeline();
        timeline.arrived(m_now);
        if (!timeline.isSettled() || ++m_deliveries % 3 == 0)
            timeline.addAnswer(m_now + error(), m_captured - (m_frameTime - m_now) * rate);
        if (!timeline.hasStarted()) {
            timeline.leaveOut(static_cast<std::uint64_t>(captured.size() / 2));
            if (timeline.isSettled()) {
                m_start = m_now - 0.020;
                m_sound.start(m_start, static_cast<std::uint64_t>(0.020 * rate));
                recorded.assign(static_cast<std::size_t>(0.020 * rate), 0);
            }
            return;
        }
        m_held.append(captured);
        if (!timeline.isSettled())
            return;
        m_sound.place(m_held, [this](const QByteArray &samples) {
            const std::size_t before = recorded.size();
            recorded.resize(before + static_cast<std::size_t>(samples.size() / 2));
            std::memcpy(
                recorded.data() + before, samples.constData(), static_cast<std::size_t>(samples.size()));
        });
        m_held.clear();
    }
    /// Of an answer: within a millisecond, but for one in seven.
    double error()
    {
        const double usual = std::uniform_real_distribution(-0.001, 0.001)(m_random);
        return ++m_answers % 7 == 0 ? usual + 0.040 : usual;
    }

    ClockedSound m_sound { mono() };
    QByteArray m_held;
    std::mt19937 m_random { 1 };
    double m_now = 100.03;
    double m_frameTime = 100; ///< when the next frame is captured
    double m_captured = 0;
    double m_start = 0;
    int m_deliveries = 0;
    int m_answers = 0;
};

class SteadyClockTest : public ClockedSoundTest, public ::testing::WithParamInterface<double>
{
};

INSTANTIATE_TEST_SUITE_P(Millionths, SteadyClockTest, ::testing::Values(-300, -208, -50, 0, 20, 100, 300));

TEST_P(SteadyClockTest, IsFollowed)
{
    hear(100, 220, [](double) { return GetParam(); });
    for (double second = 1; second < 117; ++second)
        EXPECT_LT(std::abs(latenessAt(100, second)), 0.002) << second;
    EXPECT_LT(std::abs(latenessAt(100, 117)), 0.0005);
    EXPECT_NEAR(length(), elapsed(), 0.003) << "and not off by a whole period";
}

TEST_P(SteadyClockTest, IsFollowedWithoutAStep)
{
    hear(1000, 160, [](double) { return GetParam(); });
    // Of a sine, each sample follows from the two before it.
    const double factor = 2 * std::cos(twoPi * 1000 / rate);
    const auto first = static_cast<std::size_t>(0.2 * rate);
    for (std::size_t i = first; i < recorded.size(); ++i)
        ASSERT_LT(std::abs(recorded[i] - factor * recorded[i - 1] + recorded[i - 2]), 32.768)
            << "-60 dBFS, at " << static_cast<double>(i) / rate << " s";
    EXPECT_GT(*std::ranges::max_element(recorded), 0.95 * amplitude * 32767);
}

TEST_F(ClockedSoundTest, AClockThatChangesIsFollowed)
{
    const Clock changing = [](double time) { return time < 160 ? -300 : 300; };
    hear(100, 260, changing);
    for (double second = 1; second < 157; ++second)
        EXPECT_LT(std::abs(latenessAt(100, second)), 0.004) << second;
    EXPECT_LT(std::abs(latenessAt(100, 157)), 0.0005);
    EXPECT_NEAR(length(), elapsed(), 0.003);
}

TEST_F(ClockedSoundTest, TheToneNeverChangesByMoreThanAThousandth)
{
    const Clock wild = [](double time) { return 300 * std::sin(time / 5); };
    hear(100, 200, wild);
    for (double second = 1; second < 97; ++second)
        EXPECT_LT(std::abs(latenessAt(100, second + 1) - latenessAt(100, second)), 0.001) << second;
}

TEST_F(ClockedSoundTest, SoundThatStopsLeavesSilenceAndTheClockIsStillKnown)
{
    const Clock slow = [](double) { return -300; };
    hear(100, 160, slow);
    stop(7);
    hear(100, 200, slow);
    EXPECT_NEAR(length(), elapsed(), 0.003);
    EXPECT_NE(std::search_n(recorded.begin(), recorded.end(), static_cast<std::ptrdiff_t>(6.9 * rate), 0),
              recorded.end());
    for (double second = 68; second < 97; ++second)
        EXPECT_LT(std::abs(latenessAt(100, second)), 0.002) << second;
}

TEST_F(ClockedSoundTest, FramesThatAreLostLeaveSilenceAtOnce)
{
    const Clock exact = [](double) { return 0; };
    hear(100, 110, exact);
    stop(0.1);
    hear(100, 120, exact);
    EXPECT_GT(std::ranges::count(recorded.begin() + static_cast<std::ptrdiff_t>(rate), recorded.end(), 0),
              0.09 * rate);
    EXPECT_LT(std::abs(latenessAt(100, 15)), 0.002);
}

} // namespace
} // namespace vornic
