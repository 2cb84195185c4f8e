#include "codec/PKVideoFrame2.h"
#include "codec/frame_conformer.h"
#include "codec/planar_picture.h"

#include <QImage>
#include <QRect>

#include <gtest/gtest.h>

namespace vornic {
namespace {

std::shared_ptr<const PKVideoFrame2> whiteFrame(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::white);
    auto frame = std::make_shared<PKVideoFrame2>(picture);
    frame->setTimeStamp(7);
    frame->setDuration(3);
    frame->setIsKey(true);
    return frame;
}

uchar valueAt(const PKVideoFrame2 &frame, int plane, int x, int y)
{
    return frame.planeData(plane)[y * frame.planeStride(plane) + x];
}

/// Where a frame made of a white picture is not black.
QRect whitePart(const PKVideoFrame2 &frame)
{
    QRect part;
    for (int y = 0; y < frame.codeHeight(); ++y)
        for (int x = 0; x < frame.codeWidth(); ++x)
            if (valueAt(frame, 0, x, y) != 16)
                part |= QRect(x, y, 1, 1);
    return part;
}

TEST(FrameConformer, aFrameOfAnotherShapeKeepsItsShapeBetweenBlackBars)
{
    FrameConformer conformer({ 320, 200 });
    const auto expectPart = [&](QSize shown, const QRect &part) {
        const auto frame = conformer.conform(whiteFrame(shown));
        ASSERT_TRUE(frame);
        EXPECT_EQ(QSize(frame->displayWidth(), frame->displayHeight()), QSize(320, 200));
        EXPECT_EQ(whitePart(*frame), part) << shown.width() << 'x' << shown.height();
        EXPECT_EQ(frame->timeStamp(), 7);
        EXPECT_EQ(frame->duration(), 3);
        EXPECT_TRUE(frame->isKey());
    };
    expectPart({ 160, 200 }, { 80, 0, 160, 200 });
    expectPart({ 320, 100 }, { 0, 50, 320, 100 });
    expectPart({ 640, 200 }, { 0, 50, 320, 100 });
    expectPart({ 100, 100 }, { 60, 0, 200, 200 });
    expectPart({ 160, 100 }, { 0, 0, 320, 200 });
    expectPart({ 103, 200 }, { 108, 0, 102, 200 });
    expectPart({ 1, 4000 }, { 158, 0, 2, 200 });
    expectPart({ 4000, 1 }, { 0, 98, 320, 2 });
}

TEST(FrameConformer, barsHaveNoColour)
{
    FrameConformer conformer({ 320, 200 });
    QImage red(103, 200, QImage::Format_RGB32);
    red.fill(Qt::red);
    const auto frame = conformer.conform(std::make_shared<PKVideoFrame2>(red));
    ASSERT_TRUE(frame);
    for (int y = 0; y < 100; ++y) {
        for (const int x : { 0, 53, 105, 159 }) {
            EXPECT_EQ(valueAt(*frame, 1, x, y), 128) << x << ' ' << y;
            EXPECT_EQ(valueAt(*frame, 2, x, y), 128) << x << ' ' << y;
        }
        EXPECT_GT(valueAt(*frame, 2, 54, y), 230);
        EXPECT_GT(valueAt(*frame, 2, 104, y), 230);
    }
}

TEST(FrameConformer, aRoundedSizeGetsNoBar)
{
    FrameConformer conformer({ 1366, 768 });
    const auto frame = conformer.conform(whiteFrame({ 1600, 900 }));
    ASSERT_TRUE(frame);
    EXPECT_EQ(whitePart(*frame), QRect(0, 0, 1366, 768));
}

TEST(FrameConformer, oddMoviesAreStoredWithTheirLastColumnRepeated)
{
    FrameConformer conformer({ 321, 201 });
    for (const QSize shown : { QSize(321, 50), QSize(50, 201) }) {
        const auto frame = conformer.conform(whiteFrame(shown));
        ASSERT_TRUE(frame);
        EXPECT_EQ(QSize(frame->codeWidth(), frame->codeHeight()), QSize(322, 202));
        const QRect part = whitePart(*frame);
        EXPECT_TRUE(shown.width() == 321 ? part.width() == 322 && part.height() == 50
                                         : part.width() == 50 && part.height() == 202)
            << part.width() << 'x' << part.height();
    }
}

TEST(FrameConformer, tinyMoviesAreMade)
{
    for (const QSize size : { QSize(1, 1), QSize(2, 2), QSize(1, 300), QSize(300, 1) }) {
        FrameConformer conformer(size);
        for (const QSize shown : { QSize(1, 1), QSize(7, 500), QSize(500, 7) })
            EXPECT_TRUE(conformer.conform(whiteFrame(shown))) << size.width() << 'x' << size.height();
    }
}

TEST(FrameConformer, aFrameThatFitsIsNotCopied)
{
    FrameConformer conformer({ 64, 48 });
    const auto frame = conformer.conform(whiteFrame({ 64, 48 }));
    ASSERT_TRUE(frame);
    EXPECT_EQ(conformer.conform(frame), frame);
    const auto other = conformer.conform(whiteFrame({ 48, 64 }));
    ASSERT_TRUE(other);
    EXPECT_EQ(conformer.conform(other), other);
}

TEST(FrameConformer, whatSharesItsPixelsDoesSoWhenItIsScaled)
{
    FrameConformer conformer({ 64, 48 });
    const auto frame = whiteFrame({ 32, 24 });
    const auto first = conformer.conform(frame);
    const auto later = frame->sharingPixels();
    later->setTimeStamp(20);
    later->setDuration(5);
    const auto second = conformer.conform(later);
    ASSERT_TRUE(first && second);
    EXPECT_TRUE(second->sharesPixelsWith(*first));
    EXPECT_EQ(first->timeStamp(), 7);
    EXPECT_EQ(second->timeStamp(), 20);
    EXPECT_EQ(second->duration(), 5);
    const auto other = conformer.conform(whiteFrame({ 32, 24 }));
    EXPECT_FALSE(other->sharesPixelsWith(*first)) << "of another picture";
    const auto asked = frame->sharingPixels();
    asked->setDisplaySize(10, 10);
    ASSERT_TRUE(conformer.conform(asked));
}

} // namespace
} // namespace vornic
