#include "x11/x11_nesting.h"

#include "x11/x11_connection.h"
#include "x11/xcb_reply.h"

#include <xcb/randr.h>

#include <string>
#include <string_view>

namespace vornic {

namespace {

/// The name of the first monitor; empty where there is none.
std::string firstMonitorName(const X11Connection &connection)
{
    const auto cookie = xcb_randr_get_monitors(connection.get(), connection.root(), 1);
    const XcbReply<xcb_randr_get_monitors_reply_t> monitors(
        xcb_randr_get_monitors_reply(connection.get(), cookie, nullptr));
    const auto all = monitors ? xcb_randr_get_monitors_monitors_iterator(monitors.get())
                              : xcb_randr_monitor_info_iterator_t {};
    if (all.rem == 0)
        return {};
    const auto nameCookie = xcb_get_atom_name(connection.get(), all.data->name);
    const XcbReply<xcb_get_atom_name_reply_t> name(
        xcb_get_atom_name_reply(connection.get(), nameCookie, nullptr));
    return name ? std::string(xcb_get_atom_name_name(name.get()), name->name_len) : std::string();
}

} // namespace

bool isInsideWayland(const X11Connection &connection)
{
    constexpr std::string_view name = "XWAYLAND";
    const auto cookie = xcb_query_extension(connection.get(), name.size(), name.data());
    const XcbReply<xcb_query_extension_reply_t> reply(
        xcb_query_extension_reply(connection.get(), cookie, nullptr));
    return (reply && reply->present != 0) || firstMonitorName(connection).starts_with(name);
}

} // namespace vornic
