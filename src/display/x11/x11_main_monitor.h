#pragma once

#include <QRect>

#include <cstdint>
#include <mutex>

namespace vornic {

class X11Changes;
class X11Connection;

/// Where the main display stands on the X server's root window.
struct X11Layout {
    std::uint32_t id = 0;      ///< 0: there is no display
    QRect rectangle;           ///< device pixels from the root's top left, y down; always inside the root
    std::uint64_t version = 0; ///< another one whenever the server has told of a change
};

/// The main display: the primary monitor, or the first where none is primary, or the whole root window
/// where the server lists none.
///
/// Made by X11Display; used from any thread. Asks the server only after it has told of a change.
class X11MainMonitor
{
public:
    /// Borrows both for life.
    X11MainMonitor(X11Connection &connection, X11Changes &changes);

    /// Now; without a display once the server is gone.
    [[nodiscard]] X11Layout layout();

private:
    void refresh();

    X11Connection &m_connection;
    X11Changes &m_changes;
    std::mutex m_mutex;
    X11Layout m_layout;
};

} // namespace vornic
