#include "desktop/portal_key_names.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

TEST(PortalKeyNames, ModifiersAreWrittenOutAndTheKeyIsCalledAsTheKeyboardHasIt)
{
    EXPECT_EQ(portalKeyName("Ctrl+Alt+R"), "CTRL+ALT+r");
    EXPECT_EQ(portalKeyName("Ctrl+Alt+Shift+Meta+7"), "CTRL+ALT+SHIFT+LOGO+7");
    EXPECT_EQ(portalKeyName("F9"), "F9");
    EXPECT_EQ(portalKeyName("F35"), "F35");
    EXPECT_EQ(portalKeyName("Meta+Print"), "LOGO+Print");
    EXPECT_EQ(portalKeyName("Ctrl+PgUp"), "CTRL+Page_Up");
    EXPECT_EQ(portalKeyName("Ctrl+Space"), "CTRL+space");
}

TEST(PortalKeyNames, SignsAreCalledByTheirNumber)
{
    EXPECT_EQ(portalKeyName("Ctrl++"), "CTRL+U002B");
    EXPECT_EQ(portalKeyName("Ctrl+\u00d6"), "CTRL+U00F6") << "the key's own letter is the small one";
}

TEST(PortalKeyNames, WhatHasNoNameIsNone)
{
    for (const char *none : { "", "nonsense", "Ctrl+K, Ctrl+S", "Ctrl+\u0431" })
        EXPECT_EQ(portalKeyName(none), "") << none;
}

} // namespace
} // namespace vornic
