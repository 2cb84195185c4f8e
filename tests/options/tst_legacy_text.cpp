#include "gui_main.h"
#include "options/logo/legacy_text.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

ScaledFont fontOf(double sizePx)
{
    return ScaledFont::create(defaultLogoFont(), sizePx);
}

/// All glyphs of a line in one.
QPainterPath lineOutline(const QString &characters, const ScaledFont &font, double spacing)
{
    QPainterPath line;
    for (const QPainterPath &outline : glyphOutlines(characters, font, spacing))
        line.addPath(outline);
    return line;
}

TEST(LegacyText, OnlyAsciiIsDrawnAsTyped)
{
    for (const char16_t *typed : { u"", u"Sample Text", u"~!@#$%^&*()_+ 0129" })
        EXPECT_TRUE(isDrawnAsTyped(QString::fromUtf16(typed))) << QString::fromUtf16(typed).toStdString();
    for (const char16_t *typed : { u"Gr\u00FC\u00DFe", u"\u00E9", u"a\u20AC", u"\u4E16", u"\U0001F600" })
        EXPECT_FALSE(isDrawnAsTyped(QString::fromUtf16(typed))) << QString::fromUtf16(typed).toStdString();
}

TEST(SingleByteCharacters, AsciiStaysWhatItIs)
{
    EXPECT_EQ(singleByteCharacters("Sample Text ~\n"), "Sample Text ~\n");
}

TEST(SingleByteCharacters, OneAccentedLetterShowsTheFirstOfItsTwoBytes)
{
    // 0xC3 0xA9, of which the first is a radical sign.
    EXPECT_EQ(singleByteCharacters(QString(QChar(0xE9))), QString(QChar(0x221A)));
}

TEST(SingleByteCharacters, TheEndOfOtherTextIsCutOff)
{
    // Four bytes, 61 C3 A9 21, for three units.
    EXPECT_EQ(singleByteCharacters(QString::fromUtf8("a\xC3\xA9!")), QString::fromUtf16(u"a\u221A\u00A9"));
    // Four bytes, two units.
    EXPECT_EQ(singleByteCharacters(QString::fromUtf8("\xF0\x9F\x98\x80")).size(), 2);
}

TEST(SingleByteCharacters, TheUpperHalfIsMacRoman)
{
    // Bytes that stand in UTF-8 at the begin of what is given: C2, C4, CE, E2 and the ones behind them.
    const QString text = QString::fromUtf8("\xC2\x80"
                                           "\xC4\xBF"
                                           "\xE2\x84\xA2"
                                           "xxxx");
    const QString characters = singleByteCharacters(text);
    ASSERT_EQ(characters.size(), 7);
    EXPECT_EQ(characters[0], QChar(0x00AC));
    EXPECT_EQ(characters[1], QChar(0x00C4));
    EXPECT_EQ(characters[2], QChar(0x0192));
    EXPECT_EQ(characters[3], QChar(0x00F8));
    EXPECT_EQ(characters[4], QChar(0x201A));
    EXPECT_EQ(characters[5], QChar(0x00D1));
    EXPECT_EQ(characters[6], QChar(0x00A2));
}

TEST(SingleByteCharacters, NoTextIsNone)
{
    EXPECT_EQ(singleByteCharacters(QString()), QString());
}

TEST(GlyphOutlines, StandsOnTheBaselineAndGrowsUpwards)
{
    const QRectF letter = lineOutline("H", fontOf(40), 10).boundingRect();
    EXPECT_NEAR(letter.top(), 0, 0.5) << "the lower edge";
    EXPECT_GT(letter.bottom(), 25);
    EXPECT_LT(letter.bottom(), 35);
    EXPECT_GE(letter.left(), 0);
    EXPECT_LT(lineOutline("g", fontOf(40), 10).boundingRect().top(), -4) << "a descender";
}

TEST(GlyphOutlines, SpacingIsAddedToEveryAdvanceWhateverTheSize)
{
    for (const double size : { 20.0, 33.3, 80.0 }) {
        const double apart = lineOutline("II", fontOf(size), 10).boundingRect().width()
            - lineOutline("II", fontOf(size), 0).boundingRect().width();
        EXPECT_NEAR(apart, 10, 1e-6);
        const double threeApart = lineOutline("IIII", fontOf(size), 10).boundingRect().width()
            - lineOutline("IIII", fontOf(size), 0).boundingRect().width();
        EXPECT_NEAR(threeApart, 30, 1e-6);
    }
}

TEST(GlyphOutlines, SizesArePreciseBetweenWholePixels)
{
    const double at20 = lineOutline("H", fontOf(20), 0).boundingRect().height();
    const double at21 = lineOutline("H", fontOf(21), 0).boundingRect().height();
    const double between = lineOutline("H", fontOf(20.5), 0).boundingRect().height();
    EXPECT_NEAR(between, (at20 + at21) / 2, 0.05);
}

TEST(GlyphOutlines, LettersAreNeitherKernedNorJoined)
{
    const double apart = lineOutline("AV", fontOf(100), 0).boundingRect().width();
    const double a = lineOutline("AA", fontOf(100), 0).boundingRect().width()
        - lineOutline("A", fontOf(100), 0).boundingRect().width();
    const double v = lineOutline("V", fontOf(100), 0).boundingRect().right()
        - lineOutline("A", fontOf(100), 0).boundingRect().left();
    EXPECT_NEAR(apart, a + v, 0.01);
}

TEST(GlyphOutlines, ControlCharactersTakeOnlyTheSpacing)
{
    EXPECT_TRUE(lineOutline("\n\t", fontOf(20), 10).isEmpty());
    EXPECT_NEAR(lineOutline("\nI", fontOf(20), 10).boundingRect().left(),
                lineOutline("I", fontOf(20), 10).boundingRect().left() + 10,
                1e-6);
}

TEST(GlyphOutlines, NoSizeIsNoOutline)
{
    EXPECT_TRUE(lineOutline("I", fontOf(0), 10).isEmpty());
    EXPECT_TRUE(lineOutline("I", fontOf(-3), 10).isEmpty());
    EXPECT_TRUE(lineOutline("", fontOf(20), 10).isEmpty());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runTestsWithFonts(argc, argv);
}
