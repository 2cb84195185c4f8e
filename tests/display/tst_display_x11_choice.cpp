#include "display_choice_fixture.h"
#include "support/xvfb_server.h"

#include <gmock/gmock.h>

namespace vornic::test {
namespace {

using testing::HasSubstr;

/// Which servers are recorded, and what is said of the others.
class X11ChoiceTest : public DisplayChoiceTest
{
protected:
    static std::string sentenceFor(const XvfbServer::Options &options)
    {
        const auto server = XvfbServer::start(options);
        EXPECT_TRUE(server);
        setMainDisplay(nullptr);
        expectNoDisplay();
        return reason();
    }
};

TEST_F(X11ChoiceTest, TheBackendStandsFirst)
{
    EXPECT_EQ(displayBackends().front().id, "x11");
}

TEST_F(X11ChoiceTest, NoneCanBeAskedForOnAServerThatWorks)
{
    const auto server = XvfbServer::start();
    ASSERT_TRUE(server);
    qputenv("VORNIC_DISPLAY", "null");
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("VORNIC_DISPLAY"));
}

TEST_F(X11ChoiceTest, AServerThatIsNotThereIsNamed)
{
    qputenv("DISPLAY", ":4711");
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("\":4711\""));
}

TEST_F(X11ChoiceTest, AForcedBackendThatCannotWorkSaysWhy)
{
    qputenv("VORNIC_DISPLAY", "x11");
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("DISPLAY is not set"));
}

TEST_F(X11ChoiceTest, AnX11DisplayIsChosenByItself)
{
    const auto server = XvfbServer::start({ .size = QSize(640, 480) });
    ASSERT_TRUE(server);
    EXPECT_NE(mainDisplay()->mainDisplayId(), 0U);
    EXPECT_EQ(mainDisplay()->mainDisplaySize(), QSize(640, 480));
    EXPECT_EQ(reason(), "");
    EXPECT_EQ(mainDisplay(), mainDisplay());
}

TEST_F(X11ChoiceTest, MissingSharedMemoryIsNamed)
{
    EXPECT_THAT(sentenceFor({ .arguments = { "-extension", "MIT-SHM" } }), HasSubstr("MIT-SHM"));
}

TEST_F(X11ChoiceTest, MissingMonitorsAreNamed)
{
    EXPECT_THAT(sentenceFor({ .arguments = { "-extension", "RANDR" } }), HasSubstr("RANDR"));
}

TEST_F(X11ChoiceTest, MissingCursorPicturesAreNamed)
{
    EXPECT_THAT(sentenceFor({ .arguments = { "-extension", "XFIXES" } }), HasSubstr("XFIXES"));
}

TEST_F(X11ChoiceTest, APixelFormatThatCannotBeReadIsNamed)
{
    EXPECT_THAT(sentenceFor({ .depth = 8 }), HasSubstr("depth 8"));
}

TEST_F(X11ChoiceTest, TheServerInsideAWaylandSessionIsRefused)
{
    const auto server = XvfbServer::start();
    ASSERT_TRUE(server);
    ASSERT_EQ(server->run({ "xrandr", "--setmonitor", "XWAYLAND0", "400/100x300/80+0+0", "screen" }), 0);
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("Wayland"));
}

TEST_F(X11ChoiceTest, AServerThatIsFrozenIsNotWaitedFor)
{
    const auto server = XvfbServer::start();
    ASSERT_TRUE(server);
    server->setFrozen(true);
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("Cannot connect"));
}

TEST_F(X11ChoiceTest, ADisplayOfAnotherMachineIsRefused)
{
    // Only what the connection runs over tells, so one over TCP to this machine stands for all.
    const auto server = XvfbServer::start({ .arguments = { "-listen", "tcp", "-ac" } });
    ASSERT_TRUE(server);
    qputenv("DISPLAY", ("127.0.0.1" + server->displayName()).toLatin1());
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("another machine"));
}

} // namespace
} // namespace vornic::test
