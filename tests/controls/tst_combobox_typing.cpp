#include "controls/combobox_typing.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

const QStringList titles { "Desk", "Built-in", "Dock", "Dockside", "USB" };

TEST(TitleForTyping, OneLetterGoesOnToTheNextTitle)
{
    EXPECT_EQ(titleForTyping(titles, "d", -1), 0);
    EXPECT_EQ(titleForTyping(titles, "d", 0), 2);
    EXPECT_EQ(titleForTyping(titles, "D", 3), 0);
    EXPECT_EQ(titleForTyping(titles, "u", 4), 4) << "the only one, which is selected already";
}

TEST(TitleForTyping, TheSameLetterAgainGoesOnToo)
{
    EXPECT_EQ(titleForTyping(titles, "dD", 0), 2);
    EXPECT_EQ(titleForTyping(titles, "ddd", 2), 3);
}

TEST(TitleForTyping, MoreLettersStayOnTheTitleThatFits)
{
    EXPECT_EQ(titleForTyping(titles, "do", 2), 2);
    EXPECT_EQ(titleForTyping(titles, "docks", 2), 3);
    EXPECT_EQ(titleForTyping(titles, "de", 3), 0);
}

TEST(TitleForTyping, NothingFits)
{
    EXPECT_EQ(titleForTyping(titles, "x", 0), -1);
    EXPECT_EQ(titleForTyping(titles, "deskx", 0), -1);
    EXPECT_EQ(titleForTyping(titles, "", 0), -1);
    EXPECT_EQ(titleForTyping({}, "d", -1), -1);
}

TEST(TitleForTyping, AnIndexOutOfRangeIsNoObstacle)
{
    EXPECT_EQ(titleForTyping(titles, "d", 99), 0);
    EXPECT_EQ(titleForTyping(titles, "d", -99), 0);
}

} // namespace
} // namespace vornic
