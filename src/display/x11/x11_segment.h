#pragma once

#include <cstdint>

namespace vornic {

class SharedPixels;
class X11Connection;

/// Shared memory as the X server knows it.
///
/// Made and destroyed by X11Grabber, before its connection; the memory itself may live longer.
class X11Segment
{
public:
    /// Lets the server map \a pixels. Blocks for one exchange; without success isAttached() is false.
    X11Segment(X11Connection &connection, SharedPixels &pixels);
    ~X11Segment();
    X11Segment(const X11Segment &) = delete;
    X11Segment &operator=(const X11Segment &) = delete;

    [[nodiscard]] bool isAttached() const { return m_id != 0; }
    [[nodiscard]] std::uint32_t id() const { return m_id; }

private:
    X11Connection &m_connection;
    std::uint32_t m_id = 0;
};

} // namespace vornic
