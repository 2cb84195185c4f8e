#pragma once

#include "app/session/recording_progress.h"

#include <functional>
#include <memory>
#include <utility>

namespace vornic {

class StopItem;
struct MainWindowLink;

/// The stop item, the progress sheet, and the main window while a recording runs.
///
/// Owned by WindowFrontEnd, whose link to the main window it borrows; main thread only.
class WindowProgress final : public RecordingProgress
{
public:
    explicit WindowProgress(const MainWindowLink &main);
    ~WindowProgress();
    WindowProgress(const WindowProgress &) = delete;
    WindowProgress &operator=(const WindowProgress &) = delete;

    /// Called when the user asks for the end of the recording.
    void setStop(std::function<void()> stop) { m_stop = std::move(stop); }

    void showStopItem(const QString &title, const QRectF &recorded) override;
    void setStopItemTitle(const QString &title) override;
    void hideStopItem() override;
    void minimiseMainWindow() override;
    void bringMainWindowToFront() override;
    void setBusy(bool busy) override;
    void reloadData() override;
    void beginProgress(std::uint64_t frames) override;
    void setProgress(double percent) override;
    void endProgress() override;

private:
    const MainWindowLink &m_main;
    std::function<void()> m_stop;
    std::unique_ptr<StopItem> m_stopItem;
};

} // namespace vornic
