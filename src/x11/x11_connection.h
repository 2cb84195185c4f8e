#pragma once

#include <QString>

#include <xcb/xcb.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <mutex>

namespace vornic {

struct XcbFree {
    void operator()(void *reply) const { std::free(reply); }
};

/// A reply, event or error of the X server.
template<typename T>
using XcbReply = std::unique_ptr<T, XcbFree>;

/// What events of the server tell: that something is no longer as it was read last.
enum class X11Change : unsigned char { Picture, Cursor, Layout };

/// A connection to the X server with the extensions that grabbing needs.
///
/// Made by X11Display; used from any thread. A connection that the server has closed stays a valid object:
/// requests then do nothing and replies are null.
class X11Connection
{
public:
    /// Connects to $DISPLAY; null with one sentence for the user.
    [[nodiscard]] static std::unique_ptr<X11Connection> open(QString &whyNot);
    ~X11Connection() = default;
    X11Connection(const X11Connection &) = delete;
    X11Connection &operator=(const X11Connection &) = delete;

    [[nodiscard]] xcb_connection_t *get() const { return m_connection.get(); }
    [[nodiscard]] const xcb_screen_t &screen() const { return *m_screen; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] bool isAlive() const { return xcb_connection_has_error(m_connection.get()) == 0; }
    [[nodiscard]] bool hasDamage() const { return m_damageEvent != noEvent; }

    /// True when \a change has been told since the last time this was true, and at first. Reads what the
    /// server has sent, asks it nothing and does not block.
    [[nodiscard]] bool takeChange(X11Change change);
    /// The same, without taking it.
    [[nodiscard]] bool hasChange(X11Change change);

private:
    struct Disconnect {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };
    using Handle = std::unique_ptr<xcb_connection_t, Disconnect>;
    static constexpr int noEvent = -1;

    X11Connection(Handle connection, const xcb_screen_t *screen);
    [[nodiscard]] QString findExtensions();
    void readEvents();
    void noteEvent(int type);
    [[nodiscard]] bool &flag(X11Change change) { return m_changes[static_cast<std::size_t>(change)]; }

    Handle m_connection;
    const xcb_screen_t *m_screen;
    int m_damageEvent = noEvent;
    int m_cursorEvent = noEvent;
    int m_randrEvent = noEvent;

    std::mutex m_eventMutex;
    std::array<bool, 3> m_changes { true, true, true };
};

} // namespace vornic
