#include "control_pictures.h"
#include "controls/level_meter.h"
#include "controls/painted_control_access.h"

#include <QAccessible>
#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace vornic {
namespace {

/// As a share of the loudest that there is.
double peakAt(double decibels)
{
    return std::pow(10, decibels / 20);
}

TEST(LevelBallistics, APeakIsShownAtOnceAndFallsBy20DecibelsASecond)
{
    LevelBallistics meter;
    EXPECT_EQ(meter.level(), LevelBallistics::lowest);
    meter.update(peakAt(-6), 0.05);
    EXPECT_NEAR(meter.level(), -6, 0.01);
    for (int i = 0; i < 10; ++i)
        meter.update(0, 0.05);
    EXPECT_NEAR(meter.level(), -16, 0.01);
    meter.update(peakAt(-10), 0.05);
    EXPECT_NEAR(meter.level(), -10, 0.01);
    meter.update(0, 60);
    EXPECT_EQ(meter.level(), LevelBallistics::lowest);
}

TEST(LevelBallistics, TheHighestPeakIsHeldAndThenFallsToo)
{
    LevelBallistics meter;
    meter.update(peakAt(-6), 0.05);
    for (int i = 0; i < 28; ++i)
        meter.update(peakAt(-20), 0.05);
    EXPECT_NEAR(meter.held(), -6, 0.01) << "for 1.4 s";
    for (int i = 0; i < 3; ++i)
        meter.update(peakAt(-20), 0.05);
    EXPECT_NEAR(meter.held(), -20, 0.01);
    meter.update(peakAt(-3), 0.05);
    EXPECT_NEAR(meter.held(), -3, 0.01) << "a higher one is shown at once";
}

TEST(LevelBallistics, ClippingIsWhatReachesTheLoudest)
{
    LevelBallistics meter;
    meter.update(0.99, 0.05);
    EXPECT_FALSE(meter.isClipping());
    meter.update(1, 0.05);
    EXPECT_TRUE(meter.isClipping());
    EXPECT_EQ(meter.level(), 0);
    meter.update(0, 0.05);
    EXPECT_TRUE(meter.isClipping()) << "for as long as it is held";
    meter.update(0, 2);
    EXPECT_FALSE(meter.isClipping());
}

class LevelMeterTest : public ::testing::Test
{
protected:
    LevelMeterTest()
    {
        meter.resize(200, 14);
        meter.setListening(true);
    }
    /// Where the bar is filled from the left without a break, in points.
    int filled()
    {
        const QImage picture = painted(meter, 1);
        int x = 3;
        while (x < picture.width() && picture.pixelColor(x, 7).saturation() > 80)
            ++x;
        return x - 3;
    }
    QColor colourAt(int x) { return painted(meter, 1).pixelColor(x, 7); }
    void show(double decibels)
    {
        meter.addPeak(peakAt(decibels));
        meter.advance(0.05);
    }

    LevelMeter meter;
};

TEST_F(LevelMeterTest, TheBarIsAsLongAsTheSoundIsLoud)
{
    EXPECT_EQ(filled(), 0);
    show(-60);
    EXPECT_EQ(filled(), 0);
    show(-30);
    const int half = filled();
    EXPECT_GT(half, 50);
    show(0);
    EXPECT_NEAR(filled(), 2 * half, 3);
}

TEST_F(LevelMeterTest, WhatIsTooLoudIsRed)
{
    show(-20);
    EXPECT_GT(colourAt(10).green(), colourAt(10).red());
    show(-3);
    const int inTheLoudPart = filled() - 4;
    EXPECT_GT(colourAt(inTheLoudPart).red(), colourAt(inTheLoudPart).green());
    EXPECT_GT(colourAt(inTheLoudPart).green(), 150) << "a warning";
    show(0);
    EXPECT_LT(colourAt(inTheLoudPart).green(), 120) << "red";
}

TEST_F(LevelMeterTest, ThePeaksOfOneMomentAreOne)
{
    meter.addPeak(peakAt(-10));
    meter.addPeak(peakAt(-40));
    meter.advance(0.05);
    EXPECT_EQ(meter.level(), -10);
}

TEST_F(LevelMeterTest, WhenNobodyListensNothingIsShown)
{
    show(-6);
    meter.setListening(false);
    EXPECT_EQ(filled(), 0);
    meter.addPeak(1);
    meter.setListening(true);
    meter.advance(0.05);
    EXPECT_EQ(meter.level(), -60) << "what came meanwhile is forgotten";
}

TEST_F(LevelMeterTest, AssistiveProgramsReadItsValue)
{
    PaintedControlAccess::install();
    meter.setAccessibleName("Level");
    show(-12);
    show(-18);
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&meter);
    ASSERT_TRUE(access);
    EXPECT_EQ(access->text(QAccessible::Name), "Level");
    EXPECT_EQ(access->text(QAccessible::Value), "-12 dBFS") << "the highest of the last moments";
    ASSERT_TRUE(access->valueInterface());
    EXPECT_EQ(access->valueInterface()->currentValue().toInt(), -13);
    EXPECT_EQ(access->valueInterface()->minimumValue().toInt(), -60);
    EXPECT_EQ(access->valueInterface()->maximumValue().toInt(), 0);
    meter.setListening(false);
    EXPECT_EQ(access->text(QAccessible::Value), QString());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
