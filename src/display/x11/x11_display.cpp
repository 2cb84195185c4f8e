#include "display/x11/x11_display.h"

#include "display/bitmap_image.h"
#include "display/display_rectangle.h"
#include "display/x11/x11_changes.h"
#include "display/x11/x11_frozen_server.h"
#include "display/x11/x11_grabber.h"
#include "display/x11/x11_main_monitor.h"
#include "display/x11/x11_patience.h"
#include "display/x11/x11_pointer.h"
#include "display/x11/x11_requirements.h"
#include "x11/x11_connection.h"

#include <QCoreApplication>

#include <functional>
#include <mutex>
#include <utility>

namespace vornic {

/// A connection, and all that speaks over it.
struct X11Display::Server {
    Server(std::unique_ptr<X11Connection> opened, X11PixelFormat format, std::function<void()> frozen)
        : connection(std::move(opened))
        , changes(*connection)
        , monitor(*connection, changes)
        , grabber(*connection, changes, std::move(format))
        , pointer(*connection, changes)
        , patience(*connection, std::move(frozen))
    {
    }

    [[nodiscard]] X11Layout layout();
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &rectangle);

    std::unique_ptr<X11Connection> connection;
    X11Changes changes;
    X11MainMonitor monitor;
    X11Grabber grabber;
    X11Pointer pointer;
    X11Patience patience;
};

/// The server that is asked: another one once a frozen one answers again.
///
/// Made by X11Display, and kept by the thread that connects anew.
class X11Display::Link : public std::enable_shared_from_this<X11Display::Link>
{
public:
    /// False with one sentence for the user.
    [[nodiscard]] bool connect(QString &whyNot);
    [[nodiscard]] std::shared_ptr<Server> server() const;

private:
    mutable std::mutex m_mutex;
    std::shared_ptr<Server> m_server; ///< guarded
};

bool X11Display::Link::connect(QString &whyNot)
{
    auto connection = openRecordableConnection(whyNot);
    if (!connection)
        return false;
    auto format = X11PixelFormat::ofScreen(*xcb_get_setup(connection->get()), connection->screen(), whyNot);
    if (!format)
        return false;
    const auto reconnect = [link = weak_from_this()] {
        static_cast<void>(X11Connection::await());
        QString whyNotAgain;
        if (const std::shared_ptr<Link> kept = link.lock())
            static_cast<void>(kept->connect(whyNotAgain));
    };
    auto server = std::make_shared<Server>(
        std::move(connection), std::move(*format), [reconnect] { awaitFrozenServer(reconnect); });
    // What a server says it can do and what it lets this program do are known apart only by trying.
    if (!server->grab(QRect(0, 0, 1, 1))) {
        whyNot
            = QCoreApplication::translate("vornic", "The X server refuses to give pictures of its screen.");
        return false;
    }
    const std::lock_guard lock(m_mutex);
    std::swap(m_server, server);
    return true;
}

std::shared_ptr<X11Display::Server> X11Display::Link::server() const
{
    const std::lock_guard lock(m_mutex);
    return m_server;
}

bool X11Display::isForThisSession()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY");
}

std::unique_ptr<DisplayBackend> X11Display::create(QString &whyNot)
{
    auto link = std::make_shared<Link>();
    return link->connect(whyNot) ? std::unique_ptr<DisplayBackend>(new X11Display(std::move(link))) : nullptr;
}

X11Display::X11Display(std::shared_ptr<Link> link)
    : m_link(std::move(link))
{
}

X11Display::~X11Display() = default;

X11Layout X11Display::Server::layout()
{
    const X11Patience::Waiting waiting(patience);
    return monitor.layout();
}

std::shared_ptr<const BitmapImage> X11Display::Server::grab(const QRect &rectangle)
{
    const X11Patience::Waiting waiting(patience);
    X11Layout layout = monitor.layout();
    while (true) {
        const QRect visible = partOnDisplay(rectangle, layout.rectangle.size());
        auto image = visible.isEmpty()
            ? nullptr
            : grabber.grab(visible.translated(layout.rectangle.topLeft()), layout.version);
        if (image)
            return image;
        // A display that has shrunk since refuses what is no longer there, and has told of that before.
        const X11Layout now = monitor.layout();
        if (now.version == layout.version)
            return nullptr;
        layout = now;
    }
}

std::uint32_t X11Display::mainDisplayId() const
{
    return m_link->server()->layout().id;
}

QSize X11Display::mainDisplaySize() const
{
    return m_link->server()->layout().rectangle.size();
}

QPoint X11Display::mainDisplayOrigin() const
{
    return m_link->server()->layout().rectangle.topLeft();
}

std::shared_ptr<const BitmapImage> X11Display::grab(const QRect &rectangle)
{
    return m_link->server()->grab(rectangle);
}

QPoint X11Display::pointerPosition()
{
    const std::shared_ptr<Server> server = m_link->server();
    const X11Patience::Waiting waiting(server->patience);
    return server->pointer.positionOnRoot() - server->monitor.layout().rectangle.topLeft();
}

std::shared_ptr<const CursorShape> X11Display::cursorShape()
{
    const std::shared_ptr<Server> server = m_link->server();
    const X11Patience::Waiting waiting(server->patience);
    return server->pointer.shape();
}

} // namespace vornic
