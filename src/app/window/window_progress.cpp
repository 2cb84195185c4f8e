#include "app/window/window_progress.h"

#include "app/window/VNEncoderProgress.h"
#include "app/window/main_window.h"
#include "app/window/main_window_link.h"
#include "app/window/stop_item.h"
#include "display/main_display.h"
#include "geometry/screen_geometry.h"
#include "geometry/toolkit_scale.h"
#include "overlay/overlay_geometry.h"

#include <QGuiApplication>

namespace vornic {

WindowProgress::WindowProgress(const MainWindowLink &main)
    : m_main(main)
{
}

WindowProgress::~WindowProgress() = default;

void WindowProgress::showStopItem(const QString &title, const QRectF &recorded)
{
    const QRect frame = desktopPixels(recorded, static_cast<int>(overlayMargin), mainDisplayPlacement());
    m_stopItem = std::make_unique<StopItem>(
        title, ToolkitScale(*QGuiApplication::primaryScreen()).logicalAround(frame));
    QObject::connect(m_stopItem.get(), &StopItem::stopAsked, m_stopItem.get(), m_stop);
}

void WindowProgress::setStopItemTitle(const QString &title)
{
    if (m_stopItem)
        m_stopItem->setTitle(title);
}

void WindowProgress::hideStopItem()
{
    // The item's own click may be what led here.
    if (m_stopItem)
        m_stopItem.release()->deleteLater();
}

void WindowProgress::minimiseMainWindow()
{
    if (m_main.window)
        m_main.window->showMinimized();
}

void WindowProgress::bringMainWindowToFront()
{
    if (!m_main.visible())
        return;
    m_main.window->setWindowState(m_main.window->windowState() & ~Qt::WindowMinimized);
    m_main.window->raise();
    m_main.window->activateWindow();
}

void WindowProgress::setBusy(bool busy)
{
    if (m_main.window)
        m_main.window->setBusy(busy);
}

void WindowProgress::reloadData()
{
    if (m_main.window)
        m_main.window->reloadData();
}

void WindowProgress::beginProgress(std::uint64_t frames)
{
    VNEncoderProgress::shareEncoderProgress().beginSheet(m_main.visible(), frames);
}

void WindowProgress::setProgress(double percent)
{
    VNEncoderProgress::shareEncoderProgress().setPercent(percent);
}

void WindowProgress::endProgress()
{
    VNEncoderProgress::shareEncoderProgress().endSheet();
}

} // namespace vornic
