#include "geometry/toolkit_scale.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

class Scales : public testing::TestWithParam<double>
{
};

TEST_P(Scales, WindowsHoldTheirPixelsAndHardlyMore)
{
    const double factor = GetParam();
    for (const QPoint origin : { QPoint(0, 0), QPoint(1280, 60) }) {
        const ToolkitScale scale(origin, factor);
        for (int x = -8; x < 40; ++x) {
            for (int width = 76; width < 90; ++width) {
                const QRect wanted = QRect(x, 7 - x, width, 3 * width).translated(origin);
                const QRect given = scale.pixelsOf(scale.logicalAround(wanted));
                ASSERT_TRUE(given.contains(wanted)) << x << ' ' << width;
                ASSERT_LE(given.width(), wanted.width() + 2 * factor);
                ASSERT_LE(given.height(), wanted.height() + 2 * factor);
                ASSERT_TRUE(factor > 1 || given == wanted);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Factors, Scales, testing::Values(1.0, 1.25, 1.5, 2.0));

/// As the X server inside a Wayland session has them, a second monitor at twice the scale.
TEST(ToolkitScale, TheOriginMayBeAnotherInPixels)
{
    const ToolkitScale scale({ 1920, 0 }, 2, { 3840, 0 });
    EXPECT_EQ(scale.pixelsOf({ 2020, 50, 300, 200 }), QRect(4040, 100, 600, 400));
    EXPECT_EQ(scale.logicalAround({ 4040, 100, 600, 400 }), QRect(2020, 50, 300, 200));
}

} // namespace
} // namespace vornic
