#include "x11/x11_link.h"

#include <QMetaObject>
#include <QSocketNotifier>

namespace vornic {

std::unique_ptr<X11Link> X11Link::open()
{
    int number = 0;
    xcb_connection_t *connection = xcb_connect(nullptr, &number);
    if (xcb_connection_has_error(connection) == 0)
        return std::unique_ptr<X11Link>(new X11Link(connection, number));
    xcb_disconnect(connection);
    return nullptr;
}

X11Link::X11Link(xcb_connection_t *connection, int screenNumber)
    : m_connection(connection)
    , m_screenNumber(screenNumber)
    , m_notifier(new QSocketNotifier(xcb_get_file_descriptor(connection), QSocketNotifier::Read, this))
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    m_screen = screens.data;
    connect(m_notifier, &QSocketNotifier::activated, this, &X11Link::readEvents);
}

X11Link::~X11Link()
{
    delete m_notifier; // before its file descriptor is closed
    xcb_disconnect(m_connection);
}

xcb_atom_t X11Link::atom(const QByteArray &name)
{
    if (const auto known = m_atoms.constFind(name); known != m_atoms.constEnd())
        return *known;
    const auto cookie
        = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const XcbOwned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    if (!reply)
        return XCB_ATOM_NONE;
    m_atoms.insert(name, reply->atom);
    return reply->atom;
}

void X11Link::flush()
{
    xcb_flush(m_connection);
    // Events that came with a reply are no longer in the socket, so that nothing would wake the loop for
    // them.
    QMetaObject::invokeMethod(this, &X11Link::readEvents, Qt::QueuedConnection);
}

void X11Link::readEvents()
{
    while (const XcbOwned<xcb_generic_event_t> event { xcb_poll_for_event(m_connection) })
        emit eventRead(*event);
    if (xcb_connection_has_error(m_connection) != 0)
        m_notifier->setEnabled(false);
}

} // namespace vornic
