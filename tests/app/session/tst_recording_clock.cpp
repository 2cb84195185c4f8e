#include "app/session/recording_clock.h"
#include "base/PKTimebase.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace vornic {
namespace {

using Origin = RecordingClock::Origin;

/// A recording clock on a time that the test sets.
class RecordingClockTest : public testing::Test
{
protected:
    [[nodiscard]] RecordingClock::Now setTime()
    {
        return [this] { return time; };
    }

    double time = 1000;
};

TEST_F(RecordingClockTest, CountsFromTheFirstPass)
{
    RecordingClock clock(Origin::FirstPass, setTime());
    EXPECT_FALSE(clock.awaitsSound());
    EXPECT_FALSE(clock.timestamp());
    clock.passBegins(1000);
    EXPECT_EQ(clock.timestamp(), 0);
    time = 1002.5;
    EXPECT_EQ(clock.timestamp(), 5 * PKTimebase / 2);
    clock.passBegins(1002);
    EXPECT_EQ(clock.timestamp(), 5 * PKTimebase / 2);
}

TEST_F(RecordingClockTest, CountsFromTheFirstSoundWhereSoundIsRecorded)
{
    RecordingClock clock(Origin::FirstSound, setTime());
    clock.passBegins(1000);
    EXPECT_TRUE(clock.awaitsSound());
    EXPECT_FALSE(clock.timestamp());
    time = 1001;
    clock.soundBegins(1000.9);
    EXPECT_EQ(clock.timestamp(), static_cast<std::int64_t>((1001 - 1000.9) * PKTimebase));
    clock.soundBegins(1000.5);
    EXPECT_EQ(clock.timestamp(), static_cast<std::int64_t>((1001 - 1000.9) * PKTimebase));
}

TEST_F(RecordingClockTest, WithoutTheSoundItCountsFromTheFirstPassAfterAll)
{
    RecordingClock clock(Origin::FirstSound, setTime());
    clock.passBegins(1000);
    clock.soundBegins(999);
    time = 1001;
    clock.dropSound();
    EXPECT_FALSE(clock.awaitsSound());
    EXPECT_EQ(clock.timestamp(), PKTimebase);
}

TEST_F(RecordingClockTest, TruncatesTowardZero)
{
    RecordingClock clock(Origin::FirstPass, setTime());
    clock.passBegins(1000);
    time = 1000 + 1.9 / PKTimebase;
    EXPECT_EQ(clock.timestamp(), 1);
    time = 1000 - 1.9 / PKTimebase;
    EXPECT_EQ(clock.timestamp(), -1);
}

TEST_F(RecordingClockTest, StandsWhileItIsPaused)
{
    RecordingClock clock(Origin::FirstPass, setTime());
    clock.passBegins(1000);
    time = 1002;
    clock.pause();
    EXPECT_TRUE(clock.isPaused());
    for (const double later : { 1002.0, 1002.1, 1500.7 }) {
        time = later;
        EXPECT_EQ(clock.timestamp(), 2 * PKTimebase);
    }
    clock.resume();
    EXPECT_FALSE(clock.isPaused());
    EXPECT_EQ(clock.timestamp(), 2 * PKTimebase);
    time += 3;
    EXPECT_EQ(clock.timestamp(), 5 * PKTimebase);
}

TEST_F(RecordingClockTest, ASecondPauseOrResumeChangesNothing)
{
    RecordingClock clock(Origin::FirstPass, setTime());
    clock.passBegins(1000);
    clock.resume();
    EXPECT_FALSE(clock.isPaused());
    time = 1001;
    clock.pause();
    time = 1002;
    clock.pause();
    time = 1003;
    clock.resume();
    time = 1004;
    clock.resume();
    EXPECT_EQ(clock.timestamp(), 2 * PKTimebase) << "one second before the pause, one behind it";
}

TEST_F(RecordingClockTest, ManyPausesAddUp)
{
    RecordingClock clock(Origin::FirstPass, setTime());
    clock.passBegins(time);
    for (int i = 0; i < 1000; ++i) {
        time += 0.25;
        clock.pause();
        time += 0.75;
        clock.resume();
    }
    EXPECT_EQ(clock.timestamp(), 250 * PKTimebase);
}

TEST_F(RecordingClockTest, WhatWasPausedBeforeTheOriginDoesNotCount)
{
    RecordingClock clock(Origin::FirstSound, setTime());
    clock.pause();
    EXPECT_FALSE(clock.timestamp());
    time = 1001;
    clock.soundBegins(1000.5);
    EXPECT_EQ(clock.timestamp(), 0);
    time = 1002;
    clock.resume();
    time = 1002.25;
    EXPECT_EQ(clock.timestamp(), PKTimebase / 4);
    EXPECT_EQ(clock.recordedSeconds(1000.5, 1000), -0.5);
}

TEST_F(RecordingClockTest, KnowsWhetherATimeSinceThenIsMissing)
{
    RecordingClock clock(Origin::FirstPass, setTime());
    EXPECT_FALSE(clock.wasPausedSince(0));
    time = 1001;
    clock.pause();
    EXPECT_TRUE(clock.wasPausedSince(1000));
    EXPECT_TRUE(clock.wasPausedSince(1001.5)) << "it lasts";
    time = 1002;
    clock.resume();
    EXPECT_TRUE(clock.wasPausedSince(1001.5));
    EXPECT_FALSE(clock.wasPausedSince(1002));
}

TEST_F(RecordingClockTest, CutsATimeAtItsPauses)
{
    RecordingClock clock(Origin::FirstPass, setTime());
    const auto parts = [&clock](double begin, double end) {
        std::vector<std::pair<double, double>> found;
        for (const RecordingClock::Span &part : clock.recordedPartsOf(begin, end))
            found.emplace_back(part.begin, part.end);
        return found;
    };
    using Parts = std::vector<std::pair<double, double>>;
    EXPECT_EQ(parts(990, 1010), (Parts { { 990, 1010 } }));
    EXPECT_EQ(parts(5, 5), Parts {});
    time = 1001;
    clock.pause();
    EXPECT_EQ(parts(990, 1010), (Parts { { 990, 1001 } }));
    EXPECT_EQ(parts(1002, 1010), Parts {});
    time = 1002;
    clock.resume();
    time = 1003;
    clock.pause();
    time = 1004;
    clock.resume();
    EXPECT_EQ(parts(990, 1010), (Parts { { 990, 1001 }, { 1002, 1003 }, { 1004, 1010 } }));
    EXPECT_EQ(parts(1001.5, 1002.5), (Parts { { 1002, 1002.5 } }));
    EXPECT_EQ(parts(1001, 1002), Parts {});
    EXPECT_EQ(parts(1004, 1005), (Parts { { 1004, 1005 } }));
}

TEST_F(RecordingClockTest, StandsForGoodAtItsLength)
{
    RecordingClock clock(Origin::FirstPass, setTime());
    clock.setLength(3);
    EXPECT_FALSE(clock.isOver()) << "it has not begun";
    clock.passBegins(1000);
    time = 1002;
    clock.pause();
    time = 1100;
    EXPECT_FALSE(clock.isOver());
    clock.resume();
    time = 1100.5;
    EXPECT_FALSE(clock.isOver());
    EXPECT_EQ(clock.timestamp(), 5 * PKTimebase / 2);
    EXPECT_EQ(clock.recordedSeconds(1000, 2000), 3);
    time = 1101;
    EXPECT_TRUE(clock.isOver());
    time = 1102;
    clock.pause();
    time = 1103;
    EXPECT_EQ(clock.timestamp(), 3 * PKTimebase);
    EXPECT_TRUE(clock.isOver());
}

TEST_F(RecordingClockTest, APauseBeforeTheFirstSoundTakesNothingFromTheLength)
{
    RecordingClock clock(Origin::FirstSound, setTime());
    clock.setLength(2);
    clock.pause();
    time = 1002;
    clock.soundBegins(1001);
    clock.resume();
    time = 1003.5;
    EXPECT_FALSE(clock.isOver());
    time = 1004;
    EXPECT_TRUE(clock.isOver());
    EXPECT_EQ(clock.timestamp(), 2 * PKTimebase);
}

/// A clock that starts at zero has an origin there, too.
TEST_F(RecordingClockTest, ZeroIsATimeLikeAnyOther)
{
    RecordingClock clock(Origin::FirstPass, setTime());
    clock.passBegins(0);
    time = 1;
    EXPECT_EQ(clock.timestamp(), PKTimebase);
}

} // namespace
} // namespace vornic
