#include "display/portal/portal_display.h"

#include "base/user_defaults.h"
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
/// As its name is stored.
const QString monitorKey = QStringLiteral("com.kavlor.screenCastMonitor");

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
    , m_monitorName(user_defaults::value(monitorKey).toString())
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
        if (access.state == DisplayAccess::State::Granted)
            learnMonitor();
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
    const auto main = monitor();
    return main ? main->pixels() : QSize(0, 0);
}

/// So many of its own pixels from the origin of the compositor's coordinates: divided by its factor that is its place.
QPoint PortalDisplay::mainDisplayOrigin() const
{
    const auto main = monitor();
    return main ? (QPointF(main->logical.topLeft()) * main->factor()).toPoint() : QPoint();
}

QString PortalDisplay::mainDisplayName() const
{
    const auto main = monitor();
    return main && outputs().size() > 1 ? main->name : QString();
}

std::vector<WaylandOutput> PortalDisplay::outputs() const
{
    return m_outputs ? m_outputs->outputs() : std::vector<WaylandOutput>();
}

std::optional<WaylandOutput> PortalDisplay::monitor() const
{
    QString name;
    {
        const std::lock_guard lock(m_mutex);
        name = m_monitorName;
    }
    const std::vector<WaylandOutput> all = outputs();
    const auto chosen = outputNamed(all, name);
    return chosen ? chosen : mainOutput(all);
}

/// Which one the stream shows; where that cannot be said, the main one.
void PortalDisplay::learnMonitor()
{
    const auto shown = outputShown(outputs(), m_cast->screen()->picture.size(), m_cast->position());
    const QString name = shown ? shown->name : QString();
    {
        const std::lock_guard lock(m_mutex);
        m_monitorName = name;
    }
    user_defaults::setValue(monitorKey, name);
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
