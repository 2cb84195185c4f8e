#pragma once

#include "app/session/program_windows.h"

#include <QRect>

#include <memory>

namespace vornic {

class ScreenSettling;
class WindowProgress;
struct MainWindowLink;

/// Moves the main window, and with it the overlay, out of the way of a recording and back.
///
/// Owned by WindowFrontEnd, whose link to the main window and stop item it borrows; main thread only.
class MainWindowMoves final : public ProgramWindows
{
public:
    MainWindowMoves(const MainWindowLink &main, WindowProgress &progress);
    ~MainWindowMoves();
    MainWindowMoves(const MainWindowMoves &) = delete;
    MainWindowMoves &operator=(const MainWindowMoves &) = delete;

    void whenScreenIsClear(std::function<void()> done) override;
    void stepAside() override;
    void minimiseMainWindow() override;
    void bringMainWindowToFront() override;
    void setBusy(bool busy) override;
    void reloadData() override;

private:
    const MainWindowLink &m_main;
    WindowProgress &m_progress;
    QRect m_minimisedFrame; ///< where the main window was, in the toolkit's coordinates
    std::unique_ptr<ScreenSettling> m_settling;
};

} // namespace vornic
