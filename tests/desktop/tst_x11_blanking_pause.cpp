#include "client_process.h"
#include "desktop/idle_inhibitor.h"
#include "support/fake_service.h"
#include "support/private_bus.h"
#include "support/xvfb_server.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <xcb/screensaver.h>

#include <cstdlib>
#include <memory>

namespace vornic {

namespace {

using namespace test;

const QString reason = QStringLiteral("Recording the screen");

/// What the X server's own screen saver does, which is set to come after one second.
class Blanking
{
public:
    Blanking()
        : m_connection(xcb_connect(nullptr, nullptr))
        , m_root(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root)
    {
        xcb_set_screen_saver(m_connection, 1, 0, XCB_BLANKING_PREFERRED, XCB_EXPOSURES_ALLOWED);
        showScreen();
    }
    ~Blanking() { xcb_disconnect(m_connection); }
    Blanking(const Blanking &) = delete;
    Blanking &operator=(const Blanking &) = delete;

    /// As a key press does.
    void showScreen()
    {
        xcb_force_screen_saver(m_connection, XCB_SCREEN_SAVER_RESET);
        xcb_flush(m_connection);
    }

    [[nodiscard]] bool isBlank() { return info().state == XCB_SCREENSAVER_STATE_ON; }
    /// By the server's clock, since the last input or showScreen().
    [[nodiscard]] unsigned idleMilliseconds() { return info().ms_since_user_input; }

private:
    xcb_screensaver_query_info_reply_t info()
    {
        auto *reply = xcb_screensaver_query_info_reply(
            m_connection, xcb_screensaver_query_info(m_connection, m_root), nullptr);
        const auto info = reply ? *reply : xcb_screensaver_query_info_reply_t {};
        std::free(reply);
        return info;
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
};

} // namespace

class X11BlankingPauseTest : public testing::Test
{
protected:
    std::unique_ptr<XvfbServer> m_server = XvfbServer::start();
};

TEST_F(X11BlankingPauseTest, KeepsTheServerFromBlanking)
{
    ASSERT_TRUE(m_server);
    Blanking blanking;
    ASSERT_TRUE(eventually([&] { return blanking.isBlank(); })) << "it blanks when nobody keeps it from it";
    blanking.showScreen();
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_FALSE(blanking.isBlank());
    ASSERT_TRUE(eventually([&] { return blanking.isBlank() || blanking.idleMilliseconds() > 3000; }));
    EXPECT_FALSE(blanking.isBlank());
    inhibitor.reset();
    EXPECT_TRUE(eventually([&] { return blanking.isBlank(); }));
}

TEST_F(X11BlankingPauseTest, LetsTheServerBlankWhenItsProcessIsKilled)
{
    ASSERT_TRUE(m_server);
    ClientProcess client({ "inhibit" }, { "DISPLAY=" + m_server->displayName() });
    ASSERT_EQ(client.nextLine(), "inhibits");
    Blanking blanking;
    ASSERT_TRUE(eventually([&] { return blanking.isBlank() || blanking.idleMilliseconds() > 3000; }));
    EXPECT_FALSE(blanking.isBlank());
    client.signal(SIGKILL);
    EXPECT_TRUE(eventually([&] { return blanking.isBlank(); }));
}

TEST_F(X11BlankingPauseTest, OutlivesTheServer)
{
    ASSERT_TRUE(m_server);
    FakeService service(sessionBusDaemon(), "org.freedesktop.ScreenSaver");
    service.setAnswer([](const QDBusMessage &call) { return call.createReply(31U); });
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return !service.calls("Inhibit").empty(); }));
    ASSERT_TRUE(service.settle(QDBusConnection::sessionBus()));
    m_server->kill();
    inhibitor.reset();
    EXPECT_TRUE(eventually([&] { return !service.calls("UnInhibit").empty(); }));
}

TEST_F(X11BlankingPauseTest, NeedsNoScreenSaverInTheServer)
{
    XvfbServer::Options options;
    options.arguments = { "-extension", "MIT-SCREEN-SAVER" };
    const auto server = XvfbServer::start(options);
    ASSERT_TRUE(server);
    ClientProcess client({ "inhibit" }, { "DISPLAY=" + server->displayName() });
    EXPECT_EQ(client.nextLine(), "inhibits");
    EXPECT_EQ(client.end(), 0);
}

} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::test::runBusTests(argc, argv);
}
