#include "gui_main.h"
#include "options/logo/logo_font.h"

#include <QFontDatabase>
#include <QFontMetricsF>

#include <gtest/gtest.h>

#include <limits>

namespace vornic {
namespace {

TEST(LogoFont, DefaultIsHelveticaNeue20)
{
    EXPECT_EQ(defaultLogoFont().family(), "Helvetica Neue");
    EXPECT_EQ(fontSizePx(defaultLogoFont()), 20);
}

TEST(LogoFont, PointsAreDevicePixels)
{
    QFont font;
    font.setPointSizeF(12.5);
    EXPECT_EQ(fontSizePx(font), 12.5);
    font.setPixelSize(9);
    EXPECT_EQ(fontSizePx(font), 9);
}

TEST(LogoFont, AnInstalledFaceIsItself)
{
    const QString installed = QFontDatabase::families().value(0);
    ASSERT_FALSE(installed.isEmpty());
    QFont font(QStringList { installed });
    font.setItalic(true);
    EXPECT_EQ(withInstalledFace(font), font);
}

TEST(LogoFont, KnownFacesGetAnInstalledOne)
{
    for (const char *family : { "Helvetica Neue", "Helvetica", "LucidaGrande", "Lucida Grande" }) {
        QFont font(QStringList { family });
        font.setPixelSize(31);
        font.setBold(true);
        const QFont installed = withInstalledFace(font);
        EXPECT_TRUE(QFontDatabase::hasFamily(installed.family())) << family;
        EXPECT_EQ(installed.pixelSize(), 31);
        EXPECT_TRUE(installed.bold());
        EXPECT_EQ(font.family(), family);
    }
}

TEST(LogoFont, AnUnknownFaceIsLeftToTheToolkit)
{
    const QFont font(QStringList { "No Such Face At All" });
    EXPECT_EQ(withInstalledFace(font), font);
}

TEST(LogoFont, AScaledFontHasAWholeSizeAndTheRestAsFactor)
{
    const ScaledFont whole = ScaledFont::create(defaultLogoFont(), 40);
    EXPECT_EQ(whole.font.pixelSize(), 40);
    EXPECT_EQ(whole.factor, 1);
    const ScaledFont fraction = ScaledFont::create(defaultLogoFont(), 20.4);
    EXPECT_EQ(fraction.font.pixelSize() * fraction.factor, 20.4);
    const ScaledFont tiny = ScaledFont::create(defaultLogoFont(), 0.25);
    EXPECT_EQ(tiny.font.pixelSize(), 1);
    EXPECT_EQ(tiny.factor, 0.25);
    const ScaledFont huge = ScaledFont::create(defaultLogoFont(), 1e30);
    EXPECT_NEAR(huge.font.pixelSize() * huge.factor, 1e30, 1e20);
}

TEST(LogoFont, SizesThatAreNoneDrawNothing)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double size : { 0.0, -20.0, infinity, -infinity, std::numeric_limits<double>::quiet_NaN() }) {
        const ScaledFont font = ScaledFont::create(defaultLogoFont(), size);
        EXPECT_EQ(font.factor, 0) << size;
        EXPECT_TRUE(singleLineSize("x", font).isNull()) << size;
    }
}

TEST(LogoFont, ALineIsAsWideAsItsAdvanceAndAsHighAsTheFont)
{
    const ScaledFont font = ScaledFont::create(defaultLogoFont(), 24);
    const QFontMetricsF metrics(font.font);
    EXPECT_EQ(singleLineSize("Sample", font), QSizeF(metrics.horizontalAdvance("Sample"), metrics.height()));
    EXPECT_EQ(singleLineSize("", font), QSizeF(0, metrics.height()));
    EXPECT_EQ(singleLineSize(QString(), font), QSizeF(0, 0));
    EXPECT_EQ(singleLineSize("one\ntwo", font).height(), metrics.height());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runTestsWithFonts(argc, argv);
}
