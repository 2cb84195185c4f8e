// A process of its own that uses the desktop; it writes lines about what happens and ends when its standard
// input does.
//
//   inhibit             keeps awake
//   instance            is the only instance, or says that it is not
//   hand-over [action [file]]  asks the only instance and ends
//   reveal path         reveals the path, says which folder it opens instead, and ends
//   file-manager file   is the file manager: writes what it is to show to the file, and ends

#include "desktop/idle_inhibitor.h"
#include "desktop/reveal.h"
#include "desktop/single_instance.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QFile>
#include <QSocketNotifier>
#include <QTimer>

#include <unistd.h>

#include <cstdio>

namespace {

using namespace vornic;

void say(const QString &line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}

int runUntilInputEnds()
{
    QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [] {
        char byte = 0;
        if (read(STDIN_FILENO, &byte, 1) < 1)
            QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}

int inhibit()
{
    const IdleInhibitor inhibitor(QStringLiteral("Trying it out"));
    say(QStringLiteral("inhibits"));
    return runUntilInputEnds();
}

int beInstance()
{
    SingleInstance instance;
    instance.setActionCheck([](const QString &action) { return action != "refuse-me"; });
    QObject::connect(&instance, &SingleInstance::activated, [](const QString &token) {
        say(QStringLiteral("activated with '%1'").arg(token));
    });
    QObject::connect(&instance,
                     &SingleInstance::actionAsked,
                     [](const QString &action, const QString &file, const QString &token) {
                         say(QStringLiteral("asked for %1 with '%2'%3").arg(action, token, file));
                     });
    say(instance.isOnly() ? QStringLiteral("only") : QStringLiteral("not only"));
    return runUntilInputEnds();
}

int handOver(const QString &action, const QString &file)
{
    const QMap<SingleInstance::Answer, QString> answers { { SingleInstance::Answer::Taken, "taken" },
                                                          { SingleInstance::Answer::Refused, "refused" },
                                                          { SingleInstance::Answer::None, "not taken" } };
    SingleInstance instance;
    if (instance.isOnly())
        say(QStringLiteral("only"));
    else
        say(answers.value(instance.handOver(action, file)));
    return 0;
}

int reveal(const QString &path)
{
    revealInFileManager(path, {}, [](const QUrl &folder) {
        say(QStringLiteral("opens ") + folder.toString());
        QCoreApplication::quit();
    });
    return runUntilInputEnds();
}

class FileManager final : public QDBusVirtualObject
{
public:
    explicit FileManager(const QString &path)
        : m_path(path)
    {
    }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        QFile file(m_path);
        if (!file.open(QIODevice::WriteOnly))
            return false;
        file.write(message.arguments().value(0).toStringList().join('\n').toUtf8());
        file.close();
        connection.send(message.createReply());
        QTimer::singleShot(100, &QCoreApplication::quit);
        return true;
    }

    QString introspect(const QString &) const override { return {}; }

private:
    QString m_path;
};

int beFileManager(const QString &path)
{
    FileManager manager(path);
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.registerVirtualObject("/", &manager, QDBusConnection::SubPath);
    bus.registerService("org.freedesktop.FileManager1");
    QTimer::singleShot(60000, &QCoreApplication::quit); // nobody called
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString task = arguments.value(1);
    if (task == "inhibit")
        return inhibit();
    if (task == "instance")
        return beInstance();
    if (task == "hand-over")
        return handOver(arguments.value(2), arguments.value(3));
    if (task == "reveal")
        return reveal(arguments.value(2));
    if (task == "file-manager")
        return beFileManager(arguments.value(2));
    return 2;
}
