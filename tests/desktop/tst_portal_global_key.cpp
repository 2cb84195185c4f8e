#include "desktop/global_key.h"
#include "support/fake_portal.h"
#include "support/private_bus.h"
#include "support/scoped_environment.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QList>

#include <gtest/gtest.h>

#include <memory>

namespace vornic::test {
namespace {

using Answer = GlobalKey::Answer;

const QString id = QStringLiteral("record");

/// A Wayland session with a portal for keys, which the test plays.
class PortalGlobalKeyTest : public testing::Test
{
protected:
    PortalGlobalKeyTest()
    {
        m_environment.unset("DISPLAY");
        m_environment.set("XDG_SESSION_TYPE", "wayland");
    }
    void SetUp() override
    {
        m_key = GlobalKey::create();
        QObject::connect(m_key.get(), &GlobalKey::pressed, m_key.get(), [this] { ++m_presses; });
        QObject::connect(
            m_key.get(), &GlobalKey::answered, m_key.get(), [this](Answer answer) { m_answers += answer; });
    }

    /// The desktop's answer to the wish for \a key.
    [[nodiscard]] Answer answerTo(const QString &key)
    {
        m_answers.clear();
        EXPECT_EQ(m_key->listenFor(key), Answer::Asked);
        EXPECT_TRUE(eventually([&] { return !m_answers.isEmpty(); }));
        return m_answers.value(0, Answer::Asked);
    }
    [[nodiscard]] QString wished() const { return m_portal->wish().value("preferred_trigger").toString(); }
    /// Until all that was sent has come.
    void settle() const { ASSERT_TRUE(m_portal->service().settle(QDBusConnection::sessionBus())); }

    ScopedEnvironment m_environment;
    std::unique_ptr<FakePortal> m_portal = std::make_unique<FakePortal>(sessionBusDaemon());
    std::unique_ptr<GlobalKey> m_key;
    int m_presses = 0;
    QList<Answer> m_answers;
};

TEST_F(PortalGlobalKeyTest, TheDesktopIsAskedForTheKeyAndTellsOfIt)
{
    m_portal->trigger = "Ctrl+Alt+R";
    EXPECT_EQ(answerTo("Ctrl+Alt+R"), Answer::Heard);
    EXPECT_EQ(wished(), "CTRL+ALT+r");
    EXPECT_FALSE(m_portal->wish().value("description").toString().isEmpty());
    EXPECT_EQ(m_key->givenKey(), "Ctrl+Alt+R");
    m_portal->tellKey("Activated", id);
    EXPECT_TRUE(eventually([&] { return m_presses == 1; }));
}

TEST_F(PortalGlobalKeyTest, AKeyThatIsHeldIsHeardOnce)
{
    ASSERT_EQ(answerTo("F9"), Answer::Heard);
    for (int repeated = 0; repeated < 3; ++repeated)
        m_portal->tellKey("Activated", id);
    settle();
    EXPECT_EQ(m_presses, 1);
    m_portal->tellKey("Deactivated", id);
    m_portal->tellKey("Activated", id);
    settle();
    EXPECT_EQ(m_presses, 2);
}

TEST_F(PortalGlobalKeyTest, OtherKeysAndSessionsAreNotOurs)
{
    ASSERT_EQ(answerTo("F9"), Answer::Heard);
    m_portal->tellKey("Activated", "another");
    QDBusMessage foreign = QDBusMessage::createSignal(
        "/org/freedesktop/portal/desktop", "org.freedesktop.portal.GlobalShortcuts", "Activated");
    foreign.setArguments(
        { QVariant::fromValue(QDBusObjectPath("/session/of/others")), id, qulonglong(1), QVariantMap() });
    m_portal->service().send(foreign);
    settle();
    EXPECT_EQ(m_presses, 0);
}

TEST_F(PortalGlobalKeyTest, TheUserMayChooseAnotherKey)
{
    m_portal->trigger = "Meta+F5";
    ASSERT_EQ(answerTo("Ctrl+Alt+R"), Answer::Heard);
    EXPECT_EQ(m_key->givenKey(), "Meta+F5");
    m_portal->trigger = "Meta+F6";
    m_portal->tellKeysChanged(id);
    EXPECT_TRUE(eventually([&] { return m_key->givenKey() == "Meta+F6"; }));
    m_portal->trigger = "";
    m_portal->tellKeysChanged(id);
    EXPECT_TRUE(eventually([&] { return m_answers.last() == Answer::NotSet; }));
    EXPECT_EQ(m_key->givenKey(), "");
}

TEST_F(PortalGlobalKeyTest, AKeyThatIsGivenToNothingIsTold)
{
    m_portal->trigger = "";
    EXPECT_EQ(answerTo("Ctrl+Alt+R"), Answer::NotSet);
}

TEST_F(PortalGlobalKeyTest, TheUserMaySayNo)
{
    m_portal->answers = { { "BindShortcuts", 1 } };
    EXPECT_EQ(answerTo("Ctrl+Alt+R"), Answer::Declined);
}

TEST_F(PortalGlobalKeyTest, ADesktopWithoutThePortalGivesNoKey)
{
    m_portal->version = 0;
    EXPECT_EQ(answerTo("Ctrl+Alt+R"), Answer::NotOnThisDesktop);
    m_portal->version = 1;
    m_portal->refused = QStringList { "GetAll" };
    EXPECT_EQ(answerTo("Ctrl+Alt+R"), Answer::NotOnThisDesktop);
    m_portal.reset();
    EXPECT_EQ(answerTo("Ctrl+Alt+R"), Answer::NotOnThisDesktop);
}

TEST_F(PortalGlobalKeyTest, APortalMayFail)
{
    for (const char *method : { "CreateSession", "BindShortcuts" }) {
        m_portal->answers = { { method, 2 } };
        EXPECT_EQ(answerTo("Ctrl+Alt+R"), Answer::NotOnThisDesktop) << method;
        m_portal->answers.clear();
        m_portal->refused = QStringList { method };
        EXPECT_EQ(answerTo("Ctrl+Alt+R"), Answer::NotOnThisDesktop) << method;
        m_portal->refused.clear();
    }
}

TEST_F(PortalGlobalKeyTest, AnotherKeyEndsTheSessionOfTheOneBefore)
{
    ASSERT_EQ(answerTo("F9"), Answer::Heard);
    ASSERT_EQ(answerTo("Ctrl+Shift+Print"), Answer::Heard);
    EXPECT_EQ(m_portal->closed(), QStringList { m_portal->sessionPath() });
    EXPECT_EQ(wished(), "CTRL+SHIFT+Print");
    m_portal->tellKey("Activated", id);
    EXPECT_TRUE(eventually([&] { return m_presses == 1; }));
}

TEST_F(PortalGlobalKeyTest, NoKeyEndsItAndAsksNobody)
{
    ASSERT_EQ(answerTo("F9"), Answer::Heard);
    EXPECT_EQ(m_key->listenFor({}), Answer::Heard);
    EXPECT_TRUE(eventually([&] { return m_portal->closed().size() == 1; }));
    m_portal->tellKey("Activated", id);
    settle();
    EXPECT_EQ(m_presses, 0);
    EXPECT_EQ(m_portal->service().calls("CreateSession").size(), 1U);
    EXPECT_EQ(m_key->listenFor("nonsense"), Answer::NoSuchKey);
}

TEST_F(PortalGlobalKeyTest, AWishThatWasTakenBackIsAnsweredNoMore)
{
    m_portal->unanswered = QStringList { "BindShortcuts" };
    EXPECT_EQ(m_key->listenFor("F9"), Answer::Asked);
    ASSERT_TRUE(eventually([&] { return m_portal->wasCalled("BindShortcuts"); }));
    EXPECT_EQ(m_key->listenFor({}), Answer::Heard);
    EXPECT_TRUE(eventually([&] { return m_portal->closed().size() == 2; })) << "the dialog and the session";
    EXPECT_TRUE(m_answers.isEmpty());
}

TEST_F(PortalGlobalKeyTest, ASessionThatTheDesktopEndsIsTold)
{
    ASSERT_EQ(answerTo("F9"), Answer::Heard);
    m_portal->closeSession();
    EXPECT_TRUE(eventually([&] { return m_answers.last() == Answer::NotSet; }));
    m_portal->tellKey("Activated", id);
    settle();
    EXPECT_EQ(m_presses, 0);
}

TEST_F(PortalGlobalKeyTest, APortalThatComesBackIsAskedAgain)
{
    ASSERT_EQ(answerTo("F9"), Answer::Heard);
    m_portal->tellKey("Activated", id); // and it dies while the key is held
    ASSERT_TRUE(eventually([&] { return m_presses == 1; }));
    m_answers.clear();
    m_portal.reset();
    m_portal = std::make_unique<FakePortal>(sessionBusDaemon());
    ASSERT_TRUE(eventually([&] { return m_answers == QList { Answer::Heard }; }));
    m_portal->tellKey("Activated", id);
    EXPECT_TRUE(eventually([&] { return m_presses == 2; }));
}

TEST_F(PortalGlobalKeyTest, ItsEndEndsTheSession)
{
    ASSERT_EQ(answerTo("F9"), Answer::Heard);
    m_key.reset();
    EXPECT_TRUE(eventually([&] { return m_portal->closed() == QStringList { m_portal->sessionPath() }; }));
}

TEST_F(PortalGlobalKeyTest, NobodyIsAskedForAKeyOfAMoment)
{
    const auto key = GlobalKey::createForMoment();
    EXPECT_EQ(key->listenFor("Esc"), Answer::NotOnThisDesktop);
    settle();
    EXPECT_FALSE(m_portal->wasCalled("GetAll"));
}

TEST_F(PortalGlobalKeyTest, WithoutAWaylandSessionNobodyIsAsked)
{
    m_environment.unset("XDG_SESSION_TYPE");
    m_environment.unset("WAYLAND_DISPLAY");
    EXPECT_EQ(GlobalKey::create()->listenFor("F9"), Answer::NotOnThisDesktop);
}

} // namespace
} // namespace vornic::test

int main(int argc, char **argv)
{
    return vornic::test::runBusTests(argc, argv);
}
