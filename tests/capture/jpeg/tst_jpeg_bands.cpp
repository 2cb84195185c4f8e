#include "capture/capture_fixture.h"
#include "capture/jpeg/jpeg_band_compressor.h"
#include "capture/jpeg/jpeg_band_decoder.h"
#include "capture/jpeg/jpeg_bands.h"
#include "capture/jpeg/jpeg_codec.h"
#include "capture/jpeg/jpeg_picture.h"
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
        const std::optional<JpegBands> bands = m_compressor.compress(*grabOf(picture));
        return bands ? bands->joined() : QByteArray();
    }

    JpegBandCompressor m_compressor;
};

/// Brings \a canvas to \a jpeg, all of it where the decoder knows none of its bands.
std::vector<bool> decode(JpegBandDecoder &decoder, const QByteArray &jpeg, QImage &canvas)
{
    const std::shared_ptr<const JpegPicture> picture = JpegPicture::fromJpeg(jpeg);
    return picture ? decoder.decode(*picture, canvas) : std::vector<bool>();
}

/// What a decoder that knows nothing makes of \a jpeg.
QImage decodedAfresh(const QByteArray &jpeg)
{
    JpegBandDecoder decoder;
    QImage canvas;
    return decode(decoder, jpeg, canvas).empty() ? QImage() : canvas;
}

std::ptrdiff_t countOf(const std::vector<bool> &bands)
{
    return std::count(bands.begin(), bands.end(), true);
}

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
    const auto first = JpegPicture::fromJpeg(compress(picture));
    ASSERT_TRUE(first);
    EXPECT_EQ(countOf(decoder.decode(*first, canvas)), bandCount(200));
    EXPECT_TRUE(decoder.holds(*first));
    EXPECT_EQ(countOf(decoder.decode(*first, canvas)), 0);
    QImage other;
    EXPECT_EQ(countOf(decoder.decode(*first, other)), bandCount(200));

    for (int y = 64; y < 80; ++y)
        picture.setPixel(100, y, qRgb(255, 255, 0));
    const QByteArray jpeg = compress(picture);
    const std::optional<JpegBands> bands = JpegBands::split(jpeg);
    ASSERT_TRUE(bands);
    const auto second = first->withBands({ { 4, bands->bands[4] } }, jpeg);
    ASSERT_TRUE(second);
    EXPECT_FALSE(decoder.holds(*second));
    const std::vector<bool> written = decoder.decode(*second, canvas);
    EXPECT_EQ(countOf(written), 1);
    EXPECT_TRUE(written[4]);
    EXPECT_EQ(second->jpeg(), jpeg);
    EXPECT_EQ(largestDifference(canvas, decodedAfresh(jpeg)), 0);
}

TEST_F(JpegBandsTest, AWholePictureKeepsTheVersionsOfWhatIsSaidToBeTheSame)
{
    QImage picture = noisePicture({ 320, 200 }, 3);
    const auto first = JpegPicture::fromJpeg(compress(picture));
    picture.setPixel(5, 40, qRgb(1, 2, 3));
    const QByteArray jpeg = compress(picture);
    std::vector<bool> changed(static_cast<std::size_t>(bandCount(200)));
    changed[2] = true;
    const auto second = JpegPicture::fromJpeg(jpeg, *first, changed);
    ASSERT_TRUE(second);
    EXPECT_EQ(changedBandsOf(second->bandVersions(), first->bandVersions()), changed);
    EXPECT_EQ(second->jpeg(), jpeg);
}

TEST_F(JpegBandsTest, WhatCannotBeTheSameHasANewVersion)
{
    const auto first = JpegPicture::fromJpeg(compress(noisePicture({ 320, 200 }, 3)));
    ASSERT_TRUE(first);
    const std::vector<bool> none(static_cast<std::size_t>(bandCount(200)));
    const auto newBands
        = [&](const QByteArray &jpeg, const JpegPicture &before, const std::vector<bool> &changed) {
              const auto picture = JpegPicture::fromJpeg(jpeg, before, changed);
              return picture ? countOf(changedBandsOf(picture->bandVersions(), before.bandVersions())) : -1;
          };
    ASSERT_EQ(newBands(first->jpeg(), *first, none), 0);
    EXPECT_EQ(newBands(compress(noisePicture({ 320, 200 }, 4)), *first, none), bandCount(200));
    EXPECT_EQ(newBands(compress(noisePicture({ 304, 200 }, 3)), *first, none), bandCount(200));
    EXPECT_EQ(newBands(compress(noisePicture({ 320, 100 }, 3)), *first, none), bandCount(100));
    EXPECT_EQ(newBands(first->jpeg(), *first, std::vector<bool>(3)), bandCount(200));
    QByteArray otherTables = first->jpeg();
    ++otherTables[30]; // in a quantisation table
    EXPECT_EQ(newBands(otherTables, *first, none), bandCount(200));
}

TEST_F(JpegBandsTest, BandsThatCannotStandThereAreRefused)
{
    const QByteArray jpeg = compress(noisePicture({ 320, 200 }, 3));
    const auto picture = JpegPicture::fromJpeg(jpeg);
    ASSERT_TRUE(picture);
    const QByteArray good = JpegBands::split(jpeg)->bands[3].toByteArray();
    const auto isTaken = [&](int place, const QByteArray &band) {
        return picture->withBands({ { place, band } }, band) != nullptr;
    };
    EXPECT_TRUE(isTaken(0, good));
    EXPECT_TRUE(isTaken(bandCount(200) - 1, good));
    EXPECT_FALSE(isTaken(-1, good));
    EXPECT_FALSE(isTaken(bandCount(200), good));
    EXPECT_FALSE(isTaken(0, QByteArray()));
    EXPECT_FALSE(isTaken(0, good + "\xFF\xD3"));
    EXPECT_FALSE(isTaken(0, "\xFF\xD9" + good));
    EXPECT_FALSE(isTaken(0, good + '\xFF'));
    EXPECT_TRUE(isTaken(0, good + QByteArray("\xFF\0", 2)));
}

TEST_F(JpegBandsTest, BandsThatAreDecodedApartAreTheSameToTheLastBit)
{
    const std::initializer_list<QSize> sizes {
        { 333, 211 }, { 320, 192 }, { 16, 17 }, { 1, 1 }, { 500, 15 }
    };
    for (const QSize size : sizes) {
        for (const QImage &picture : { noisePicture(size, 7), test::smoothPicture(size) }) {
            const QByteArray jpeg = compress(picture);
            QImage whole(size, QImage::Format_RGB32);
            ASSERT_TRUE(
                jpegDecompress(jpeg, whole.bits(), size.width(), size.height(), whole.bytesPerLine()));
            EXPECT_TRUE(decodedAfresh(jpeg) == whole) << size.width() << 'x' << size.height();
        }
    }
}

TEST_F(JpegBandsTest, FlatColoursComeBackNearlyExactly)
{
    const QImage picture = boxPicture({ 320, 200 }, qRgb(255, 0, 0), { 160, 0, 160, 200 }, qRgb(0, 0, 255));
    const QImage canvas = decodedAfresh(compress(picture));
    EXPECT_LE(largestDifference(canvas.copy(0, 0, 144, 200), picture.copy(0, 0, 144, 200)), 2);
}

TEST_F(JpegBandsTest, AForeignJpegIsDecodedWhole)
{
    QByteArray foreign;
    QBuffer buffer(&foreign);
    ASSERT_TRUE(boxPicture({ 100, 60 }, qRgb(9, 200, 9), { 0, 0, 1, 1 }, 0).save(&buffer, "JPEG", 90));
    EXPECT_FALSE(JpegBands::split(foreign));
    const auto picture = JpegPicture::fromJpeg(foreign);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->jpeg(), foreign);
    EXPECT_FALSE(picture->withBands({}, {}));
    QImage canvas;
    ASSERT_EQ(JpegBandDecoder().decode(*picture, canvas).size(), 4U);
    EXPECT_LE(std::abs(qGreen(canvas.pixel(50, 30)) - 200), 4);
}

TEST_F(JpegBandsTest, DamageGivesNothingAndIsForgotten)
{
    JpegBandDecoder decoder;
    QImage canvas;
    const QByteArray jpeg = compress(noisePicture({ 320, 200 }, 3));
    const auto good = JpegPicture::fromJpeg(jpeg);
    ASSERT_TRUE(good);
    ASSERT_FALSE(decoder.decode(*good, canvas).empty());

    EXPECT_TRUE(decode(decoder, jpeg.first(jpeg.size() / 2), canvas).empty());
    EXPECT_FALSE(JpegPicture::fromJpeg(QByteArray()));
    EXPECT_FALSE(JpegPicture::fromJpeg("not a picture"));
    const auto damaged = good->withBands({ { 3, "no such code" } }, {});
    ASSERT_TRUE(damaged);
    EXPECT_TRUE(decoder.decode(*damaged, canvas).empty());
    EXPECT_FALSE(decoder.holds(*good));
    EXPECT_FALSE(damaged->image());

    EXPECT_EQ(countOf(decoder.decode(*good, canvas)), bandCount(200));
    EXPECT_EQ(largestDifference(canvas, decodedAfresh(jpeg)), 0);
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
    EXPECT_FALSE(JpegPicture::fromJpeg(jpeg));
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
