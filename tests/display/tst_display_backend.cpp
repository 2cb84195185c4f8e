#include "display/bitmap_image.h"
#include "display/display_backend.h"
#include "display/fake_display.h"
#include "x11_display_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace vornic;
using namespace vornic::test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// Leaves the process without a chosen display and with the environment as it was.
class DisplayBackendTest : public testing::Test
{
protected:
    void SetUp() override
    {
        qunsetenv("DISPLAY");
        qunsetenv("VORNIC_DISPLAY");
        setMainDisplay(nullptr);
    }
    void TearDown() override
    {
        qunsetenv("VORNIC_DISPLAY");
        setMainDisplay(nullptr);
    }

    static std::string reason() { return noDisplayReason().toStdString(); }

    static void expectNoDisplay()
    {
        EXPECT_EQ(mainDisplay()->mainDisplayId(), 0U);
        EXPECT_EQ(mainDisplay()->mainDisplaySize(), QSize(0, 0));
        EXPECT_FALSE(mainDisplay()->grab(QRect(0, 0, 10, 10)));
        EXPECT_FALSE(mainDisplay()->cursorShape());
        EXPECT_EQ(mainDisplay()->pointerPosition(), QPoint(0, 0));
    }

    static std::string sentenceFor(const XvfbServer::Options &options)
    {
        const auto server = XvfbServer::start(options);
        EXPECT_TRUE(server);
        setMainDisplay(nullptr);
        expectNoDisplay();
        return reason();
    }
};

TEST_F(DisplayBackendTest, TheTableEndsWithTheNullBackend)
{
    std::vector<std::string_view> ids;
    for (const DisplayBackendEntry &entry : displayBackends()) {
        ids.push_back(entry.id);
        EXPECT_EQ(entry.selectedByItself, entry.id != "fake");
    }
    EXPECT_THAT(ids, ElementsAre("x11", "fake", "null"));
}

TEST_F(DisplayBackendTest, WithoutADisplayThereIsASentence)
{
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("DISPLAY is not set"));
}

TEST_F(DisplayBackendTest, AServerThatIsNotThereIsNamed)
{
    qputenv("DISPLAY", ":4711");
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("\":4711\""));
}

TEST_F(DisplayBackendTest, AnUnknownBackendIsNamedWithThoseThatThereAre)
{
    qputenv("VORNIC_DISPLAY", "x12");
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("\"x12\""));
    EXPECT_THAT(reason(), HasSubstr("x11, fake, null"));
}

TEST_F(DisplayBackendTest, TheFakeIsThereWhenAskedFor)
{
    qputenv("VORNIC_DISPLAY", "fake");
    EXPECT_TRUE(dynamic_cast<FakeDisplay *>(mainDisplay().get()));
    EXPECT_EQ(mainDisplay()->mainDisplaySize(), QSize(1920, 1080));
    EXPECT_EQ(reason(), "");
}

TEST_F(DisplayBackendTest, NoneCanBeAskedFor)
{
    const auto server = XvfbServer::start();
    ASSERT_TRUE(server);
    qputenv("VORNIC_DISPLAY", "null");
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("VORNIC_DISPLAY"));
}

TEST_F(DisplayBackendTest, AForcedBackendThatCannotWorkSaysWhy)
{
    qputenv("VORNIC_DISPLAY", "x11");
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("DISPLAY is not set"));
}

TEST_F(DisplayBackendTest, AnX11DisplayIsChosenByItself)
{
    const auto server = XvfbServer::start({ .size = QSize(640, 480) });
    ASSERT_TRUE(server);
    EXPECT_NE(mainDisplay()->mainDisplayId(), 0U);
    EXPECT_EQ(mainDisplay()->mainDisplaySize(), QSize(640, 480));
    EXPECT_EQ(reason(), "");
    EXPECT_EQ(mainDisplay(), mainDisplay());
}

TEST_F(DisplayBackendTest, ATestMayPutItsOwnInPlace)
{
    const auto fake = std::make_shared<FakeDisplay>(QSize(32, 32));
    setMainDisplay(fake);
    EXPECT_EQ(mainDisplay(), fake);
    EXPECT_EQ(reason(), "");
    setMainDisplay(nullptr);
    EXPECT_NE(mainDisplay(), fake);
}

TEST_F(DisplayBackendTest, MissingSharedMemoryIsNamed)
{
    EXPECT_THAT(sentenceFor({ .arguments = { "-extension", "MIT-SHM" } }), HasSubstr("MIT-SHM"));
}

TEST_F(DisplayBackendTest, MissingMonitorsAreNamed)
{
    EXPECT_THAT(sentenceFor({ .arguments = { "-extension", "RANDR" } }), HasSubstr("RANDR"));
}

TEST_F(DisplayBackendTest, MissingCursorPicturesAreNamed)
{
    EXPECT_THAT(sentenceFor({ .arguments = { "-extension", "XFIXES" } }), HasSubstr("XFIXES"));
}

TEST_F(DisplayBackendTest, APixelFormatThatCannotBeReadIsNamed)
{
    EXPECT_THAT(sentenceFor({ .depth = 8 }), HasSubstr("depth 8"));
}

TEST_F(DisplayBackendTest, TheServerInsideAWaylandSessionIsRefused)
{
    const auto server = XvfbServer::start();
    ASSERT_TRUE(server);
    ASSERT_EQ(server->run({ "xrandr", "--setmonitor", "XWAYLAND0", "400/100x300/80+0+0", "screen" }), 0);
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("Wayland"));
}

TEST_F(DisplayBackendTest, ADisplayOfAnotherMachineIsRefused)
{
    // Only what the connection runs over tells, so one over TCP to this machine stands for all.
    const auto server = XvfbServer::start({ .arguments = { "-listen", "tcp", "-ac" } });
    ASSERT_TRUE(server);
    qputenv("DISPLAY", ("127.0.0.1" + server->displayName()).toLatin1());
    expectNoDisplay();
    EXPECT_THAT(reason(), HasSubstr("another machine"));
}

} // namespace
