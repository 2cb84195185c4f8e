#include "app/session/recorded_sound.h"
#include "app/session/recording_clock.h"
#include "audio/AudioStreamBasicDescription.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace vornic {
namespace {

constexpr double begin = 1000;
constexpr std::int64_t rate = 48'000;

/// The sound of a recording, whose frames are numbered from 1 on: silence is 0.
class RecordedSoundTest : public testing::Test
{
protected:
    RecordedSoundTest() { m_clock.soundBegins(begin); }

    /// The next \a count frames come.
    void deliver(std::int64_t count)
    {
        QByteArray chunk(count * 4, Qt::Uninitialized);
        for (std::int64_t i = 0; i < count; ++i) {
            const auto number = static_cast<std::uint32_t>(++m_delivered);
            std::memcpy(chunk.data() + 4 * i, &number, sizeof number);
        }
        for (const QByteArray &part : m_sound.partsOf(chunk, defaultAudioStreamBasicDescription())) {
            EXPECT_FALSE(part.isEmpty());
            const std::size_t before = m_recorded.size();
            m_recorded.resize(before + static_cast<std::size_t>(part.size()) / 4);
            std::memcpy(m_recorded.data() + before, part.constData(), static_cast<std::size_t>(part.size()));
        }
    }
    void pauseAt(std::int64_t frame)
    {
        m_time = begin + static_cast<double>(frame) / rate;
        m_clock.pause();
    }
    void resumeAt(std::int64_t frame)
    {
        m_time = begin + static_cast<double>(frame) / rate;
        m_clock.resume();
    }
    /// What is recorded is exactly the frames \a first to \a last in the next places.
    void expectNext(std::uint32_t first, std::uint32_t last)
    {
        for (std::uint32_t number = first; number <= last; ++number, ++m_read) {
            ASSERT_LT(m_read, m_recorded.size());
            ASSERT_EQ(m_recorded[m_read], number);
        }
    }
    void expectEnd() { EXPECT_EQ(m_read, m_recorded.size()); }

    double m_time = begin;
    RecordingClock m_clock { RecordingClock::Origin::FirstSound, [this] { return m_time; } };
    RecordedSound m_sound { m_clock };
    std::int64_t m_delivered = 0;
    std::vector<std::uint32_t> m_recorded;
    std::size_t m_read = 0;
};

TEST_F(RecordedSoundTest, WithoutAPauseItIsAllOfIt)
{
    for (const std::int64_t count : { 960, 1, 1920, 0, 1233 })
        deliver(count);
    expectNext(1, 960 + 1 + 1920 + 1233);
    expectEnd();
}

TEST_F(RecordedSoundTest, AChunkIsCutWhereThePauseBeginsAndEnds)
{
    pauseAt(500);
    deliver(960);
    deliver(960);
    resumeAt(2500);
    deliver(960);
    deliver(960);
    expectNext(1, 500);
    expectNext(2501, 4 * 960);
    expectEnd();
}

TEST_F(RecordedSoundTest, APauseMayBeginAndEndInOneChunk)
{
    pauseAt(100);
    resumeAt(200);
    pauseAt(300);
    resumeAt(400);
    deliver(960);
    expectNext(1, 100);
    expectNext(201, 300);
    expectNext(401, 960);
    expectEnd();
}

TEST_F(RecordedSoundTest, WhatCameBeforeItsPauseIsMadeGoodBehindIt)
{
    deliver(960);
    pauseAt(900); // 60 frames too many
    deliver(960);
    resumeAt(1920);
    deliver(960);
    deliver(960);
    expectNext(1, 960);
    expectNext(1921 + 60, 4 * 960);
    expectEnd();
}

TEST_F(RecordedSoundTest, WhatWasLeftOutBeforeThePauseHadEndedBecomesSilence)
{
    deliver(960);
    pauseAt(960);
    deliver(960); // taken for paused as a whole
    resumeAt(1900);
    deliver(960);
    expectNext(1, 960);
    for (int i = 0; i < 20; ++i)
        expectNext(0, 0);
    expectNext(1921, 3 * 960);
    expectEnd();
}

/// However many pauses there are, no sound of one is kept, and what is kept stays where the clock is.
TEST_F(RecordedSoundTest, ManyPausesShiftNothing)
{
    std::mt19937 random(16);
    const auto below = [&random](std::int64_t bound) { return static_cast<std::int64_t>(random()) % bound; };
    double at = begin;
    for (int i = 0; i < 300; ++i) {
        at += 0.02 + static_cast<double>(below(20'000)) / 123'457;
        m_time = at;
        m_clock.pause();
        at += static_cast<double>(below(40'000)) / 123'457;
        m_time = at;
        m_clock.resume();
    }
    while (begin + static_cast<double>(m_delivered) / rate < at + 1)
        deliver(960 + below(960));
    const double end = begin + static_cast<double>(m_delivered) / rate;
    EXPECT_NEAR(static_cast<double>(m_recorded.size()), m_clock.recordedSeconds(begin, end) * rate, 3);
    int cuts = 0;
    for (std::size_t i = 1; i < m_recorded.size(); ++i) {
        if (m_recorded[i] == 0 || m_recorded[i] == m_recorded[i - 1] + 1)
            continue;
        ++cuts;
        const double captured = begin + (static_cast<double>(m_recorded[i]) - 0.5) / rate;
        const double shown = m_clock.recordedSeconds(begin, captured) * rate;
        ASSERT_NEAR(static_cast<double>(i), shown, 4) << "frame " << m_recorded[i];
        ASSERT_FALSE(m_clock.recordedPartsOf(captured - 1.0 / rate, captured + 1.0 / rate).empty())
            << "frame " << m_recorded[i] << " lies in a pause";
    }
    EXPECT_GT(cuts, 250);
}

TEST_F(RecordedSoundTest, WithoutAFormatThereIsNone)
{
    EXPECT_TRUE(m_sound.partsOf(QByteArray(100, 'x'), {}).empty());
}

} // namespace
} // namespace vornic
