#include "desktop/window_presence.h"
#include "support/wait_until.h"
#include "support/xvfb_server.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <memory>

namespace vornic {
namespace {

using namespace test;

class X11WindowPresenceTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_server); }

    /// The window of the terminal that runs.
    [[nodiscard]] static quintptr xtermWindow()
    {
        QProcess search;
        search.start("xdotool", { "search", "--onlyvisible", "--class", "xterm" });
        search.waitForFinished();
        return search.readAllStandardOutput().trimmed().toULongLong();
    }

    std::unique_ptr<XvfbServer> m_server = XvfbServer::start();
};

TEST_F(X11WindowPresenceTest, AMinimisedWindowIsGoneWithItsDecoration)
{
    const auto openbox = m_server->startOpenbox();
    ASSERT_TRUE(openbox);
    const auto xterm = m_server->startXterm("cat");
    ASSERT_TRUE(xterm);
    quintptr window = 0;
    ASSERT_TRUE(waitUntil([&] { return (window = xtermWindow()) != 0; }));
    const auto presence = WindowPresence::create();
    EXPECT_TRUE(presence->isOnScreen(window));
    EXPECT_TRUE(waitUntil([&] {
        m_server->xdotool({ "windowminimize", QString::number(window) });
        return !presence->isOnScreen(window);
    }));
}

TEST_F(X11WindowPresenceTest, AWindowThatIsNotThereIsNotOnTheScreen)
{
    EXPECT_FALSE(WindowPresence::create()->isOnScreen(0x7fff00));
}

TEST_F(X11WindowPresenceTest, KnowsWhetherACompositingManagerRuns)
{
    const auto presence = WindowPresence::create();
    EXPECT_FALSE(presence->isComposited());
    const auto picom = m_server->startPicom();
    ASSERT_TRUE(picom);
    EXPECT_TRUE(presence->isComposited());
}

} // namespace
} // namespace vornic
