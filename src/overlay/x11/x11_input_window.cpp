#include "overlay/x11/x11_input_window.h"

#include "overlay/x11/xdnd_target.h"
#include "x11/x11_connection.h"
#include "x11/x11_events.h"
#include "x11/x11_shape.h"

#include <array>
#include <utility>

namespace vornic {

namespace {

constexpr std::uint32_t asSigned(int value)
{
    return static_cast<std::uint32_t>(value);
}

} // namespace

X11InputWindow::X11InputWindow(X11Events &events, InputReceiver &receiver)
    : m_connection(events.connection())
    , m_events(events)
    , m_receiver(receiver)
    , m_cursors(m_connection)
    , m_window(xcb_generate_id(m_connection.get()))
{
    const std::array<std::uint32_t, 2> values {
        1, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION
    };
    xcb_create_window(m_connection.get(),
                      0,
                      m_window,
                      m_connection.root(),
                      0,
                      0,
                      1,
                      1,
                      0,
                      XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values.data());
    m_drops = std::make_unique<XdndTarget>(events, m_window, receiver);
    connect(&events, &X11Events::eventRead, this, [this](const xcb_generic_event_t &event) {
        if (kindOf(event) == XCB_BUTTON_PRESS)
            readPress(as<xcb_button_press_event_t>(event));
        else if (kindOf(event) == XCB_BUTTON_RELEASE)
            readRelease(as<xcb_button_release_event_t>(event));
        else if (kindOf(event) == XCB_MOTION_NOTIFY)
            readMotion(as<xcb_motion_notify_event_t>(event));
    });
    m_tellDrag.setSingleShot(true);
    m_tellDrag.setInterval(0);
    connect(&m_tellDrag, &QTimer::timeout, this, &X11InputWindow::tellDrag);
}

void X11InputWindow::readPress(const xcb_button_press_event_t &press)
{
    if (press.event != m_window || press.detail != XCB_BUTTON_INDEX_1)
        return;
    tellDrag();
    m_isPressed = true;
    m_pressTime = press.time;
    m_receiver.inputPressed({ press.root_x, press.root_y });
}

void X11InputWindow::readRelease(const xcb_button_release_event_t &release)
{
    if (release.event != m_window || release.detail != XCB_BUTTON_INDEX_1)
        return;
    tellDrag();
    m_isPressed = false;
    m_receiver.inputReleased();
    cover(m_wanted);
}

void X11InputWindow::readMotion(const xcb_motion_notify_event_t &motion)
{
    if (motion.event != m_window)
        return;
    const QPoint onDesktop(motion.root_x, motion.root_y);
    constexpr unsigned buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    if ((motion.state & XCB_BUTTON_MASK_1) != 0) {
        m_draggedTo = onDesktop;
        m_tellDrag.start();
    } else if ((motion.state & buttons) == 0) {
        m_receiver.inputMoved(onDesktop);
    }
}

void X11InputWindow::tellDrag()
{
    m_tellDrag.stop();
    if (const auto to = std::exchange(m_draggedTo, std::nullopt))
        m_receiver.inputDragged(*to);
}

X11InputWindow::~X11InputWindow()
{
    xcb_destroy_window(m_connection.get(), m_window);
    m_events.flush();
}

void X11InputWindow::setCursor(Qt::CursorShape shape)
{
    if (std::exchange(m_cursor, shape) == shape)
        return;
    const xcb_cursor_t cursor = m_cursors.cursor(shape);
    xcb_change_window_attributes(m_connection.get(), m_window, XCB_CW_CURSOR, &cursor);
    m_events.flush();
}

void X11InputWindow::place(const QRegion &onDesktop)
{
    m_wanted = onDesktop;
    if (!m_isPressed || !onDesktop.isEmpty())
        cover(onDesktop);
}

void X11InputWindow::cover(const QRegion &onDesktop)
{
    if (onDesktop == m_area)
        return;
    m_area = onDesktop;
    if (onDesktop.isEmpty()) {
        xcb_unmap_window(m_connection.get(), m_window);
    } else {
        const QRect around = onDesktop.boundingRect();
        const std::array<std::uint32_t, 4> place {
            asSigned(around.x()), asSigned(around.y()), asSigned(around.width()), asSigned(around.height())
        };
        xcb_configure_window(m_connection.get(),
                             m_window,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH
                                 | XCB_CONFIG_WINDOW_HEIGHT,
                             place.data());
        setShape(
            m_connection.get(), m_window, XCB_SHAPE_SK_BOUNDING, onDesktop.translated(-around.topLeft()));
        xcb_map_window(m_connection.get(), m_window);
    }
    m_events.flush();
}

} // namespace vornic
