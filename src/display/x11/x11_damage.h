#pragma once

#include <QRect>

#include <cstdint>

namespace vornic {

class ChangedBands;
class X11Changes;
class X11Connection;

/// What the X server reports as drawn anywhere on its root window.
///
/// Made by X11Grabber and used under its lock. Where the server has no damage reports, everything counts as
/// drawn all the time.
class X11Damage
{
public:
    /// Borrows both for life.
    X11Damage(X11Connection &connection, X11Changes &changes);
    ~X11Damage();
    X11Damage(const X11Damage &) = delete;
    X11Damage &operator=(const X11Damage &) = delete;

    /// Adds the bands of \a onRoot drawn upon since the last call, and all of them when that is unknown; a
    /// picture fetched afterwards shows at least that. Asks the server only after it has told of a change.
    void takeInto(ChangedBands &bands, const QRect &onRoot);

private:
    X11Connection &m_connection;
    X11Changes &m_changes;
    std::uint32_t m_damage = 0;
    std::uint32_t m_region = 0;
};

} // namespace vornic
