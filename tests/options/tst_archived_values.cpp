#include "base/keyed_archive.h"
#include "gui_main.h"
#include "options/archived_values.h"
#include "pictures/picture.h"

#include <QBuffer>

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace vornic {
namespace {

using namespace Qt::StringLiterals;

using Write = std::function<void(KeyedArchiver &)>;

KeyedUnarchiver archived(const Write &write)
{
    KeyedArchiver archiver;
    write(archiver);
    return *KeyedUnarchiver::create(archiver.bytes());
}

QColor colorAgain(const QColor &color)
{
    return decodeColor(archived([&](KeyedArchiver &archiver) { encodeColor(archiver, "c"_L1, color); }),
                       "c"_L1);
}

std::optional<QFont> fontAgain(const QFont &font)
{
    return decodeFont(archived([&](KeyedArchiver &archiver) { encodeFont(archiver, "f"_L1, font); }), "f"_L1);
}

QImage pictureAgain(const QImage &picture)
{
    return decodePicture(archived([&](KeyedArchiver &a) { encodePicture(a, "p"_L1, Picture(picture)); }),
                         "p"_L1)
        .image();
}

QByteArray pngOf(const QImage &picture)
{
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    return png;
}

QImage pictureFromBytes(const QByteArray &bytes)
{
    return decodePicture(archived([&](KeyedArchiver &archiver) {
                             archiver.encodeObject(
                                 "p"_L1, [&](KeyedArchiver &object) { object.encodeData("png"_L1, bytes); });
                         }),
                         "p"_L1)
        .image();
}

TEST(ArchivedColor, ComesBackExactly)
{
    EXPECT_EQ(colorAgain(Qt::green), QColor(Qt::green));
    EXPECT_EQ(colorAgain(QColor(1, 2, 3, 4)), QColor(1, 2, 3, 4));
    const QColor fine = QColor::fromRgba64(1, 300, 65535, 40000);
    EXPECT_EQ(colorAgain(fine), fine);
}

TEST(ArchivedColor, OfAnotherModelComesBackAsRgb)
{
    EXPECT_EQ(colorAgain(QColor::fromHsv(0, 255, 255)), QColor(255, 0, 0));
    EXPECT_EQ(colorAgain(QColor::fromRgbF(2.F, 0.F, -1.F)), QColor(255, 0, 0));
}

TEST(ArchivedColor, NoneAndDamagedOnes)
{
    EXPECT_FALSE(colorAgain(QColor()).isValid());
    const auto notAnObject
        = archived([](KeyedArchiver &archiver) { archiver.encodeString("c"_L1, "green"); });
    EXPECT_FALSE(decodeColor(notAnObject, "c"_L1).isValid());
    const auto outOfRange = archived([](KeyedArchiver &archiver) {
        archiver.encodeObject("c"_L1, [](KeyedArchiver &object) {
            object.encodeInt32("red"_L1, 70000);
            object.encodeInt32("green"_L1, -1);
            object.encodeDouble("blue"_L1, std::numeric_limits<double>::quiet_NaN());
        });
    });
    EXPECT_EQ(decodeColor(outOfRange, "c"_L1), QColor::fromRgba64(65535, 0, 0, 0));
}

TEST(ArchivedFont, ComesBackEqual)
{
    QFont font(QStringList { "Helvetica Neue" });
    font.setPixelSize(20);
    EXPECT_EQ(fontAgain(font), font);
    font.setWeight(QFont::DemiBold);
    font.setStyle(QFont::StyleOblique);
    font.setUnderline(true);
    font.setStrikeOut(true);
    font.setStyleName("Semibold Oblique");
    EXPECT_EQ(fontAgain(font), font);
    QFont points(QStringList { "Comma, Face" });
    points.setPointSizeF(13.25);
    points.setBold(true);
    EXPECT_EQ(fontAgain(points), points);
}

TEST(ArchivedFont, WithoutFamilyOrSizeIsNone)
{
    const auto decoded = [](const Write &write) {
        return decodeFont(archived([&](KeyedArchiver &archiver) { archiver.encodeObject("f"_L1, write); }),
                          "f"_L1);
    };
    EXPECT_FALSE(decoded([](KeyedArchiver &) {}));
    EXPECT_FALSE(decoded([](KeyedArchiver &font) { font.encodeInt32("pixelSize"_L1, 20); }));
    EXPECT_FALSE(decoded([](KeyedArchiver &font) { font.encodeString("family"_L1, "Face"); }));
    for (const double size : { 0.0, -3.0, 1e9, std::numeric_limits<double>::quiet_NaN() }) {
        EXPECT_FALSE(decoded([&](KeyedArchiver &font) {
            font.encodeString("family"_L1, "Face");
            font.encodeDouble("pointSize"_L1, size);
        })) << size;
    }
    EXPECT_TRUE(decoded([](KeyedArchiver &font) {
        font.encodeString("family"_L1, "Face");
        font.encodeInt32("pixelSize"_L1, 20);
        font.encodeInt32("weight"_L1, 100000);
        font.encodeInt32("style"_L1, -7);
    }));
}

TEST(ArchivedPicture, ComesBackPixelForPixel)
{
    // Every premultiplied grey at every opacity.
    QImage picture(256, 256, QImage::Format_ARGB32_Premultiplied);
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int grey = 0; grey < 256; ++grey) {
            const int level = std::min(grey, alpha);
            picture.setPixel(grey, alpha, qRgba(level, level, level, alpha));
        }
    }
    const QImage again = pictureAgain(picture).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(again, picture);
}

TEST(ArchivedPicture, NoneAndDamagedOnes)
{
    EXPECT_TRUE(pictureAgain(QImage()).isNull());
    EXPECT_TRUE(pictureFromBytes({}).isNull());
    EXPECT_TRUE(pictureFromBytes("GIF89a, not a PNG").isNull());
    QImage picture(20, 10, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QByteArray png = pngOf(picture);
    EXPECT_EQ(pictureFromBytes(png).size(), QSize(20, 10));
    EXPECT_TRUE(pictureFromBytes(png.first(30)).isNull());
    const auto notAnObject = archived([&](KeyedArchiver &archiver) { archiver.encodeData("p"_L1, png); });
    EXPECT_TRUE(decodePicture(notAnObject, "p"_L1).isNull());
}

TEST(ArchivedPicture, OtherFormatsAreRefused)
{
    QByteArray bmp;
    QBuffer buffer(&bmp);
    buffer.open(QIODevice::WriteOnly);
    QImage(20, 10, QImage::Format_RGB32).save(&buffer, "BMP");
    ASSERT_FALSE(bmp.isEmpty());
    EXPECT_TRUE(pictureFromBytes(bmp).isNull());
}

/// A PNG's bytes with another size in its header, and the header's checksum made right again.
QByteArray withDeclaredSize(QByteArray png, quint32 width, quint32 height)
{
    const auto put = [&](int at, quint32 value) {
        for (int i = 0; i < 4; ++i)
            png[at + i] = static_cast<char>(value >> (24 - 8 * i));
    };
    put(16, width);
    put(20, height);
    quint32 crc = 0xffffffff;
    for (int i = 12; i < 29; ++i) {
        crc ^= static_cast<quint8>(png[i]);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (crc & 1 ? 0xedb88320 : 0);
    }
    put(29, ~crc);
    return png;
}

TEST(ArchivedPicture, ADeclaredSizeBeyondAllPicturesIsRefused)
{
    QImage line(8192, 1, QImage::Format_Mono);
    line.fill(1);
    const QByteArray png = pngOf(line);
    EXPECT_EQ(pictureFromBytes(withDeclaredSize(png, 8192, 1)).size(), QSize(8192, 1));
    EXPECT_TRUE(pictureFromBytes(withDeclaredSize(png, 8192, 4097)).isNull());
    EXPECT_TRUE(pictureFromBytes(withDeclaredSize(png, 1000000, 1000000)).isNull());
    EXPECT_TRUE(pictureFromBytes(withDeclaredSize(png, 0x7fffffff, 0x7fffffff)).isNull());
    EXPECT_TRUE(pictureFromBytes(withDeclaredSize(png, 0, 0)).isNull());
}

TEST(ArchivedPicture, TheLargestPictureComesBack)
{
    QImage picture(8192, 4096, QImage::Format_Mono);
    picture.fill(0);
    EXPECT_EQ(pictureAgain(picture).size(), QSize(8192, 4096));
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runTestsWithFonts(argc, argv);
}
