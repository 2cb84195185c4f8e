#include "overlay/wayland/wayland_mouse.h"

#include "overlay/input_receiver.h"
#include "wayland/wayland_connection.h"

#include <utility>

namespace vornic {

namespace {

constexpr std::uint32_t seatVersion = 5;
constexpr std::uint32_t leftButton = 0x110; // BTN_LEFT of linux/input-event-codes.h

WaylandMouse &mouseOf(void *data)
{
    return *static_cast<WaylandMouse *>(data);
}

QPointF pointOf(wl_fixed_t x, wl_fixed_t y)
{
    return { wl_fixed_to_double(x), wl_fixed_to_double(y) };
}

} // namespace

const wl_seat_listener WaylandMouse::seatListener {
    [](void *data, wl_seat * /*seat*/, std::uint32_t capabilities) {
        mouseOf(data).seatChanged(capabilities);
    },
    [](void * /*data*/, wl_seat * /*seat*/, const char * /*name*/) {},
};

wl_pointer_listener WaylandMouse::makeListener()
{
    wl_pointer_listener listener {};
    listener.enter = [](void *data,
                        wl_pointer * /*pointer*/,
                        std::uint32_t serial,
                        wl_surface * /*surface*/,
                        wl_fixed_t x,
                        wl_fixed_t y) { mouseOf(data).entered(serial, pointOf(x, y)); };
    listener.leave
        = [](void *data, wl_pointer * /*pointer*/, std::uint32_t /*serial*/, wl_surface * /*surface*/) {
              mouseOf(data).left();
          };
    listener.motion
        = [](void *data, wl_pointer * /*pointer*/, std::uint32_t /*timeMs*/, wl_fixed_t x, wl_fixed_t y) {
              mouseOf(data).moved(pointOf(x, y));
          };
    listener.button
        = [](void *data,
             wl_pointer * /*pointer*/,
             std::uint32_t /*serial*/,
             std::uint32_t /*timeMs*/,
             std::uint32_t number,
             std::uint32_t state) { mouseOf(data).button(number, state == WL_POINTER_BUTTON_STATE_PRESSED); };
    listener.axis = [](void *, wl_pointer *, std::uint32_t, std::uint32_t, wl_fixed_t) {};
    listener.frame = [](void *, wl_pointer *) {};
    listener.axis_source = [](void *, wl_pointer *, std::uint32_t) {};
    listener.axis_stop = [](void *, wl_pointer *, std::uint32_t, std::uint32_t) {};
    listener.axis_discrete = [](void *, wl_pointer *, std::uint32_t, std::int32_t) {};
    return listener;
}

const wl_pointer_listener WaylandMouse::pointerListener = makeListener();

WaylandMouse::WaylandMouse(WaylandConnection &connection, InputReceiver &receiver)
    : m_receiver(receiver)
    , m_cursors(connection)
    , m_seat(connection.bind<wl_seat>(wl_seat_interface, seatVersion))
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(0);
    m_soon.callOnTimeout([this] { tell(); });
    if (m_seat)
        wl_seat_add_listener(m_seat.get(), &seatListener, this);
}

WaylandMouse::~WaylandMouse() = default;

void WaylandMouse::setGrid(const OutputGrid &grid, QPoint origin)
{
    m_grid = grid;
    m_origin = origin;
}

/// Also called when the first mouse is plugged in, and when the last is taken away.
void WaylandMouse::seatChanged(std::uint32_t capabilities)
{
    const bool isThere = (capabilities & WL_SEAT_CAPABILITY_POINTER) != 0;
    if (isThere && !m_pointer) {
        m_pointer.reset(wl_seat_get_pointer(m_seat.get()));
        wl_pointer_add_listener(m_pointer.get(), &pointerListener, this);
    } else if (!isThere && m_pointer) {
        left();
        m_pointer.reset();
    }
}

void WaylandMouse::entered(std::uint32_t serial, QPointF onSurface)
{
    m_enterSerial = serial;
    m_isInside = true;
    showCursor();
    moved(onSurface);
}

/// A button that is held keeps the mouse with the surface, unless that goes.
void WaylandMouse::left()
{
    m_isInside = false;
    m_otherButtons = 0;
    if (std::exchange(m_isPressed, false))
        notice(Act::Release);
}

void WaylandMouse::moved(QPointF onSurface)
{
    m_onDesktop = m_grid.pixelAt(onSurface) + m_origin;
    if (m_isPressed)
        notice(Act::Drag);
    else if (m_otherButtons == 0)
        notice(Act::Move);
}

void WaylandMouse::button(std::uint32_t number, bool isDown)
{
    if (number != leftButton) {
        m_otherButtons += isDown ? 1 : -1;
        return;
    }
    m_isPressed = isDown;
    notice(isDown ? Act::Press : Act::Release);
}

/// Of many movements in a row only the last is told.
void WaylandMouse::notice(Act act)
{
    const bool isMovement = act == Act::Drag || act == Act::Move;
    if (isMovement && !m_notices.empty() && m_notices.back().act == act)
        m_notices.pop_back();
    m_notices.push_back({ act, m_onDesktop });
    m_soon.start();
}

void WaylandMouse::tell()
{
    for (const Notice &notice : std::exchange(m_notices, {})) {
        switch (notice.act) {
        case Act::Press:
            m_receiver.inputPressed(notice.onDesktop);
            break;
        case Act::Drag:
            m_receiver.inputDragged(notice.onDesktop);
            break;
        case Act::Release:
            m_receiver.inputReleased();
            break;
        case Act::Move:
            m_receiver.inputMoved(notice.onDesktop);
            break;
        }
    }
}

void WaylandMouse::setCursor(Qt::CursorShape shape)
{
    if (std::exchange(m_cursor, shape) != shape)
        showCursor();
}

void WaylandMouse::showCursor()
{
    if (m_pointer && m_isInside)
        m_cursors.show(*m_pointer, m_enterSerial, m_cursor);
}

} // namespace vornic
