#include "desktop/open_document.h"

#include <QProcess>

#include <unistd.h>

namespace vornic {

/// The toolkit has its own way of opening, which starts the same program but says of every file that it was opened.
void openDocument(const QString &path, const std::function<void()> &failed)
{
    // Without an owner: its end would be the end of the program that is opened.
    auto *opener = new QProcess;
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
