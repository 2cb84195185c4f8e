#include "app/window/window_desktop.h"

#include "app/session/time_text.h"
#include "desktop/idle_inhibitor.h"
#include "desktop/notifier.h"
#include "desktop/reveal.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QLocale>
#include <QUrl>

namespace vornic {

WindowDesktop::WindowDesktop()
    : m_notifier(std::make_unique<Notifier>())
{
}

WindowDesktop::~WindowDesktop() = default;

void WindowDesktop::reveal(const QString &path)
{
    revealInFileManager(path);
}

void WindowDesktop::open(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

void WindowDesktop::announceMovie(const QString &path, double seconds)
{
    const QFileInfo movie(path);
    m_notifier->show(
        { .title = tr("The recording is finished"),
          .body
          = tr("%1: %2 long, %3")
                .arg(movie.fileName(), minutesAndSeconds(seconds), QLocale().formattedDataSize(movie.size())),
          .actionLabel = tr("Show in folder"),
          .action = [path](const QString &token) { revealInFileManager(path, token); } });
}

void WindowDesktop::inhibitIdle(bool inhibits)
{
    m_idleInhibitor = inhibits ? std::make_unique<IdleInhibitor>(tr("Recording the screen")) : nullptr;
}

} // namespace vornic
