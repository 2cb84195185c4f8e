#include "display/bitmap_image.h"
#include "display/portal/portal_display.h"
#include "support/cast_source.h"
#include "support/fake_portal.h"
#include "support/pipewire_server.h"
#include "support/private_bus.h"
#include "support/scoped_environment.h"
#include "support/test_pictures.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <optional>

namespace vornic::test {
namespace {

using State = DisplayAccess::State;
using testing::HasSubstr;

constexpr QSize size(64, 48);

/// A Wayland session without a compositor: the portal and the stream are the test's.
class PortalDisplayTest : public testing::Test
{
protected:
    PortalDisplayTest()
    {
        m_environment.unset("WAYLAND_DISPLAY");
        m_environment.set("XDG_SESSION_TYPE", "wayland");
        m_environment.set("XDG_RUNTIME_DIR", m_folder.path());
    }

    void SetUp() override
    {
        m_server = PipeWireServer::start();
        ASSERT_TRUE(m_server);
        startSource();
        m_portal->remote = [this] { return m_server->connect(); };
        m_display = create();
        ASSERT_TRUE(m_display) << m_whyNot.toStdString();
    }

    /// On a thread of its own, as it waits for the portal, which lives on this one.
    [[nodiscard]] std::unique_ptr<DisplayBackend> create()
    {
        m_whyNot.clear();
        auto created = std::async(std::launch::async, [this] { return PortalDisplay::create(m_whyNot); });
        EXPECT_TRUE(eventually(
            [&] { return created.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
        return created.get();
    }

    void startSource()
    {
        m_source = CastSource::start(m_server->connect(), size);
        ASSERT_TRUE(m_source);
        m_portal->node = m_source->node();
    }

    void prepare()
    {
        m_answer.reset();
        m_display->prepare("wayland:me", [this](const DisplayAccess &access) { m_answer = access; });
    }
    [[nodiscard]] bool isAnswered()
    {
        return eventually([&] { return m_answer.has_value(); });
    }
    /// Prepares the display, which shows \a picture then.
    void show(const QImage &picture)
    {
        prepare();
        ASSERT_TRUE(m_source->sendUntil({ picture }, [&] { return m_answer.has_value(); }));
        ASSERT_EQ(m_answer->state, State::Granted) << m_answer->whyNot.toStdString();
    }
    [[nodiscard]] QImage grabbed(const QRect &rectangle = { 0, 0, 1000, 1000 })
    {
        const auto image = m_display->grab(rectangle);
        return image ? pixelsOf(*image) : QImage();
    }

    QTemporaryDir m_folder;
    ScopedEnvironment m_environment;
    QString m_whyNot;
    std::unique_ptr<PipeWireServer> m_server;
    std::unique_ptr<FakePortal> m_portal = std::make_unique<FakePortal>(sessionBusDaemon());
    std::unique_ptr<CastSource> m_source;
    std::unique_ptr<DisplayBackend> m_display;
    std::optional<DisplayAccess> m_answer;
};

TEST_F(PortalDisplayTest, AsksNobodyBeforeItIsToBeRecorded)
{
    EXPECT_FALSE(m_portal->wasCalled("CreateSession"));
    EXPECT_NE(m_display->mainDisplayId(), 0U);
    EXPECT_FALSE(m_display->grab({ 0, 0, 10, 10 }));
    EXPECT_EQ(m_display->cursorShape(), nullptr);
}

TEST_F(PortalDisplayTest, IsReadyWithTheFirstPicture)
{
    prepare();
    ASSERT_TRUE(eventually([&] { return m_source->isStreaming(); }));
    EXPECT_FALSE(m_answer);
    EXPECT_EQ(m_portal->arguments("Start").value(1), "wayland:me");
    const QImage picture = noisePicture(size, 1);
    ASSERT_TRUE(m_source->sendUntil({ picture }, [&] { return m_answer.has_value(); }));
    EXPECT_EQ(m_answer->state, State::Granted);
    EXPECT_EQ(m_display->mainDisplaySize(), size);
    EXPECT_EQ(grabbed(), picture);
    EXPECT_EQ(grabbed({ 3, 4, 20, 10 }), picture.copy(3, 4, 20, 10));
}

TEST_F(PortalDisplayTest, OneThatIsReadySaysSoAtOnce)
{
    show(noisePicture(size, 1));
    prepare();
    EXPECT_TRUE(m_answer);
    EXPECT_EQ(m_answer->state, State::Granted);
    EXPECT_FALSE(grabbed().isNull());
}

TEST_F(PortalDisplayTest, ThePointerIsTheStreams)
{
    show(noisePicture(size, 1));
    SourceFrame moved;
    moved.pointer = QPoint(5, 6);
    moved.pointerPicture = QImage(2, 2, QImage::Format_ARGB32_Premultiplied);
    moved.pointerPicture.fill(Qt::red);
    EXPECT_TRUE(m_source->sendUntil(moved, [&] { return m_display->pointerPosition() == QPoint(5, 6); }));
    EXPECT_TRUE(m_display->cursorShape());
}

TEST_F(PortalDisplayTest, AReleasedOneGivesNothingAndClosesItsSession)
{
    show(noisePicture(size, 1));
    m_display->release();
    EXPECT_FALSE(m_display->grab({ 0, 0, 10, 10 }));
    EXPECT_TRUE(eventually([&] { return m_portal->closed() == QStringList { m_portal->sessionPath() }; }));
    EXPECT_TRUE(eventually([&] { return !m_source->isStreaming(); }));
    EXPECT_NE(m_display->mainDisplayId(), 0U);
    show(noisePicture(size, 2));
    EXPECT_EQ(grabbed(), noisePicture(size, 2)) << "it can be prepared again";
}

TEST_F(PortalDisplayTest, OneWhoseStreamHasEndedIsGoneUntilItIsReleased)
{
    show(noisePicture(size, 1));
    m_source.reset();
    EXPECT_TRUE(eventually([&] { return m_display->mainDisplayId() == 0; }));
    EXPECT_FALSE(m_display->grab({ 0, 0, 10, 10 }));
    EXPECT_TRUE(m_display->mainDisplaySize().isEmpty());
    m_display->release();
    EXPECT_NE(m_display->mainDisplayId(), 0U);
}

TEST_F(PortalDisplayTest, OneWhoseStreamHasEndedIsPreparedAnew)
{
    show(noisePicture(size, 1));
    m_source.reset();
    EXPECT_TRUE(eventually([&] { return m_display->mainDisplayId() == 0; }));
    startSource();
    show(noisePicture(size, 2));
    EXPECT_EQ(grabbed(), noisePicture(size, 2));
}

TEST_F(PortalDisplayTest, OneWhoseSessionWasClosedIsGoneToo)
{
    show(noisePicture(size, 1));
    m_portal->closeSession();
    EXPECT_TRUE(eventually([&] { return m_display->mainDisplayId() == 0; }));
}

TEST_F(PortalDisplayTest, ThePortalsEndLeavesTheStream)
{
    show(noisePicture(size, 1));
    m_portal.reset();
    EXPECT_TRUE(
        m_source->sendUntil({ noisePicture(size, 2) }, [&] { return grabbed() == noisePicture(size, 2); }));
}

TEST_F(PortalDisplayTest, AUserWhoSaysNoIsNoFailure)
{
    m_portal->answers = { { "Start", 1 } };
    prepare();
    ASSERT_TRUE(isAnswered());
    EXPECT_EQ(m_answer->state, State::Declined);
}

TEST_F(PortalDisplayTest, AStreamThatSendsNothingIsGivenUp)
{
    prepare();
    ASSERT_TRUE(isAnswered());
    EXPECT_EQ(m_answer->state, State::Failed);
    EXPECT_THAT(m_answer->whyNot.toStdString(), HasSubstr("sends no picture"));
}

TEST_F(PortalDisplayTest, AStreamThatEndsBeforeItsFirstPictureIsNotWaitedFor)
{
    prepare();
    ASSERT_TRUE(eventually([&] { return m_source->isStreaming(); }));
    m_server->killPipeWire();
    ASSERT_TRUE(isAnswered());
    EXPECT_EQ(m_answer->state, State::Failed);
}

TEST_F(PortalDisplayTest, WhoGivesUpHearsNothingMore)
{
    m_portal->unanswered = QStringList { "Start" };
    prepare();
    ASSERT_TRUE(eventually([&] { return m_portal->wasCalled("Start"); }));
    m_display->release();
    ASSERT_TRUE(eventually([&] { return m_portal->closed().size() == 2; }));
    EXPECT_FALSE(m_answer);
}

TEST_F(PortalDisplayTest, WhoIsToldMayReleaseItAtOnce)
{
    m_portal->answers = { { "SelectSources", 2 } };
    bool isTold = false;
    m_display->prepare({}, [&](const DisplayAccess &) {
        m_display->release();
        isTold = true;
    });
    EXPECT_TRUE(eventually([&] { return isTold; }));
}

TEST_F(PortalDisplayTest, IsOfAWaylandSession)
{
    m_environment.unset("XDG_SESSION_TYPE");
    EXPECT_FALSE(create());
    EXPECT_THAT(m_whyNot.toStdString(), HasSubstr("WAYLAND_DISPLAY is not set"));
    m_environment.set("WAYLAND_DISPLAY", "wayland-0");
    EXPECT_TRUE(create());
}

TEST_F(PortalDisplayTest, NeedsAPortal)
{
    m_portal->version = 0;
    EXPECT_FALSE(create());
    EXPECT_THAT(m_whyNot.toStdString(), HasSubstr("no screen cast portal"));
    m_portal.reset();
    EXPECT_FALSE(create());
    EXPECT_THAT(m_whyNot.toStdString(), HasSubstr("no screen cast portal"));
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
