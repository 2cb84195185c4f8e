#include "pictures/picture_file.h"
#include "support/test_pictures.h"

#include <QBuffer>
#include <QFile>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vornic {
namespace {

qint64 pixelCount(const QImage &image)
{
    return qint64 { image.width() } * image.height();
}

QByteArray encodedAs(const char *format, const QImage &image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data();
}

/// 60 megapixels: red on the left, blue on the right.
QImage sixtyMegapixels()
{
    QImage image(10000, 6000, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter(&image).fillRect(5000, 0, 5000, 6000, Qt::blue);
    return image;
}

class PictureTest : public testing::Test
{
protected:
    [[nodiscard]] QString saved(const QImage &image, const char *name, const char *format = nullptr) const
    {
        const QString path = folder.filePath(QString::fromLatin1(name));
        EXPECT_TRUE(image.save(path, format));
        return path;
    }
    [[nodiscard]] static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder;
};

/// What is expected of 60 megapixels that were scaled down, and what comes back of them.
void expectScaledDown(const Picture &picture)
{
    EXPECT_TRUE(picture.isScaledDown());
    EXPECT_EQ(picture.originalSize(), QSize(10000, 6000));
    EXPECT_LE(pixelCount(picture.image()), Picture::maxPixels);
    EXPECT_GT(pixelCount(picture.image()), Picture::maxPixels * 99 / 100);
    EXPECT_NEAR(picture.image().width() / 5.0, picture.image().height() / 3.0, 1);
    EXPECT_GT(picture.image().pixelColor(100, 100).red(), 250);
    EXPECT_GT(picture.image().pixelColor(picture.image().width() - 100, 100).blue(), 250);
    const Picture again = Picture::decoded(picture.encoded());
    EXPECT_EQ(again.image().size(), picture.image().size());
    EXPECT_FALSE(again.isScaledDown());
}

TEST_F(PictureTest, SixtyMegapixelsOfAFileAreScaledDownAndComeBack)
{
    const QImage image = sixtyMegapixels();
    for (const char *name : { "large.jpg", "large.png" }) {
        SCOPED_TRACE(name);
        const Picture picture = readPictureFile(saved(image, name));
        EXPECT_EQ(picture.fileName(), QString::fromLatin1(name));
        expectScaledDown(picture);
    }
}

TEST_F(PictureTest, SixtyMegapixelsWithoutAFileAreScaledDownAndComeBack)
{
    const Picture picture(sixtyMegapixels());
    EXPECT_EQ(picture.fileName(), QString());
    expectScaledDown(picture);
}

TEST_F(PictureTest, WhatIsTooLargeToReadIsNamed)
{
    // 256 megapixels, told from the header; one pixel follows.
    QByteArray bitmap = encodedAs("BMP", QImage(1, 1, QImage::Format_RGB32));
    for (const int at : { 18, 22 })
        bitmap.replace(at, 4, QByteArray::fromHex("803e0000"));
    QFile file(folder.filePath("huge.bmp"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bitmap) == bitmap.size());
    file.close();
    QString reason;
    EXPECT_TRUE(readPictureFile(file.fileName(), &reason).isNull());
    EXPECT_EQ(reason, QStringLiteral("it has 16000 × 16000 pixels, which is too many"));
}

TEST_F(PictureTest, TheLargestPictureStaysWhole)
{
    QImage image(8192, 4096, QImage::Format_Mono);
    image.fill(0);
    const QString path = saved(image, "largest.png");
    const Picture picture = readPictureFile(path);
    EXPECT_FALSE(picture.isScaledDown());
    EXPECT_EQ(picture.image().size(), image.size());
    EXPECT_EQ(picture.encoded(), contents(path));
    EXPECT_EQ(Picture::decoded(picture.encoded()).image().size(), image.size());
}

TEST_F(PictureTest, WhatIsTooLongToBeDrawnIsRefused)
{
    for (const QSize size : { QSize(32768, 2), QSize(1, 40'000'000) }) {
        QImage line(size, QImage::Format_Mono);
        ASSERT_FALSE(line.isNull());
        line.fill(0);
        EXPECT_TRUE(Picture(line).isNull());
        EXPECT_TRUE(Picture::decoded(encodedAs("PNG", line)).isNull());
    }
    QImage longest(32767, 2, QImage::Format_Mono);
    longest.fill(0);
    EXPECT_FALSE(Picture(longest).isNull());
    EXPECT_FALSE(Picture::decoded(encodedAs("PNG", longest)).isNull());
    QString reason;
    EXPECT_TRUE(readPictureFile(saved(QImage(2, 40000, QImage::Format_Mono), "long.png"), &reason).isNull());
    EXPECT_EQ(reason, QStringLiteral("it has 2 × 40000 pixels, which is too many"));
}

TEST_F(PictureTest, TheFileThatWasReadIsWhatIsStored)
{
    const QImage image = test::noisePicture({ 40, 30 }, 1);
    for (const char *format : { "JPEG", "PNG" }) {
        const QString path = saved(image, format, format);
        const Picture picture = readPictureFile(path);
        EXPECT_EQ(picture.encoded(), contents(path)) << format;
        const Picture again = Picture::decoded(picture.encoded());
        EXPECT_EQ(again.image(), picture.image()) << format;
        EXPECT_EQ(again.encoded(), picture.encoded()) << format;
    }
}

TEST_F(PictureTest, OtherPicturesAreEncodedOncePixelForPixel)
{
    const QImage image = test::noisePicture({ 40, 30 }, 1);
    for (const Picture &picture : { Picture(image), readPictureFile(saved(image, "a.bmp")) }) {
        const QByteArray first = picture.encoded();
        EXPECT_TRUE(first.startsWith("\x89PNG"));
        EXPECT_EQ(picture.encoded().constData(), first.constData()) << "the same bytes, not equal ones";
        EXPECT_EQ(Picture::decoded(first).image(), Picture(image).image());
    }
}

TEST_F(PictureTest, AFileIsUprightWhenItComesBack)
{
    QByteArray jpeg = encodedAs("JPEG", test::smoothPicture({ 40, 30 }));
    // A header that says: turn by 90 degrees.
    jpeg.insert(2,
                QByteArray::fromHex("ffe1002245786966"
                                    "0000"
                                    "4d4d002a00000008"
                                    "0001"
                                    "0112"
                                    "0003"
                                    "00000001"
                                    "00060000"
                                    "00000000"));
    QFile file(folder.filePath("turned.jpg"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(jpeg) == jpeg.size());
    file.close();
    const Picture picture = readPictureFile(file.fileName());
    EXPECT_EQ(picture.image().size(), QSize(30, 40));
    EXPECT_FALSE(picture.isScaledDown());
    EXPECT_EQ(picture.encoded(), jpeg);
    EXPECT_EQ(Picture::decoded(picture.encoded()).image(), picture.image());
}

TEST_F(PictureTest, NoneIsNothing)
{
    EXPECT_TRUE(Picture().isNull());
    EXPECT_TRUE(Picture(QImage()).isNull());
    EXPECT_TRUE(Picture().encoded().isEmpty());
    EXPECT_FALSE(Picture().isScaledDown());
    EXPECT_TRUE(Picture::decoded({}).isNull());
}

TEST_F(PictureTest, OnlyTheFormatsThatAreStoredAreDecoded)
{
    const QImage image = test::noisePicture({ 40, 30 }, 1);
    EXPECT_FALSE(Picture::decoded(encodedAs("PNG", image)).isNull());
    EXPECT_FALSE(Picture::decoded(encodedAs("JPEG", image)).isNull());
    EXPECT_TRUE(Picture::decoded(encodedAs("BMP", image)).isNull());
    EXPECT_TRUE(Picture::decoded(encodedAs("PPM", image)).isNull());
}

TEST_F(PictureTest, PixelsCountWhateverDensityTheyClaim)
{
    QImage image(20, 10, QImage::Format_RGB32);
    image.setDevicePixelRatio(2);
    EXPECT_EQ(Picture(image).image().deviceIndependentSize(), QSizeF(20, 10));
}

} // namespace
} // namespace vornic
