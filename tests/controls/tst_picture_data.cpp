#include "controls/picture_data.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

namespace vornic {
namespace {

QImage twoPixels()
{
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixelColor(0, 0, QColor(1, 2, 3, 255));
    // Opened pictures are premultiplied: an opacity of 1/5 multiplies these without rounding.
    image.setPixelColor(1, 0, QColor(200, 100, 50, 51));
    return image;
}

TEST(TiffData, HoldsThePixelsWithTheirOpacity)
{
    const QByteArray file = tiffData(twoPixels());
    EXPECT_TRUE(file.startsWith("II*") || file.startsWith("MM")) << "the type that the data is offered as";
    const QImage opened = QImage::fromData(file, "TIFF");
    EXPECT_EQ(opened.convertToFormat(QImage::Format_ARGB32), twoPixels());
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
