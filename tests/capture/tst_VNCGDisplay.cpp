#include "capture/VNCGDisplay.h"
#include "capture_fixture.h"
#include "support/test_pictures.h"

namespace vornic {
namespace {

using test::noisePicture;
using test::pixelsOf;

class CGDisplayTest : public CaptureTest
{
};

TEST_F(CGDisplayTest, ReadsTheWholeDisplay)
{
    const QImage picture = noisePicture({ 320, 200 }, 1);
    m_display->setPicture(picture);
    const VNCGDisplay display;
    EXPECT_EQ(display.displayWidth(), 320);
    EXPECT_EQ(display.displayHeight(), 200);
    const auto image = display.readFullScreen();
    ASSERT_TRUE(image);
    EXPECT_EQ(largestDifference(pixelsOf(*image), picture), 0);
}

TEST_F(CGDisplayTest, ARectangleCountsFromTheBottom)
{
    const QImage picture = noisePicture({ 320, 200 }, 1);
    m_display->setPicture(picture);
    const auto image = VNCGDisplay().readPartScreen(QRectF(10, 20, 100, 50));
    ASSERT_TRUE(image);
    EXPECT_EQ(largestDifference(pixelsOf(*image), picture.copy(10, 200 - 20 - 50, 100, 50)), 0);
}

TEST_F(CGDisplayTest, AFractionalRectangleIsTruncated)
{
    const QImage picture = noisePicture({ 320, 200 }, 1);
    m_display->setPicture(picture);
    // 200 - (20.25 + 50.5) = 129.25 from the top.
    const auto image = VNCGDisplay().readPartScreen(QRectF(10.9, 20.25, 100.9, 50.5));
    ASSERT_TRUE(image);
    EXPECT_EQ(largestDifference(pixelsOf(*image), picture.copy(10, 129, 100, 50)), 0);
}

TEST_F(CGDisplayTest, WhatLiesOffTheDisplayIsLeftOut)
{
    const QImage picture = noisePicture({ 320, 200 }, 1);
    m_display->setPicture(picture);
    const VNCGDisplay display;
    const auto image = display.readPartScreen(QRectF(-30, -20, 100, 50));
    ASSERT_TRUE(image);
    EXPECT_EQ(largestDifference(pixelsOf(*image), picture.copy(0, 170, 70, 30)), 0);
    EXPECT_FALSE(display.readPartScreen(QRectF(400, 0, 100, 100)));
    EXPECT_FALSE(display.readPartScreen(QRectF(0, 250, 100, 100)));
}

TEST_F(CGDisplayTest, ARefusedGrabIsPassedOn)
{
    m_display->setRefusesGrabs(true);
    const VNCGDisplay display;
    EXPECT_FALSE(display.readFullScreen());
    EXPECT_FALSE(display.readPartScreen(QRectF(0, 0, 10, 10)));
}

TEST_F(CGDisplayTest, NoDisplayIsAnAssertionFailure)
{
    m_display->setMainDisplayId(0);
    const VNCGDisplay display;
    ASSERT_EQ(m_failures.size(), 1U);
    EXPECT_EQ(m_failures[0].operation, "init");
    EXPECT_EQ(m_failures[0].file, "VNCGDisplay");
    EXPECT_EQ(m_failures[0].line, 24);
    EXPECT_EQ(m_failures[0].description, "Failed to find main display.");
}

TEST_F(CGDisplayTest, AWidthOfZeroIsMeasuredFromAPicture)
{
    m_display->setReportedSize(QSize(0, 77));
    const VNCGDisplay display;
    EXPECT_EQ(display.displayWidth(), 320);
    EXPECT_EQ(display.displayHeight(), 200);
    EXPECT_TRUE(m_failures.empty());
}

TEST_F(CGDisplayTest, AWidthOfZeroWithoutAPictureIsZeroWithoutAnAssertion)
{
    m_display->setReportedSize(QSize(0, 0));
    m_display->setRefusesGrabs(true);
    const VNCGDisplay display;
    EXPECT_EQ(display.displayWidth(), 0);
    EXPECT_EQ(display.displayHeight(), 0);
    EXPECT_TRUE(m_failures.empty());
}

TEST_F(CGDisplayTest, AHeightOfZeroIsAnAssertionFailureAndKept)
{
    m_display->setReportedSize(QSize(320, 0));
    const VNCGDisplay display;
    ASSERT_EQ(m_failures.size(), 1U);
    EXPECT_EQ(m_failures[0].line, 33);
    EXPECT_EQ(m_failures[0].description, "Failed to get display height");
    EXPECT_EQ(display.displayHeight(), 0);
}

TEST_F(CGDisplayTest, ItMeasuresOnce)
{
    const VNCGDisplay display;
    m_display->setPicture(noisePicture({ 100, 50 }, 1));
    EXPECT_EQ(display.displayWidth(), 320);
    EXPECT_EQ(display.displayHeight(), 200);
}

TEST_F(CGDisplayTest, ADisplayThatHasGrownIsReadWhole)
{
    const VNCGDisplay display;
    const QImage picture = noisePicture({ 640, 400 }, 1);
    m_display->setPicture(picture);
    const auto image = display.readFullScreen();
    ASSERT_TRUE(image);
    EXPECT_EQ(largestDifference(pixelsOf(*image), picture), 0);
}

TEST_F(CGDisplayTest, ADisplayThatHasShrunkIsReadWhole)
{
    const VNCGDisplay display;
    for (const QSize size : { QSize(100, 50), QSize(320, 50), QSize(100, 400) }) {
        const QImage picture = noisePicture(size, 1);
        m_display->setPicture(picture);
        const auto image = display.readFullScreen();
        ASSERT_TRUE(image);
        EXPECT_EQ(largestDifference(pixelsOf(*image), picture), 0);
    }
}

} // namespace
} // namespace vornic
