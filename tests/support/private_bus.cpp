#include "support/private_bus.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QTest>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

namespace vornic::test {

namespace {

std::unique_ptr<PrivateBus> theSessionBus;
std::unique_ptr<PrivateBus> theSystemBus;

/// The daemon writes the address that clients connect to, and a line feed.
QByteArray readAddress(int fileDescriptor)
{
    QByteArray address;
    char byte = 0;
    while (read(fileDescriptor, &byte, 1) == 1 && byte != '\n')
        address += byte;
    return address;
}

void write(const QString &path, const QString &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        qFatal("%s cannot be written", qPrintable(path));
}

} // namespace

std::unique_ptr<PrivateBus> PrivateBus::start()
{
    std::unique_ptr<PrivateBus> bus(new PrivateBus);
    int ends[2] = { -1, -1 };
    if (pipe2(ends, O_CLOEXEC) != 0)
        return nullptr;
    const QStringList command { "dbus-daemon",
                                "--nofork",
                                "--nosyslog",
                                "--config-file=" + bus->writeConfiguration(),
                                "--print-address=" + QString::number(ends[1]) };
    const QString log = bus->m_folder.filePath("log");
    bus->m_process = ChildProcess::start(printingTo(log, command), {}, ends[1]);
    close(ends[1]);
    bus->m_address = readAddress(ends[0]);
    close(ends[0]);
    if (bus->m_address.isEmpty()) {
        std::fprintf(stderr, "dbus-daemon does not come up:\n%s\n", qPrintable(contentsOf(log)));
        return nullptr;
    }
    return bus;
}

QString PrivateBus::writeConfiguration() const
{
    const QString path = m_folder.filePath("bus.conf");
    write(path,
          QStringLiteral("<busconfig>"
                         "<type>session</type><listen>unix:path=%1/bus</listen><servicedir>%1</servicedir>"
                         "<policy context=\"default\">"
                         "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/><allow own=\"*\"/>"
                         "</policy></busconfig>")
              .arg(m_folder.path()));
    return path;
}

QString PrivateBus::serviceFile(const QString &service) const
{
    return m_folder.filePath(service + ".service");
}

void PrivateBus::addActivatable(const QString &service, const QStringList &command) const
{
    write(serviceFile(service),
          QStringLiteral("[D-BUS Service]\nName=%1\nExec=%2\n").arg(service, command.join(' ')));
    readServicesAgain();
}

void PrivateBus::removeActivatable(const QString &service) const
{
    QFile::remove(serviceFile(service));
    readServicesAgain();
}

void PrivateBus::readServicesAgain() const
{
    const QString own = QStringLiteral("reader");
    const QString service = QStringLiteral("org.freedesktop.DBus");
    QDBusConnection::connectToBus(QString::fromLatin1(m_address), own)
        .call(QDBusMessage::createMethodCall(service, "/org/freedesktop/DBus", service, "ReloadConfig"));
    QDBusConnection::disconnectFromBus(own);
}

PrivateBus &sessionBusDaemon()
{
    return *theSessionBus;
}

PrivateBus &systemBusDaemon()
{
    return *theSystemBus;
}

int runBusTests(int argc, char **argv)
{
    theSessionBus = PrivateBus::start();
    theSystemBus = PrivateBus::start();
    if (!theSessionBus || !theSystemBus)
        return 1;
    qputenv("DBUS_SESSION_BUS_ADDRESS", theSessionBus->address());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", theSystemBus->address());
    qunsetenv("DISPLAY");
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    const int status = RUN_ALL_TESTS();
    theSessionBus.reset();
    theSystemBus.reset();
    return status;
}

bool eventually(const std::function<bool()> &isSo)
{
    return QTest::qWaitFor(isSo, 20000);
}

} // namespace vornic::test
