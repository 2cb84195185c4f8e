#include "x11/x11_events.h"

#include "x11/x11_connection.h"
#include "x11/xcb_reply.h"

#include <QMetaObject>
#include <QSocketNotifier>

namespace vornic {

X11Events::X11Events(X11Connection &connection)
    : m_connection(connection)
    , m_notifier(new QSocketNotifier(xcb_get_file_descriptor(connection.get()), QSocketNotifier::Read, this))
{
    connect(m_notifier, &QSocketNotifier::activated, this, &X11Events::readEvents);
}

X11Events::~X11Events() = default;

void X11Events::flush()
{
    xcb_flush(m_connection.get());
    // Events that came with a reply are no longer in the socket, so that nothing would wake the loop for
    // them.
    QMetaObject::invokeMethod(this, &X11Events::readEvents, Qt::QueuedConnection);
}

void X11Events::readEvents()
{
    while (const XcbReply<xcb_generic_event_t> event { xcb_poll_for_event(m_connection.get()) })
        emit eventRead(*event);
    if (!m_connection.isAlive())
        m_notifier->setEnabled(false);
}

} // namespace vornic
