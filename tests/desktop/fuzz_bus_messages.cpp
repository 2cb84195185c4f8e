/// Sends what any program on the session bus may send to the only instance, and in place of the service of
/// notifications: fuzz_bus_messages [inputs [seed]].
///
/// Every call must be answered. Fails where all or none were taken: then the inputs test nothing.

#include "desktop/notifier.h"
#include "desktop/single_instance.h"
#include "support/fake_service.h"
#include "support/fuzz_run.h"
#include "support/private_bus.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusSignature>
#include <QDBusVariant>

#include <cstdio>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <vector>

using namespace vornic;

namespace {

using test::FuzzRandom;

constexpr int batch = 100; // of calls under way; a bus takes only so many at once
/// After which the instance is made anew: the toolkit caches each signature that an object was called with, and copies the
/// whole cache for every new one.
constexpr int inputsPerInstance = 5000;

QString randomText(FuzzRandom &random)
{
    static const char *const texts[]
        = { "", "record-full", "record-region", "stop", "activation-token", "act", "actions" };
    if (random.below(3) != 0)
        return QString::fromLatin1(texts[random.below(std::ssize(texts))]);
    if (random.below(100) == 0)
        return QString(random.below(200'000), u'%');
    return QString::fromLatin1(random.bytes(40)).remove(QChar(0)); // the bus takes no zero in a text
}

QVariant randomNumber(FuzzRandom &random)
{
    switch (random.below(5)) {
    case 0:
        return random.next() % 4;
    case 1:
        return static_cast<int>(random.next());
    case 2:
        return std::numeric_limits<qlonglong>::min();
    case 3:
        return std::numeric_limits<double>::quiet_NaN();
    default:
        return random.below(2) == 0;
    }
}

QVariant randomValue(FuzzRandom &random, int depth = 0);

QVariantMap randomMap(FuzzRandom &random, int depth)
{
    QVariantMap map;
    for (int count = random.below(4); count > 0; --count)
        map.insert(randomText(random), randomValue(random, depth + 1));
    return map;
}

QVariant randomValue(FuzzRandom &random, int depth)
{
    constexpr int deepest = 15;
    switch (random.below(depth < deepest ? 9 : 4)) {
    case 0:
        return randomNumber(random);
    case 1:
        return random.bytes(60);
    case 2:
        return QVariant::fromValue(QDBusObjectPath("/a/b"));
    case 3:
        return randomText(random);
    case 4:
        return QStringList { randomText(random), randomText(random) };
    case 5:
        return QVariantList { randomValue(random, depth + 1), randomValue(random, depth + 1) };
    case 6:
        return randomMap(random, depth);
    case 7:
        return QVariant::fromValue(QDBusVariant(randomValue(random, depth + 1)));
    default:
        return QVariant::fromValue(QDBusSignature("a{sv}"));
    }
}

QVariantList randomArguments(FuzzRandom &random)
{
    QVariantList arguments;
    for (int count = random.below(5); count > 0; --count)
        arguments += randomValue(random);
    return arguments;
}

/// Half of them as the interface wants them.
QDBusMessage randomCall(FuzzRandom &random)
{
    static const char *const methods[] = { "Activate", "Open", "ActivateAction", "Introspect", "Get" };
    const int method = random.below(std::ssize(methods));
    QDBusMessage call
        = QDBusMessage::createMethodCall("com.kavlor.vornic",
                                         random.below(20) == 0 ? "/" : "/com/kavlor/vornic",
                                         random.below(20) == 0 ? QString() : "org.freedesktop.Application",
                                         QString::fromLatin1(methods[method]));
    const QVariantMap data = randomMap(random, 0);
    if (random.below(2) == 0 || method > 2)
        call.setArguments(randomArguments(random));
    else if (method == 0)
        call.setArguments({ data });
    else if (method == 1)
        call.setArguments({ QStringList { randomText(random) }, data });
    else
        call.setArguments({ randomText(random), QVariantList { randomValue(random) }, data });
    return call;
}

/// Calls \a count for everything that it is asked to do.
std::unique_ptr<SingleInstance> makeInstance(const std::function<void()> &count)
{
    auto instance = std::make_unique<SingleInstance>();
    if (!instance->isOnly())
        qFatal("The instance before has not let the name go.");
    instance->setActionCheck([](const QString &action) { return action != "stop"; });
    QObject::connect(instance.get(), &SingleInstance::activated, instance.get(), count);
    QObject::connect(instance.get(), &SingleInstance::actionAsked, instance.get(), count);
    return instance;
}

/// Signals of the service of notifications, half of them as they should be.
void emitRandomSignal(test::FakeService &service, FuzzRandom &random)
{
    static const char *const names[] = { "ActionInvoked", "ActivationToken", "NotificationClosed" };
    const int name = random.below(std::ssize(names));
    QVariantList arguments = randomArguments(random);
    if (random.below(2) == 0)
        arguments = { random.next() % 4, name == 2 ? QVariant(random.next()) : QVariant(randomText(random)) };
    service.emitSignal("/org/freedesktop/Notifications", QString::fromLatin1(names[name]), arguments);
}

/// The other programs of the bus, and what has come of their calls.
class Others
{
public:
    Others()
        : m_bus(QDBusConnection::connectToBus(QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")),
                                              "others"))
    {
    }
    ~Others() { QDBusConnection::disconnectFromBus("others"); }
    Others(const Others &) = delete;
    Others &operator=(const Others &) = delete;

    void send(const QDBusMessage &call)
    {
        m_pending.push_back(m_bus.asyncCall(call));
        if (m_pending.size() == batch)
            wait();
    }
    void wait()
    {
        for (const QDBusPendingCall &call : m_pending) {
            if (!test::eventually([&] { return call.isFinished(); }))
                qFatal("A call is not answered.");
            m_taken += call.isError() ? 0 : 1;
        }
        m_pending.clear();
    }
    [[nodiscard]] int taken() const { return m_taken; }

private:
    QDBusConnection m_bus;
    std::vector<QDBusPendingCall> m_pending;
    int m_taken = 0;
};

int fuzz(test::FuzzRun &run, const test::PrivateBus &bus)
{
    FuzzRandom &random = run.random();
    int asked = 0;
    const auto count = [&asked] { ++asked; };
    std::unique_ptr<SingleInstance> instance = makeInstance(count);
    test::FakeService service(bus, "org.freedesktop.Notifications");
    service.setAnswer([&](const QDBusMessage &call) {
        if (random.below(2) == 0) // as it should be
            return call.createReply(call.member() == "Notify" ? QVariant(random.next() % 4)
                                                              : QVariant(QStringList { "actions" }));
        return random.below(4) == 0
            ? call.createErrorReply("org.freedesktop.Error.Random", randomText(random))
            : call.createReply(randomArguments(random));
    });
    Notifier notifier;
    Others others;
    run.feedAll("messages on the bus", [&](int number) {
        if (number % inputsPerInstance == 0) {
            others.wait();
            instance.reset();
            instance = makeInstance(count);
        }
        if (number % 100 == 0)
            notifier.show({ "title", "body", "label", [count](const QString &) { count(); } });
        if (number % 4 == 0)
            emitRandomSignal(service, random);
        else
            others.send(randomCall(random));
    });
    others.wait();
    std::printf("%d calls were taken, and %d things asked for\n", others.taken(), asked);
    return others.taken() > 0 && others.taken() < run.count() && asked > 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const std::unique_ptr<test::PrivateBus> bus = test::PrivateBus::start();
    if (!bus)
        return 1;
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus->address());
    // What has another signature than its slot makes the toolkit print warnings.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    const QCoreApplication application(argc, argv);
    test::FuzzRun run(argc, argv, 20'000);
    return fuzz(run, *bus);
}
