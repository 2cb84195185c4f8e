#include "display/x11/x11_segment.h"

#include "display/shared_pixels.h"
#include "x11/x11_connection.h"
#include "x11/xcb_reply.h"

#include <xcb/shm.h>

namespace vornic {

X11Segment::X11Segment(X11Connection &connection, SharedPixels &pixels)
    : m_connection(connection)
{
    const int fileDescriptor = pixels.takeFileDescriptor();
    if (fileDescriptor < 0)
        return;
    const std::uint32_t id = xcb_generate_id(connection.get());
    // The request closes the descriptor once it is sent.
    const auto cookie = xcb_shm_attach_fd_checked(connection.get(), id, fileDescriptor, 0);
    if (!XcbReply<xcb_generic_error_t>(xcb_request_check(connection.get(), cookie)) && connection.isAlive())
        m_id = id;
}

X11Segment::~X11Segment()
{
    if (!isAttached())
        return;
    xcb_shm_detach(m_connection.get(), m_id);
    xcb_flush(m_connection.get());
}

} // namespace vornic
