#include "display/portal/portal_display.h"

#include "base/wayland_session.h"
#include "bus/dbus_call.h"
#include "display/bitmap_image.h"
#include "display/portal/portal_abilities.h"
#include "display/portal/screen_cast.h"
#include "wayland/wayland_output_watch.h"

#include <QCoreApplication>

#include <chrono>
#include <utility>

namespace vornic {

namespace {

/// A portal that is not running yet is started by the bus.
constexpr std::chrono::seconds patience(5);

} // namespace

bool PortalDisplay::isForThisSession()
{
    return isWaylandSession();
}

std::unique_ptr<DisplayBackend> PortalDisplay::create(QString &whyNot)
{
    if (!isForThisSession())
        whyNot = QCoreApplication::translate(
            "vornic",
            "There is no Wayland session to record: the environment variable WAYLAND_DISPLAY is not set.");
    else if (portalAbilitiesIn(askSessionBus(portalAbilitiesCall(), patience)).version == 0)
        whyNot = noPortalText();
    else
        return std::unique_ptr<DisplayBackend>(new PortalDisplay);
    return nullptr;
}

PortalDisplay::PortalDisplay()
    : m_outputs(WaylandOutputWatch::start())
{
}

PortalDisplay::~PortalDisplay() = default;

void PortalDisplay::prepare(const QString &parentWindow, const AccessAnswer &answer)
{
    if (const auto ready = screen(); ready && !ready->picture.hasEnded()) {
        answer({});
        return;
    }
    release();
    m_cast = std::make_unique<ScreenCast>(parentWindow, [this, answer](const DisplayAccess &access) {
        if (access.state == DisplayAccess::State::Granted)
            setScreen(m_cast->screen());
        answer(access);
    });
}

void PortalDisplay::release()
{
    setScreen(nullptr);
    m_cast.reset();
}

std::shared_ptr<CastScreen> PortalDisplay::screen() const
{
    const std::lock_guard lock(m_mutex);
    return m_screen;
}

void PortalDisplay::setScreen(std::shared_ptr<CastScreen> screen)
{
    const std::lock_guard lock(m_mutex);
    std::swap(m_screen, screen);
}

std::uint32_t PortalDisplay::mainDisplayId() const
{
    const auto shown = screen();
    return shown && shown->picture.hasEnded() ? 0 : 1;
}

QSize PortalDisplay::mainDisplaySize() const
{
    if (const auto shown = screen())
        return shown->picture.size();
    const auto main = m_outputs ? mainOutput(m_outputs->outputs()) : std::nullopt;
    return main ? main->pixels() : QSize(0, 0);
}

std::shared_ptr<const BitmapImage> PortalDisplay::grab(const QRect &rectangle)
{
    const auto shown = screen();
    return shown ? shown->grabber.grab(rectangle) : nullptr;
}

QPoint PortalDisplay::pointerPosition()
{
    const auto shown = screen();
    return shown ? shown->picture.pointerPosition() : QPoint();
}

std::shared_ptr<const CursorShape> PortalDisplay::cursorShape()
{
    const auto shown = screen();
    return shown ? shown->picture.cursorShape() : nullptr;
}

} // namespace vornic
