#include "app/window/screen_settling.h"

#include "desktop/window_presence.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QWidget>

#include <utility>

namespace vornic {

namespace {

constexpr int lookMs = 40;
constexpr qint64 maxMs = 1000;
/// How far a shadow or an animation may reach beyond the window.
constexpr int surroundings = 32;

} // namespace

ScreenSettling::ScreenSettling(const QWidget &window, const QRect &frame, std::function<void()> settled)
    : m_presence(WindowPresence::create())
    , m_window(window.testAttribute(Qt::WA_WState_Created) ? window.winId() : 0)
    , m_frame(frame.adjusted(-surroundings, -surroundings, surroundings, surroundings))
    , m_settled(std::move(settled))
{
    m_sinceStart.start();
    connect(&m_timer, &QTimer::timeout, this, &ScreenSettling::look);
    m_timer.start(lookMs);
}

ScreenSettling::~ScreenSettling() = default;

void ScreenSettling::look()
{
    const bool isGone = m_window == 0 || !m_presence->isOnScreen(m_window);
    const bool isSettled = isGone && (!m_presence->isComposited() || pixelsStandStill());
    if (!isSettled && !m_sinceStart.hasExpired(maxMs))
        return;
    m_timer.stop();
    std::exchange(m_settled, nullptr)();
}

bool ScreenSettling::pixelsStandStill()
{
    QScreen &screen = *QGuiApplication::primaryScreen();
    const QRect part = m_frame & screen.geometry();
    const QImage now = screen
                           .grabWindow(0,
                                       part.x() - screen.geometry().x(),
                                       part.y() - screen.geometry().y(),
                                       part.width(),
                                       part.height())
                           .toImage();
    const bool standStill = !m_before.isNull() && now == m_before;
    m_before = now;
    return standStill;
}

} // namespace vornic
