#include "display/x11/x11_requirements.h"

#include "x11/x11_connection.h"
#include "x11/x11_nesting.h"
#include "x11/xcb_reply.h"

#include <QCoreApplication>
#include <QStringList>

#include <sys/socket.h>
#include <xcb/randr.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

#include <cstdint>
#include <utility>

namespace vornic {

namespace {

/// Whether file descriptors, and so memory, can be handed to the server.
bool isOnThisMachine(const X11Connection &connection)
{
    sockaddr_storage address {};
    socklen_t size = sizeof address;
    void *const where = &address;
    return getsockname(xcb_get_file_descriptor(connection.get()), static_cast<sockaddr *>(where), &size) == 0
        && address.ss_family == AF_UNIX;
}

/// Memory handed over as a file descriptor came with version 1.2.
bool hasSharedMemory(const X11Connection &connection)
{
    if (!connection.extension(xcb_shm_id))
        return false;
    const auto cookie = xcb_shm_query_version(connection.get());
    const XcbReply<xcb_shm_query_version_reply_t> reply(
        xcb_shm_query_version_reply(connection.get(), cookie, nullptr));
    return reply
        && std::pair(reply->major_version, reply->minor_version)
        >= std::pair<std::uint16_t, std::uint16_t>(1, 2);
}

/// The list of monitors came with version 1.5.
bool hasMonitors(const X11Connection &connection)
{
    if (!connection.extension(xcb_randr_id))
        return false;
    const auto cookie = xcb_randr_query_version(connection.get(), 1, 5);
    const XcbReply<xcb_randr_query_version_reply_t> reply(
        xcb_randr_query_version_reply(connection.get(), cookie, nullptr));
    return reply
        && std::pair(reply->major_version, reply->minor_version)
        >= std::pair<std::uint32_t, std::uint32_t>(1, 5);
}

/// Cursor pictures and regions came with version 2; the server refuses all of it until it is asked.
bool hasFixes(const X11Connection &connection)
{
    if (!connection.extension(xcb_xfixes_id))
        return false;
    const auto cookie = xcb_xfixes_query_version(connection.get(), 4, 0);
    const XcbReply<xcb_xfixes_query_version_reply_t> reply(
        xcb_xfixes_query_version_reply(connection.get(), cookie, nullptr));
    return reply && reply->major_version >= 2;
}

QString missingExtensions(const X11Connection &connection)
{
    QStringList missing;
    if (!hasSharedMemory(connection))
        missing += QStringLiteral("MIT-SHM 1.2");
    if (!hasMonitors(connection))
        missing += QStringLiteral("RANDR 1.5");
    if (!hasFixes(connection))
        missing += QStringLiteral("XFIXES 2");
    return missing.join(QStringLiteral(", "));
}

/// One sentence for the user; empty where the server can be recorded.
QString unmetRequirement(const X11Connection &connection, const QString &displayName)
{
    if (!isOnThisMachine(connection))
        return QCoreApplication::translate(
                   "vornic",
                   "The X11 display \"%1\" belongs to another machine or is forwarded; "
                   "only a display of this machine can be recorded.")
            .arg(displayName);
    if (const QString missing = missingExtensions(connection); !missing.isEmpty())
        return QCoreApplication::translate("vornic",
                                           "The X server lacks what recording its screen needs: %1.")
            .arg(missing);
    if (isInsideWayland(connection))
        return QCoreApplication::translate(
            "vornic",
            "This is a Wayland session, which shows its screen to no X11 program; "
            "log in to an X11 session to record.");
    return {};
}

} // namespace

std::unique_ptr<X11Connection> openRecordableConnection(QString &whyNot)
{
    whyNot.clear();
    const QString name = qEnvironmentVariable("DISPLAY");
    if (name.isEmpty()) {
        whyNot = QStringLiteral(
            "There is no X11 display to record: the environment variable DISPLAY is not set.");
        return nullptr;
    }
    auto connection = X11Connection::open();
    whyNot = connection
        ? unmetRequirement(*connection, name)
        : QCoreApplication::translate("vornic", "Cannot connect to the X11 display \"%1\".").arg(name);
    return whyNot.isEmpty() ? std::move(connection) : nullptr;
}

} // namespace vornic
