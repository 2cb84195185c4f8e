#pragma once

#include <QPoint>

#include <memory>
#include <mutex>

namespace vornic {

struct CursorShape;
class X11Changes;
class X11Connection;

/// The pointer of the X server: where it is and which shape it has.
///
/// Made by X11Display; used from any thread.
class X11Pointer
{
public:
    /// Borrows both for life.
    X11Pointer(X11Connection &connection, X11Changes &changes);

    /// The hot spot from the root's top left, y down; the last one known once the server is gone. Blocks for
    /// one exchange with the server.
    [[nodiscard]] QPoint positionOnRoot();
    /// Null for a shape of which nothing can be seen. Asks the server only after it has told of a change.
    [[nodiscard]] std::shared_ptr<const CursorShape> shape();

private:
    void watchShapes();
    [[nodiscard]] std::shared_ptr<const CursorShape> readShape();

    X11Connection &m_connection;
    X11Changes &m_changes;
    std::mutex m_mutex;
    QPoint m_position;
    bool m_isWatching = false;
    std::shared_ptr<const CursorShape> m_shape;
};

} // namespace vornic
