#include "app/window/window_desktop.h"

#include "app/session/time_text.h"
#include "desktop/idle_inhibitor.h"
#include "desktop/notifier.h"
#include "desktop/open_document.h"
#include "desktop/reveal.h"

#include <QFileInfo>
#include <QLocale>
#include <QUrl>

namespace vornic {

WindowDesktop::WindowDesktop()
    : m_failed([](const QString &) {})
    , m_saved([](const QString &, double, const QString &) {})
    , m_notifier(std::make_unique<Notifier>())
{
}

WindowDesktop::~WindowDesktop() = default;

void WindowDesktop::reveal(const QString &path)
{
    revealWith(path, {});
}

void WindowDesktop::revealWith(const QString &path, const QString &activationToken)
{
    revealInFileManager(path, activationToken, [this](const QUrl &folder) {
        const QString name = folder.toLocalFile();
        openDocument(name, [this, name] {
            m_failed(tr("The folder %1 could not be shown: there is no file browser.").arg(name));
        });
    });
}

void WindowDesktop::open(const QString &path)
{
    openDocument(path, [this, path] {
        m_failed(tr("%1 could not be opened: there is no program for it.").arg(path));
    });
}

void WindowDesktop::announceMovie(const QString &path, double seconds, const QString &flaws)
{
    const QFileInfo movie(path);
    const QString behind = flaws.isEmpty() ? QString() : u'\n' + flaws;
    m_notifier->show({ .title = tr("The recording is finished"),
                       .body = tr("%1: %2 long, %3")
                                   .arg(movie.fileName(),
                                        minutesAndSeconds(seconds),
                                        QLocale().formattedDataSize(movie.size()))
                           + behind,
                       .actionLabel = tr("Show in folder"),
                       .action = [this, path](const QString &token) { revealWith(path, token); } });
    m_saved(path, seconds, flaws);
}

void WindowDesktop::inhibitIdle(bool inhibits)
{
    m_idleInhibitor = inhibits ? std::make_unique<IdleInhibitor>(tr("Recording the screen")) : nullptr;
}

} // namespace vornic
