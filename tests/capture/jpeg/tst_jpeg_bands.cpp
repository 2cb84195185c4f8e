#include "capture/capture_fixture.h"
#include "capture/jpeg/jpeg_band_compressor.h"
#include "capture/jpeg/jpeg_band_decoder.h"
#include "capture/jpeg/jpeg_bands.h"
#include "capture/jpeg/jpeg_codec.h"
#include "display/bitmap_image.h"
#include "support/test_pictures.h"

#include <QBuffer>
#include <QRandomGenerator>

#include <algorithm>

namespace vornic {
namespace {

using test::noisePicture;

class JpegBandsTest : public CaptureTest
{
protected:
    QByteArray compress(const QImage &picture)
    {
        return m_compressor.compress(*grabOf(picture)).value_or(QByteArray());
    }

    JpegBandCompressor m_compressor;
};

/// The same picture compressed in one piece, by the library alone.
QByteArray inOnePiece(const QImage &picture)
{
    return jpegCompress(picture.constBits(), picture.width(), picture.height(), picture.bytesPerLine())
        .value_or(QByteArray());
}

TEST_F(JpegBandsTest, PiecesMakeTheVeryBytesOfTheWhole)
{
    for (const QSize size :
         { QSize(320, 200), QSize(641, 361), QSize(16, 16), QSize(1, 1), QSize(17, 999) }) {
        const QImage picture = noisePicture(size, 7);
        EXPECT_EQ(compress(picture), inOnePiece(picture)) << size.width() << "x" << size.height();
    }
}

TEST_F(JpegBandsTest, OtherProgramsReadIt)
{
    const QImage picture
        = boxPicture({ 333, 211 }, qRgb(40, 80, 120), { 100, 90, 60, 50 }, qRgb(200, 30, 30));
    const QImage read = QImage::fromData(compress(picture), "JPEG").convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(read.size(), picture.size());
    EXPECT_LE(std::abs(qRed(read.pixel(130, 110)) - 200), 4);
    EXPECT_LE(std::abs(qBlue(read.pixel(10, 200)) - 120), 4);
}

TEST_F(JpegBandsTest, OnlyChangedBandsAreCompressedAgain)
{
    QImage picture = noisePicture({ 320, 200 }, 1);
    compress(picture);
    EXPECT_EQ(m_compressor.compressedBandCount(), bandCount(200));

    picture.setPixel(5, 40, qRgb(1, 2, 3));
    picture.setPixel(5, 199, qRgb(1, 2, 3));
    const QByteArray jpeg = compress(picture);
    EXPECT_EQ(m_compressor.compressedBandCount(), 2);
    EXPECT_EQ(jpeg, inOnePiece(picture));

    EXPECT_EQ(compress(picture), jpeg);
    EXPECT_EQ(m_compressor.compressedBandCount(), 0);
}

TEST_F(JpegBandsTest, ANewSizeBeginsAnew)
{
    compress(noisePicture({ 320, 200 }, 1));
    const QImage other = noisePicture({ 200, 320 }, 2);
    EXPECT_EQ(compress(other), inOnePiece(other));
}

TEST_F(JpegBandsTest, DecodingFollowsChangesBandByBand)
{
    JpegBandDecoder decoder;
    QImage canvas;
    QImage picture = noisePicture({ 320, 200 }, 3);
    const auto all = static_cast<std::ptrdiff_t>(bandCount(200));
    std::vector<bool> written = decoder.decode(compress(picture), canvas);
    EXPECT_EQ(std::count(written.begin(), written.end(), true), all);

    for (int y = 64; y < 80; ++y)
        picture.setPixel(100, y, qRgb(255, 255, 0));
    const QByteArray second = compress(picture);
    written = decoder.decode(second, canvas);
    EXPECT_EQ(std::count(written.begin(), written.end(), true), 1);
    EXPECT_TRUE(written[4]);

    QImage afresh;
    ASSERT_FALSE(JpegBandDecoder().decode(second, afresh).empty());
    EXPECT_EQ(largestDifference(canvas, afresh), 0);
}

TEST_F(JpegBandsTest, FlatColoursComeBackNearlyExactly)
{
    const QImage picture = boxPicture({ 320, 200 }, qRgb(255, 0, 0), { 160, 0, 160, 200 }, qRgb(0, 0, 255));
    QImage canvas;
    ASSERT_FALSE(JpegBandDecoder().decode(compress(picture), canvas).empty());
    EXPECT_LE(largestDifference(canvas.copy(0, 0, 144, 200), picture.copy(0, 0, 144, 200)), 2);
}

TEST_F(JpegBandsTest, AForeignJpegIsDecodedWhole)
{
    QByteArray foreign;
    QBuffer buffer(&foreign);
    ASSERT_TRUE(boxPicture({ 100, 60 }, qRgb(9, 200, 9), { 0, 0, 1, 1 }, 0).save(&buffer, "JPEG", 90));
    EXPECT_FALSE(JpegBands::split(foreign));
    QImage canvas;
    ASSERT_EQ(JpegBandDecoder().decode(foreign, canvas).size(), 4U);
    EXPECT_LE(std::abs(qGreen(canvas.pixel(50, 30)) - 200), 4);
}

TEST_F(JpegBandsTest, DamageGivesNothingAndIsForgotten)
{
    JpegBandDecoder decoder;
    QImage canvas;
    const QImage picture = noisePicture({ 320, 200 }, 3);
    const QByteArray good = compress(picture);
    ASSERT_FALSE(decoder.decode(good, canvas).empty());

    QByteArray damaged = good;
    damaged.truncate(good.size() / 2);
    EXPECT_TRUE(decoder.decode(damaged, canvas).empty());
    EXPECT_TRUE(decoder.decode(QByteArray(), canvas).empty());
    EXPECT_TRUE(decoder.decode("not a picture", canvas).empty());

    const std::vector<bool> written = decoder.decode(good, canvas);
    EXPECT_EQ(std::count(written.begin(), written.end(), true), static_cast<std::ptrdiff_t>(bandCount(200)));
    QImage afresh;
    ASSERT_FALSE(JpegBandDecoder().decode(good, afresh).empty());
    EXPECT_EQ(largestDifference(canvas, afresh), 0);
}

TEST_F(JpegBandsTest, AHugeDeclaredSizeTakesNoMemory)
{
    QByteArray jpeg = compress(noisePicture({ 320, 200 }, 3));
    const std::optional<JpegBands> parts = JpegBands::split(jpeg);
    ASSERT_TRUE(parts);
    const qsizetype frame = jpeg.indexOf("\xFF\xC0");
    ASSERT_GT(frame, 0);
    for (const int offset : { 5, 6, 7, 8 })
        jpeg[frame + offset] = '\xFE';
    EXPECT_TRUE(jpegDeclaredSize(jpeg).isEmpty());
    QImage canvas;
    EXPECT_TRUE(JpegBandDecoder().decode(jpeg, canvas).empty());
}

TEST_F(JpegBandsTest, RestartMarkersOutOfOrderAreNotTakenForBands)
{
    QByteArray jpeg = compress(noisePicture({ 320, 200 }, 3));
    ASSERT_TRUE(JpegBands::split(jpeg));
    const qsizetype marker = jpeg.indexOf("\xFF\xD1");
    ASSERT_GT(marker, 0);
    jpeg[marker + 1] = '\xD4';
    EXPECT_FALSE(JpegBands::split(jpeg));
}

} // namespace
} // namespace vornic
