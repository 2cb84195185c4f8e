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
    , m_window(xcb_generate_id(m_connection.get()))
{
    const std::array<std::uint32_t, 2> values {
        1, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_BUTTON_1_MOTION
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
        if (kindOf(event) == XCB_BUTTON_PRESS) {
            const auto &press = as<xcb_button_press_event_t>(event);
            if (press.event == m_window && press.detail == XCB_BUTTON_INDEX_1) {
                tellDrag();
                m_receiver.inputPressed({ press.root_x, press.root_y });
            }
        } else if (kindOf(event) == XCB_MOTION_NOTIFY) {
            const auto &motion = as<xcb_motion_notify_event_t>(event);
            if (motion.event == m_window) {
                m_draggedTo = QPoint(motion.root_x, motion.root_y);
                m_tellDrag.start();
            }
        }
    });
    m_tellDrag.setSingleShot(true);
    m_tellDrag.setInterval(0);
    connect(&m_tellDrag, &QTimer::timeout, this, &X11InputWindow::tellDrag);
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

void X11InputWindow::place(const QRegion &onDesktop)
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
