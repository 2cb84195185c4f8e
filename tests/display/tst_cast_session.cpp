#include "base/user_defaults.h"
#include "display/portal/cast_session.h"
#include "support/fake_portal.h"
#include "support/private_bus.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace vornic::test {
namespace {

using State = DisplayAccess::State;
using testing::HasSubstr;

/// A session of a portal that the test plays.
class CastSessionTest : public testing::Test
{
protected:
    CastSessionTest() { user_defaults::remove("com.kavlor.screenCastToken"); }

    void begin()
    {
        m_answer.reset();
        m_session = std::make_unique<CastSession>(
            "x11:1f", [this](const DisplayAccess &access, const CastSource &source) {
                EXPECT_FALSE(m_answer) << "it is answered once";
                m_answer = access;
                m_source = source;
            });
    }
    /// Runs a session until it is answered.
    [[nodiscard]] State answer()
    {
        begin();
        EXPECT_TRUE(eventually([&] { return m_answer.has_value(); }));
        return m_answer.value_or(DisplayAccess { State::Failed, "no answer" }).state;
    }
    [[nodiscard]] std::string whyNot() const { return m_answer->whyNot.toStdString(); }
    /// Runs a session until the user is asked by \a method.
    [[nodiscard]] bool runUntilCalled(const QString &method)
    {
        begin();
        return eventually([&] { return m_portal->wasCalled(method); });
    }
    [[nodiscard]] static QVariant token() { return user_defaults::value("com.kavlor.screenCastToken"); }

    std::unique_ptr<FakePortal> m_portal = std::make_unique<FakePortal>(sessionBusDaemon());
    std::unique_ptr<CastSession> m_session;
    std::optional<DisplayAccess> m_answer;
    CastSource m_source;
};

TEST_F(CastSessionTest, AMonitorIsAskedForAndItsStreamIsGiven)
{
    EXPECT_EQ(answer(), State::Granted);
    EXPECT_EQ(m_source.node, 42U);
    EXPECT_TRUE(m_source.remote.isValid());
    EXPECT_EQ(m_portal->options("SelectSources").value("types"), 1U);
    EXPECT_EQ(m_portal->options("SelectSources").value("multiple"), false);
    EXPECT_EQ(m_portal->arguments("Start").value(1), "x11:1f");
}

TEST_F(CastSessionTest, WhereTheMonitorLiesIsTakenFromWhatIsToldOfTheStream)
{
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_FALSE(m_source.position);
    m_portal->position = QPoint(1920, -40);
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_EQ(m_source.position, QPoint(1920, -40));
    m_portal->position = "somewhere";
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_FALSE(m_source.position);
}

TEST_F(CastSessionTest, ThePointerComesBesideThePicturesWhereItCan)
{
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_EQ(m_portal->options("SelectSources").value("cursor_mode"), 4U);
    m_portal->cursorModes = 3;
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_EQ(m_portal->options("SelectSources").value("cursor_mode"), 2U);
    m_portal->cursorModes = 0;
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_FALSE(m_portal->options("SelectSources").contains("cursor_mode"));
}

TEST_F(CastSessionTest, WhatTheUserHasChosenIsRememberedForTheNextTime)
{
    m_portal->restoreToken = "first";
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_EQ(m_portal->options("SelectSources").value("persist_mode"), 2U);
    EXPECT_FALSE(m_portal->options("SelectSources").contains("restore_token"));
    EXPECT_EQ(token(), "first");
    m_portal->restoreToken = "second";
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_EQ(m_portal->options("SelectSources").value("restore_token"), "first");
    EXPECT_EQ(token(), "second");
    m_portal->restoreToken.clear();
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_FALSE(token().isValid()) << "each is good for once";
}

TEST_F(CastSessionTest, APortalThatCannotRememberIsNotAskedTo)
{
    user_defaults::setValue("com.kavlor.screenCastToken", "old");
    m_portal->version = 3;
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_FALSE(m_portal->options("SelectSources").contains("persist_mode"));
    EXPECT_FALSE(m_portal->options("SelectSources").contains("restore_token"));
}

TEST_F(CastSessionTest, TheUserMaySayNo)
{
    for (const char *method : { "CreateSession", "SelectSources", "Start" }) {
        m_portal->answers = { { method, 1 } };
        EXPECT_EQ(answer(), State::Declined) << method;
    }
}

TEST_F(CastSessionTest, APortalMayFail)
{
    for (const char *method : { "CreateSession", "SelectSources", "Start" }) {
        m_portal->answers = { { method, 2 } };
        EXPECT_EQ(answer(), State::Failed) << method;
        EXPECT_EQ(whyNot(), "The desktop's portal gives no pictures of its screen.");
    }
}

TEST_F(CastSessionTest, WhyAPortalRefusesIsTold)
{
    for (const char *method : { "CreateSession", "SelectSources", "Start", "OpenPipeWireRemote" }) {
        m_portal->refused = QStringList { method };
        EXPECT_EQ(answer(), State::Failed) << method;
        EXPECT_EQ(whyNot(), "The desktop's portal gives no pictures of its screen: Not in the mood.");
    }
}

TEST_F(CastSessionTest, WithoutAStreamThereAreNoPictures)
{
    m_portal->node = 0;
    EXPECT_EQ(answer(), State::Failed);
}

TEST_F(CastSessionTest, WithoutAPortalThereIsASentence)
{
    m_portal.reset();
    EXPECT_EQ(answer(), State::Failed);
    EXPECT_THAT(whyNot(), HasSubstr("no screen cast portal"));
    m_portal = std::make_unique<FakePortal>(sessionBusDaemon());
    m_portal->refused = QStringList { "GetAll" };
    EXPECT_EQ(answer(), State::Failed);
    EXPECT_THAT(whyNot(), HasSubstr("no screen cast portal"));
}

TEST_F(CastSessionTest, APortalThatDiesWhileItsDialogStandsIsNotWaitedFor)
{
    m_portal->unanswered = QStringList { "Start" };
    ASSERT_TRUE(runUntilCalled("Start"));
    EXPECT_FALSE(m_answer);
    m_portal.reset();
    ASSERT_TRUE(eventually([&] { return m_answer.has_value(); }));
    EXPECT_EQ(m_answer->state, State::Failed);
    EXPECT_THAT(whyNot(), HasSubstr("The desktop's portal gives no pictures of its screen"));
}

TEST_F(CastSessionTest, WhoGivesUpClosesTheDialogAndTheSession)
{
    m_portal->unanswered = QStringList { "Start" };
    ASSERT_TRUE(runUntilCalled("Start"));
    m_session.reset();
    ASSERT_TRUE(eventually([&] { return m_portal->closed().size() == 2; }));
    EXPECT_TRUE(m_portal->closed()[0].endsWith(m_portal->options("Start").value("handle_token").toString()));
    EXPECT_EQ(m_portal->closed()[1], m_portal->sessionPath());
    EXPECT_FALSE(m_answer);
}

TEST_F(CastSessionTest, ARecordingThatIsOverClosesItsSession)
{
    ASSERT_EQ(answer(), State::Granted);
    EXPECT_TRUE(m_portal->closed().empty());
    m_session.reset();
    EXPECT_TRUE(eventually([&] { return m_portal->closed() == QStringList { m_portal->sessionPath() }; }));
}

TEST_F(CastSessionTest, TheDesktopMayCloseTheSession)
{
    ASSERT_EQ(answer(), State::Granted);
    int ends = 0;
    QObject::connect(m_session.get(), &CastSession::ended, m_session.get(), [&] { ++ends; });
    m_portal->closeSession();
    EXPECT_TRUE(eventually([&] { return ends == 1; }));
}

} // namespace
} // namespace vornic::test

int main(int argc, char **argv)
{
    const QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    return vornic::test::runBusTests(argc, argv);
}
