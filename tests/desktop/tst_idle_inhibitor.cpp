#include "client_process.h"
#include "desktop/idle_inhibitor.h"
#include "support/fake_service.h"
#include "support/private_bus.h"
#include "support/scoped_environment.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace vornic {

namespace {

using namespace test;

const QString inhibitMethod = QStringLiteral("Inhibit");
const QString reason = QStringLiteral("Recording the screen");

/// A service that gives cookies, as those of the session do.
struct CookieService {
    QString name;
    QString path;
    QString interface;
    QVariantList arguments;
    QString releaseMethod;
};

const CookieService screenSaver { "org.freedesktop.ScreenSaver",
                                  "/org/freedesktop/ScreenSaver",
                                  "org.freedesktop.ScreenSaver",
                                  { "com.kavlor.vornic", reason },
                                  "UnInhibit" };

std::vector<CookieService> cookieServices()
{
    return { screenSaver,
             { "org.gnome.SessionManager",
               "/org/gnome/SessionManager",
               "org.gnome.SessionManager",
               { "com.kavlor.vornic", 0U, reason, 12U },
               "Uninhibit" },
             { "org.freedesktop.PowerManagement",
               "/org/freedesktop/PowerManagement/Inhibit",
               "org.freedesktop.PowerManagement.Inhibit",
               { "com.kavlor.vornic", reason },
               "UnInhibit" } };
}

FakeService::Answer cookie(uint value)
{
    return [value](const QDBusMessage &call) {
        return call.member() == inhibitMethod ? call.createReply(value) : call.createReply();
    };
}

bool settle(FakeService &service)
{
    return service.settle(QDBusConnection::sessionBus());
}

/// How many inhibitions a service has been asked for and not been told the end of.
int heldAt(const FakeService &service)
{
    return static_cast<int>(service.calls(inhibitMethod).size())
        - static_cast<int>(service.calls("UnInhibit").size())
        - static_cast<int>(service.calls("Uninhibit").size());
}

/// The end of a pipe whose other end, the descriptor, is somebody's leave to keep awake.
class Lock
{
public:
    Lock()
    {
        if (pipe2(m_ends, O_CLOEXEC) != 0)
            std::abort();
    }
    ~Lock()
    {
        close(m_ends[0]);
        dropOwn();
    }
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

    /// A reply with the descriptor, of which nothing is left in this object.
    [[nodiscard]] QDBusMessage give(const QDBusMessage &call)
    {
        const QDBusMessage reply = call.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(m_ends[1])));
        dropOwn();
        return reply;
    }

    [[nodiscard]] bool isHeld() const
    {
        pollfd end { m_ends[0], POLLIN, 0 };
        return poll(&end, 1, 0) == 0;
    }

private:
    void dropOwn()
    {
        if (m_ends[1] >= 0)
            close(m_ends[1]);
        m_ends[1] = -1;
    }

    int m_ends[2] = { -1, -1 };
};

std::unique_ptr<FakeService> loginManager()
{
    return std::make_unique<FakeService>(systemBusDaemon(), "org.freedesktop.login1");
}

} // namespace

class EachCookieService : public testing::TestWithParam<CookieService>
{
};

TEST_P(EachCookieService, IsAskedAndToldTheEnd)
{
    FakeService service(sessionBusDaemon(), GetParam().name);
    service.setAnswer(cookie(4711));
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return service.calls(inhibitMethod).size() == 1; }));
    const QDBusMessage asked = service.calls(inhibitMethod).front();
    EXPECT_EQ(asked.path(), GetParam().path);
    EXPECT_EQ(asked.interface(), GetParam().interface);
    EXPECT_EQ(asked.arguments(), GetParam().arguments);
    ASSERT_TRUE(settle(service));
    EXPECT_TRUE(service.calls(GetParam().releaseMethod).empty());

    inhibitor.reset();
    ASSERT_TRUE(eventually([&] { return service.calls(GetParam().releaseMethod).size() == 1; }));
    const QDBusMessage released = service.calls(GetParam().releaseMethod).front();
    EXPECT_EQ(released.path(), GetParam().path);
    EXPECT_EQ(released.interface(), GetParam().interface);
    EXPECT_EQ(released.arguments(), QVariantList { 4711U });
    EXPECT_EQ(released.service(), asked.service()) << "the cookie belongs to whom it was given to";
    ASSERT_TRUE(settle(service));
    EXPECT_EQ(service.calls(GetParam().releaseMethod).size(), 1U);
    EXPECT_EQ(service.calls(inhibitMethod).size(), 1U);
}

TEST_P(EachCookieService, IsToldTheEndWhenItAnswersAfterIt)
{
    FakeService service(sessionBusDaemon(), GetParam().name);
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return !service.calls(inhibitMethod).empty(); }));
    inhibitor.reset();
    ASSERT_TRUE(settle(service));
    EXPECT_TRUE(service.calls(GetParam().releaseMethod).empty()) << "there is no cookie yet";
    service.send(service.calls(inhibitMethod).front().createReply(99U));
    ASSERT_TRUE(eventually([&] { return !service.calls(GetParam().releaseMethod).empty(); }));
    EXPECT_EQ(service.calls(GetParam().releaseMethod).front().arguments(), QVariantList { 99U });
}

TEST_P(EachCookieService, MayRefuse)
{
    FakeService service(sessionBusDaemon(), GetParam().name);
    service.setAnswer([](const QDBusMessage &call) {
        return call.createErrorReply(QDBusError::AccessDenied, "Not for you");
    });
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return !service.calls(inhibitMethod).empty(); }));
    ASSERT_TRUE(settle(service));
    ASSERT_TRUE(settle(service)); // a second path
    const auto askedBefore = service.calls(inhibitMethod).size();
    inhibitor.reset();
    ASSERT_TRUE(settle(service));
    EXPECT_EQ(service.calls(inhibitMethod).size(), askedBefore);
    EXPECT_LE(askedBefore, 2U);
    EXPECT_TRUE(service.calls(GetParam().releaseMethod).empty());
}

TEST_P(EachCookieService, IsAskedAgainWhenItIsBackAfterItsEnd)
{
    auto service = std::make_unique<FakeService>(sessionBusDaemon(), GetParam().name);
    service->setAnswer(cookie(1));
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return !service->calls(inhibitMethod).empty(); }));
    ASSERT_TRUE(settle(*service));
    service.reset();
    service = std::make_unique<FakeService>(sessionBusDaemon(), GetParam().name);
    service->setAnswer(cookie(2));
    ASSERT_TRUE(eventually([&] { return !service->calls(inhibitMethod).empty(); }));
    ASSERT_TRUE(settle(*service));
    EXPECT_EQ(service->calls(inhibitMethod).size(), 1U);
    inhibitor.reset();
    ASSERT_TRUE(eventually([&] { return !service->calls(GetParam().releaseMethod).empty(); }));
    EXPECT_EQ(service->calls(GetParam().releaseMethod).front().arguments(), QVariantList { 2U });
}

TEST_P(EachCookieService, MayEndBeforeItAnswers)
{
    auto service = std::make_unique<FakeService>(sessionBusDaemon(), GetParam().name);
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return !service->calls(inhibitMethod).empty(); }));
    service.reset();
    service = std::make_unique<FakeService>(sessionBusDaemon(), GetParam().name);
    service->setAnswer(cookie(3));
    ASSERT_TRUE(eventually([&] { return heldAt(*service) == 1; }));
    ASSERT_TRUE(settle(*service));
    ASSERT_TRUE(settle(*service));
    EXPECT_EQ(heldAt(*service), 1);
    inhibitor.reset();
    EXPECT_TRUE(eventually([&] { return heldAt(*service) == 0; }));
}

TEST_P(EachCookieService, MayEndBeforeTheInhibition)
{
    auto service = std::make_unique<FakeService>(sessionBusDaemon(), GetParam().name);
    service->setAnswer(cookie(5));
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return !service->calls(inhibitMethod).empty(); }));
    ASSERT_TRUE(settle(*service));
    service.reset();
    // Another program takes the name and must not be handed a cookie that it never gave; the inhibition has
    // not heard of it yet.
    service = std::make_unique<FakeService>(sessionBusDaemon(), GetParam().name);
    inhibitor.reset();
    ASSERT_TRUE(settle(*service));
    EXPECT_TRUE(service->calls(GetParam().releaseMethod).empty());
}

TEST_P(EachCookieService, IsAskedOnceItRunsAndNotStarted)
{
    const QTemporaryDir folder;
    const QString report = folder.filePath("started");
    sessionBusDaemon().addActivatable(GetParam().name, { "/usr/bin/touch", report });
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    FakeService service(sessionBusDaemon(), GetParam().name);
    sessionBusDaemon().removeActivatable(GetParam().name);
    service.setAnswer(cookie(6));
    ASSERT_TRUE(eventually([&] { return heldAt(service) == 1; }));
    ASSERT_TRUE(settle(service));
    EXPECT_EQ(heldAt(service), 1);
    inhibitor.reset();
    EXPECT_TRUE(eventually([&] { return heldAt(service) == 0; }));
    EXPECT_FALSE(QFile::exists(report));
}

TEST_P(EachCookieService, IsAskedWhenItTakesTheNameFromOneThatHangs)
{
    FakeService before(sessionBusDaemon(), GetParam().name);
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return !before.calls(inhibitMethod).empty(); }));
    before.leaveName();
    FakeService now(sessionBusDaemon(), GetParam().name);
    now.setAnswer(cookie(8));
    ASSERT_TRUE(eventually([&] { return now.calls(inhibitMethod).size() == 1; }));
    ASSERT_TRUE(settle(now));
    before.send(before.calls(inhibitMethod).front().createReply(9U));
    ASSERT_TRUE(eventually([&] { return heldAt(before) == 0; }));
    EXPECT_EQ(before.calls(GetParam().releaseMethod).front().arguments(), QVariantList { 9U });
    EXPECT_EQ(heldAt(now), 1);
    inhibitor.reset();
    ASSERT_TRUE(eventually([&] { return heldAt(now) == 0; }));
    EXPECT_EQ(now.calls(GetParam().releaseMethod).front().arguments(), QVariantList { 8U });
}

TEST_P(EachCookieService, TellsTheEndToTwoThatBothAnswerAfterIt)
{
    FakeService before(sessionBusDaemon(), GetParam().name);
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return !before.calls(inhibitMethod).empty(); }));
    before.leaveName();
    FakeService now(sessionBusDaemon(), GetParam().name);
    ASSERT_TRUE(eventually([&] { return !now.calls(inhibitMethod).empty(); }));
    inhibitor.reset();
    before.send(before.calls(inhibitMethod).front().createReply(14U));
    ASSERT_TRUE(eventually([&] { return heldAt(before) == 0; }));
    now.send(now.calls(inhibitMethod).front().createReply(15U));
    EXPECT_TRUE(eventually([&] { return heldAt(now) == 0; }));
}

TEST_P(EachCookieService, IsToldTheEndWhenAnotherTakesItsName)
{
    FakeService before(sessionBusDaemon(), GetParam().name);
    before.setAnswer(cookie(11));
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return heldAt(before) == 1; }));
    ASSERT_TRUE(settle(before));
    before.leaveName();
    FakeService now(sessionBusDaemon(), GetParam().name);
    now.setAnswer(cookie(12));
    EXPECT_TRUE(eventually([&] { return heldAt(before) == 0 && heldAt(now) == 1; }));
    inhibitor.reset();
    EXPECT_TRUE(eventually([&] { return heldAt(now) == 0; }));
}

TEST_P(EachCookieService, SeesAKilledProcessLeave)
{
    FakeService service(sessionBusDaemon(), GetParam().name);
    service.setAnswer(cookie(7));
    ClientProcess client({ "inhibit" });
    ASSERT_EQ(client.nextLine(), "inhibits");
    ASSERT_TRUE(eventually([&] { return !service.calls(inhibitMethod).empty(); }));
    const QString sender = service.calls(inhibitMethod).front().service();
    EXPECT_FALSE(service.hasLeft(sender));
    client.signal(SIGKILL);
    EXPECT_TRUE(eventually([&] { return service.hasLeft(sender); }));
}

TEST_P(EachCookieService, KeepsTwoInhibitionsApart)
{
    FakeService service(sessionBusDaemon(), GetParam().name);
    service.setAnswer([next = 10U](const QDBusMessage &call) mutable {
        return call.member() == inhibitMethod ? call.createReply(next++) : call.createReply();
    });
    auto first = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return service.calls(inhibitMethod).size() == 1; }));
    auto second = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return service.calls(inhibitMethod).size() == 2; }));
    ASSERT_TRUE(settle(service));
    first.reset();
    ASSERT_TRUE(settle(service));
    ASSERT_EQ(service.calls(GetParam().releaseMethod).size(), 1U);
    EXPECT_EQ(service.calls(GetParam().releaseMethod).front().arguments(), QVariantList { 10U });
    second.reset();
    ASSERT_TRUE(settle(service));
    EXPECT_EQ(service.calls(GetParam().releaseMethod).size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(All,
                         EachCookieService,
                         testing::ValuesIn(cookieServices()),
                         [](const testing::TestParamInfo<CookieService> &service) {
                             return service.param.name.section('.', -1).toStdString();
                         });

TEST(IdleInhibitor, FindsAScreenSaverAtItsOtherPath)
{
    FakeService service(sessionBusDaemon(), screenSaver.name);
    service.setAnswer([](const QDBusMessage &call) {
        if (call.path() != "/ScreenSaver")
            return call.createErrorReply(QDBusError::UnknownObject, "There is no such object");
        return call.member() == inhibitMethod ? call.createReply(21U) : call.createReply();
    });
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return service.calls(inhibitMethod).size() == 2; }));
    ASSERT_TRUE(settle(service));
    inhibitor.reset();
    ASSERT_TRUE(settle(service));
    ASSERT_EQ(service.calls("UnInhibit").size(), 1U);
    EXPECT_EQ(service.calls("UnInhibit").front().path(), "/ScreenSaver");
    EXPECT_EQ(service.calls("UnInhibit").front().arguments(), QVariantList { 21U });
}

TEST(IdleInhibitor, HoldsTheLoginManagersDescriptor)
{
    Lock lock;
    const auto service = loginManager();
    service->setAnswer([&](const QDBusMessage &call) { return lock.give(call); });
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return !service->calls(inhibitMethod).empty(); }));
    const QDBusMessage asked = service->calls(inhibitMethod).front();
    EXPECT_EQ(asked.path(), "/org/freedesktop/login1");
    EXPECT_EQ(asked.interface(), "org.freedesktop.login1.Manager");
    EXPECT_EQ(asked.arguments(), (QVariantList { "sleep:idle", "Vornic", reason, "block" }));
    ASSERT_TRUE(service->settle(QDBusConnection::systemBus()));
    EXPECT_TRUE(lock.isHeld());
    inhibitor.reset();
    EXPECT_TRUE(eventually([&] { return !lock.isHeld(); }));
}

TEST(IdleInhibitor, ClosesADescriptorThatComesTooLate)
{
    Lock lock;
    const auto service = loginManager();
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(eventually([&] { return !service->calls(inhibitMethod).empty(); }));
    inhibitor.reset();
    service->send(lock.give(service->calls(inhibitMethod).front()));
    EXPECT_TRUE(eventually([&] { return !lock.isHeld(); }));
}

TEST(IdleInhibitor, LosesTheDescriptorWithItsProcess)
{
    Lock lock;
    const auto service = loginManager();
    ClientProcess client({ "inhibit" });
    ASSERT_EQ(client.nextLine(), "inhibits");
    ASSERT_TRUE(eventually([&] { return !service->calls(inhibitMethod).empty(); }));
    service->send(lock.give(service->calls(inhibitMethod).front()));
    EXPECT_TRUE(lock.isHeld());
    client.signal(SIGKILL);
    EXPECT_TRUE(eventually([&] { return !lock.isHeld(); }));
}

/// A Wayland session with a portal, which the test plays; it gives the objects "/held/1", "/held/2" ...
class InhibitPortalTest : public testing::Test
{
protected:
    InhibitPortalTest() { environment.set("XDG_SESSION_TYPE", "wayland"); }

    void SetUp() override { start(); }
    void start(int first = 1)
    {
        service = std::make_unique<FakeService>(sessionBusDaemon(), "org.freedesktop.portal.Desktop");
        service->setAnswer([next = first](const QDBusMessage &call) mutable {
            return call.member() == inhibitMethod ? call.createReply(
                       QVariant::fromValue(QDBusObjectPath(QStringLiteral("/held/%1").arg(next++))))
                                                  : call.createReply();
        });
    }
    [[nodiscard]] bool isAsked(std::size_t times = 1) const
    {
        return eventually([&] { return service->calls(inhibitMethod).size() == times; });
    }
    [[nodiscard]] std::vector<QDBusMessage> closed() const { return service->calls("Close"); }

    test::ScopedEnvironment environment;
    std::unique_ptr<FakeService> service;
};

TEST_F(InhibitPortalTest, IsAskedAndItsObjectClosedAtTheEnd)
{
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(isAsked());
    const QDBusMessage asked = service->calls(inhibitMethod).front();
    EXPECT_EQ(asked.path(), "/org/freedesktop/portal/desktop");
    EXPECT_EQ(asked.interface(), "org.freedesktop.portal.Inhibit");
    EXPECT_EQ(asked.signature(), "sua{sv}");
    EXPECT_EQ(asked.arguments().value(0), "") << "no window";
    EXPECT_EQ(asked.arguments().value(1), 12U) << "suspend and idle";
    EXPECT_EQ(qdbus_cast<QVariantMap>(asked.arguments().value(2)).value("reason"), reason);
    ASSERT_TRUE(settle(*service));
    EXPECT_TRUE(closed().empty());

    inhibitor.reset();
    ASSERT_TRUE(eventually([&] { return closed().size() == 1; }));
    EXPECT_EQ(closed().front().path(), "/held/1");
    EXPECT_EQ(closed().front().interface(), "org.freedesktop.portal.Request");
    EXPECT_TRUE(closed().front().arguments().isEmpty());
}

TEST_F(InhibitPortalTest, IsToldTheEndWhenItAnswersAfterIt)
{
    service->setAnswer({});
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(isAsked());
    inhibitor.reset();
    const QDBusMessage asked = service->calls(inhibitMethod).front();
    service->send(asked.createReply(QVariant::fromValue(QDBusObjectPath("/held/late"))));
    ASSERT_TRUE(eventually([&] { return closed().size() == 1; }));
    EXPECT_EQ(closed().front().path(), "/held/late");
}

TEST_F(InhibitPortalTest, IsAskedAgainWhenItIsBackAfterItsEnd)
{
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(isAsked());
    ASSERT_TRUE(settle(*service));
    service.reset();
    start(7);
    ASSERT_TRUE(isAsked());
    ASSERT_TRUE(settle(*service));
    inhibitor.reset();
    ASSERT_TRUE(eventually([&] { return closed().size() == 1; }));
    EXPECT_EQ(closed().front().path(), "/held/7");
}

TEST_F(InhibitPortalTest, AnAnswerThatIsNoObjectClosesNothing)
{
    service->setAnswer([](const QDBusMessage &call) { return call.createReply(4711U); });
    auto inhibitor = std::make_unique<IdleInhibitor>(reason);
    ASSERT_TRUE(isAsked());
    ASSERT_TRUE(settle(*service));
    inhibitor.reset();
    ASSERT_TRUE(settle(*service));
    EXPECT_TRUE(closed().empty());
}

TEST_F(InhibitPortalTest, IsNotAskedInAnotherSession)
{
    environment.unset("XDG_SESSION_TYPE");
    environment.unset("WAYLAND_DISPLAY");
    const IdleInhibitor inhibitor(reason);
    ASSERT_TRUE(settle(*service));
    EXPECT_TRUE(service->calls(inhibitMethod).empty());
}

TEST(IdleInhibitor, NeedsNoService)
{
    ClientProcess client({ "inhibit" });
    EXPECT_EQ(client.nextLine(), "inhibits");
    EXPECT_EQ(client.end(), 0);
}

TEST(IdleInhibitor, NeedsNoBus)
{
    ClientProcess client({ "inhibit" },
                         { "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent",
                           "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent" });
    EXPECT_EQ(client.nextLine(), "inhibits");
    EXPECT_EQ(client.end(), 0);
}

TEST(IdleInhibitor, OutlivesTheBus)
{
    auto bus = PrivateBus::start();
    ASSERT_TRUE(bus);
    FakeService service(*bus, screenSaver.name);
    ClientProcess client({ "inhibit" },
                         { "DBUS_SESSION_BUS_ADDRESS=" + QString::fromLatin1(bus->address()) });
    ASSERT_EQ(client.nextLine(), "inhibits");
    ASSERT_TRUE(eventually([&] { return !service.calls(inhibitMethod).empty(); }));
    bus.reset();
    EXPECT_EQ(client.end(), 0);
}

TEST(IdleInhibitor, DoesNotWaitForAHangingServiceAtTheEnd)
{
    std::vector<std::unique_ptr<FakeService>> hanging; // never answer
    for (const CookieService &service : cookieServices())
        hanging.push_back(std::make_unique<FakeService>(sessionBusDaemon(), service.name));
    hanging.push_back(loginManager());
    ClientProcess client({ "inhibit" });
    ASSERT_EQ(client.nextLine(), "inhibits");
    for (const auto &service : hanging)
        ASSERT_TRUE(eventually([&] { return !service->calls(inhibitMethod).empty(); }));
    EXPECT_EQ(client.end(), 0);
}

} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::test::runBusTests(argc, argv);
}
