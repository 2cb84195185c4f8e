#pragma once

#include "app/session/recording_progress.h"

#include <QCoreApplication>
#include <QRect>

#include <functional>
#include <memory>
#include <utility>

class QSystemTrayIcon;

namespace vornic {

class Notifier;
class ScreenSettling;
class StopItem;
struct MainWindowLink;

/// The stop item, the progress sheet, and the main window while a recording runs.
///
/// Owned by WindowFrontEnd, whose link to the main window it borrows; main thread only.
class WindowProgress final : public RecordingProgress
{
    Q_DECLARE_TR_FUNCTIONS(vornic::WindowProgress)
public:
    explicit WindowProgress(const MainWindowLink &main);
    ~WindowProgress();
    WindowProgress(const WindowProgress &) = delete;
    WindowProgress &operator=(const WindowProgress &) = delete;

    /// Called when the user asks for the end of the recording.
    void setStop(std::function<void()> stop) { m_stop = std::move(stop); }
    /// Called when the user pauses the recording, or goes on with it.
    void setPause(std::function<void()> pause) { m_pause = std::move(pause); }
    /// Called when the user puts the movie off that is written.
    void setLater(std::function<void()> later) { m_later = std::move(later); }
    /// Called when a recording is kept that has no movie.
    void setKept(std::function<void()> kept) { m_kept = std::move(kept); }

    void showStopItem(const QString &title, const QRectF &recorded) override;
    void setStopItemTitle(const QString &title) override;
    void showTimeLeft(std::int64_t seconds) override;
    void showPaused(bool isPaused) override;
    void hideStopItem() override;
    void showRoom(const RecordingRoom &room) override;
    void warnOfLittleRoom(const RecordingRoom &room) override;
    void soundIsMissing(const std::function<void()> &goOn) override;
    void soundIsLost(bool isLost) override;
    void oneSoundIsLost(const QString &name, bool isLost) override;
    void showLevel(double peak) override;
    void nothingIsHeard(const QString &name) override;
    void whenScreenIsClear(std::function<void()> done) override;
    void stepAside() override;
    void minimiseMainWindow() override;
    void bringMainWindowToFront() override;
    /// Somebody looks for the program that records: shows where it is stopped.
    void pointAtStopItem();
    void setBusy(bool busy) override;
    void reloadData() override;
    void beginProgress(std::uint64_t frames) override;
    void setProgress(double percent) override;
    void endProgress() override;
    void recordingKept(const QString &id) override;
    void movieRenamed(const QString &meant, const QString &path) override;

private:
    const MainWindowLink &m_main;
    std::function<void()> m_stop;
    std::function<void()> m_pause;
    std::function<void()> m_later;
    std::function<void()> m_kept;
    std::unique_ptr<StopItem> m_stopItem;
    bool m_isInMemory = false; ///< what is recorded now
    QRect m_minimisedFrame;    ///< where the main window was, in the toolkit's coordinates
    std::unique_ptr<ScreenSettling> m_settling;
    std::unique_ptr<QSystemTrayIcon> m_writingIcon; ///< while the movie is written; null without a tray
    std::unique_ptr<Notifier> m_notifier;
};

} // namespace vornic
