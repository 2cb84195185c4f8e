#include "x11/x11_connection.h"

#include <QCoreApplication>
#include <QStringList>

#include <sys/socket.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

#include <string>
#include <string_view>
#include <utility>

namespace vornic {

namespace {

const xcb_screen_t *screenNumber(xcb_connection_t *connection, int number)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (screens.rem > 1 && number-- > 0)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data : nullptr;
}

/// Whether file descriptors, and so memory, can be handed to the server.
bool isOnThisMachine(xcb_connection_t *connection)
{
    sockaddr_storage address {};
    socklen_t size = sizeof address;
    void *const where = &address;
    return getsockname(xcb_get_file_descriptor(connection), static_cast<sockaddr *>(where), &size) == 0
        && address.ss_family == AF_UNIX;
}

bool isPresent(xcb_connection_t *connection, xcb_extension_t *extension)
{
    const auto *data = xcb_get_extension_data(connection, extension);
    return data && data->present != 0;
}

int firstEvent(xcb_connection_t *connection, xcb_extension_t *extension)
{
    // Null when the server has gone since it was asked; nothing will come then.
    const auto *data = xcb_get_extension_data(connection, extension);
    return data ? data->first_event : 0;
}

/// Memory handed over as a file descriptor came with version 1.2.
bool hasSharedMemory(xcb_connection_t *connection)
{
    if (!isPresent(connection, &xcb_shm_id))
        return false;
    const auto cookie = xcb_shm_query_version(connection);
    const XcbReply<xcb_shm_query_version_reply_t> reply(
        xcb_shm_query_version_reply(connection, cookie, nullptr));
    return reply
        && std::pair(reply->major_version, reply->minor_version) >= std::pair<uint16_t, uint16_t>(1, 2);
}

/// The list of monitors came with version 1.5.
bool hasMonitors(xcb_connection_t *connection)
{
    if (!isPresent(connection, &xcb_randr_id))
        return false;
    const auto cookie = xcb_randr_query_version(connection, 1, 5);
    const XcbReply<xcb_randr_query_version_reply_t> reply(
        xcb_randr_query_version_reply(connection, cookie, nullptr));
    return reply
        && std::pair(reply->major_version, reply->minor_version) >= std::pair<uint32_t, uint32_t>(1, 5);
}

/// Cursor pictures and regions came with version 2; the server refuses all of it until it is asked.
bool hasFixes(xcb_connection_t *connection)
{
    if (!isPresent(connection, &xcb_xfixes_id))
        return false;
    const auto cookie = xcb_xfixes_query_version(connection, 4, 0);
    const XcbReply<xcb_xfixes_query_version_reply_t> reply(
        xcb_xfixes_query_version_reply(connection, cookie, nullptr));
    return reply && reply->major_version >= 2;
}

/// The name of the first monitor; empty where there is none.
std::string firstMonitorName(xcb_connection_t *connection, xcb_window_t root)
{
    const XcbReply<xcb_randr_get_monitors_reply_t> monitors(
        xcb_randr_get_monitors_reply(connection, xcb_randr_get_monitors(connection, root, 1), nullptr));
    const auto all = monitors ? xcb_randr_get_monitors_monitors_iterator(monitors.get())
                              : xcb_randr_monitor_info_iterator_t {};
    if (all.rem == 0)
        return {};
    const XcbReply<xcb_get_atom_name_reply_t> name(
        xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, all.data->name), nullptr));
    return name ? std::string(xcb_get_atom_name_name(name.get()), name->name_len) : std::string();
}

/// Whether the server is the one inside a Wayland session, whose root window shows nothing of the desktop.
/// It has an extension of that name, or, before that was made, monitors whose names begin with it.
bool isInsideWayland(xcb_connection_t *connection, xcb_window_t root)
{
    constexpr std::string_view name = "XWAYLAND";
    const auto cookie = xcb_query_extension(connection, name.size(), name.data());
    const XcbReply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(connection, cookie, nullptr));
    return (reply && reply->present != 0) || firstMonitorName(connection, root).starts_with(name);
}

bool hasDamageReports(xcb_connection_t *connection)
{
    if (!isPresent(connection, &xcb_damage_id))
        return false;
    const auto cookie = xcb_damage_query_version(connection, 1, 1);
    return XcbReply<xcb_damage_query_version_reply_t>(
               xcb_damage_query_version_reply(connection, cookie, nullptr))
        != nullptr;
}

} // namespace

X11Connection::X11Connection(Handle connection, const xcb_screen_t *screen)
    : m_connection(std::move(connection))
    , m_screen(screen)
{
}

std::unique_ptr<X11Connection> X11Connection::open(QString &whyNot)
{
    whyNot.clear();
    const QString name = qEnvironmentVariable("DISPLAY");
    if (name.isEmpty()) {
        whyNot = QStringLiteral(
            "There is no X11 display to record: the environment variable DISPLAY is not set.");
        return nullptr;
    }
    int number = 0;
    Handle handle(xcb_connect(nullptr, &number));
    const auto *screen
        = xcb_connection_has_error(handle.get()) == 0 ? screenNumber(handle.get(), number) : nullptr;
    if (!screen) {
        whyNot = QCoreApplication::translate("vornic", "Cannot connect to the X11 display \"%1\".").arg(name);
        return nullptr;
    }
    std::unique_ptr<X11Connection> connection(new X11Connection(std::move(handle), screen));
    if (!isOnThisMachine(connection->get())) {
        whyNot = QCoreApplication::translate(
                     "vornic",
                     "The X11 display \"%1\" belongs to another machine or is forwarded; "
                     "only a display of this machine can be recorded.")
                     .arg(name);
    } else {
        whyNot = connection->findExtensions();
    }
    return whyNot.isEmpty() ? std::move(connection) : nullptr;
}

QString X11Connection::findExtensions()
{
    xcb_connection_t *const connection = m_connection.get();
    QStringList missing;
    if (!hasSharedMemory(connection))
        missing += QStringLiteral("MIT-SHM 1.2");
    if (!hasMonitors(connection))
        missing += QStringLiteral("RANDR 1.5");
    if (!hasFixes(connection))
        missing += QStringLiteral("XFIXES 2");
    if (!missing.isEmpty()) {
        return QCoreApplication::translate("vornic",
                                           "The X server lacks what recording its screen needs: %1.")
            .arg(missing.join(QStringLiteral(", ")));
    }
    if (isInsideWayland(connection, root())) {
        return QCoreApplication::translate(
            "vornic",
            "This is a Wayland session, which shows its screen to no X11 program; "
            "log in to an X11 session to record.");
    }
    m_cursorEvent = firstEvent(connection, &xcb_xfixes_id) + XCB_XFIXES_CURSOR_NOTIFY;
    m_randrEvent = firstEvent(connection, &xcb_randr_id);
    if (hasDamageReports(connection))
        m_damageEvent = firstEvent(connection, &xcb_damage_id) + XCB_DAMAGE_NOTIFY;
    return {};
}

bool X11Connection::takeChange(X11Change change)
{
    const std::lock_guard lock(m_eventMutex);
    readEvents();
    return std::exchange(flag(change), false);
}

bool X11Connection::hasChange(X11Change change)
{
    const std::lock_guard lock(m_eventMutex);
    readEvents();
    return flag(change);
}

void X11Connection::readEvents()
{
    constexpr int sentByClient = 0x80;
    while (const XcbReply<xcb_generic_event_t> event { xcb_poll_for_event(m_connection.get()) })
        noteEvent(event->response_type & ~sentByClient);
}

void X11Connection::noteEvent(int type)
{
    // Other types are errors of requests without a reply; who made them finds out at the next reply.
    if (type == m_damageEvent)
        flag(X11Change::Picture) = true;
    else if (type == m_cursorEvent)
        flag(X11Change::Cursor) = true;
    else if (type == m_randrEvent || type == m_randrEvent + XCB_RANDR_NOTIFY || type == XCB_CONFIGURE_NOTIFY)
        flag(X11Change::Layout) = true;
}

} // namespace vornic
