#include "app/window/window_movie_progress.h"

#include "app/session/end_text.h"
#include "app/window/VNEncoderProgress.h"
#include "app/window/application_icon.h"
#include "app/window/main_window_link.h"
#include "app/window/stop_item.h"
#include "base/error_stream.h"
#include "desktop/notifier.h"

#include <QSystemTrayIcon>

namespace vornic {

WindowMovieProgress::WindowMovieProgress(const MainWindowLink &main)
    : m_main(main)
    , m_notifier(std::make_unique<Notifier>())
{
}

WindowMovieProgress::~WindowMovieProgress() = default;

void WindowMovieProgress::beginProgress(std::uint64_t frames)
{
    VNEncoderProgress::shareEncoderProgress().beginSheet(m_main.visible(), frames, m_later);
    if (!StopItem::hasTray())
        return;
    m_writingIcon = std::make_unique<QSystemTrayIcon>(applicationIcon());
    m_writingIcon->show();
}

void WindowMovieProgress::setProgress(double percent)
{
    VNEncoderProgress::shareEncoderProgress().setPercent(percent);
    if (m_writingIcon)
        m_writingIcon->setToolTip(tr("Vornic is writing the movie: %1 %").arg(static_cast<int>(percent)));
}

void WindowMovieProgress::endProgress()
{
    VNEncoderProgress::shareEncoderProgress().endSheet();
    m_writingIcon.reset();
}

void WindowMovieProgress::recordingKept(const QString &id)
{
    standardError().writeLine(recordingKeptLine(id)); // the window may be about to go
    if (m_kept)
        m_kept();
}

void WindowMovieProgress::movieRenamed(const QString &meant, const QString &path)
{
    m_notifier->show(
        { .title = tr("The movie has another name"),
          .body = tr("Another file has come to stand in %1 and is kept; the movie is %2.").arg(meant, path),
          .actionLabel = {},
          .action = {} });
}

} // namespace vornic
