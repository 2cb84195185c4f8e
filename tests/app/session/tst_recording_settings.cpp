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

/// A stored number that is neither of the two.
constexpr RecordQuality otherQuality { 7 };

TEST(RecordingSettingsTest, TheDelayFollowsTheQuality)
{
    EXPECT_EQ(captureDelay(captureFrameRate(RecordQuality::High)).count(), 33'333'333);
    EXPECT_EQ(captureDelay(captureFrameRate(RecordQuality::Medium)).count(), 50'000'000);
    EXPECT_EQ(captureDelay(captureFrameRate(otherQuality)).count(), 50'000'000);
}

TEST(RecordingSettingsTest, TheMoviesRateTestsForAnotherValue)
{
    EXPECT_EQ(movieFrameRate(RecordQuality::High), 30.0);
    EXPECT_EQ(movieFrameRate(RecordQuality::Medium), 25.0);
    EXPECT_EQ(movieFrameRate(otherQuality), 30.0);
}

TEST(RecordingSettingsTest, BitRates)
{
    EXPECT_EQ(movieBitRate(RecordQuality::High, 1920, 1080), 5'184'000);
    EXPECT_EQ(movieBitRate(RecordQuality::Medium, 1920, 1080), 2'488'320);
    EXPECT_EQ(movieBitRate(otherQuality, 1920, 1080), 5'184'000);
    EXPECT_EQ(movieBitRate(RecordQuality::Medium, 641, 361), 277'681);
}

} // namespace
} // namespace vornic
