#include "client_process.h"
#include "desktop/single_instance.h"
#include "support/fake_service.h"
#include "support/private_bus.h"

#include <QDBusArgument>
#include <QDBusPendingCall>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <signal.h>

#include <memory>
#include <optional>

namespace vornic {

namespace {

using namespace test;

const QString name = QStringLiteral("com.kavlor.vornic");

/// For what a new start is given by the desktop's launcher.
const QStringList noTokens { "DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN" };

bool isOwned()
{
    const QString service = QStringLiteral("org.freedesktop.DBus");
    QDBusMessage call
        = QDBusMessage::createMethodCall(service, "/org/freedesktop/DBus", service, "NameHasOwner");
    call.setArguments({ name });
    return QDBusConnection::sessionBus().call(call).arguments().value(0).toBool();
}

/// A call as the desktop sends it.
class DesktopCall
{
public:
    DesktopCall(const QString &method, const QVariantList &arguments)
        : m_bus(QDBusConnection::connectToBus(QString::fromLatin1(sessionBusDaemon().address()), "desktop"))
        , m_pending(m_bus.asyncCall(call(method, arguments)))
    {
    }
    ~DesktopCall() { QDBusConnection::disconnectFromBus("desktop"); }
    DesktopCall(const DesktopCall &) = delete;
    DesktopCall &operator=(const DesktopCall &) = delete;

    [[nodiscard]] bool isAnswered() const { return m_pending.isFinished(); }
    [[nodiscard]] bool succeeds() const
    {
        return eventually([&] { return isAnswered(); }) && !m_pending.isError();
    }

private:
    static QDBusMessage call(const QString &method, const QVariantList &arguments)
    {
        QDBusMessage call = QDBusMessage::createMethodCall(
            name, "/com/kavlor/vornic", "org.freedesktop.Application", method);
        call.setArguments(arguments);
        return call;
    }

    QDBusConnection m_bus;
    QDBusPendingCall m_pending;
};

} // namespace

TEST(SingleInstance, IsOnlyOnce)
{
    ClientProcess first({ "instance" });
    ASSERT_EQ(first.nextLine(), "only");
    ClientProcess second({ "instance" });
    EXPECT_EQ(second.nextLine(), "not only");
    EXPECT_EQ(second.end(), 0);
    EXPECT_EQ(first.end(), 0);
    EXPECT_FALSE(isOwned());
}

TEST(SingleInstance, ASecondStartBringsTheFirstToTheFront)
{
    ClientProcess first({ "instance" });
    ASSERT_EQ(first.nextLine(), "only");
    ClientProcess second({ "hand-over" }, noTokens);
    EXPECT_EQ(second.nextLine(), "taken");
    EXPECT_EQ(first.nextLine(), "activated with ''");
    EXPECT_EQ(second.end(), 0);
    ClientProcess third({ "hand-over" }, noTokens);
    EXPECT_EQ(third.nextLine(), "taken");
    EXPECT_EQ(first.nextLine(), "activated with ''");
}

TEST(SingleInstance, ASecondStartHandsItsActionOver)
{
    ClientProcess first({ "instance" });
    ASSERT_EQ(first.nextLine(), "only");
    ClientProcess second({ "hand-over", "record-region" }, noTokens);
    EXPECT_EQ(second.nextLine(), "taken");
    EXPECT_EQ(first.nextLine(), "asked for record-region with ''");
}

TEST(SingleInstance, ASecondStartHandsTheFileOver)
{
    ClientProcess first({ "instance" });
    ASSERT_EQ(first.nextLine(), "only");
    ClientProcess second({ "hand-over", "record", "/some where/ä.mp4" }, noTokens);
    EXPECT_EQ(second.nextLine(), "taken");
    EXPECT_EQ(first.nextLine(), "asked for record with ''/some where/ä.mp4");
}

TEST(SingleInstance, AnActionThatCannotBeDoneNowIsRefused)
{
    ClientProcess first({ "instance" });
    ASSERT_EQ(first.nextLine(), "only");
    ClientProcess second({ "hand-over", "refuse-me" }, noTokens);
    EXPECT_EQ(second.nextLine(), "refused");
    ClientProcess third({ "hand-over", "record" }, noTokens);
    EXPECT_EQ(third.nextLine(), "taken");
    EXPECT_EQ(first.nextLine(), "asked for record with ''") << "the refused one is not done";
}

TEST(SingleInstance, ASecondStartHandsItsTokensOver)
{
    ClientProcess first({ "instance" });
    ASSERT_EQ(first.nextLine(), "only");
    ClientProcess onX11({ "hand-over" }, { "DESKTOP_STARTUP_ID=start-1_TIME5", "XDG_ACTIVATION_TOKEN" });
    EXPECT_EQ(onX11.nextLine(), "taken");
    EXPECT_EQ(first.nextLine(), "activated with 'start-1_TIME5'");
    ClientProcess both({ "hand-over", "record" },
                       { "DESKTOP_STARTUP_ID=start-2", "XDG_ACTIVATION_TOKEN=token-2" });
    EXPECT_EQ(both.nextLine(), "taken");
    EXPECT_EQ(first.nextLine(), "asked for record with 'token-2'");
}

TEST(SingleInstance, PassesWhatTheLauncherGaveUnderTheNamesOfTheDesktop)
{
    FakeService first(sessionBusDaemon(), name);
    ClientProcess second({ "hand-over", "record" },
                         { "DESKTOP_STARTUP_ID=start-3", "XDG_ACTIVATION_TOKEN=token-3" });
    ASSERT_TRUE(eventually([&] { return !first.calls("ActivateAction").empty(); }));
    const QDBusMessage call = first.calls("ActivateAction").front();
    EXPECT_EQ(call.path(), "/com/kavlor/vornic");
    EXPECT_EQ(call.interface(), "org.freedesktop.Application");
    EXPECT_EQ(call.signature(), "sava{sv}");
    EXPECT_EQ(call.arguments().value(0), "record");
    EXPECT_TRUE(qdbus_cast<QVariantList>(call.arguments().value(1)).isEmpty());
    const auto data = qdbus_cast<QVariantMap>(call.arguments().value(2));
    EXPECT_EQ(data.value("desktop-startup-id"), "start-3");
    EXPECT_EQ(data.value("activation-token"), "token-3");
    first.send(call.createReply());
    EXPECT_EQ(second.nextLine(), "taken");
}

TEST(SingleInstance, AFirstThatRefusesHasNotTaken)
{
    FakeService first(sessionBusDaemon(), name);
    first.setAnswer(
        [](const QDBusMessage &call) { return call.createErrorReply(QDBusError::Failed, "Not now"); });
    ClientProcess second({ "hand-over" });
    EXPECT_EQ(second.nextLine(), "not taken");
}

TEST(SingleInstance, AHangingFirstDoesNotHangTheSecond)
{
    ClientProcess first({ "instance" });
    ASSERT_EQ(first.nextLine(), "only");
    first.signal(SIGSTOP);
    // The line would not come in time if it waited as long as calls usually do.
    ClientProcess second({ "hand-over" });
    EXPECT_EQ(second.nextLine(), "not taken");
}

TEST(SingleInstance, AKilledFirstLeavesItsPlace)
{
    ClientProcess first({ "instance" });
    ASSERT_EQ(first.nextLine(), "only");
    first.signal(SIGKILL);
    ASSERT_TRUE(eventually([] { return !isOwned(); }));
    ClientProcess second({ "instance" });
    EXPECT_EQ(second.nextLine(), "only");
}

TEST(SingleInstance, TakesThePlaceOfAFirstThatEndsWhileItHandsOver)
{
    auto first = std::make_unique<ClientProcess>(QStringList { "instance" });
    ASSERT_EQ(first->nextLine(), "only");
    SingleInstance second;
    ASSERT_FALSE(second.isOnly());
    ASSERT_EQ(first->end(), 0);
    EXPECT_EQ(second.handOver(), SingleInstance::Answer::None);
    EXPECT_TRUE(second.isOnly());
    bool isAsked = false;
    QObject::connect(&second, &SingleInstance::activated, [&] { isAsked = true; });
    ClientProcess third({ "hand-over" });
    EXPECT_EQ(third.nextLine(), "taken");
    EXPECT_TRUE(eventually([&] { return isAsked; }));
}

TEST(SingleInstance, HandingOverStartsNobody)
{
    // The desktop can start the program itself; that must not become a third one.
    const QTemporaryDir folder;
    const QString report = folder.filePath("started");
    auto first = std::make_unique<FakeService>(sessionBusDaemon(), name);
    SingleInstance second;
    ASSERT_FALSE(second.isOnly());
    first.reset();
    sessionBusDaemon().addActivatable(name, { "/usr/bin/touch", report });
    EXPECT_EQ(second.handOver(), SingleInstance::Answer::None);
    sessionBusDaemon().removeActivatable(name);
    EXPECT_FALSE(QFile::exists(report));
    EXPECT_TRUE(second.isOnly());
}

TEST(SingleInstance, AnswersTheDesktop)
{
    const SingleInstance instance;
    ASSERT_TRUE(instance.isOnly());
    QStringList heard;
    QObject::connect(
        &instance, &SingleInstance::activated, [&](const QString &token) { heard += "activated " + token; });
    QObject::connect(&instance,
                     &SingleInstance::actionAsked,
                     [&](const QString &action, const QString &file, const QString &token) {
                         heard += action + ' ' + file + ' ' + token;
                     });
    const QVariantMap data { { "activation-token", "t1" }, { "unknown", 5 } };
    EXPECT_TRUE(DesktopCall("Activate", { data }).succeeds());
    EXPECT_TRUE(DesktopCall("Open", { QStringList { "file:///tmp/x" }, QVariantMap() }).succeeds());
    EXPECT_TRUE(DesktopCall("ActivateAction", { "record", QVariantList { "/a.mp4" }, data }).succeeds());
    EXPECT_FALSE(DesktopCall("Shred", { data }).succeeds());
    EXPECT_TRUE(eventually([&] { return heard.size() == 3; }));
    EXPECT_EQ(heard, (QStringList { "activated t1", "activated ", "record /a.mp4 t1" }));
}

TEST(SingleInstance, AnswersBeforeItActs)
{
    const SingleInstance instance;
    const DesktopCall call("Activate", { QVariantMap() });
    std::optional<bool> isAnsweredMeanwhile;
    QObject::connect(&instance, &SingleInstance::activated, [&] {
        // As a window does that waits for an answer of the user.
        isAnsweredMeanwhile = eventually([&] { return call.isAnswered(); });
    });
    EXPECT_TRUE(eventually([&] { return isAnsweredMeanwhile.has_value(); }));
    EXPECT_EQ(isAnsweredMeanwhile, true);
}

TEST(SingleInstance, IsOnlyWithoutABus)
{
    const QTemporaryDir folder;
    for (const QStringList &environment :
         { QStringList { "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent" },
           QStringList { "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR=" + folder.path() },
           QStringList { "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR" } }) {
        ClientProcess first({ "instance" }, environment);
        EXPECT_EQ(first.nextLine(), "only");
        ClientProcess second({ "instance" }, environment);
        EXPECT_EQ(second.nextLine(), "only");
        EXPECT_EQ(second.end(), 0);
        EXPECT_EQ(first.end(), 0);
    }
}

TEST(SingleInstance, IsOnlyInItsSession)
{
    ClientProcess here({ "instance" });
    ASSERT_EQ(here.nextLine(), "only");
    ClientProcess there({ "instance" },
                        { "DBUS_SESSION_BUS_ADDRESS=" + QString::fromLatin1(systemBusDaemon().address()) });
    EXPECT_EQ(there.nextLine(), "only");
}

} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::test::runBusTests(argc, argv);
}
