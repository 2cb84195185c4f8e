#include "geometry/screen_geometry.h"

#include <gtest/gtest.h>

#include <limits>

using namespace vornic;

namespace {

const DisplayPlacement onlyDisplay { { 1440, 900 }, { 0, 0 } };
const DisplayPlacement displayOnTheRight { { 1440, 900 }, { 1280, 60 } };

TEST(TruncatedRectTest, DropsFractionsTowardZero)
{
    EXPECT_EQ(truncatedRect(QRectF(10.9, 20.1, 30.99, 40.5)), QRect(10, 20, 30, 40));
    EXPECT_EQ(truncatedRect(QRectF(-10.9, -0.5, 3.5, 4)), QRect(-10, 0, 3, 4));
}

TEST(TruncatedRectTest, TakesNumbersThatNoIntHolds)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(truncatedRect(QRectF(none, 1, 2, 3)), QRect(0, 1, 2, 3));
    const QRect huge = truncatedRect(QRectF(-1e300, 1e300, 1e300, 5));
    EXPECT_LT(huge.x(), -100000);
    EXPECT_GT(huge.y(), 100000);
    EXPECT_GT(huge.width(), 100000);
    EXPECT_EQ(huge.height(), 5);
}

TEST(DesktopPixelsTest, AreTheMarginAroundTheRecordedOnes)
{
    EXPECT_EQ(desktopPixels({ 320, 150, 800, 600 }, 8, onlyDisplay), QRect(312, 142, 816, 616));
    EXPECT_EQ(desktopPixels({ 0, 0, 484, 384 }, 8, onlyDisplay), QRect(-8, 508, 500, 400));
    EXPECT_EQ(desktopPixels({ 0, 0, 1440, 900 }, 0, onlyDisplay), QRect(0, 0, 1440, 900));
}

TEST(DesktopPixelsTest, OfARectangleThatIsNotWholeFollowTheGrab)
{
    // In display coordinates (320.5, 149, 800.5, 600.5), cut off.
    EXPECT_EQ(desktopPixels({ 320.5, 150.5, 800.5, 600.5 }, 8, onlyDisplay), QRect(312, 141, 816, 616));
}

TEST(DesktopPixelsTest, OfNothingAreTheMarginAlone)
{
    EXPECT_EQ(desktopPixels({ 8, 8, -16, -16 }, 8, onlyDisplay).size(), QSize(16, 16));
}

TEST(DesktopPixelsTest, CountFromTheDesktopNotTheDisplay)
{
    EXPECT_EQ(desktopPixels({ 320, 150, 800, 600 }, 8, displayOnTheRight), QRect(1592, 202, 816, 616));
}

TEST(ScreenPointTest, CountsFromTheMainDisplaysLowerLeft)
{
    EXPECT_EQ(screenPoint({ 0.5, 0.5 }, onlyDisplay), QPointF(0.5, 899.5));
    EXPECT_EQ(screenPoint({ 1280, 60 }, displayOnTheRight), QPointF(0, 900));
    EXPECT_EQ(screenPoint({ 0.5, 959.5 }, displayOnTheRight), QPointF(-1279.5, 0.5));
}

} // namespace
