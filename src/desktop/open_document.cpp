#include "desktop/open_document.h"

#include <QProcess>
#include <QSet>

#include <unistd.h>

namespace vornic {

namespace {

/// Deleted once it has ended, and never while it runs, at the program's end neither: that would be the end of the program
/// that is opened.
QProcess *makeOpener()
{
    static auto *const running = new QSet<QProcess *>;
    auto *const opener = new QProcess;
    running->insert(opener);
    QObject::connect(opener, &QObject::destroyed, [opener] { running->remove(opener); });
    return opener;
}

} // namespace

/// The toolkit has its own way of opening, which starts the same program but says of every file that it was opened.
void openDocument(const QString &path, const std::function<void()> &failed)
{
    QProcess *const opener = makeOpener();
    opener->setChildProcessModifier([] { ::setsid(); });
    // What the program that is opened writes is none of our output.
    opener->setStandardInputFile(QProcess::nullDevice());
    opener->setStandardOutputFile(QProcess::nullDevice());
    opener->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(
        opener, &QProcess::errorOccurred, opener, [opener, failed](QProcess::ProcessError error) {
            if (error != QProcess::FailedToStart)
                return;
            opener->deleteLater();
            failed();
        });
    QObject::connect(
        opener, &QProcess::finished, opener, [opener, failed](int status, QProcess::ExitStatus end) {
            opener->deleteLater();
            if (end != QProcess::NormalExit || status != 0)
                failed();
        });
    opener->start(QStringLiteral("xdg-open"), { path });
}

} // namespace vornic
