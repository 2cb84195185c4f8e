#include "gui_main.h"
#include "options/VNLogoContext.h"
#include "told.h"

#include <QFontMetricsF>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

namespace vornic {
namespace {

using Names = QStringList;

TEST(VNLogoContext, FreshContextHasItsDefaults)
{
    VNLogoContext logo;
    EXPECT_FALSE(logo.LogoValidate());
    EXPECT_EQ(logo.LogoType(), 0);
    EXPECT_TRUE(logo.isLogoTypeText());
    EXPECT_EQ(logo.LogoText(), "Sample Text");
    EXPECT_EQ(logo.LogoPosition(), QPointF(150, 100));
    EXPECT_EQ(logo.LogoScale(), 1.0);
    EXPECT_EQ(logo.LogoTransparency(), 255);
    EXPECT_EQ(logo.LogoRotation(), 0);
    EXPECT_EQ(logo.LogoFontFillColor(), QColor(0, 255, 0));
    EXPECT_EQ(logo.LogoFontStrokeColor(), QColor(0, 0, 255));
    EXPECT_TRUE(logo.getNSImage().isNull());
    ASSERT_TRUE(logo.fontAttrs().font);
    EXPECT_EQ(logo.fontAttrs().font->family(), "Helvetica Neue");
    EXPECT_EQ(logo.fontAttrs().font->pixelSize(), 20);
}

TEST(VNLogoContext, AccessorsStoreWhatTheyAreGiven)
{
    VNLogoContext logo;
    logo.setLogoValidate(true);
    logo.setLogoType(-4);
    logo.setLogoText("Tee\nx");
    logo.setLogoTransparency(-1000);
    logo.setLogoScale(-2.5);
    logo.setLogoRotation(100000);
    logo.setLogoFontFillColor(Qt::red);
    logo.setLogoFontStrokeColor(QColor(1, 2, 3, 4));
    EXPECT_TRUE(logo.LogoValidate());
    EXPECT_EQ(logo.LogoType(), -4);
    EXPECT_FALSE(logo.isLogoTypeText());
    EXPECT_EQ(logo.LogoText(), "Tee\nx");
    EXPECT_EQ(logo.LogoTransparency(), -1000);
    EXPECT_EQ(logo.LogoScale(), -2.5);
    EXPECT_EQ(logo.LogoRotation(), 100000);
    EXPECT_EQ(logo.LogoFontFillColor(), QColor(Qt::red));
    EXPECT_EQ(logo.LogoFontStrokeColor(), QColor(1, 2, 3, 4));
}

TEST(VNLogoContext, TextTypeIsZero)
{
    VNLogoContext logo;
    logo.setIsLogoTypeText(false);
    EXPECT_EQ(logo.LogoType(), 1);
    EXPECT_FALSE(logo.isLogoTypeText());
    logo.setIsLogoTypeText(true);
    EXPECT_EQ(logo.LogoType(), 0);
    EXPECT_TRUE(logo.isLogoTypeText());
}

TEST(VNLogoContext, TypeHasTheNumbersOfTheProperty)
{
    VNLogoContext logo;
    EXPECT_EQ(logo.type(), LogoType::Text);
    logo.setLogoType(1);
    EXPECT_EQ(logo.type(), LogoType::Picture);
    logo.setLogoType(2);
    EXPECT_NE(logo.type(), LogoType::Text);
    EXPECT_NE(logo.type(), LogoType::Picture);
    EXPECT_FALSE(logo.isLogoTypeText());
}

TEST(VNLogoContext, EachCoordinateIsSetAlone)
{
    VNLogoContext logo;
    logo.setLogoPositionX(-3.5);
    EXPECT_EQ(logo.LogoPosition(), QPointF(-3.5, 100));
    logo.setLogoPositionY(7.25);
    EXPECT_EQ(logo.LogoPosition(), QPointF(-3.5, 7.25));
    logo.setLogoPosition({ 1, 2 });
    EXPECT_EQ(logo.logoPositionX(), 1);
    EXPECT_EQ(logo.logoPositionY(), 2);
}

TEST(VNLogoContext, PositionAndCoordinatesTellEachOtherOnce)
{
    VNLogoContext logo;
    Told told(&logo);
    const Names all { "LogoPosition", "logoOffsetX", "logoOffsetY", "logoPositionX", "logoPositionY" };
    logo.setLogoPosition({ 1, 2 });
    EXPECT_EQ(told.take(), all);
    logo.setLogoPositionX(3);
    EXPECT_EQ(told.take(), all);
    logo.setLogoPositionY(4);
    EXPECT_EQ(told.take(), all);
    logo.setLogoOffsetX(5);
    EXPECT_EQ(told.take(), all);
    logo.setLogoOffsetY(6);
    EXPECT_EQ(told.take(), all);
}

TEST(VNLogoContext, OffsetsCountFromTheRecordedRectangle)
{
    VNLogoContext logo;
    EXPECT_EQ(logo.logoOffsetX(), 142);
    EXPECT_EQ(logo.logoOffsetY(), 92);
    logo.setLogoOffsetX(0);
    EXPECT_EQ(logo.LogoPosition(), QPointF(8, 100));
    logo.setLogoOffsetY(-3.5);
    EXPECT_EQ(logo.LogoPosition(), QPointF(8, 4.5));
    logo.setLogoPosition({ 0, 20 });
    EXPECT_EQ(logo.property("logoOffsetX").toDouble(), -8);
    EXPECT_TRUE(logo.setProperty("logoOffsetY", 30));
    EXPECT_EQ(logo.LogoPosition(), QPointF(0, 38));
}

TEST(VNLogoContext, TheOtherKeysTellThemselves)
{
    VNLogoContext logo;
    Told told(&logo);
    logo.setLogoValidate(true);
    EXPECT_EQ(told.take(), Names { "LogoValidate" });
    logo.setLogoText("x");
    EXPECT_EQ(told.take(), Names { "LogoText" });
    logo.setLogoTransparency(1);
    EXPECT_EQ(told.take(), Names { "LogoTransparency" });
    logo.setLogoScale(2);
    EXPECT_EQ(told.take(), Names { "LogoScale" });
    logo.setLogoRotation(3);
    EXPECT_EQ(told.take(), Names { "LogoRotation" });
    logo.setLogoFontFillColor(Qt::red);
    EXPECT_EQ(told.take(), Names { "LogoFontFillColor" });
    logo.setLogoFontStrokeColor(Qt::red);
    EXPECT_EQ(told.take(), Names { "LogoFontStrokeColor" });
    logo.setLogoType(1);
    EXPECT_EQ(told.take(), (Names { "LogoType", "isLogoTypeText" }));
    logo.setIsLogoTypeText(true);
    EXPECT_EQ(told.take(), (Names { "LogoType", "isLogoTypeText" }));
}

TEST(VNLogoContext, DeclaresItsDependencies)
{
    using Keys = QByteArrayList;
    const auto keys = &VNLogoContext::keyPathsForValuesAffectingValueForKey;
    EXPECT_EQ(keys("LogoPosition"), (Keys { "logoPositionX", "logoPositionY" }));
    EXPECT_EQ(keys("logoPositionX"), Keys { "LogoPosition" });
    EXPECT_EQ(keys("logoPositionY"), Keys { "LogoPosition" });
    EXPECT_EQ(keys("isLogoTypeText"), Keys());
    EXPECT_EQ(keys("LogoText"), Keys());
}

TEST(VNLogoContext, FontAttributesAreCopied)
{
    VNLogoContext logo;
    TextAttributes attributes { QFont(QStringList { "DejaVu Serif" }, 33) };
    logo.setFontAttrs(attributes);
    attributes.font->setBold(true);
    EXPECT_FALSE(logo.fontAttrs().font->bold());
    EXPECT_EQ(logo.fontAttrs().font->family(), "DejaVu Serif");
    logo.setFontAttrs({});
    EXPECT_FALSE(logo.fontAttrs().font);
}

TEST(VNLogoContext, PictureIsKeptPixelForPixel)
{
    QImage picture(3, 2, QImage::Format_ARGB32);
    picture.fill(QColor(10, 20, 30));
    picture.setPixelColor(2, 1, QColor(200, 100, 50));
    VNLogoContext logo;
    logo.setNSImage(picture);
    picture.fill(Qt::white);
    EXPECT_EQ(logo.getNSImage().size(), QSize(3, 2));
    EXPECT_EQ(logo.getNSImage().pixelColor(0, 0), QColor(10, 20, 30));
    EXPECT_EQ(logo.getNSImage().pixelColor(2, 1), QColor(200, 100, 50));
}

TEST(VNLogoContext, ANullPictureChangesNothing)
{
    VNLogoContext logo;
    logo.setNSImage(QImage(3, 2, QImage::Format_RGB32));
    logo.setNSImage(QImage());
    EXPECT_EQ(logo.getNSImage().size(), QSize(3, 2));
}

TEST(VNLogoContext, ANewPictureReplacesTheOld)
{
    VNLogoContext logo;
    logo.setNSImage(QImage(3, 2, QImage::Format_RGB32));
    logo.setNSImage(QImage(5, 7, QImage::Format_Mono));
    EXPECT_EQ(logo.getNSImage().size(), QSize(5, 7));
}

TEST(VNLogoContext, RectangleWithoutAPictureHasNoSizeAtAnyScale)
{
    VNLogoContext logo;
    logo.setLogoType(1);
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const double scale : { 1.0, 0.0, -2.0, 1e300, infinity, -infinity, notANumber }) {
        logo.setLogoScale(scale);
        const QRectF rectangle = logo.getLogoRect();
        EXPECT_EQ(rectangle, QRectF(150, 100, 0, 0)) << scale;
        EXPECT_FALSE(std::signbit(rectangle.width()) || std::signbit(rectangle.height())) << scale;
    }
}

TEST(VNLogoContext, ATooLargePictureIsScaledDownAndToldOf)
{
    VNLogoContext logo;
    QSignalSpy scaledDown(&logo, &VNLogoContext::pictureScaledDown);
    QImage picture(8192, 4096, QImage::Format_Mono);
    logo.setNSImage(picture);
    EXPECT_EQ(logo.getNSImage().size(), QSize(8192, 4096));
    EXPECT_TRUE(scaledDown.isEmpty());
    picture = QImage(16384, 8192, QImage::Format_Grayscale8);
    picture.fill(Qt::gray);
    logo.setNSImage(picture);
    EXPECT_EQ(logo.getNSImage().size(), QSize(8192, 4096));
    ASSERT_EQ(scaledDown.size(), 1);
    EXPECT_EQ(scaledDown.first(), (QVariantList { QString(), picture.size(), QSize(8192, 4096) }));
}

TEST(VNLogoContext, RectangleOfAPictureIsItsScaledPixels)
{
    QImage picture(200, 80, QImage::Format_ARGB32);
    picture.setDevicePixelRatio(2); // pixels count, whatever density the file claims
    VNLogoContext logo;
    logo.setIsLogoTypeText(false);
    logo.setLogoPosition({ 11, 12 });
    logo.setLogoScale(1.5);
    EXPECT_EQ(logo.getLogoRect(), QRectF(11, 12, 0, 0));
    logo.setNSImage(picture);
    EXPECT_EQ(logo.getLogoRect(), QRectF(11, 12, 300, 120));
    logo.setLogoType(7);
    EXPECT_EQ(logo.getLogoRect(), QRectF(11, 12, 300, 120));
}

QSizeF measured(QFont font, int sizePx, const QString &text)
{
    font.setPixelSize(sizePx);
    const QFontMetricsF metrics(withInstalledFace(font));
    return { metrics.horizontalAdvance(text), metrics.height() };
}

TEST(VNLogoContext, RectangleOfATextIsTwiceAsWideAsTheTextMeasures)
{
    VNLogoContext logo;
    const QSizeF text = measured(defaultLogoFont(), 20, "Sample Text");
    ASSERT_GT(text.width(), 0);
    EXPECT_EQ(logo.getLogoRect(), QRectF(150, 100, 2 * text.width(), text.height()));
    logo.setLogoScale(1.5);
    const QSizeF larger = measured(defaultLogoFont(), 30, "Sample Text");
    EXPECT_EQ(logo.getLogoRect(), QRectF(150, 100, 2 * larger.width(), larger.height()));
}

TEST(VNLogoContext, RectangleOfATextUsesTheStoredFont)
{
    VNLogoContext logo;
    logo.setLogoText("Wide");
    QFont font(QStringList { "DejaVu Serif" });
    font.setPointSizeF(40); // points are device pixels
    logo.setFontAttrs({ font });
    const QSizeF text = measured(font, 40, "Wide");
    EXPECT_EQ(logo.getLogoRect().size(), QSizeF(2 * text.width(), text.height()));
}

TEST(VNLogoContext, AFractionalSizeIsBetweenItsNeighbours)
{
    VNLogoContext logo;
    const double atOne = logo.getLogoRect().width();
    logo.setLogoScale(1.02); // 20.4 pixels
    const double between = logo.getLogoRect().width();
    logo.setLogoScale(1.05);
    EXPECT_GT(between, atOne);
    EXPECT_LT(between, logo.getLogoRect().width());
    EXPECT_NEAR(between, atOne * 1.02, 1e-9);
}

TEST(VNLogoContext, AnEmptyDictionaryMeasuresTheDefaultFont)
{
    VNLogoContext logo;
    const QRectF expected = logo.getLogoRect();
    logo.setFontAttrs({});
    EXPECT_EQ(logo.getLogoRect(), expected);
}

TEST(VNLogoContext, RectangleOfNothingHasNoWidth)
{
    VNLogoContext logo;
    const double lineHeight = logo.getLogoRect().height();
    logo.setLogoText(QStringLiteral(""));
    EXPECT_EQ(logo.getLogoRect(), QRectF(150, 100, 0, lineHeight));
    logo.setLogoText(QString());
    EXPECT_EQ(logo.getLogoRect(), QRectF(150, 100, 0, 0));
}

TEST(VNLogoContext, AnImpossibleScaleMeasuresNothing)
{
    VNLogoContext logo;
    for (const double scale : { 0.0, -1.0, std::numeric_limits<double>::quiet_NaN() }) {
        logo.setLogoScale(scale);
        EXPECT_EQ(logo.getLogoRect().width(), 0) << scale;
        EXPECT_EQ(logo.getLogoRect().height(), 0) << scale;
    }
    logo.setLogoScale(1e6);
    EXPECT_GT(logo.getLogoRect().width(), 1e6);
}

TEST(VNLogoContext, ReadersOnAnotherThreadSeeWholeValues)
{
    VNLogoContext logo;
    logo.setLogoPosition({ 0, 0 });
    std::atomic<bool> ended = false;
    int torn = 0;
    std::thread reader([&] {
        while (!ended) {
            const QPointF position = logo.LogoPosition();
            const QColor fill = logo.LogoFontFillColor();
            const QString text = logo.LogoText();
            torn += position.x() != position.y();
            torn += fill != QColor(Qt::green) && fill.red() != fill.blue();
            torn += text != "Sample Text" && text.front() != text.back();
            torn += logo.LogoFontStrokeColor().alpha() != 255;
            torn += logo.LogoValidate() && !logo.LogoFontFillColor().isValid();
        }
    });
    for (int i = 1; i <= 3000; ++i) {
        logo.setLogoValidate(i % 2);
        logo.setLogoPosition(QPointF(i, i));
        logo.setLogoText(QString(1 + i % 40, QChar('a' + i % 26)));
        logo.setLogoFontFillColor(QColor(i % 256, 7, i % 256));
        logo.setLogoFontStrokeColor(QColor(i % 256, 0, 0));
    }
    ended = true;
    reader.join();
    EXPECT_EQ(torn, 0);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runTestsWithFonts(argc, argv);
}
