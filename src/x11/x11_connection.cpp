#include "x11/x11_connection.h"

#include "base/thread.h"
#include "x11/x11_windows.h"
#include "x11/xcb_reply.h"

#include <QSet>

#include <sys/socket.h>

#include <chrono>
#include <cstdint>
#include <semaphore>
#include <system_error>
#include <utility>

namespace vornic {

namespace {

constexpr std::chrono::seconds maxWait { 2 };

const xcb_screen_t *screenWithNumber(xcb_connection_t *connection, int number)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (screens.rem > 1 && number-- > 0)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data : nullptr;
}

/// All that there are; never destroyed, as threads may still close them while the process ends.
struct Connections {
    std::mutex mutex;
    QSet<const X11Connection *> all;
};

Connections &connections()
{
    static auto *const made = new Connections;
    return *made;
}

/// Those who read from it find its end; the descriptor stays, so that nobody else can get its number.
void endExchange(xcb_connection_t *connection)
{
    ::shutdown(xcb_get_file_descriptor(connection), SHUT_RDWR);
}

} // namespace

/// By a thread that goes on waiting when nobody does any more. Nothing else ends the wait: while the server has not
/// answered there is no connection yet that could be closed.
std::unique_ptr<X11Connection> X11Connection::open()
{
    struct Attempt {
        std::unique_ptr<X11Connection> connection;
        std::binary_semaphore hasEnded { 0 };
    };
    const auto attempt = std::make_shared<Attempt>();
    try {
        startThread("vornic connect", [attempt] {
            attempt->connection = await();
            attempt->hasEnded.release();
        }).detach();
    } catch (const std::system_error &) { // no thread is to be had
        return await();
    }
    return attempt->hasEnded.try_acquire_for(maxWait) ? std::move(attempt->connection) : nullptr;
}

std::unique_ptr<X11Connection> X11Connection::await()
{
    int number = 0;
    Handle handle(xcb_connect(nullptr, &number));
    if (xcb_connection_has_error(handle.get()) != 0)
        return nullptr;
    const xcb_screen_t *screen = screenWithNumber(handle.get(), number);
    return screen ? std::unique_ptr<X11Connection>(new X11Connection(std::move(handle), screen, number))
                  : nullptr;
}

X11Connection::X11Connection(Handle handle, const xcb_screen_t *screen, int screenNumber)
    : m_handle(std::move(handle))
    , m_screen(screen)
    , m_screenNumber(screenNumber)
{
    const std::lock_guard lock(connections().mutex);
    connections().all.insert(this);
}

X11Connection::~X11Connection()
{
    const std::lock_guard lock(connections().mutex);
    connections().all.remove(this);
}

void X11Connection::close() const
{
    endExchange(get());
}

void X11Connection::closeAll()
{
    const std::lock_guard lock(connections().mutex);
    for (const X11Connection *connection : std::as_const(connections().all))
        connection->close();
    if (xcb_connection_t *const toolkits = toolkitConnection())
        endExchange(toolkits);
}

const xcb_query_extension_reply_t *X11Connection::extension(xcb_extension_t &extension) const
{
    const auto *data = xcb_get_extension_data(m_handle.get(), &extension);
    return data && data->present != 0 ? data : nullptr;
}

xcb_atom_t X11Connection::atom(const QByteArray &name) const
{
    {
        const std::lock_guard lock(m_atomMutex);
        if (const auto known = m_atoms.constFind(name); known != m_atoms.constEnd())
            return *known;
    }
    const auto cookie = xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(get(), cookie, nullptr));
    if (!reply)
        return XCB_ATOM_NONE;
    const std::lock_guard lock(m_atomMutex);
    m_atoms.insert(name, reply->atom);
    return reply->atom;
}

} // namespace vornic
