#include "selection/region_selection.h"

#include "display/bitmap_image.h"
#include "display/display_backend.h"
#include "display/main_display.h"
#include "selection/desktop_windows.h"
#include "selection/selection_geometry.h"
#include "selection/selection_window.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyleHints>

#include <chrono>
#include <cmath>
#include <utility>

namespace vornic {

namespace {

using namespace std::chrono_literals;

/// Windows that were hidden just now are gone once two pictures this far apart are alike. Some desktops let them fade;
/// where something else moves, they are gone after the longest time.
constexpr auto lookInterval = 60ms;
constexpr auto longestLook = 600ms;

bool isSame(const DisplayPlacement &one, const DisplayPlacement &other)
{
    return one.size == other.size && one.origin == other.origin;
}

/// From where on a pressed mouse draws, in device pixels.
int dragDistance()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    const double scale = screen ? screen->devicePixelRatio() : 1;
    return static_cast<int>(std::lround(QGuiApplication::styleHints()->startDragDistance() * scale));
}

} // namespace

RegionSelection::RegionSelection(const QRectF &current)
    : m_current(current)
{
    m_lookAgain.setInterval(lookInterval);
    connect(&m_lookAgain, &QTimer::timeout, this, &RegionSelection::lookAtDisplay);
}

RegionSelection::~RegionSelection() = default;

void RegionSelection::begin()
{
    m_display = mainDisplayPlacement();
    m_sinceBegin.start();
    m_lookAgain.start();
    connect(qGuiApp, &QCoreApplication::aboutToQuit, this, [this] { finish(std::nullopt); });
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &RegionSelection::cancelOnOtherDisplay);
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        connect(screen, &QScreen::geometryChanged, this, &RegionSelection::cancelOnOtherDisplay);
}

void RegionSelection::lookAtDisplay()
{
    auto look = mainDisplay()->grab({ QPoint(), m_display.size });
    const bool isLast = std::chrono::milliseconds(m_sinceBegin.elapsed()) >= longestLook;
    const bool isStill = look && m_lastLook && look->isSamePicture(*m_lastLook);
    m_lastLook = std::move(look);
    if (!isStill && !isLast)
        return;
    m_lookAgain.stop();
    const auto still = std::exchange(m_lastLook, nullptr);
    if (still && QSize(still->width(), still->height()) == m_display.size)
        showWindow(*still);
    else if (still)
        finish(std::nullopt);
    else if (!std::exchange(m_isFinished, true))
        emit displayNotShown();
}

void RegionSelection::showWindow(const BitmapImage &still)
{
    m_window
        = std::make_unique<SelectionWindow>(still.view().copy(),
                                            m_display,
                                            SelectionState(m_display.size,
                                                           selectionFromScreen(m_current, m_display.size),
                                                           visibleFrames(desktopWindows(), m_display),
                                                           dragDistance()));
    // Queued: the window is destroyed then.
    connect(m_window.get(), &SelectionWindow::taken, this, &RegionSelection::finish, Qt::QueuedConnection);
    connect(
        m_window.get(),
        &SelectionWindow::cancelled,
        this,
        [this] { finish(std::nullopt); },
        Qt::QueuedConnection);
    m_window->orderFront(mainDisplay()->pointerPosition());
}

void RegionSelection::cancelOnOtherDisplay()
{
    if (!isSame(mainDisplayPlacement(), m_display))
        finish(std::nullopt);
}

void RegionSelection::finish(const std::optional<QRect> &chosen)
{
    if (std::exchange(m_isFinished, true))
        return;
    m_lookAgain.stop();
    m_window.reset();
    if (chosen && isSame(mainDisplayPlacement(), m_display))
        emit taken(selectionOnScreen(*chosen, m_display.size));
    else
        emit cancelled();
}

} // namespace vornic
