#include "desktop/full_screen_watch.h"
#include "support/wait_until.h"
#include "support/xvfb_server.h"

#include <gtest/gtest.h>

#include <memory>

namespace vornic {
namespace {

using namespace test;

class X11FullScreenWatchTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_server);
        m_openbox = m_server->startOpenbox();
        ASSERT_TRUE(m_openbox);
    }

    [[nodiscard]] std::unique_ptr<ChildProcess> startFullScreen() const
    {
        return m_server->startProgram({ "xterm", "-fullscreen", "-e", "sleep", "1000" });
    }

    std::unique_ptr<XvfbServer> m_server = XvfbServer::start();
    std::unique_ptr<ChildProcess> m_openbox;
};

TEST_F(X11FullScreenWatchTest, FollowsTheWindowWithTheFocus)
{
    const auto watch = FullScreenWatch::create();
    int changes = 0;
    QObject::connect(watch.get(), &FullScreenWatch::changed, [&] { ++changes; });
    EXPECT_FALSE(watch->isFullScreen());
    auto player = startFullScreen();
    EXPECT_TRUE(waitUntil([&] { return watch->isFullScreen(); }));
    EXPECT_EQ(changes, 1);
    const auto doUntil = [&](const QString &action, bool isFullScreen) {
        return waitUntil([&] {
            m_server->xdotool({ "search", "--class", "xterm", action });
            return waitUntil([&] { return watch->isFullScreen() == isFullScreen; }, std::chrono::seconds(1));
        });
    };
    EXPECT_TRUE(doUntil("windowminimize", false)) << "no window has the focus";
    EXPECT_TRUE(doUntil("windowactivate", true));
    player->stop();
    EXPECT_TRUE(waitUntil([&] { return !watch->isFullScreen(); }));
}

TEST_F(X11FullScreenWatchTest, SeesAWindowThatGoesFullScreenAndBack)
{
    const auto player = startFullScreen();
    const auto watch = FullScreenWatch::create();
    ASSERT_TRUE(waitUntil([&] { return watch->isFullScreen(); }));
    m_server->xdotool({ "key", "alt+Return" }); // xterm's key for it
    EXPECT_TRUE(waitUntil([&] { return !watch->isFullScreen(); }));
    m_server->xdotool({ "key", "alt+Return" });
    EXPECT_TRUE(waitUntil([&] { return watch->isFullScreen(); }));
}

TEST_F(X11FullScreenWatchTest, WithoutAServerNothingIsFullScreen)
{
    m_server.reset();
    qunsetenv("DISPLAY");
    EXPECT_FALSE(FullScreenWatch::create()->isFullScreen());
}

} // namespace
} // namespace vornic
