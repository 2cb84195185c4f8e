#pragma once

#include <QByteArray>
#include <QHash>

#include <xcb/xcb.h>

#include <memory>
#include <mutex>

namespace vornic {

/// A connection to the X server, beside the one that the toolkit has.
///
/// Made by whoever talks to the server: display, overlay, idle inhibitor; used from any thread. When the
/// server is gone it stays a valid object: requests then do nothing and replies are null.
class X11Connection
{
public:
    /// Connects to $DISPLAY; null without a server, and without one that answers within two seconds.
    [[nodiscard]] static std::unique_ptr<X11Connection> open();
    /// The same, but waits for a server that is there and does not answer, however long that takes.
    [[nodiscard]] static std::unique_ptr<X11Connection> await();
    ~X11Connection();
    X11Connection(const X11Connection &) = delete;
    X11Connection &operator=(const X11Connection &) = delete;

    [[nodiscard]] xcb_connection_t *get() const { return m_handle.get(); }
    /// The screen that $DISPLAY names, and its number.
    [[nodiscard]] const xcb_screen_t &screen() const { return *m_screen; }
    [[nodiscard]] int screenNumber() const { return m_screenNumber; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] bool isAlive() const { return xcb_connection_has_error(m_handle.get()) == 0; }
    /// From here on it is as if the server were gone: whoever waits for an answer gets none, on whatever thread.
    void close() const;
    /// The same for every connection that the process has, that of the toolkit too, which ends the process then.
    static void closeAll();

    /// What the server says of \a extension; null where it has none. Blocks for one exchange at the first
    /// call for each.
    [[nodiscard]] const xcb_query_extension_reply_t *extension(xcb_extension_t &extension) const;
    /// Blocks for one exchange at the first call for each; XCB_ATOM_NONE once the server is gone.
    [[nodiscard]] xcb_atom_t atom(const QByteArray &name) const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };
    using Handle = std::unique_ptr<xcb_connection_t, Disconnect>;

    X11Connection(Handle handle, const xcb_screen_t *screen, int screenNumber);

    Handle m_handle;
    const xcb_screen_t *m_screen;
    int m_screenNumber;
    mutable std::mutex m_atomMutex;
    mutable QHash<QByteArray, xcb_atom_t> m_atoms; ///< those that were asked for
};

} // namespace vornic
