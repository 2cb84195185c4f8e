#include "geometry/y_up.h"
#include "gui_main.h"
#include "options/VNLogoContext.h"
#include "options/logo/reduced_picture.h"
#include "support/test_pictures.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>

namespace vornic {
namespace {

constexpr QRectF noBound(0, 0, 0, 0);

/// A surface with y up, drawn at \a ratio device pixels a point.
class Surface
{
public:
    explicit Surface(QSize points, int ratio = 1, QColor background = Qt::transparent)
        : m_points(points)
        , m_ratio(ratio)
        , m_image(points * ratio, QImage::Format_ARGB32_Premultiplied)
    {
        m_image.fill(background);
    }

    void draw(const VNLogoContext &logo, const QRectF &bound = noBound, double scale = 1)
    {
        QPainter painter(&m_image);
        painter.scale(m_ratio, m_ratio);
        flipPainter(painter, m_points.height());
        logo.decorateImage(painter, bound, scale);
    }

    /// The pixel in whose lower left corner, of those of the point, (x, y) lies.
    [[nodiscard]] QColor at(double x, double y) const
    {
        return m_image.pixelColor(static_cast<int>(x * m_ratio),
                                  static_cast<int>((m_points.height() - y) * m_ratio) - 1);
    }
    /// The pixels that are not transparent, in points with y up.
    [[nodiscard]] QRectF inked() const
    {
        QRect ink;
        for (int y = 0; y < m_image.height(); ++y)
            for (int x = 0; x < m_image.width(); ++x)
                if (m_image.pixelColor(x, y).alpha() > 16)
                    ink |= QRect(x, y, 1, 1);
        return flipped(QRectF(QPointF(ink.topLeft()) / m_ratio, QSizeF(ink.size()) / m_ratio),
                       m_points.height());
    }
    [[nodiscard]] const QImage &image() const { return m_image; }

private:
    QSize m_points;
    int m_ratio;
    QImage m_image;
};

/// Red above, blue below.
QImage twoHalves(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    QPainter(&picture).fillRect(0, 0, size.width(), size.height() / 2, Qt::red);
    return picture;
}

class LogoDrawing : public testing::Test
{
protected:
    void usePicture(QSize size = { 40, 20 })
    {
        logo.setLogoType(1);
        logo.setNSImage(twoHalves(size));
        logo.setLogoPosition({ 30, 50 });
    }

    VNLogoContext logo;
};

TEST_F(LogoDrawing, PictureStandsUprightWithItsLowerLeftAtItsPosition)
{
    usePicture();
    for (const int ratio : { 1, 2 }) {
        Surface surface({ 200, 150 }, ratio);
        surface.draw(logo);
        EXPECT_EQ(surface.inked(), QRectF(30, 50, 40, 20)) << ratio;
        EXPECT_EQ(surface.at(30, 50), QColor(Qt::blue));
        EXPECT_EQ(surface.at(69, 58), QColor(Qt::blue));
        EXPECT_EQ(surface.at(30, 61), QColor(Qt::red));
        EXPECT_EQ(surface.at(69, 69), QColor(Qt::red));
    }
}

TEST_F(LogoDrawing, PictureScalesFromItsPosition)
{
    usePicture();
    logo.setLogoScale(1.5);
    Surface surface({ 200, 150 });
    surface.draw(logo);
    EXPECT_EQ(surface.inked(), QRectF(30, 50, 60, 30));
    EXPECT_EQ(logo.decoratedRect(noBound, 1), QRectF(30, 50, 60, 30));
}

TEST_F(LogoDrawing, PictureTurnsAboutItsCentre)
{
    usePicture();
    logo.setLogoRotation(90);
    for (const int ratio : { 1, 2 }) {
        Surface surface({ 200, 150 }, ratio);
        surface.draw(logo);
        EXPECT_EQ(surface.inked(), QRectF(40, 40, 20, 40)) << "about (50, 60)";
        // Counter-clockwise: what was above is on the left.
        EXPECT_EQ(surface.at(42, 60), QColor(Qt::red));
        EXPECT_EQ(surface.at(57, 60), QColor(Qt::blue));
    }
    logo.setLogoRotation(-270);
    Surface same({ 200, 150 });
    same.draw(logo);
    EXPECT_EQ(same.at(42, 60), QColor(Qt::red));
    logo.setLogoRotation(std::numeric_limits<qint64>::min());
    Surface any({ 200, 150 });
    any.draw(logo);
    EXPECT_FALSE(any.inked().isEmpty());
}

/// A photograph's worth of detail: fine stripes, letters and noise.
QImage detailed(QSize size)
{
    QImage picture = test::textPage(size, 1).convertToFormat(QImage::Format_RGB32);
    QPainter painter(&picture);
    for (int x = 0; x < size.width() / 2; x += 7)
        painter.fillRect(x, 0, 3, size.height() / 3, Qt::darkRed);
    painter.drawImage(size.width() / 2, size.height() / 2, test::noisePicture(size / 3, 2));
    return picture;
}

/// The average of the part of \a picture that each pixel of a surface shows: \a toPicture takes points of the surface
/// to the picture's. White outside.
QImage areaAverage(const QImage &picture, QSize size, const QTransform &toPicture)
{
    constexpr int samples = 20; // whole pixels of the picture at a tenth of its size
    QImage average(size, QImage::Format_RGB32);
    const QRect whole = picture.rect();
    const auto colorAt = [&](double x, double y) {
        const QPointF point = toPicture.map(QPointF(x, y));
        const QPoint pixel(static_cast<int>(std::floor(point.x())), static_cast<int>(std::floor(point.y())));
        return whole.contains(pixel) ? picture.pixel(pixel) : qRgb(255, 255, 255);
    };
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            std::array<int, 3> sum {};
            for (int i = 0; i < samples * samples; ++i) {
                const QRgb color
                    = colorAt(x + (i % samples + 0.5) / samples, y + (i / samples + 0.5) / samples);
                sum[0] += qRed(color);
                sum[1] += qGreen(color);
                sum[2] += qBlue(color);
            }
            constexpr int count = samples * samples;
            average.setPixel(x, y, qRgb(sum[0] / count, sum[1] / count, sum[2] / count));
        }
    }
    return average;
}

/// The peak signal-to-noise ratio in dB.
double psnr(const QImage &one, const QImage &other)
{
    double squares = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            for (const int difference : { qRed(a) - qRed(b), qGreen(a) - qGreen(b), qBlue(a) - qBlue(b) })
                squares += difference * difference;
        }
    }
    const double mean = squares / (3.0 * one.width() * one.height());
    return 10 * std::log10(255.0 * 255.0 / std::max(mean, 1e-9));
}

TEST_F(LogoDrawing, APictureDrawnSmallIsTheAverageOfItsPixels)
{
    const QImage picture = detailed({ 800, 600 });
    logo.setLogoType(1);
    logo.setNSImage(picture);
    for (const double scale : { 0.1, 0.3 }) {
        for (const int degrees : { 0, 90, -17 }) {
            const QSize drawn(static_cast<int>(std::lround(800 * scale)),
                              static_cast<int>(std::lround(600 * scale)));
            const int side = drawn.width() + 40;
            logo.setLogoScale(scale);
            logo.setLogoRotation(degrees);
            logo.setLogoPosition(QPointF(side - drawn.width(), side - drawn.height()) / 2);
            Surface surface({ side, side }, 1, Qt::white);
            surface.draw(logo);
            const QTransform toPicture = QTransform::fromTranslate(-side / 2.0, -side / 2.0)
                * QTransform().rotate(degrees) * QTransform::fromScale(1 / scale, 1 / scale)
                * QTransform::fromTranslate(400, 300);
            const double quality
                = psnr(surface.image(), areaAverage(picture, surface.image().size(), toPicture));
            EXPECT_GE(quality, 40) << scale << " turned by " << degrees;
            RecordProperty(QStringLiteral("dB_%1_%2").arg(scale).arg(degrees).toStdString(),
                           std::to_string(quality));
        }
    }
}

TEST_F(LogoDrawing, ScaleAndBoundPlaceTheAnchor)
{
    usePicture();
    logo.setLogoPosition({ 150, 100 });
    Surface surface({ 500, 400 });
    surface.draw(logo, QRectF(10, 20, 300, 200), 2);
    EXPECT_EQ(surface.inked(), QRectF(310, 220, 80, 40));
}

TEST_F(LogoDrawing, ScaleAndBoundPlaceTextAndDoubleItsFont)
{
    logo.setLogoPosition({ 150, 100 });
    logo.setLogoText("I");
    Surface once({ 500, 400 }, 4);
    once.draw(logo, QRectF(160, 120, 1, 1), 1);
    Surface twice({ 500, 400 }, 4);
    twice.draw(logo, QRectF(10, 20, 300, 200), 2);
    EXPECT_NEAR(once.inked().y(), 219.5, 0.3) << "the baseline, and half a line below";
    EXPECT_NEAR(twice.inked().y(), 219.5, 0.3);
    // Half a point of outline above and below the letter, whatever its size.
    EXPECT_NEAR(twice.inked().height() - 1, 2 * (once.inked().height() - 1), 0.5);
}

TEST_F(LogoDrawing, OpacityReachesFromNothingToOpaque)
{
    usePicture();
    logo.setLogoTransparency(0);
    Surface nothing({ 200, 150 }, 1, Qt::white);
    nothing.draw(logo);
    Surface untouched({ 200, 150 }, 1, Qt::white);
    EXPECT_EQ(nothing.image(), untouched.image());

    logo.setLogoTransparency(128);
    Surface half({ 200, 150 });
    half.draw(logo);
    EXPECT_NEAR(half.at(50, 55).alpha(), 128, 1);
    Surface halfOnBlack({ 200, 150 }, 1, Qt::black);
    halfOnBlack.draw(logo);
    EXPECT_NEAR(halfOnBlack.at(50, 55).blue(), 128, 1);

    logo.setLogoTransparency(255);
    Surface opaque({ 200, 150 });
    opaque.draw(logo);
    EXPECT_EQ(opaque.at(50, 55), QColor(Qt::blue));

    logo.setLogoTransparency(-40);
    Surface below({ 200, 150 });
    below.draw(logo);
    EXPECT_TRUE(below.inked().isEmpty());
    logo.setLogoTransparency(4000);
    Surface beyond({ 200, 150 });
    beyond.draw(logo);
    EXPECT_EQ(beyond.at(50, 55), QColor(Qt::blue));
}

TEST_F(LogoDrawing, PictureLogoWithoutPictureLeavesTheSurfaceUntouched)
{
    logo.setLogoType(1);
    Surface surface({ 300, 200 }, 1, Qt::white);
    surface.draw(logo);
    EXPECT_EQ(surface.image(), Surface({ 300, 200 }, 1, Qt::white).image());
    EXPECT_TRUE(logo.decoratedRect(noBound, 1).isEmpty());
}

TEST_F(LogoDrawing, AnyOtherTypeIsAPicture)
{
    usePicture();
    logo.setLogoType(-7);
    Surface surface({ 200, 150 });
    surface.draw(logo);
    EXPECT_EQ(surface.inked(), QRectF(30, 50, 40, 20));
}

TEST_F(LogoDrawing, TextIsFilledThenOutlined)
{
    logo.setLogoText("I");
    logo.setLogoScale(5);
    logo.setLogoPosition({ 50, 50 });
    logo.setLogoFontFillColor(QColor(255, 0, 0, 10)); // its own alpha counts for nothing
    logo.setLogoFontStrokeColor(QColor(0, 0, 255, 10));
    Surface surface({ 200, 200 }, 2);
    surface.draw(logo);
    const QRectF ink = surface.inked();
    EXPECT_EQ(surface.at(ink.center().x(), ink.center().y()), QColor(255, 0, 0));
    // The outline is a point wide, half of it inside the letter.
    EXPECT_NEAR(ink.y(), 49.5, 0.01);
    EXPECT_EQ(surface.at(ink.center().x(), 50), QColor(0, 0, 255));
    EXPECT_EQ(surface.at(ink.center().x(), 49.5), QColor(0, 0, 255));
}

TEST_F(LogoDrawing, TranslucentOutlineShowsTheFillBeneathIt)
{
    logo.setLogoText("I");
    logo.setLogoScale(5);
    logo.setLogoPosition({ 50, 50 });
    logo.setLogoTransparency(128);
    logo.setLogoFontFillColor(QColor(255, 0, 0));
    logo.setLogoFontStrokeColor(QColor(0, 0, 255));
    Surface surface({ 200, 200 }, 2);
    surface.draw(logo);
    const double middle = surface.inked().center().x();
    EXPECT_NEAR(surface.at(middle, 49.5).alpha(), 128, 2) << "outside the letter";
    EXPECT_NEAR(surface.at(middle, 50).alpha(), 191, 2) << "inside, fill and outline";
    EXPECT_NEAR(surface.at(middle, 60).alpha(), 128, 2) << "fill alone";
}

/// Each of ten letters is followed by its advance, which grows with the font, and by 10 points, which do not.
TEST_F(LogoDrawing, CharactersStandTenPointsApartWhateverTheSize)
{
    logo.setLogoPosition({ 20, 20 });
    const auto widthOf = [&](const char *text, double logoScale, double scale) {
        logo.setLogoText(text);
        logo.setLogoScale(logoScale);
        Surface surface({ 500, 120 }, 4);
        surface.draw(logo, noBound, scale);
        return surface.inked().width();
    };
    const auto toTheTenth = [&](double logoScale, double scale) {
        return widthOf("IIIIIIIIIII", logoScale, scale) - widthOf("I", logoScale, scale);
    };
    // Letters of size 1 take 10 a + 10 * 10 points, of size 2 they take 20 a + 10 * 10.
    const double once = toTheTenth(1, 1);
    EXPECT_NEAR(2 * once - toTheTenth(2, 1), 10 * 10, 1.5);
    EXPECT_NEAR(2 * once - toTheTenth(1, 2), 10 * 10, 1.5);
}

TEST_F(LogoDrawing, TextTurnsAboutTheStartOfItsBaseline)
{
    logo.setLogoText("HHH");
    logo.setLogoPosition({ 100, 100 });
    Surface straight({ 300, 300 }, 2);
    straight.draw(logo);
    const QRectF before = straight.inked().translated(-100, -100);
    logo.setLogoRotation(90);
    Surface turned({ 300, 300 }, 2);
    turned.draw(logo);
    const QRectF after = turned.inked().translated(-100, -100);
    // (x, y) becomes (-y, x).
    EXPECT_NEAR(after.left(), -before.bottom(), 1);
    EXPECT_NEAR(after.right(), -before.top(), 1);
    EXPECT_NEAR(after.top(), before.left(), 1);
    EXPECT_NEAR(after.bottom(), before.right(), 1);
}

TEST_F(LogoDrawing, DecoratedRectHoldsAllInk)
{
    for (const int rotation : { 0, 30, 90, 200 }) {
        for (const bool isText : { true, false }) {
            usePicture();
            logo.setIsLogoTypeText(isText);
            logo.setLogoText("WgjM&");
            logo.setLogoPosition({ 150, 150 });
            logo.setLogoRotation(rotation);
            Surface surface({ 400, 400 });
            surface.draw(logo);
            ASSERT_FALSE(surface.inked().isEmpty());
            const QRectF rect = logo.decoratedRect(noBound, 1).adjusted(-1, -1, 1, 1);
            EXPECT_TRUE(rect.contains(surface.inked())) << rotation << isText;
            EXPECT_LT(rect.width(), surface.inked().width() + 30);
        }
    }
}

TEST_F(LogoDrawing, AccentedLetterShowsTheFirstOfItsTwoBytes)
{
    logo.setLogoText(QString(QChar(0xE9)));
    Surface accented({ 300, 200 });
    accented.draw(logo);
    // 0xC3 alone: the radical sign, which is the first byte of its own three as well as of these two.
    EXPECT_FALSE(accented.inked().isEmpty());
    VNLogoContext other;
    other.setLogoText(QString(QChar(0xE8)));
    Surface same({ 300, 200 });
    same.draw(other);
    EXPECT_EQ(accented.image(), same.image()) << "what tells them apart is the second byte";
}

TEST_F(LogoDrawing, NothingLeaksToTheCaller)
{
    usePicture();
    logo.setLogoRotation(30);
    logo.setLogoTransparency(100);
    QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setOpacity(0.75);
    painter.setPen(Qt::red);
    painter.translate(3, 4);
    const QTransform transform = painter.transform();
    const QPainter::RenderHints hints = painter.renderHints();
    for (const int type : { 0, 1 }) {
        logo.setLogoType(type);
        logo.decorateImage(painter, noBound, 1);
        EXPECT_EQ(painter.opacity(), 0.75);
        EXPECT_EQ(painter.transform(), transform);
        EXPECT_EQ(painter.pen().color(), QColor(Qt::red));
        EXPECT_EQ(painter.renderHints(), hints);
    }
}

TEST_F(LogoDrawing, CallersOpacityDoesNotMultiply)
{
    usePicture();
    QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setOpacity(0.5);
    logo.decorateImage(painter, noBound, 1);
    painter.end();
    EXPECT_EQ(image.pixelColor(40, 60).alpha(), 255);
}

TEST_F(LogoDrawing, ValuesBeyondAllSenseDrawNothingAndEnd)
{
    const double infinite = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const int type : { 0, 1 }) {
        usePicture();
        logo.setLogoType(type);
        for (const double value : { infinite, -infinite, notANumber }) {
            Surface surface({ 100, 100 });
            logo.setLogoScale(value);
            surface.draw(logo);
            logo.setLogoScale(1);
            logo.setLogoPosition({ value, 10 });
            surface.draw(logo);
            EXPECT_TRUE(surface.inked().isEmpty()) << type << value;
        }
    }
}

TEST(ReducedPicture, IsMadeOnceForAPictureASizeAndAnAngle)
{
    QImage picture = detailed({ 400, 300 });
    ReducedPicture reduced;
    QImage surface(200, 200, QImage::Format_ARGB32_Premultiplied);
    const auto copiesFor = [&](double scale, double degrees, QPointF position = { 10, 20 }) {
        const int before = reduced.copies();
        QPainter painter(&surface);
        painter.translate(position);
        painter.rotate(degrees);
        reduced.draw(painter, QRectF({ 0, 0 }, QSizeF(picture.size()) * scale), picture);
        return reduced.copies() - before;
    };
    EXPECT_EQ(copiesFor(0.25, 0), 1);
    EXPECT_EQ(copiesFor(0.25, 0), 0);
    EXPECT_EQ(copiesFor(0.25, 90, { 100, 7.5 }), 0);
    EXPECT_EQ(copiesFor(0.2, 0), 1);
    EXPECT_EQ(copiesFor(0.2, 30), 1);
    EXPECT_EQ(copiesFor(0.2, 31), 0) << "the copy serves any angle";
    EXPECT_EQ(copiesFor(0.2, 31, { 100, 7.5 }), 0);
    EXPECT_EQ(copiesFor(0.5, 30), 0) << "large enough for the painter alone";
    EXPECT_EQ(copiesFor(1e-6, 30), 1);
    picture.fill(Qt::red);
    EXPECT_EQ(copiesFor(1e-6, 30), 1);
}

TEST_F(LogoDrawing, NegativeScaleMirrorsTheRectangleNotThePicture)
{
    usePicture();
    logo.setLogoScale(-1);
    Surface surface({ 200, 150 });
    surface.draw(logo);
    EXPECT_EQ(surface.inked(), QRectF(-10 + 0, 30, 40, 20).intersected(QRectF(0, 0, 200, 150)));
    EXPECT_EQ(surface.at(10, 45), QColor(Qt::red));
}

TEST_F(LogoDrawing, StampedPictureIsOpaqueAndStampedWhateverLogoValidateSays)
{
    usePicture();
    ASSERT_FALSE(logo.LogoValidate());
    QImage picture(120, 90, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    picture.setDevicePixelRatio(2);
    const QImage stamped = logo.decorateCGImage(picture);
    EXPECT_EQ(stamped.size(), QSize(120, 90));
    EXPECT_EQ(stamped.devicePixelRatio(), 1);
    EXPECT_FALSE(stamped.hasAlphaChannel());
    EXPECT_EQ(stamped.pixelColor(0, 0), QColor(Qt::black));
    EXPECT_EQ(stamped.pixelColor(30, 90 - 51), QColor(Qt::blue));
    EXPECT_EQ(stamped.pixelColor(30, 90 - 70), QColor(Qt::red));
    // Blue, green, red in memory, 4 bytes a pixel.
    EXPECT_EQ(stamped.bytesPerLine(), 4 * 120);
    EXPECT_EQ(stamped.constScanLine(90 - 51)[4 * 30], 255);
    EXPECT_EQ(stamped.constScanLine(90 - 51)[4 * 30 + 2], 0);
}

class PictureOfTextTest : public LogoDrawing
{
protected:
    /// What is drawn of the text, and of the picture in its place.
    [[nodiscard]] QImage drawn() const
    {
        Surface surface({ 600, 400 });
        surface.draw(logo);
        return surface.image();
    }
    void becomePicture()
    {
        const PictureOfText made = logo.pictureOfText();
        ASSERT_FALSE(made.image.isNull());
        logo.setNSImage(made.image);
        logo.setLogoPosition(made.position);
        logo.setLogoScale(made.scale);
        logo.setLogoType(1);
    }
    /// Where \a image is less transparent than that.
    [[nodiscard]] static QRect inkOf(const QImage &image, int alpha = 16)
    {
        QRect ink;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (qAlpha(image.pixel(x, y)) > alpha)
                    ink |= QRect(x, y, 1, 1);
        return ink;
    }
    /// How much of two pictures' opacity is not in the same places: 0 where all is, 1 where none.
    [[nodiscard]] static double difference(const QImage &one, const QImage &other)
    {
        double apart = 0;
        double all = 0;
        for (int y = 0; y < one.height(); ++y) {
            for (int x = 0; x < one.width(); ++x) {
                apart += std::abs(qAlpha(one.pixel(x, y)) - qAlpha(other.pixel(x, y)));
                all += qAlpha(one.pixel(x, y)) + qAlpha(other.pixel(x, y));
            }
        }
        return apart / all;
    }
};

TEST_F(PictureOfTextTest, AsciiLettersStayWhereTheyStood)
{
    logo.setLogoText(QStringLiteral("AVA To fig. S"));
    QFont kerned(QStringList { "DejaVu Sans" });
    kerned.setPixelSize(20);
    logo.setFontAttrs({ kerned });
    for (const double scale : { 1.0, 0.22, 1.7 }) {
        for (const int degrees : { 0, 90, -30 }) {
            SCOPED_TRACE(testing::Message() << scale << " turned by " << degrees);
            logo.setLogoType(0);
            logo.setLogoPosition({ 120, 190 });
            logo.setLogoScale(scale);
            logo.setLogoRotation(degrees);
            const QImage text = drawn();
            becomePicture();
            const QImage picture = drawn();
            EXPECT_EQ(logo.LogoScale(), 1) << "its pixels are as large as the letters were";
            EXPECT_EQ(logo.LogoRotation(), degrees);
            const QRect before = inkOf(text);
            const QRect after = inkOf(picture);
            EXPECT_LE((before.topLeft() - after.topLeft()).manhattanLength(), 2);
            EXPECT_LE((before.bottomRight() - after.bottomRight()).manhattanLength(), 2);
            EXPECT_LT(difference(text, picture), degrees == 0 && scale >= 1 ? 0.01 : 0.2);
        }
    }
}

TEST_F(PictureOfTextTest, IsNoLargerThanItsInkAndHasTheTextsColours)
{
    logo.setLogoTransparency(10); // the logo's, not the picture's
    logo.setLogoText(QStringLiteral("\u2588"));
    logo.setLogoScale(4);
    logo.setLogoFontFillColor(Qt::red);
    logo.setLogoFontStrokeColor(Qt::blue);
    const QImage image = logo.pictureOfText().image;
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.pixelColor(image.rect().center()), QColor(Qt::red));
    const QColor edge = image.pixelColor(image.width() / 2, 1);
    EXPECT_GT(edge.blue(), edge.red());
    EXPECT_EQ(inkOf(image, 0), image.rect()) << "no edge is empty";
}

TEST_F(PictureOfTextTest, LettersOutsideAsciiAreDrawnAsTheyWereTyped)
{
    const auto widthOf = [this](const QString &text) {
        logo.setLogoText(text);
        return logo.pictureOfText().image.width();
    };
    // An umlaut is as wide as its letter, and each letter is drawn once.
    EXPECT_NEAR(widthOf(QStringLiteral("Gr\u00FCn")), widthOf(QStringLiteral("Grun")), 2);
    logo.setLogoText(QStringLiteral("u"));
    const int height = logo.pictureOfText().image.height();
    logo.setLogoText(QStringLiteral("\u00FC"));
    EXPECT_GT(logo.pictureOfText().image.height(), height + 2) << "the dots are there";
}

TEST_F(PictureOfTextTest, WithoutInkThereIsNone)
{
    for (const char *text : { "", "   ", "\n" }) {
        logo.setLogoText(QString::fromLatin1(text));
        EXPECT_TRUE(logo.pictureOfText().image.isNull());
    }
    logo.setLogoText(QStringLiteral("x"));
    for (const double scale : { 0.0, -1.0, 1e300, std::numeric_limits<double>::quiet_NaN() }) {
        logo.setLogoScale(scale);
        static_cast<void>(logo.pictureOfText());
    }
}

TEST_F(PictureOfTextTest, OneThatIsTooLargeIsScaledDownAndDrawnAsLarge)
{
    logo.setLogoText(QString(1000, QChar(u'M')));
    for (const double scale : { 3.0, 1000.0, 1e30 }) {
        logo.setLogoType(0);
        logo.setLogoScale(scale);
        const PictureOfText made = logo.pictureOfText();
        const double width = logo.decoratedRect(noBound, 1).width();
        EXPECT_NEAR(made.image.width() * made.scale, width, width / 50) << scale;
        const Picture kept(made.image);
        EXPECT_FALSE(kept.isNull()) << scale;
        EXPECT_FALSE(kept.isScaledDown()) << scale;
    }
    logo.setLogoScale(1e300);
    static_cast<void>(logo.pictureOfText());
}

TEST_F(LogoDrawing, NoPictureCannotBeStamped)
{
    EXPECT_TRUE(logo.decorateCGImage({}).isNull());
    EXPECT_TRUE(logo.decorateNSImage({}).isNull());
    logo.setLogoValidate(true);
    EXPECT_TRUE(logo.decorateNSImage({}).isNull());
}

TEST_F(LogoDrawing, StampIsLeftOutWhileTheLogoIsOff)
{
    usePicture();
    const QImage picture = twoHalves({ 120, 90 });
    const QImage same = logo.decorateNSImage(picture);
    EXPECT_EQ(same.constBits(), picture.constBits()) << "the very same picture";
    logo.setLogoValidate(true);
    EXPECT_EQ(logo.decorateNSImage(picture), logo.decorateCGImage(picture));
    EXPECT_NE(logo.decorateNSImage(picture), picture);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runTestsWithFonts(argc, argv);
}
