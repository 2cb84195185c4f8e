#include "display/display_scale.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

// As the X server inside a Wayland session has them: two monitors of which the right one is at twice the scale.
const QRectF left(0, 0, 1920, 1080);
const QRectF right(1920, 0, 1280, 720);
const DisplayPlacement leftMonitor { QSize(1920, 1080), QPoint(0, 0) };
const DisplayPlacement rightMonitor { QSize(2560, 1440), QPoint(3840, 0) };

TEST(DisplayScale, TheScreenIsTheOneAtThePlaceOfTheDisplay)
{
    EXPECT_EQ(screenThatShows(leftMonitor, { left, right }), 0);
    EXPECT_EQ(screenThatShows(rightMonitor, { left, right }), 1);
    EXPECT_EQ(screenThatShows(rightMonitor, { right, left }), 0) << "the main one comes first";
    EXPECT_EQ(screenThatShows(leftMonitor, { right, left }), 1);
    EXPECT_EQ(screenThatShows(leftMonitor, {}), -1);
}

TEST(DisplayScale, TheScreenIsFoundWhereAllAreOfOneSize)
{
    const QRectF above(0, 0, 1600, 900);
    const QRectF beneath(0, 900, 1600, 900);
    EXPECT_EQ(screenThatShows({ QSize(1600, 900), QPoint(0, 900) }, { above, beneath }), 1);
    EXPECT_EQ(screenThatShows({ QSize(3200, 1800), QPoint(0, 1800) }, { above, beneath }), 1);
    EXPECT_EQ(screenThatShows({ QSize(3200, 1800), QPoint(0, 0) }, { above, beneath }), 0);
}

TEST(DisplayScale, ThePixelsOfAMonitorAreThoseOfItsOwnScreen)
{
    EXPECT_EQ(pixelsPerScreenPixel(rightMonitor.size, right.size()), 2);
    EXPECT_EQ(pixelsPerScreenPixel(leftMonitor.size, left.size()), 1);
    EXPECT_EQ(pixelsPerScreenPixel({ 1280, 720 }, { 848, 480 }), 1.5)
        << "one side is cut to a multiple of eight";
    EXPECT_EQ(pixelsPerScreenPixel({ 1280, 720 }, {}), 1);
    EXPECT_EQ(pixelsPerScreenPixel({}, { 1280, 720 }), 1);
}

} // namespace
} // namespace vornic
