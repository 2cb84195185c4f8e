#include "display/fake_display.h"
#include "display_choice_fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

namespace vornic::test {
namespace {

using testing::Contains;
using testing::HasSubstr;

TEST_F(DisplayChoiceTest, TheTableEndsWithTheNullBackend)
{
    std::set<std::string_view> ids;
    for (const DisplayBackendEntry &entry : displayBackends()) {
        EXPECT_TRUE(ids.insert(entry.id).second) << entry.id << " twice";
        EXPECT_EQ(entry.selectedByItself, entry.id != "fake");
    }
    EXPECT_THAT(ids, Contains("fake"));
    EXPECT_EQ(displayBackends().back().id, "null");
}

TEST_F(DisplayChoiceTest, WithoutADisplayThereIsASentence)
{
    const bool isBuiltForAny = displayBackends().size() > 2;
    expectNoDisplay();
    EXPECT_THAT(reason(),
                HasSubstr(isBuiltForAny ? "DISPLAY is not set" : "This build of Vornic cannot record"));
}

TEST_F(DisplayChoiceTest, InAWaylandSessionItsOwnBackendSaysWhyNot)
{
    if (std::ranges::find(displayBackends(), "portal", &DisplayBackendEntry::id) == displayBackends().end())
        GTEST_SKIP() << "there is none in this build";
    qputenv("WAYLAND_DISPLAY", "wayland-nowhere");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    for (const char *xServer : { "", ":4711" }) {
        qputenv("DISPLAY", xServer);
        setMainDisplay(nullptr);
        EXPECT_EQ(reason(),
                  "This desktop has no screen cast portal, through which its screen could be recorded.");
    }
}

TEST_F(DisplayChoiceTest, InAnX11SessionNothingIsSaidOfWayland)
{
    if (displayBackends().front().id != "x11")
        GTEST_SKIP() << "there is none in this build";
    qputenv("DISPLAY", ":4711");
    EXPECT_EQ(reason(), "Cannot connect to the X11 display \":4711\".");
}

TEST_F(DisplayChoiceTest, AnUnknownBackendIsNamedWithThoseThatThereAre)
{
    qputenv("VORNIC_DISPLAY", "x12");
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("\"x12\""));
    EXPECT_THAT(reason(), HasSubstr("fake, null"));
}

TEST_F(DisplayChoiceTest, TheFakeIsThereWhenAskedFor)
{
    qputenv("VORNIC_DISPLAY", "fake");
    EXPECT_TRUE(dynamic_cast<FakeDisplay *>(mainDisplay().get()));
    EXPECT_EQ(mainDisplay()->mainDisplaySize(), QSize(1920, 1080));
    EXPECT_EQ(reason(), "");
}

TEST_F(DisplayChoiceTest, NoneCanBeAskedFor)
{
    qputenv("VORNIC_DISPLAY", "null");
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("switched off by the environment variable VORNIC_DISPLAY"));
}

TEST_F(DisplayChoiceTest, ATestMayPutItsOwnInPlace)
{
    const auto fake = std::make_shared<FakeDisplay>(QSize(32, 32));
    setMainDisplay(fake);
    EXPECT_EQ(mainDisplay(), fake);
    EXPECT_EQ(reason(), "");
    setMainDisplay(nullptr);
    EXPECT_NE(mainDisplay(), fake);
}

} // namespace
} // namespace vornic::test
