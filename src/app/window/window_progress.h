#pragma once

#include "app/session/recording_progress.h"
#include "app/session/sound_notices.h"

#include <QCoreApplication>

#include <functional>
#include <memory>
#include <utility>

namespace vornic {

class Notifier;
class StopItem;
struct MainWindowLink;

/// The stop item while a recording runs, and what is told beside it.
///
/// Owned by WindowFrontEnd, whose link to the main window it borrows; main thread only.
class WindowProgress final : public RecordingProgress, public SoundNotices
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
    /// The screen is clear of the program's windows: the bar may be there from now on.
    void allowBar();
    /// Somebody looks for the program that records: shows where it is stopped.
    void pointAtStopItem();

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

private:
    const MainWindowLink &m_main;
    std::function<void()> m_stop;
    std::function<void()> m_pause;
    std::unique_ptr<StopItem> m_stopItem;
    bool m_isInMemory = false; ///< what is recorded now
    std::unique_ptr<Notifier> m_notifier;
};

} // namespace vornic
