#include "display/bitmap_image.h"
#include "display/fake_display.h"
#include "support/test_pictures.h"

#include <gtest/gtest.h>

#include <limits>

using namespace vornic;
using namespace vornic::test;

namespace {

constexpr QSize size { 200, 100 };
constexpr QRect whole { 0, 0, 200, 100 };

TEST(FakeDisplayTest, IsGreyAtFirst)
{
    FakeDisplay display(size);
    EXPECT_EQ(display.mainDisplaySize(), size);
    EXPECT_NE(display.mainDisplayId(), 0U);
    QImage grey(size, QImage::Format_RGB32);
    grey.fill(0xff808080);
    const auto image = display.grab(whole);
    ASSERT_TRUE(image);
    EXPECT_EQ(pixelsOf(*image), grey);
}

TEST(FakeDisplayTest, GrabsThePartThatLiesOnIt)
{
    FakeDisplay display(size);
    const QImage picture = noisePicture(size, 1);
    display.setPicture(picture);
    const auto part = display.grab(QRect(150, -20, 100, 60));
    ASSERT_TRUE(part);
    EXPECT_EQ(pixelsOf(*part), picture.copy(150, 0, 50, 40));
}

TEST(FakeDisplayTest, GivesNothingOffTheDisplay)
{
    FakeDisplay display(size);
    constexpr int farthest = std::numeric_limits<int>::max();
    EXPECT_FALSE(display.grab(QRect(200, 0, 10, 10)));
    EXPECT_FALSE(display.grab(QRect(0, -10, 10, 10)));
    EXPECT_FALSE(display.grab(QRect(10, 10, 0, 10)));
    EXPECT_FALSE(display.grab(QRect(10, 10, -5, 10)));
    EXPECT_FALSE(display.grab(QRect(QPoint(farthest - 10, 0), QSize(10, 10))));
}

TEST(FakeDisplayTest, AHugeRectangleIsTheWholeDisplay)
{
    FakeDisplay display(size);
    constexpr int farthest = std::numeric_limits<int>::max();
    const auto image = display.grab(QRect(QPoint(-farthest, -farthest), QPoint(farthest, farthest)));
    ASSERT_TRUE(image);
    EXPECT_EQ(QSize(image->width(), image->height()), size);
}

TEST(FakeDisplayTest, BandsWithTheSamePixelsKeepTheirVersion)
{
    FakeDisplay display(size);
    QImage picture = noisePicture(size, 1);
    display.setPicture(picture);
    const auto before = display.grab(whole);
    picture.setPixel(7, 40, 0xff123456);
    display.setPicture(picture);
    const auto after = display.grab(whole);
    ASSERT_EQ(before->bandVersions().size(), 7U);
    ASSERT_EQ(after->bandVersions().size(), 7U);
    for (std::size_t band = 0; band < 7; ++band)
        EXPECT_EQ(before->bandVersions()[band] == after->bandVersions()[band], band != 40 / 16) << band;
    EXPECT_FALSE(after->isSamePicture(*before));
}

TEST(FakeDisplayTest, AnEqualPictureIsTheSamePicture)
{
    FakeDisplay display(size);
    display.setPicture(noisePicture(size, 1));
    const auto before = display.grab(whole);
    const auto part = display.grab(QRect(10, 10, 20, 20));
    display.setPicture(noisePicture(size, 1));
    EXPECT_TRUE(display.grab(whole)->isSamePicture(*before));
    EXPECT_TRUE(display.grab(QRect(10, 10, 20, 20))->isSamePicture(*part));
    EXPECT_FALSE(part->isSamePicture(*before));
}

TEST(FakeDisplayTest, AnImageStaysAsItWas)
{
    FakeDisplay display(size);
    const QImage first = noisePicture(size, 1);
    display.setPicture(first);
    const auto image = display.grab(whole);
    display.setPicture(noisePicture(size, 2));
    EXPECT_EQ(pixelsOf(*display.grab(whole)), noisePicture(size, 2));
    EXPECT_EQ(pixelsOf(*image), first);
}

TEST(FakeDisplayTest, TakesTheSizeOfItsPicture)
{
    FakeDisplay display(size);
    display.setPicture(noisePicture(QSize(64, 48), 1));
    EXPECT_EQ(display.mainDisplaySize(), QSize(64, 48));
    EXPECT_EQ(display.grab(whole)->height(), 48);
}

TEST(FakeDisplayTest, ReportsWhatItIsToldTo)
{
    FakeDisplay display(size);
    display.setReport({ .size = QSize(0, 0), .id = 0 });
    EXPECT_EQ(display.mainDisplaySize(), QSize(0, 0));
    EXPECT_EQ(display.mainDisplayId(), 0U);
    ASSERT_TRUE(display.grab(whole));
    EXPECT_EQ(display.grab(whole)->width(), 200);
}

TEST(FakeDisplayTest, CountsAndRefusesGrabs)
{
    FakeDisplay display(size);
    EXPECT_TRUE(display.grab(whole));
    display.setRefusesGrabs(true);
    EXPECT_FALSE(display.grab(whole));
    EXPECT_EQ(display.grabCount(), 2);
    display.setRefusesGrabs(false);
    EXPECT_TRUE(display.grab(whole));
}

TEST(FakeDisplayTest, ShowsThePointerThatItWasGiven)
{
    FakeDisplay display(size);
    EXPECT_FALSE(display.cursorShape());
    QImage picture(8, 8, QImage::Format_ARGB32_Premultiplied);
    picture.fill(0x80400000);
    display.setPointerPosition(QPoint(-3, 500));
    display.setCursorShape({ picture, QPoint(2, 3) });
    EXPECT_EQ(display.pointerPosition(), QPoint(-3, 500));
    ASSERT_TRUE(display.cursorShape());
    EXPECT_EQ(*display.cursorShape(), (CursorShape { picture, QPoint(2, 3) }));
    EXPECT_NE(*display.cursorShape(), (CursorShape { picture, QPoint(3, 2) }));
}

} // namespace
