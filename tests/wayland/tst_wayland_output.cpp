#include "wayland/wayland_output.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

WaylandOutput turned(int transform)
{
    WaylandOutput output;
    output.mode = QSize(1920, 1080);
    output.transform = transform;
    return output;
}

TEST(WaylandOutput, AQuarterTurnSwapsWidthAndHeight)
{
    for (const int upright : { 0, 2, 4, 6 })
        EXPECT_EQ(turned(upright).pixels(), QSize(1920, 1080)) << upright;
    for (const int onItsSide : { 1, 3, 5, 7 })
        EXPECT_EQ(turned(onItsSide).pixels(), QSize(1080, 1920)) << onItsSide;
}

TEST(WaylandOutput, TheFactorIsOfThePixelsAsTheyAreSeen)
{
    WaylandOutput output = turned(1);
    output.logical = QRect(0, 0, 720, 1280);
    EXPECT_DOUBLE_EQ(output.factor(), 1.5);
    output.logical = QRect(0, 0, 719, 1279);
    EXPECT_DOUBLE_EQ(output.factor(), 1.5) << "a logical size that was cut to whole numbers";
    output.logical = QRect();
    EXPECT_DOUBLE_EQ(output.factor(), 1) << "not known";
}

TEST(WaylandOutput, TheMainOneLiesAtTheOrigin)
{
    EXPECT_FALSE(mainOutput({}));
    WaylandOutput right;
    right.name = "DP-1";
    right.logical = QRect(1280, 0, 1280, 720);
    WaylandOutput left;
    left.name = "DP-2";
    left.logical = QRect(0, 0, 1280, 720);
    EXPECT_EQ(mainOutput({ right, left })->name, "DP-2");
    EXPECT_EQ(mainOutput({ right })->name, "DP-1") << "none lies there";
}

} // namespace
} // namespace vornic
