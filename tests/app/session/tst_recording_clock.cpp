#include "app/session/recording_clock.h"
#include "base/PKTimebase.h"

#include <gtest/gtest.h>

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
