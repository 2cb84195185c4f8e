#include "geometry/y_up.h"

#include <QColor>
#include <QImage>

#include <gtest/gtest.h>

namespace vornic {
namespace {

QImage white(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// Columns of red and blue, in turns.
QImage stripes(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(x, y, x % 2 == 0 ? Qt::red : Qt::blue);
    return image;
}

/// How many pixels lie between red and blue; those that are mixed with the white around do not count.
int mixedPixels(const QImage &image)
{
    int mixed = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.green() == 0 && color.red() > 0 && color.blue() > 0)
                ++mixed;
        }
    return mixed;
}

TEST(DrawImageYUp, StandsUprightWithItsBottomRowAtTheRectanglesY)
{
    QImage picture(2, 2, QImage::Format_RGB32);
    picture.fill(Qt::black);
    picture.setPixelColor(1, 0, Qt::green);
    QImage surface = white({ 10, 8 });
    QPainter painter(&surface);
    flipPainter(painter, surface.height());
    drawImageYUp(painter, QRectF(3, 1, 2, 2), picture);
    painter.end();
    QImage expected = white({ 10, 8 });
    QPainter(&expected).drawImage(3, 5, picture);
    EXPECT_EQ(surface, expected);
}

TEST(DrawImageYUp, ARotatedPictureIsAsSmoothAsThePainterIs)
{
    const auto drawn = [](bool smooth) {
        QImage surface = white({ 60, 60 });
        QPainter painter(&surface);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
        flipPainter(painter, surface.height());
        painter.translate(30, 30);
        painter.rotate(30);
        drawImageYUp(painter, QRectF(-10, -10, 20, 20), stripes({ 20, 20 }));
        painter.end();
        return surface;
    };
    EXPECT_GT(mixedPixels(drawn(true)), 100);
    EXPECT_EQ(mixedPixels(drawn(false)), 0);
}

TEST(DrawImageYUp, AScaledPictureIsAlwaysSmooth)
{
    QImage surface = white({ 60, 60 });
    QPainter painter(&surface);
    flipPainter(painter, surface.height());
    drawImageYUp(painter, QRectF(10, 10, 40, 40), stripes({ 4, 4 }));
    EXPECT_FALSE(painter.testRenderHint(QPainter::SmoothPixmapTransform)) << "as it was before";
    painter.end();
    EXPECT_GT(mixedPixels(surface), 100);
}

} // namespace
} // namespace vornic
