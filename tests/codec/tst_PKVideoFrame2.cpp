#include "codec/PKScaleContext.h"
#include "codec/PKVideoFrame2.h"
#include "geometry/y_up.h"

#include <QColor>

#include <gtest/gtest.h>

namespace vornic::testing {
namespace {

QImage flat(int width, int height, QColor colour)
{
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

QRgb pixel(const PKVideoFrame2 &frame, int x, int y)
{
    return reinterpret_cast<const QRgb *>(frame.planeData(0) + y * frame.planeStride(0))[x] | 0xFF000000U;
}

std::shared_ptr<PKVideoFrame2> yuvFrame(int width, int height, QColor colour)
{
    PKScaleContext converter(width, width, height, height, PKPixelFormatRGB32, PKPixelFormatYUV420P);
    return converter.scaleFrame(PKVideoFrame2(flat(width, height, colour)));
}

TEST(PKVideoFrame2, takesAnImageWithoutCopyingIt)
{
    QImage picture = flat(17, 9, Qt::red);
    const uchar *pixels = picture.constBits();
    const PKVideoFrame2 frame(std::move(picture));
    EXPECT_EQ(frame.planeData(0), pixels);
    EXPECT_EQ(frame.codeWidth(), 17);
    EXPECT_EQ(frame.codeHeight(), 9);
    EXPECT_EQ(frame.displayWidth(), 17);
    EXPECT_EQ(frame.displayHeight(), 9);
    EXPECT_EQ(frame.pixFormat(), PKPixelFormatRGB32);
    EXPECT_EQ(frame.timeStamp(), 0);
    EXPECT_EQ(frame.duration(), 0);
}

TEST(PKVideoFrame2, convertsOtherFormats)
{
    QImage picture(2, 1, QImage::Format_RGB888);
    picture.setPixelColor(0, 0, Qt::red);
    picture.setPixelColor(1, 0, Qt::blue);
    const PKVideoFrame2 frame(picture);
    const uchar *bytes = frame.planeData(0);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(bytes[2], 255);
    EXPECT_EQ(bytes[4], 255);
    EXPECT_EQ(bytes[6], 0);
}

TEST(PKVideoFrame2, anEmptyImageMakesAFrameOfNoSize)
{
    const PKVideoFrame2 frame { QImage() };
    EXPECT_EQ(frame.codeWidth(), 0);
    EXPECT_EQ(frame.displayHeight(), 0);
}

TEST(PKVideoFrame2, paintsWithTheOriginAtTheLowerLeftCorner)
{
    PKVideoFrame2 frame(flat(20, 10, Qt::black));
    frame.creatContextRef()->fillRect(QRect(2, 1, 3, 4), Qt::white);
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 20; ++x) {
            const bool isInside = x >= 2 && x < 5 && y >= 5 && y < 9;
            ASSERT_EQ(pixel(frame, x, y), isInside ? 0xFFFFFFFF : 0xFF000000) << x << ", " << y;
        }
    }
}

TEST(PKVideoFrame2, drawsImagesUprightAndPixelForPixel)
{
    QImage picture(2, 2, QImage::Format_ARGB32_Premultiplied);
    picture.setPixelColor(0, 0, Qt::red);
    picture.setPixelColor(1, 0, Qt::green);
    picture.setPixelColor(0, 1, Qt::blue);
    picture.setPixelColor(1, 1, Qt::transparent);
    PKVideoFrame2 frame(flat(10, 10, Qt::white));
    {
        const auto painter = frame.creatContextRef();
        drawImageYUp(*painter, QRectF(3, 1, 2, 2), picture);
        EXPECT_EQ(painter->transform().m22(), -1); // as it was before
    }
    EXPECT_EQ(pixel(frame, 3, 7), QColor(Qt::red).rgb());
    EXPECT_EQ(pixel(frame, 4, 7), QColor(Qt::green).rgb());
    EXPECT_EQ(pixel(frame, 3, 8), QColor(Qt::blue).rgb());
    EXPECT_EQ(pixel(frame, 4, 8), QColor(Qt::white).rgb());
    EXPECT_EQ(pixel(frame, 3, 6), QColor(Qt::white).rgb());
    EXPECT_EQ(pixel(frame, 3, 9), QColor(Qt::white).rgb());
}

TEST(PKVideoFrame2, scalesAnImageIntoItsRectangle)
{
    QImage picture = flat(2, 2, Qt::red);
    PKVideoFrame2 frame(flat(20, 20, Qt::white));
    drawImageYUp(*frame.creatContextRef(), QRectF(4, 4, 8, 8), picture);
    EXPECT_EQ(pixel(frame, 8, 11), QColor(Qt::red).rgb());
    EXPECT_EQ(pixel(frame, 2, 11), QColor(Qt::white).rgb());
    EXPECT_EQ(pixel(frame, 14, 11), QColor(Qt::white).rgb());
}

TEST(PKVideoFrame2, paintingLeavesSharedPixelsAlone)
{
    PKVideoFrame2 frame(flat(4, 4, Qt::white));
    const auto other = frame.sharingPixels();
    ASSERT_TRUE(frame.sharesPixelsWith(*other));
    frame.creatContextRef()->fillRect(0, 0, 4, 4, Qt::black);
    EXPECT_FALSE(frame.sharesPixelsWith(*other));
    EXPECT_EQ(pixel(*other, 1, 1), 0xFFFFFFFF);
    EXPECT_EQ(pixel(frame, 1, 1), 0xFF000000);
}

TEST(PKVideoFrame2, askingForADisplaySizeLeavesThePixels)
{
    PKVideoFrame2 frame(flat(8, 6, Qt::white));
    frame.setDisplaySize(4, 3);
    EXPECT_EQ(frame.codeWidth(), 8);
    EXPECT_EQ(frame.codeHeight(), 6);
    EXPECT_EQ(frame.displayWidth(), 4);
    EXPECT_EQ(frame.displayHeight(), 3);
}

TEST(PKVideoFrame2, aYuvFrameStoresEvenSizesAndShowsOddOnes)
{
    const auto frame = yuvFrame(7, 5, Qt::white);
    EXPECT_EQ(frame->pixFormat(), PKPixelFormatYUV420P);
    EXPECT_EQ(frame->codeWidth(), 8);
    EXPECT_EQ(frame->codeHeight(), 6);
    EXPECT_EQ(frame->displayWidth(), 7);
    EXPECT_EQ(frame->displayHeight(), 5);
    EXPECT_EQ(frame->creatContextRef(), nullptr);
    EXPECT_EQ(frame->planeData(0)[7 + 5 * frame->planeStride(0)], 235);
}

TEST(PKVideoFrame2, framesOverTheSamePixelsHaveTheirOwnTimes)
{
    const auto frame = yuvFrame(8, 8, Qt::red);
    frame->setTimeStamp(100);
    frame->setDuration(10);
    const auto other = frame->sharingPixels();
    EXPECT_EQ(other->timeStamp(), 100);
    other->setTimeStamp(110);
    other->setDuration(20);
    EXPECT_EQ(frame->timeStamp(), 100);
    EXPECT_EQ(frame->duration(), 10);
    for (int plane = 0; plane < 3; ++plane)
        EXPECT_EQ(frame->planeData(plane), other->planeData(plane));
    EXPECT_TRUE(other->sharesPixelsWith(*frame));
}

TEST(PKVideoFrame2, aDeepCopyHasTheSamePixelsElsewhere)
{
    const auto frame = yuvFrame(9, 4, Qt::green);
    frame->setTimeStamp(5);
    const auto copy = frame->deepCopy();
    EXPECT_FALSE(copy->sharesPixelsWith(*frame));
    EXPECT_EQ(copy->timeStamp(), 5);
    EXPECT_EQ(copy->displayWidth(), 9);
    for (int plane = 0; plane < 3; ++plane) {
        EXPECT_NE(copy->planeData(plane), frame->planeData(plane));
        EXPECT_EQ(copy->planeData(plane)[0], frame->planeData(plane)[0]);
    }
    const PKVideoFrame2 rgb(flat(3, 3, Qt::blue));
    EXPECT_FALSE(rgb.deepCopy()->sharesPixelsWith(rgb));
    EXPECT_EQ(pixel(*rgb.deepCopy(), 2, 2), QColor(Qt::blue).rgb());
}

} // namespace
} // namespace vornic::testing
