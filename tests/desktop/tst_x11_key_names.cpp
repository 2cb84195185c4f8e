#include "desktop/x11_key_names.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

struct Named {
    const char *text;
    std::uint32_t symbol;
    std::uint16_t modifiers;
};

class X11KeyNamesTest : public testing::TestWithParam<Named>
{
};

TEST_P(X11KeyNamesTest, HasSymbolAndModifiers)
{
    const auto key = x11Key(QString::fromUtf8(GetParam().text));
    ASSERT_TRUE(key) << GetParam().text;
    EXPECT_EQ(key->symbol, GetParam().symbol) << GetParam().text;
    EXPECT_EQ(key->modifiers, GetParam().modifiers) << GetParam().text;
}

// Modifiers: Shift 1, Control 4, Alt 8 (Mod1), Meta 64 (Mod4). Symbols as in the header keysymdef.h.
INSTANTIATE_TEST_SUITE_P(Keys,
                         X11KeyNamesTest,
                         testing::Values(Named { "Ctrl+Alt+R", 'r', 4 | 8 },
                                         Named { "Meta+Shift+F9", 0xffc6, 64 | 1 },
                                         Named { "F1", 0xffbe, 0 },
                                         Named { "F35", 0xffe0, 0 },
                                         Named { "Esc", 0xff1b, 0 },
                                         Named { "Ctrl+Print", 0xff61, 4 },
                                         Named { "Pause", 0xff13, 0 },
                                         Named { "Ctrl+1", '1', 4 },
                                         Named { "Ctrl+Ö", 0xf6, 4 },
                                         Named { "Alt+Space", ' ', 8 }));

TEST(X11KeyNames, OtherTextsAreNoKey)
{
    for (const char *text : { "", "Ctrl+A, Ctrl+B", "nonsense", "Ctrl+", "Shift" })
        EXPECT_FALSE(x11Key(QString::fromUtf8(text))) << text;
}

} // namespace
} // namespace vornic
