#include "overlay/toolkit_platform.h"
#include "support/scoped_environment.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

class ToolkitPlatformTest : public ::testing::Test
{
protected:
    ToolkitPlatformTest()
    {
        variables.unset("QT_QPA_PLATFORM");
        variables.set("DISPLAY", ":5");
        variables.set("WAYLAND_DISPLAY", "wayland-5");
    }
    [[nodiscard]] static QByteArray chosen()
    {
        const ToolkitPlatform platform;
        return qgetenv("QT_QPA_PLATFORM");
    }

    test::ScopedEnvironment variables;
};

TEST_F(ToolkitPlatformTest, IsTheXServerOnAWaylandDesktopThatHasOne)
{
    EXPECT_EQ(chosen(), "xcb;wayland");
}

TEST_F(ToolkitPlatformTest, IsTheToolkitsChoiceElsewhere)
{
    variables.unset("DISPLAY");
    EXPECT_EQ(chosen(), "") << "no X server";
    variables.set("DISPLAY", ":5");
    variables.unset("WAYLAND_DISPLAY");
    EXPECT_EQ(chosen(), "") << "no Wayland desktop";
}

TEST_F(ToolkitPlatformTest, IsTheUsersWhereThereIsOne)
{
    variables.set("QT_QPA_PLATFORM", "wayland");
    EXPECT_EQ(chosen(), "wayland");
    EXPECT_EQ(qgetenv("QT_QPA_PLATFORM"), "wayland");
}

TEST_F(ToolkitPlatformTest, IsNotHandedToOtherPrograms)
{
    (void)chosen();
    EXPECT_FALSE(qEnvironmentVariableIsSet("QT_QPA_PLATFORM"));
}

} // namespace
} // namespace vornic
