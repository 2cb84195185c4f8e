#include "support/xvfb_server.h"

#include "support/wait_until.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <utility>

namespace vornic::test {

namespace {

/// The server writes the number of the display that it found free, and a line feed.
QString readDisplayName(int fileDescriptor)
{
    QByteArray number;
    char byte = 0;
    while (read(fileDescriptor, &byte, 1) == 1 && byte != '\n')
        number += byte;
    return number.isEmpty() ? QString() : QLatin1Char(':') + QString::fromLatin1(number);
}

class Observer
{
public:
    explicit Observer(const QString &displayName)
        : m_connection(xcb_connect(displayName.toLatin1().constData(), nullptr))
    {
    }
    ~Observer() { xcb_disconnect(m_connection); }
    Observer(const Observer &) = delete;
    Observer &operator=(const Observer &) = delete;

    [[nodiscard]] bool hasSelectionOwner(const QByteArray &selection) const
    {
        auto *reply = xcb_get_selection_owner_reply(
            m_connection, xcb_get_selection_owner(m_connection, atom(selection)), nullptr);
        const bool hasOwner = reply && reply->owner != XCB_NONE;
        std::free(reply);
        return hasOwner;
    }

    [[nodiscard]] bool hasRootProperty(const QByteArray &name) const
    {
        const auto cookie
            = xcb_get_property(m_connection, 0, root(), atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 1);
        auto *reply = xcb_get_property_reply(m_connection, cookie, nullptr);
        const bool isThere = reply && reply->value_len > 0;
        std::free(reply);
        return isThere;
    }

    /// Shows a window of one pixel until it has a frame around it; false when it gets none soon.
    [[nodiscard]] bool windowsAreManaged() const
    {
        const xcb_window_t window = xcb_generate_id(m_connection);
        xcb_create_window(m_connection,
                          XCB_COPY_FROM_PARENT,
                          window,
                          root(),
                          0,
                          0,
                          1,
                          1,
                          0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT,
                          0,
                          nullptr);
        xcb_map_window(m_connection, window);
        xcb_flush(m_connection);
        constexpr std::chrono::milliseconds soon(300);
        const bool hasFrame = waitUntil([&] { return parentOf(window) != root(); }, soon);
        const xcb_window_t frame = parentOf(window);
        xcb_destroy_window(m_connection, window);
        // Gone before the next window is looked for.
        waitUntil([&] { return !hasFrame || parentOf(frame) != root(); }, soon);
        return hasFrame;
    }

    [[nodiscard]] int topLevelCount() const
    {
        auto *reply = xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, root()), nullptr);
        const int count = reply ? reply->children_len : 0;
        std::free(reply);
        return count;
    }

private:
    [[nodiscard]] xcb_window_t parentOf(xcb_window_t window) const
    {
        auto *reply = xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, window), nullptr);
        const xcb_window_t parent = reply ? reply->parent : xcb_window_t { XCB_NONE };
        std::free(reply);
        return parent;
    }

    [[nodiscard]] xcb_window_t root() const
    {
        return xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    }

    [[nodiscard]] xcb_atom_t atom(const QByteArray &name) const
    {
        const auto cookie
            = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.constData());
        auto *reply = xcb_intern_atom_reply(m_connection, cookie, nullptr);
        const xcb_atom_t atom = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_NONE);
        std::free(reply);
        return atom;
    }

    xcb_connection_t *m_connection;
};

/// \a process once \a isUp; null when it ends or takes too long.
std::unique_ptr<ChildProcess> onceUp(std::unique_ptr<ChildProcess> process, const std::function<bool()> &isUp)
{
    const bool hasDecided = process && waitUntil([&] { return isUp() || !process->isRunning(); });
    return hasDecided && process->isRunning() ? std::move(process) : nullptr;
}

} // namespace

std::unique_ptr<XvfbServer> XvfbServer::start(const Options &options)
{
    int ends[2] = { -1, -1 };
    if (pipe2(ends, O_CLOEXEC) != 0)
        return nullptr;
    const QString screen
        = QStringLiteral("%1x%2x%3").arg(options.size.width()).arg(options.size.height()).arg(options.depth);
    const QStringList command { "Xvfb",      "-displayfd", QString::number(ends[1]),
                                "-nolisten", "tcp",        "-noreset",
                                "-screen",   "0",          screen };
    auto process = ChildProcess::start(command + options.arguments, {}, ends[1]);
    close(ends[1]);
    const QString name = process ? readDisplayName(ends[0]) : QString();
    close(ends[0]);
    if (name.isEmpty()) {
        std::fprintf(stderr, "Xvfb does not come up\n");
        return nullptr;
    }
    return std::unique_ptr<XvfbServer>(new XvfbServer(std::move(process), name));
}

XvfbServer::XvfbServer(std::unique_ptr<ChildProcess> process, QString displayName)
    : m_process(std::move(process))
    , m_displayName(std::move(displayName))
    , m_displayBefore(qgetenv("DISPLAY"))
{
    qputenv("DISPLAY", m_displayName.toLatin1());
}

XvfbServer::~XvfbServer()
{
    if (m_displayBefore.isEmpty())
        qunsetenv("DISPLAY");
    else
        qputenv("DISPLAY", m_displayBefore);
}

void XvfbServer::kill()
{
    m_process->stop(SIGKILL);
}

void XvfbServer::setFrozen(bool isFrozen)
{
    ::kill(m_process->pid(), isFrozen ? SIGSTOP : SIGCONT);
}

int XvfbServer::run(const QStringList &command) const
{
    const auto process = startProgram(command);
    return process ? process->wait() : -1;
}

std::unique_ptr<ChildProcess> XvfbServer::startProgram(const QStringList &command) const
{
    return ChildProcess::start(command, { "DISPLAY=" + m_displayName });
}

std::unique_ptr<ChildProcess> XvfbServer::startOpenbox() const
{
    const Observer observer(m_displayName);
    // It says that it is there some time before it looks after windows, and never looks after one that is shown
    // between.
    return onceUp(startProgram({ "openbox" }), [&] {
        return observer.hasRootProperty("_NET_SUPPORTING_WM_CHECK") && observer.windowsAreManaged();
    });
}

std::unique_ptr<ChildProcess> XvfbServer::startPicom(const QString &backend) const
{
    const Observer observer(m_displayName);
    auto process = startProgram({ "picom", "--config", "/dev/null", "--backend", backend });
    return onceUp(std::move(process), [&] { return observer.hasSelectionOwner("_NET_WM_CM_S0"); });
}

std::unique_ptr<ChildProcess> XvfbServer::startXterm(const QString &shellCommand) const
{
    const Observer observer(m_displayName);
    const int before = observer.topLevelCount();
    auto process = startProgram({ "xterm", "-geometry", "60x16+40+40", "-e", "sh", "-c", shellCommand });
    return onceUp(std::move(process), [&] { return observer.topLevelCount() > before; });
}

int XvfbServer::xdotool(const QStringList &arguments) const
{
    return run(QStringList { "xdotool" } + arguments);
}

} // namespace vornic::test
