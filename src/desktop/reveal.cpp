#include "desktop/reveal.h"

#include "bus/dbus_call.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>

namespace vornic {

namespace {

using namespace std::chrono_literals;

/// Long enough for a file manager that has to be started from a cold disk.
constexpr std::chrono::milliseconds answerTimeout = 5s;

QDBusMessage showItems(const QUrl &file, const QString &activationToken)
{
    const QString interface = QStringLiteral("org.freedesktop.FileManager1");
    QDBusMessage call = QDBusMessage::createMethodCall(
        interface, QStringLiteral("/org/freedesktop/FileManager1"), interface, QStringLiteral("ShowItems"));
    call.setArguments({ QStringList { QString::fromLatin1(file.toEncoded()) }, activationToken });
    return call;
}

} // namespace

void revealInFileManager(const QString &path, const QString &activationToken, const FolderOpener &openFolder)
{
    const QFileInfo file(path);
    const QUrl folder = QUrl::fromLocalFile(file.absolutePath());
    const auto answered = [folder, openFolder](const QDBusMessage &answer) {
        if (isReply(answer))
            return;
        if (openFolder)
            openFolder(folder);
        else
            QDesktopServices::openUrl(folder);
    };
    callLater(sessionBus(),
              showItems(QUrl::fromLocalFile(file.absoluteFilePath()), activationToken),
              QCoreApplication::instance(),
              answered,
              answerTimeout);
}

} // namespace vornic
