#include "app/window/main_window_moves.h"

#include "app/window/main_window.h"
#include "app/window/main_window_link.h"
#include "app/window/screen_settling.h"
#include "app/window/window_progress.h"
#include "overlay/VNRecorderWndCtrl.h"

#include <utility>

namespace vornic {

MainWindowMoves::MainWindowMoves(const MainWindowLink &main, WindowProgress &progress)
    : m_main(main)
    , m_progress(progress)
{
}

MainWindowMoves::~MainWindowMoves() = default;

void MainWindowMoves::minimiseMainWindow()
{
    if (!m_main.window)
        return;
    m_minimisedFrame = m_main.window->isVisible() && !m_main.window->isMinimized()
        ? m_main.window->frameGeometry()
        : QRect();
    m_main.window->showMinimized();
}

void MainWindowMoves::whenScreenIsClear(std::function<void()> done)
{
    const auto settled = [this, done = std::move(done)] {
        if (m_settling)
            m_settling.release()->deleteLater();
        m_progress.allowBar();
        done();
    };
    if (m_main.window && !m_minimisedFrame.isNull())
        m_settling = std::make_unique<ScreenSettling>(*m_main.window, m_minimisedFrame, settled);
    else
        settled();
}

void MainWindowMoves::stepAside()
{
    VNRecorderWndCtrl::shareRecorderWndCtrl().stepAside();
    if (m_main.visible())
        m_main.window->lower();
}

void MainWindowMoves::bringMainWindowToFront()
{
    if (!m_main.visible())
        return;
    m_main.window->setWindowState(m_main.window->windowState() & ~Qt::WindowMinimized);
    m_main.window->raise();
    m_main.window->activateWindow();
}

void MainWindowMoves::setBusy(bool busy)
{
    if (m_main.window)
        m_main.window->setBusy(busy);
}

void MainWindowMoves::reloadData()
{
    if (m_main.window)
        m_main.window->reloadData();
}

} // namespace vornic
