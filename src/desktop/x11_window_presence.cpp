#include "desktop/x11_window_presence.h"

#include "x11/xcb_reply.h"

#include <cstdint>
#include <utility>

namespace vornic {

namespace {

bool isMapped(const X11Connection &connection, xcb_window_t window)
{
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection.get(), xcb_get_window_attributes(connection.get(), window), nullptr));
    return attributes && attributes->map_state != XCB_MAP_STATE_UNMAPPED;
}

/// The window that holds \a window; none for one that is gone.
xcb_window_t parentOf(const X11Connection &connection, xcb_window_t window)
{
    const XcbReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection.get(), xcb_query_tree(connection.get(), window), nullptr));
    return tree ? tree->parent : xcb_window_t { XCB_NONE };
}

} // namespace

std::unique_ptr<X11WindowPresence> X11WindowPresence::create()
{
    auto connection = X11Connection::open();
    return connection ? std::unique_ptr<X11WindowPresence>(new X11WindowPresence(std::move(connection)))
                      : nullptr;
}

X11WindowPresence::X11WindowPresence(std::unique_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
{
}

bool X11WindowPresence::isOnScreen(quintptr window) const
{
    auto topLevel = static_cast<xcb_window_t>(window);
    for (xcb_window_t parent = parentOf(*m_connection, topLevel);
         parent != XCB_NONE && parent != m_connection->root();
         parent = parentOf(*m_connection, topLevel))
        topLevel = parent;
    return isMapped(*m_connection, topLevel);
}

bool X11WindowPresence::isComposited() const
{
    const xcb_atom_t selection
        = m_connection->atom("_NET_WM_CM_S" + QByteArray::number(m_connection->screenNumber()));
    const XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        m_connection->get(), xcb_get_selection_owner(m_connection->get(), selection), nullptr));
    return owner && owner->owner != XCB_NONE;
}

} // namespace vornic
