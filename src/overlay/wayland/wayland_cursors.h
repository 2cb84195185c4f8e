#pragma once

#include "wayland/wayland_handle.h"

#include <Qt>

#include <cstdint>
#include <memory>

struct wl_cursor;
struct wl_cursor_theme;

namespace vornic {

class WaylandConnection;

/// The pointer's shapes over a surface that the toolkit does not know, from the theme of the desktop.
///
/// Made by WaylandMouse; main thread only.
class WaylandCursors
{
public:
    explicit WaylandCursors(const WaylandConnection &connection);
    ~WaylandCursors();
    WaylandCursors(const WaylandCursors &) = delete;
    WaylandCursors &operator=(const WaylandCursors &) = delete;

    /// The shape that \a pointer has from now on over the surface that it entered with \a serial.
    void show(wl_pointer &pointer, std::uint32_t serial, Qt::CursorShape shape);

private:
    struct Free {
        void operator()(wl_cursor_theme *theme) const;
    };

    [[nodiscard]] wl_cursor *cursor(Qt::CursorShape shape) const;

    WaylandPtr<wl_shm> m_shm;
    WaylandPtr<wl_compositor> m_compositor;
    std::unique_ptr<wl_cursor_theme, Free> m_theme; ///< null where there is none
    WaylandPtr<wl_surface> m_surface;
};

} // namespace vornic
