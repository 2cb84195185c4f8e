#include "base/assertion.h"
#include "codec/PKScaleContext.h"
#include "codec/PKVideoFrame2.h"

#include <QColor>
#include <QPainter>

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace vornic::testing {
namespace {

QImage flat(QSize size, QColor colour)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

QImage randomPicture(QSize size, unsigned seed)
{
    QImage picture(size, QImage::Format_RGB32);
    std::mt19937 random(seed);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            picture.setPixel(x, y, static_cast<QRgb>(random()));
    return picture;
}

PKScaleContext toYuv(QSize from, QSize to)
{
    return PKScaleContext(
        from.width(), to.width(), from.height(), to.height(), PKPixelFormatRGB32, PKPixelFormatYUV420P);
}

int at(const PKVideoFrame2 &frame, int plane, int x, int y)
{
    return frame.planeData(plane)[y * frame.planeStride(plane) + x];
}

bool samePixels(const PKVideoFrame2 &a, const PKVideoFrame2 &b)
{
    for (int plane = 0; plane < 3; ++plane) {
        const int shift = plane == 0 ? 0 : 1;
        for (int y = 0; y < a.codeHeight() >> shift; ++y)
            if (std::memcmp(a.planeData(plane) + y * a.planeStride(plane),
                            b.planeData(plane) + y * b.planeStride(plane),
                            static_cast<std::size_t>(a.codeWidth() >> shift))
                != 0)
                return false;
    }
    return true;
}

/// Counts the assertion failures during one test.
class PKScaleContextTest : public ::testing::Test
{
protected:
    PKScaleContextTest()
        : m_before(setAssertionHandler([this](const AssertionFailure &) { ++m_failures; }))
    {
    }
    ~PKScaleContextTest() override { setAssertionHandler(m_before); }

    int m_failures = 0;

private:
    AssertionHandler m_before;
};

TEST_F(PKScaleContextTest, keepsTimesAndShownSize)
{
    PKVideoFrame2 rgb(flat({ 33, 21 }, Qt::white));
    rgb.setTimeStamp(123);
    rgb.setDuration(45);
    const auto yuv = toYuv({ 33, 21 }, { 33, 21 }).scaleFrame(rgb);
    EXPECT_EQ(yuv->timeStamp(), 123);
    EXPECT_EQ(yuv->duration(), 45);
    EXPECT_EQ(yuv->displayWidth(), 33);
    EXPECT_EQ(yuv->displayHeight(), 21);
    EXPECT_EQ(yuv->codeWidth(), 34);
    EXPECT_EQ(yuv->codeHeight(), 22);
}

TEST_F(PKScaleContextTest, laterFramesDoNotDisturbThoseStillHeld)
{
    auto converter = toYuv({ 16, 16 }, { 16, 16 });
    const auto white = converter.scaleFrame(PKVideoFrame2(flat({ 16, 16 }, Qt::white)));
    const uchar *released = converter.scaleFrame(PKVideoFrame2(flat({ 16, 16 }, Qt::black)))->planeData(0);
    const auto black = converter.scaleFrame(PKVideoFrame2(flat({ 16, 16 }, Qt::black)));
    EXPECT_EQ(black->planeData(0), released); // memory that nobody holds is used again
    EXPECT_EQ(at(*white, 0, 3, 3), 235);
    EXPECT_EQ(at(*black, 0, 3, 3), 16);
}

TEST_F(PKScaleContextTest, framesOutliveTheContext)
{
    std::shared_ptr<PKVideoFrame2> frame;
    {
        auto converter = toYuv({ 16, 16 }, { 16, 16 });
        frame = converter.scaleFrame(PKVideoFrame2(flat({ 16, 16 }, Qt::white)));
    }
    EXPECT_EQ(at(*frame, 0, 15, 15), 235);
    EXPECT_EQ(at(*frame->deepCopy(), 0, 15, 15), 235);
}

class ScaledSize : public ::testing::TestWithParam<std::pair<QSize, QSize>>
{
};

TEST_P(ScaledSize, flatColoursStayTrue)
{
    const auto [from, to] = GetParam();
    auto scaler = toYuv(from, to);
    for (const QColor colour : { QColor(Qt::white), QColor(Qt::red), QColor(10, 200, 90) }) {
        const auto scaled = scaler.scaleFrame(PKVideoFrame2(flat(from, colour)));
        const auto exact = toYuv(to, to).scaleFrame(PKVideoFrame2(flat(to, colour)));
        ASSERT_TRUE(scaled);
        EXPECT_EQ(scaled->displayWidth(), to.width());
        EXPECT_EQ(scaled->codeWidth(), exact->codeWidth());
        EXPECT_EQ(scaled->codeHeight(), exact->codeHeight());
        for (int y = 0; y < exact->codeHeight(); y += 3) {
            for (int x = 0; x < exact->codeWidth(); x += 3) {
                ASSERT_NEAR(at(*scaled, 0, x, y), at(*exact, 0, x, y), 1);
                ASSERT_NEAR(at(*scaled, 1, x / 2, y / 2), at(*exact, 1, x / 2, y / 2), 1);
                ASSERT_NEAR(at(*scaled, 2, x / 2, y / 2), at(*exact, 2, x / 2, y / 2), 1);
            }
        }
        const int lastX = exact->codeWidth() - 1;
        const int lastY = exact->codeHeight() - 1;
        EXPECT_NEAR(at(*scaled, 0, lastX, lastY), at(*exact, 0, lastX, lastY), 1);
    }
}

TEST_P(ScaledSize, edgesStayWhereTheyAre)
{
    const auto [from, to] = GetParam();
    QImage picture = flat(from, Qt::black);
    QPainter painter(&picture);
    painter.fillRect(from.width() / 2, 0, from.width(), from.height() / 2, Qt::red);
    painter.end();
    const auto scaled = toYuv(from, to).scaleFrame(PKVideoFrame2(picture));
    ASSERT_TRUE(scaled);
    const int x = to.width() / 2;
    const int y = to.height() / 2;
    EXPECT_NEAR(at(*scaled, 0, x - 4, y - 5), 16, 3);
    EXPECT_NEAR(at(*scaled, 0, x + 4, y - 5), 63, 3);
    EXPECT_NEAR(at(*scaled, 0, x + 4, y + 5), 16, 3);
    EXPECT_NEAR(at(*scaled, 2, (x - 6) / 2, (y - 6) / 2), 128, 4);
    EXPECT_NEAR(at(*scaled, 2, (x + 6) / 2, (y - 6) / 2), 240, 4);
    EXPECT_NEAR(at(*scaled, 2, (x + 6) / 2, (y + 6) / 2), 128, 4);
}

INSTANTIATE_TEST_SUITE_P(Sizes,
                         ScaledSize,
                         ::testing::Values(std::pair(QSize(256, 144), QSize(192, 108)),
                                           std::pair(QSize(288, 180), QSize(173, 109)),
                                           std::pair(QSize(193, 50), QSize(191, 49)),
                                           std::pair(QSize(64, 48), QSize(128, 96))));

TEST_F(PKScaleContextTest, aYuvFrameOfTheSameSizeIsNotCopied)
{
    const auto yuv = toYuv({ 32, 32 }, { 32, 32 }).scaleFrame(PKVideoFrame2(flat({ 32, 32 }, Qt::red)));
    PKScaleContext same(32, 32, 32, 32, PKPixelFormatYUV420P, PKPixelFormatYUV420P);
    EXPECT_TRUE(same.scaleFrame(*yuv)->sharesPixelsWith(*yuv));
}

TEST_F(PKScaleContextTest, yuvFramesGoBackToTheColoursTheyCameFrom)
{
    const auto yuv
        = toYuv({ 32, 32 }, { 32, 32 }).scaleFrame(PKVideoFrame2(flat({ 32, 32 }, QColor(200, 30, 90))));
    PKScaleContext back(32, 48, 32, 48, PKPixelFormatYUV420P, PKPixelFormatRGB32);
    const auto rgb = back.scaleFrame(*yuv);
    ASSERT_EQ(rgb->codeWidth(), 48);
    const uchar *pixel = rgb->planeData(0) + 20 * rgb->planeStride(0) + 4 * 20;
    EXPECT_NEAR(pixel[2], 200, 3);
    EXPECT_NEAR(pixel[1], 30, 3);
    EXPECT_NEAR(pixel[0], 90, 3);
}

TEST_F(PKScaleContextTest, aFrameThatDoesNotFitIsAnAssertionFailure)
{
    auto converter = toYuv({ 32, 32 }, { 32, 32 });
    EXPECT_EQ(converter.scaleFrame(PKVideoFrame2(flat({ 31, 32 }, Qt::red))), nullptr);
    EXPECT_EQ(converter.scaleFrame(PKVideoFrame2(QImage())), nullptr);
    EXPECT_EQ(m_failures, 2);
}

TEST_F(PKScaleContextTest, convertedRowsAreThoseOfTheWholePicture)
{
    for (const QSize size : { QSize(64, 40), QSize(37, 41) }) {
        auto converter = toYuv(size, size);
        QImage picture = randomPicture(size, 1);
        const auto before = converter.scaleFrame(PKVideoFrame2(picture));
        const QImage other = randomPicture(size, 2);
        for (const int row : { 16, 17, size.height() - 2, size.height() - 1 }) {
            std::memcpy(
                picture.scanLine(row), other.constScanLine(row), static_cast<std::size_t>(4 * size.width()));
        }
        const PKVideoFrame2 rgb(picture);
        const auto updated = before->deepCopy();
        converter.convertRows(rgb, *updated, 16, 2);
        EXPECT_FALSE(samePixels(*updated, *before));
        const int lastPair = (size.height() - 2) / 2 * 2;
        converter.convertRows(rgb, *updated, lastPair, size.height() - lastPair);
        EXPECT_TRUE(samePixels(*updated, *converter.scaleFrame(rgb))) << size.width();
        EXPECT_EQ(m_failures, 0);
    }
}

TEST_F(PKScaleContextTest, convertingRowsLeavesSharedPixelsAlone)
{
    auto converter = toYuv({ 16, 16 }, { 16, 16 });
    const auto shown = converter.scaleFrame(PKVideoFrame2(flat({ 16, 16 }, Qt::white)));
    const auto next = shown->sharingPixels();
    converter.convertRows(PKVideoFrame2(flat({ 16, 16 }, Qt::black)), *next, 4, 2);
    EXPECT_EQ(at(*shown, 0, 8, 4), 235);
    EXPECT_EQ(at(*next, 0, 8, 4), 16);
    EXPECT_EQ(at(*next, 0, 8, 6), 235);
    const uchar *pixels = next->planeData(0);
    converter.convertRows(PKVideoFrame2(flat({ 16, 16 }, Qt::black)), *next, 6, 2);
    EXPECT_EQ(next->planeData(0), pixels); // nobody else holds them: converted in place
}

TEST_F(PKScaleContextTest, impossibleRowsAreAnAssertionFailureAndChangeNothing)
{
    auto converter = toYuv({ 16, 16 }, { 16, 16 });
    const auto yuv = converter.scaleFrame(PKVideoFrame2(flat({ 16, 16 }, Qt::white)));
    const PKVideoFrame2 black(flat({ 16, 16 }, Qt::black));
    converter.convertRows(black, *yuv, 1, 2);
    converter.convertRows(black, *yuv, 0, 3);
    converter.convertRows(black, *yuv, -2, 2);
    toYuv({ 16, 16 }, { 8, 8 }).convertRows(black, *yuv, 0, 2);
    EXPECT_EQ(m_failures, 4);
    EXPECT_TRUE(samePixels(*yuv, *converter.scaleFrame(PKVideoFrame2(flat({ 16, 16 }, Qt::white)))));
}

} // namespace
} // namespace vornic::testing
