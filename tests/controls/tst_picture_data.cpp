#include "controls/picture_data.h"

#include <QGuiApplication>
#include <QtEndian>

#include <gtest/gtest.h>

#include <map>

namespace vornic {
namespace {

QImage twoPixels()
{
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixelColor(0, 0, QColor(1, 2, 3, 255));
    image.setPixelColor(1, 0, QColor(200, 100, 50, 128));
    return image;
}

template<typename Number>
Number read(const QByteArray &file, quint32 offset)
{
    return qFromLittleEndian<Number>(file.constData() + offset);
}

TEST(TiffData, TellsItsSizeAndHasThePixels)
{
    const QByteArray file = tiffData(twoPixels());
    ASSERT_GT(file.size(), 8);
    EXPECT_EQ(file.left(4), QByteArray("II*\0", 4));
    const auto directory = read<quint32>(file, 4);
    std::map<int, quint32> fields;
    int lastTag = 0;
    for (quint32 field = 0; field < read<quint16>(file, directory); ++field) {
        const quint32 entry = directory + 2 + field * 12;
        const int tag = read<quint16>(file, entry);
        EXPECT_GT(tag, lastTag) << "readers rely on the order";
        lastTag = tag;
        const bool isShort = read<quint16>(file, entry + 2) == 3 && read<quint32>(file, entry + 4) == 1;
        fields[tag] = isShort ? read<quint16>(file, entry + 8) : read<quint32>(file, entry + 8);
    }
    EXPECT_EQ(fields[256], 2U);
    EXPECT_EQ(fields[257], 1U);
    EXPECT_EQ(fields[259], 1U);
    EXPECT_EQ(fields[277], 4U);
    EXPECT_EQ(fields[279], 8U);
    for (quint32 channel = 0; channel < 4; ++channel)
        EXPECT_EQ(read<quint16>(file, fields[258] + 2 * channel), 8);
    EXPECT_EQ(file.mid(fields[273]), QByteArray::fromHex("010203ffc8643280"));
}

TEST(PdfData, IsOnePageOfThePicturesSize)
{
    const QByteArray file = pdfData(QImage(320, 240, QImage::Format_RGB32));
    EXPECT_TRUE(file.startsWith("%PDF-"));
    EXPECT_TRUE(file.contains("/Count 1"));
    EXPECT_TRUE(file.contains("/MediaBox [0 0 320"));
    EXPECT_TRUE(file.contains("/Width 320"));
}

TEST(PictureData, OfNothingIsNothing)
{
    EXPECT_TRUE(tiffData({}).isEmpty());
    EXPECT_TRUE(pdfData({}).isEmpty());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
