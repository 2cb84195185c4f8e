#include "base/user_defaults.h"
#include "display/portal/portal_display.h"
#include "support/cast_source.h"
#include "support/fake_portal.h"
#include "support/pipewire_server.h"
#include "support/private_bus.h"
#include "support/sway_session.h"
#include "support/test_pictures.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <optional>

namespace vornic::test {
namespace {

constexpr QSize first(640, 480);
constexpr QSize second(800, 600);

/// A Wayland session with monitors of its own; the portal and the stream are the test's.
class PortalMonitorsTest : public testing::Test
{
protected:
    PortalMonitorsTest() { user_defaults::remove("com.kavlor.screenCastMonitor"); }

    void SetUp() override
    {
        m_desktop = SwaySession::start({ .size = first });
        m_server = PipeWireServer::start();
        ASSERT_TRUE(m_desktop && m_server);
        m_portal.remote = [this] { return m_server->connect(); };
        m_display = create();
        ASSERT_TRUE(m_display);
    }

    /// On a thread of its own, as it waits for the portal, which lives on this one.
    [[nodiscard]] static std::unique_ptr<DisplayBackend> create()
    {
        QString whyNot;
        auto created = std::async(std::launch::async, [&whyNot] { return PortalDisplay::create(whyNot); });
        EXPECT_TRUE(eventually(
            [&] { return created.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
        return created.get();
    }

    /// The user grants a monitor whose pictures have \a size, and which lies where the portal says.
    void grant(QSize size, const QVariant &position = {})
    {
        m_display->release();
        m_source = CastSource::start(m_server->connect(), size);
        ASSERT_TRUE(m_source);
        m_portal.node = m_source->node();
        m_portal.position = position;
        std::optional<DisplayAccess> answer;
        m_display->prepare({}, [&](const DisplayAccess &access) { answer = access; });
        ASSERT_TRUE(m_source->sendUntil({ noisePicture(size, 1) }, [&] { return answer.has_value(); }));
        ASSERT_EQ(answer->state, DisplayAccess::State::Granted) << answer->whyNot.toStdString();
    }
    /// Plugs in a second one, right of the first.
    void addSecond(QSize size = second)
    {
        ASSERT_TRUE(m_desktop->addMonitor(size, { first.width(), 0 }));
        ASSERT_TRUE(eventually([&] { return !m_display->mainDisplayName().isEmpty(); }));
    }

    std::unique_ptr<SwaySession> m_desktop;
    std::unique_ptr<PipeWireServer> m_server;
    FakePortal m_portal { sessionBusDaemon() };
    std::unique_ptr<CastSource> m_source;
    std::unique_ptr<DisplayBackend> m_display;
};

TEST_F(PortalMonitorsTest, AnOnlyOneNeedsNoName)
{
    EXPECT_EQ(m_display->mainDisplayName(), "");
    EXPECT_EQ(m_display->mainDisplaySize(), first);
    EXPECT_EQ(m_display->mainDisplayOrigin(), QPoint(0, 0));
    grant(first, QPoint(0, 0));
    EXPECT_EQ(m_display->mainDisplayName(), "");
}

TEST_F(PortalMonitorsTest, TheOneThatIsGrantedIsTheMainDisplayFromThenOn)
{
    addSecond();
    EXPECT_EQ(m_display->mainDisplayName(), "HEADLESS-1") << "as long as nobody has chosen";
    grant(second);
    EXPECT_EQ(m_display->mainDisplayName(), "HEADLESS-2");
    EXPECT_EQ(m_display->mainDisplayOrigin(), QPoint(first.width(), 0));
    EXPECT_EQ(m_display->mainDisplaySize(), second);
    m_display->release();
    EXPECT_EQ(m_display->mainDisplayName(), "HEADLESS-2");
    EXPECT_EQ(m_display->mainDisplaySize(), second);
    const auto nextStart = create();
    EXPECT_EQ(nextStart->mainDisplayName(), "HEADLESS-2");
    EXPECT_EQ(nextStart->mainDisplayOrigin(), QPoint(first.width(), 0));
    grant(first);
    EXPECT_EQ(m_display->mainDisplayName(), "HEADLESS-1");
}

TEST_F(PortalMonitorsTest, OfTwoAlikeThePlaceTells)
{
    addSecond(first);
    grant(first, QPoint(first.width(), 0));
    EXPECT_EQ(m_display->mainDisplayName(), "HEADLESS-2");
    grant(first, QPoint(0, 0));
    EXPECT_EQ(m_display->mainDisplayName(), "HEADLESS-1");
}

TEST_F(PortalMonitorsTest, TheOriginIsInPixelsOfTheMonitor)
{
    addSecond();
    ASSERT_TRUE(m_desktop->command("output HEADLESS-2 scale 2"));
    grant(second);
    EXPECT_TRUE(eventually([&] { return m_display->mainDisplayOrigin() == QPoint(first.width() * 2, 0); }));
}

TEST_F(PortalMonitorsTest, OneThatIsNoLongerThereIsNotTheMainDisplay)
{
    addSecond();
    user_defaults::setValue("com.kavlor.screenCastMonitor", "DP-9");
    const auto nextStart = create();
    EXPECT_EQ(nextStart->mainDisplayName(), "HEADLESS-1");
    EXPECT_EQ(nextStart->mainDisplaySize(), first);
    EXPECT_EQ(nextStart->mainDisplayOrigin(), QPoint(0, 0));
}

} // namespace
} // namespace vornic::test

int main(int argc, char **argv)
{
    if (!vornic::test::PipeWireServer::isInstalled())
        return 77;
    const QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    return vornic::test::runBusTests(argc, argv);
}
