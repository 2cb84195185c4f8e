#include "desktop/x11_blanking_pause.h"

#include "x11/x11_connection.h"

#include <xcb/screensaver.h>

namespace vornic {

X11BlankingPause::X11BlankingPause()
    : m_connection(X11Connection::open())
{
    if (!m_connection || !m_connection->extension(xcb_screensaver_id))
        return;
    xcb_screensaver_suspend(m_connection->get(), 1);
    xcb_flush(m_connection->get());
}

X11BlankingPause::~X11BlankingPause() = default;

} // namespace vornic
