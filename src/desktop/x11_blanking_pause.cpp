#include "desktop/x11_blanking_pause.h"

#include <xcb/screensaver.h>
#include <xcb/xcb.h>

namespace vornic {

X11BlankingPause::X11BlankingPause()
    : m_connection(xcb_connect(nullptr, nullptr))
{
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(m_connection, &xcb_screensaver_id);
    if (!extension || !extension->present)
        return;
    xcb_screensaver_suspend(m_connection, 1);
    xcb_flush(m_connection);
}

X11BlankingPause::~X11BlankingPause()
{
    xcb_disconnect(m_connection);
}

} // namespace vornic
