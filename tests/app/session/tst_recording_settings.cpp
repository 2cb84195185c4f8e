#include "app/session/recording_settings.h"
#include "app/session/time_text.h"
#include "base/PKTimebase.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

TEST(TimeTextTest, HoursMinutesSeconds)
{
    EXPECT_EQ(stringFromeTimestamp(0), "00:00:00");
    EXPECT_EQ(stringFromeTimestamp(PKTimebase - 1), "00:00:00");
    EXPECT_EQ(stringFromeTimestamp(PKTimebase), "00:00:01");
    EXPECT_EQ(stringFromeTimestamp(3725 * PKTimebase), "01:02:05");
    EXPECT_EQ(stringFromeTimestamp(100 * 3600 * PKTimebase), "100:00:00");
}

TEST(RecordingSettingsTest, TheDelayFollowsTheQuality)
{
    EXPECT_EQ(captureDelay(captureFrameRate(0)).count(), 33'333'333);
    EXPECT_EQ(captureDelay(captureFrameRate(1)).count(), 50'000'000);
    EXPECT_EQ(captureDelay(captureFrameRate(7)).count(), 50'000'000);
}

TEST(RecordingSettingsTest, TheMoviesRateTestsForAnotherValue)
{
    EXPECT_EQ(movieFrameRate(0), 30.0);
    EXPECT_EQ(movieFrameRate(1), 25.0);
    EXPECT_EQ(movieFrameRate(7), 30.0);
}

TEST(RecordingSettingsTest, BitRates)
{
    EXPECT_EQ(movieBitRate(0, 1920, 1080), 5'184'000);
    EXPECT_EQ(movieBitRate(1, 1920, 1080), 2'488'320);
    EXPECT_EQ(movieBitRate(7, 1920, 1080), 5'184'000);
    EXPECT_EQ(movieBitRate(1, 641, 361), 277'681);
}

} // namespace
} // namespace vornic
