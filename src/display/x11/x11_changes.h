#pragma once

#include <array>
#include <cstddef>
#include <mutex>

namespace vornic {

class X11Connection;

/// What events of the server tell: that something is no longer as it was read last.
enum class X11Change : unsigned char { Picture, Cursor, Layout };

/// Remembers which changes the server has told of since somebody read anew what has changed.
///
/// Made by X11Display, whose connection nobody else reads events from; used from any thread. Nothing is told
/// of what nobody has asked the server to report.
class X11Changes
{
public:
    /// Borrows \a connection for life. Blocks for some exchanges with the server.
    explicit X11Changes(X11Connection &connection);

    /// Whether the server can report what is drawn.
    [[nodiscard]] bool hasDamage() const { return m_damageEvent != noEvent; }
    /// True when \a change has been told since the last time this was true, and at first. Reads what the
    /// server has sent, asks it nothing and does not block.
    [[nodiscard]] bool take(X11Change change);
    /// The same, without taking it.
    [[nodiscard]] bool isTold(X11Change change);

private:
    static constexpr int noEvent = -1;

    void readEvents();
    void noteEvent(int kind);
    [[nodiscard]] bool &flag(X11Change change) { return m_isTold[static_cast<std::size_t>(change)]; }

    X11Connection &m_connection;
    int m_damageEvent = noEvent;
    int m_cursorEvent = noEvent;
    int m_screenEvent = noEvent;
    int m_monitorEvent = noEvent;
    std::mutex m_mutex;
    std::array<bool, 3> m_isTold { true, true, true };
};

} // namespace vornic
