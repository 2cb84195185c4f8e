#include "desktop/notifier.h"
#include "support/fake_service.h"
#include "support/private_bus.h"

#include <QDBusArgument>

#include <gtest/gtest.h>

#include <memory>

namespace vornic {

namespace {

using namespace test;

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

std::unique_ptr<FakeService> notificationServer(const QStringList &capabilities, uint firstId = 7)
{
    auto server = std::make_unique<FakeService>(sessionBusDaemon(), service);
    server->setAnswer([capabilities, next = firstId](const QDBusMessage &call) mutable {
        return call.member() == "Notify" ? call.createReply(next++) : call.createReply(capabilities);
    });
    return server;
}

bool settle(FakeService &server)
{
    return server.settle(QDBusConnection::sessionBus());
}

} // namespace

class NotifierTest : public testing::Test
{
protected:
    Notification notification()
    {
        return { "The movie is ready",
                 "Length 1:02 & <b>3 MB</b>",
                 "Show in folder",
                 [this](const QString &token) {
                     ++m_runs;
                     m_token = token;
                 } };
    }

    /// The arguments of Notify once \a server has answered it.
    QVariantList shown(FakeService &server, std::size_t count = 1)
    {
        const bool hasCome = eventually([&] { return server.calls("Notify").size() == count; });
        return hasCome && settle(server) ? server.calls("Notify").back().arguments() : QVariantList();
    }

    int m_runs = 0;
    QString m_token;
};

TEST_F(NotifierTest, SaysWhoSpeaksAndWhat)
{
    const auto server = notificationServer({ "actions", "body" });
    Notifier notifier;
    notifier.show(notification());
    const QVariantList arguments = shown(*server);
    ASSERT_EQ(arguments.size(), 8);
    EXPECT_EQ(server->calls("Notify").front().signature(), "susssasa{sv}i");
    EXPECT_EQ(server->calls("Notify").front().path(), path);
    EXPECT_EQ(server->calls("Notify").front().interface(), service);
    EXPECT_EQ(arguments[0], "Vornic");
    EXPECT_EQ(arguments[1], 0U);
    EXPECT_EQ(arguments[2], "com.kavlor.vornic");
    EXPECT_EQ(arguments[3], "The movie is ready");
    EXPECT_EQ(arguments[4], "Length 1:02 & <b>3 MB</b>") << "the server takes it literally";
    EXPECT_EQ(qdbus_cast<QVariantMap>(arguments[6]).value("desktop-entry"), "com.kavlor.vornic");
    EXPECT_EQ(arguments[7], -1);
}

TEST_F(NotifierTest, OffersTheActionOnOneButton)
{
    const auto server = notificationServer({ "actions" });
    Notifier notifier;
    notifier.show(notification());
    const QStringList actions = shown(*server).value(5).toStringList();
    ASSERT_EQ(actions.size(), 2);
    EXPECT_NE(actions[0], "default") << "some desktops show a second button for it";
    EXPECT_EQ(actions[1], "Show in folder");
    server->emitSignal(path, "ActionInvoked", { 7U, actions[0] });
    EXPECT_TRUE(eventually([&] { return m_runs == 1; }));
    server->emitSignal(path, "ActionInvoked", { 7U, "default" });
    EXPECT_TRUE(eventually([&] { return m_runs == 2; }));
}

TEST_F(NotifierTest, EscapesMarkupWhereTheServerReadsIt)
{
    const auto server = notificationServer({ "body", "body-markup" });
    Notifier notifier;
    notifier.show(notification());
    EXPECT_EQ(shown(*server).value(4), "Length 1:02 &amp; &lt;b&gt;3 MB&lt;/b&gt;");
    EXPECT_EQ(shown(*server).value(3), "The movie is ready");
}

TEST_F(NotifierTest, OffersNothingWhereTheServerHasNoActions)
{
    const auto server = notificationServer({ "body" });
    Notifier notifier;
    notifier.show(notification());
    const QVariantList arguments = shown(*server);
    ASSERT_EQ(arguments.size(), 8);
    EXPECT_TRUE(arguments[5].toStringList().isEmpty());
}

TEST_F(NotifierTest, NeedsNoAction)
{
    const auto server = notificationServer({ "actions" });
    Notifier notifier;
    notifier.show({ "The movie is ready", "It is short", {}, {} });
    const QVariantList arguments = shown(*server);
    ASSERT_EQ(arguments.size(), 8);
    EXPECT_TRUE(arguments[5].toStringList().isEmpty());
    server->emitSignal(path, "ActionInvoked", { 7U, "default" });
    EXPECT_TRUE(settle(*server));
}

TEST_F(NotifierTest, RunsNothingForTheNotificationsOfOthers)
{
    const auto server = notificationServer({ "actions" });
    Notifier notifier;
    notifier.show(notification());
    ASSERT_EQ(shown(*server).size(), 8);
    server->emitSignal(path, "ActionInvoked", { 8U, "default" });
    ASSERT_TRUE(settle(*server));
    EXPECT_EQ(m_runs, 0);
}

TEST_F(NotifierTest, TakesNoSignalThatHoldsSomethingElse)
{
    const auto server = notificationServer({ "actions" });
    Notifier notifier;
    notifier.show(notification());
    ASSERT_EQ(shown(*server).size(), 8);
    for (const char *signal : { "ActionInvoked", "ActivationToken", "NotificationClosed" }) {
        server->emitSignal(path, signal, {});
        server->emitSignal(path, signal, { "7", 7U });
        server->emitSignal(path, signal, { QVariantMap(), QVariantList { 7U } });
    }
    server->emitSignal(path, "ActionInvoked", { 7U, "default" });
    EXPECT_TRUE(eventually([&] { return m_runs == 1; }));
}

TEST_F(NotifierTest, ForgetsAClosedNotification)
{
    const auto server = notificationServer({ "actions" });
    Notifier notifier;
    notifier.show(notification());
    ASSERT_EQ(shown(*server).size(), 8);
    server->emitSignal(path, "NotificationClosed", { 7U, 1U });
    server->emitSignal(path, "ActionInvoked", { 7U, "default" });
    ASSERT_TRUE(settle(*server));
    EXPECT_EQ(m_runs, 0);
}

TEST_F(NotifierTest, HandsTheActivationTokenOn)
{
    const auto server = notificationServer({ "actions" });
    Notifier notifier;
    notifier.show(notification());
    ASSERT_EQ(shown(*server).size(), 8);
    server->emitSignal(path, "ActivationToken", { 8U, "another" });
    server->emitSignal(path, "ActivationToken", { 7U, "token-1" });
    server->emitSignal(path, "ActionInvoked", { 7U, "default" });
    ASSERT_TRUE(eventually([&] { return m_runs == 1; }));
    EXPECT_EQ(m_token, "token-1");
}

TEST_F(NotifierTest, KeepsTwoNotificationsApart)
{
    const auto server = notificationServer({ "actions" });
    Notifier notifier;
    int otherRuns = 0;
    notifier.show(notification());
    ASSERT_EQ(shown(*server, 1).size(), 8);
    notifier.show({ "Another one", {}, "Show", [&](const QString &) { ++otherRuns; } });
    ASSERT_EQ(shown(*server, 2).size(), 8);
    server->emitSignal(path, "ActionInvoked", { 8U, "default" });
    ASSERT_TRUE(eventually([&] { return otherRuns == 1; }));
    EXPECT_EQ(m_runs, 0);
    server->emitSignal(path, "ActionInvoked", { 7U, "default" });
    EXPECT_TRUE(eventually([&] { return m_runs == 1; }));
}

TEST_F(NotifierTest, StartsTheNumbersAnewWithANewServer)
{
    auto server = notificationServer({ "actions" });
    Notifier notifier;
    notifier.show(notification());
    ASSERT_EQ(shown(*server).size(), 8);
    server.reset();
    server = notificationServer({ "actions" });
    server->emitSignal(path, "ActionInvoked", { 7U, "default" }); // that of another program
    ASSERT_TRUE(settle(*server));
    EXPECT_EQ(m_runs, 0);
    notifier.show(notification());
    ASSERT_EQ(shown(*server).size(), 8);
    server->emitSignal(path, "ActionInvoked", { 7U, "default" });
    EXPECT_TRUE(eventually([&] { return m_runs == 1; }));
}

TEST_F(NotifierTest, ShowsPlainTextWhereTheServerDoesNotSayWhatItCan)
{
    const auto server = std::make_unique<FakeService>(sessionBusDaemon(), service);
    server->setAnswer([](const QDBusMessage &call) {
        return call.member() == "Notify" ? call.createReply(7U)
                                         : call.createErrorReply(QDBusError::UnknownMethod, "What?");
    });
    Notifier notifier;
    notifier.show(notification());
    const QVariantList arguments = shown(*server);
    ASSERT_EQ(arguments.size(), 8);
    EXPECT_TRUE(arguments[5].toStringList().isEmpty());
}

TEST_F(NotifierTest, MayBeRefused)
{
    const auto server = std::make_unique<FakeService>(sessionBusDaemon(), service);
    server->setAnswer([](const QDBusMessage &call) {
        return call.createErrorReply(QDBusError::LimitsExceeded, "Too many");
    });
    Notifier notifier;
    notifier.show(notification());
    ASSERT_EQ(shown(*server).size(), 8);
    server->emitSignal(path, "ActionInvoked", { 0U, "default" });
    ASSERT_TRUE(settle(*server));
    EXPECT_EQ(m_runs, 0);
}

TEST_F(NotifierTest, MayEndBeforeTheServerAnswers)
{
    const auto server = std::make_unique<FakeService>(sessionBusDaemon(), service);
    auto notifier = std::make_unique<Notifier>();
    notifier->show(notification());
    ASSERT_TRUE(eventually([&] { return !server->calls("GetCapabilities").empty(); }));
    notifier.reset();
    server->send(server->calls("GetCapabilities").front().createReply(QStringList { "actions" }));
    ASSERT_TRUE(settle(*server));
    EXPECT_TRUE(server->calls("Notify").empty());
}

TEST_F(NotifierTest, NeedsNoServer)
{
    Notifier notifier;
    notifier.show(notification());
    // What comes up later has nothing to show: the call was answered, with an error, before.
    const auto bystander = std::make_unique<FakeService>(sessionBusDaemon(), "test.Bystander");
    ASSERT_TRUE(settle(*bystander));
    ASSERT_TRUE(settle(*bystander));
    const auto server = notificationServer({ "actions" });
    ASSERT_TRUE(settle(*server));
    EXPECT_TRUE(server->calls("Notify").empty());
    notifier.show(notification());
    EXPECT_EQ(shown(*server).size(), 8) << "but the next one is shown there";
    server->emitSignal(path, "ActionInvoked", { 7U, "default" });
    EXPECT_TRUE(eventually([&] { return m_runs == 1; }));
}

} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::test::runBusTests(argc, argv);
}
