#include "capture/VNCGDisplay.h"
#include "capture/capture_fixture.h"
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

TEST_F(CGDisplayTest, ANegativeOriginIsTruncatedTowardsZero)
{
    const QImage picture = noisePicture({ 320, 200 }, 1);
    m_display->setPicture(picture);
    const VNCGDisplay display;
    // From -10 on, so 100 - 10 columns are on the display; from 200 - (20 + 50) rows below its top.
    const auto left = display.readPartScreen(QRectF(-10.75, 20, 100, 50));
    ASSERT_TRUE(left);
    EXPECT_EQ(largestDifference(pixelsOf(*left), picture.copy(0, 130, 90, 50)), 0);
    // From 200 - (180.5 + 50) = -30.5 rows below the top on: -30, so 50 - 30 are on the display.
    const auto above = display.readPartScreen(QRectF(0, 180.5, 100, 50));
    ASSERT_TRUE(above);
    EXPECT_EQ(largestDifference(pixelsOf(*above), picture.copy(0, 0, 100, 20)), 0);
}

TEST_F(CGDisplayTest, AnEmptyRectangleIsNoPictureWhereverItLies)
{
    m_display->setPicture(noisePicture({ 320, 200 }, 1));
    const VNCGDisplay display;
    for (const QRectF &empty : { QRectF(10, 20, 0, 0), QRectF(10, 20, 100, 0), QRectF(10, 20, 0, 50) })
        EXPECT_FALSE(display.readPartScreen(empty));
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
    m_display->setReport({ .id = 0 });
    const VNCGDisplay display;
    ASSERT_EQ(m_failures.size(), 1U);
    EXPECT_EQ(m_failures[0].operation, "init");
    EXPECT_EQ(m_failures[0].file, "VNCGDisplay");
    EXPECT_EQ(m_failures[0].line, 24);
    EXPECT_EQ(m_failures[0].description, "Failed to find main display.");
}

TEST_F(CGDisplayTest, AWidthOfZeroIsMeasuredFromAPicture)
{
    m_display->setReport({ .size = QSize(0, 77) });
    const VNCGDisplay display;
    EXPECT_EQ(display.displayWidth(), 320);
    EXPECT_EQ(display.displayHeight(), 200);
    EXPECT_TRUE(m_failures.empty());
}

TEST_F(CGDisplayTest, AWidthOfZeroWithoutAPictureIsZeroWithoutAnAssertion)
{
    m_display->setReport({ .size = QSize(0, 0) });
    m_display->setRefusesGrabs(true);
    const VNCGDisplay display;
    EXPECT_EQ(display.displayWidth(), 0);
    EXPECT_EQ(display.displayHeight(), 0);
    EXPECT_TRUE(m_failures.empty());
}

TEST_F(CGDisplayTest, AHeightOfZeroIsAnAssertionFailureAndKept)
{
    m_display->setReport({ .size = QSize(320, 0) });
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
