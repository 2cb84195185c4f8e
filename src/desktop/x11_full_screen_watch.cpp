#include "desktop/x11_full_screen_watch.h"

#include "x11/xcb_reply.h"

#include <QByteArray>

#include <span>
#include <utility>

namespace vornic {

namespace {

constexpr std::uint32_t maxWords = 32;

/// The words of \a property of \a window; empty where it has none.
QList<std::uint32_t> words(const X11Connection &connection, std::uint32_t window, const QByteArray &property)
{
    const auto cookie = xcb_get_property(
        connection.get(), 0, window, connection.atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, maxWords);
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection.get(), cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const std::span values(static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get())),
                           reply->value_len);
    return { values.begin(), values.end() };
}

void watch(const X11Connection &connection, std::uint32_t window, std::uint32_t mask)
{
    xcb_change_window_attributes(connection.get(), window, XCB_CW_EVENT_MASK, &mask);
}

} // namespace

std::unique_ptr<X11FullScreenWatch> X11FullScreenWatch::create()
{
    auto connection = X11Connection::open();
    return connection ? std::unique_ptr<X11FullScreenWatch>(new X11FullScreenWatch(std::move(connection)))
                      : nullptr;
}

X11FullScreenWatch::X11FullScreenWatch(std::unique_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
    , m_events(*m_connection)
{
    watch(*m_connection, m_connection->root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    connect(&m_events, &X11Events::eventRead, this, &X11FullScreenWatch::eventRead);
    followActiveWindow();
}

void X11FullScreenWatch::eventRead(const xcb_generic_event_t &event)
{
    if (kindOf(event) == XCB_DESTROY_NOTIFY)
        look();
    if (kindOf(event) != XCB_PROPERTY_NOTIFY)
        return;
    const auto &changed = as<xcb_property_notify_event_t>(event);
    if (changed.window == m_connection->root() && changed.atom == m_connection->atom("_NET_ACTIVE_WINDOW"))
        followActiveWindow();
    else if (changed.window == m_active && changed.atom == m_connection->atom("_NET_WM_STATE"))
        look();
}

void X11FullScreenWatch::followActiveWindow()
{
    if (m_active != XCB_NONE)
        watch(*m_connection, m_active, XCB_EVENT_MASK_NO_EVENT);
    m_active = words(*m_connection, m_connection->root(), "_NET_ACTIVE_WINDOW").value(0);
    // Not every window manager says that the last window is gone.
    if (m_active != XCB_NONE)
        watch(*m_connection, m_active, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    look();
}

void X11FullScreenWatch::look()
{
    const bool isFullScreen = m_active != XCB_NONE
        && words(*m_connection, m_active, "_NET_WM_STATE")
               .contains(m_connection->atom("_NET_WM_STATE_FULLSCREEN"));
    m_events.flush();
    if (std::exchange(m_isFullScreen, isFullScreen) != isFullScreen)
        emit changed();
}

} // namespace vornic
