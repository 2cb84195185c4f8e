#include "overlay/wayland/output_grid.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

TEST(OutputGrid, APointLiesInThePixelThatHoldsIt)
{
    const OutputGrid grid(1.5);
    EXPECT_EQ(grid.pixelAt({ 0, 0 }), QPoint(0, 0));
    EXPECT_EQ(grid.pixelAt({ 99.9, 100.1 }), QPoint(149, 150));
    // The middle of the last pixel of 1280, as the compositor tells it: in 256ths.
    EXPECT_EQ(grid.pixelAt({ 218368 / 256.0, 0 }), QPoint(1279, 0));
}

TEST(OutputGrid, WhatIsAroundHoldsEveryPixel)
{
    const OutputGrid grid(1.25);
    EXPECT_EQ(grid.logicalAround(QRect(101, 83, 301, 203)), QRect(80, 66, 242, 163));
    EXPECT_EQ(grid.pixelsAround(QRect(80, 66, 242, 163)), QRect(100, 82, 303, 205));
    EXPECT_EQ(OutputGrid(1.2).logicalAround(QRect(12, 12, 120, 120)), QRect(10, 10, 100, 100)) << "whole";
}

TEST(OutputGrid, WhatIsInsideTakesNoPixelOfOthers)
{
    EXPECT_EQ(OutputGrid(1).logicalInside(QRect(101, 83, 301, 203)), QRegion(QRect(101, 83, 301, 203)));
    EXPECT_EQ(OutputGrid(2).logicalInside(QRect(101, 83, 301, 203)), QRegion(QRect(51, 42, 150, 101)));
    EXPECT_EQ(OutputGrid(1.5).logicalInside(QRect(150, 150, 300, 300)), QRegion(QRect(100, 100, 200, 200)));
    EXPECT_TRUE(OutputGrid(2).logicalInside({}).isEmpty());
}

TEST(OutputGrid, StripsAtAFractionalScaleLeaveTheRectangleFree)
{
    constexpr int width = 8;
    for (const double factor : { 1.25, 1.5, 1.75 }) {
        const OutputGrid grid(factor);
        for (int odd = 0; odd < 7; ++odd) {
            const QRect recorded(101 + odd, 83 + odd, 301, 203);
            const QRect around = recorded.adjusted(-width, -width, width, width);
            const QRegion strips = QRegion(around) - recorded;
            const QRegion inside = grid.logicalInside(strips);
            QRegion shown;
            for (const QRect &part : inside)
                shown += grid.pixelsAround(part);
            EXPECT_TRUE((shown & recorded).isEmpty()) << factor << ", " << odd;
            const QRect seen = shown.boundingRect();
            EXPECT_LE(seen.left() - around.left(), 1) << factor << ", " << odd;
            EXPECT_LE(around.bottom() - seen.bottom(), 1) << factor << ", " << odd;
        }
    }
}

TEST(OutputGrid, PartsThatTouchAreOneInside)
{
    QRegion rows;
    for (int y = 0; y < 40; ++y)
        rows += QRect(y, y, 40, 1);
    const QRegion inside = OutputGrid(2).logicalInside(rows);
    EXPECT_TRUE(inside.contains(QPoint(15, 10))) << "rows of one pixel, two of which are a logical one";
    for (const QRect &part : inside) {
        for (const QRect &pixels : QRegion(OutputGrid(2).pixelsAround(part)))
            EXPECT_TRUE((QRegion(pixels) - rows).isEmpty());
    }
}

} // namespace
} // namespace vornic
