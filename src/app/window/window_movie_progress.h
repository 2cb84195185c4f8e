#pragma once

#include "app/session/movie_progress.h"

#include <QCoreApplication>

#include <functional>
#include <memory>
#include <utility>

class QSystemTrayIcon;

namespace vornic {

class Notifier;
struct MainWindowLink;

/// The progress sheet, and an icon of the tray while a movie is written.
///
/// Owned by WindowFrontEnd, whose link to the main window it borrows; main thread only.
class WindowMovieProgress final : public MovieProgress
{
    Q_DECLARE_TR_FUNCTIONS(vornic::WindowMovieProgress)
public:
    explicit WindowMovieProgress(const MainWindowLink &main);
    ~WindowMovieProgress();
    WindowMovieProgress(const WindowMovieProgress &) = delete;
    WindowMovieProgress &operator=(const WindowMovieProgress &) = delete;

    /// Called when the user puts the movie off that is written.
    void setLater(std::function<void()> later) { m_later = std::move(later); }
    /// Called when a recording is kept that has no movie.
    void setKept(std::function<void()> kept) { m_kept = std::move(kept); }

    void beginProgress(std::uint64_t frames) override;
    void setProgress(double percent) override;
    void endProgress() override;
    void recordingKept(const QString &id) override;
    void movieRenamed(const QString &meant, const QString &path) override;

private:
    const MainWindowLink &m_main;
    std::function<void()> m_later;
    std::function<void()> m_kept;
    std::unique_ptr<QSystemTrayIcon> m_writingIcon; ///< while the movie is written; null without a tray
    std::unique_ptr<Notifier> m_notifier;
};

} // namespace vornic
