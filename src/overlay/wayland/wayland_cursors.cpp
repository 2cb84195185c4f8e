#include "overlay/wayland/wayland_cursors.h"

#include "wayland/wayland_connection.h"

#include <QByteArrayList>

#include <wayland-cursor.h>

#include <map>

namespace vornic {

namespace {

constexpr int usualSize = 24;

/// In the desktop's size of pointers, as programs are told it.
int themeSize()
{
    const int size = qEnvironmentVariableIntValue("XCURSOR_SIZE");
    return size > 0 ? size : usualSize;
}

/// What themes call a shape, the best first; the last of each is in every theme.
QByteArrayList namesOf(Qt::CursorShape shape)
{
    static const std::map<Qt::CursorShape, QByteArrayList> names {
        { Qt::SizeFDiagCursor, { "nwse-resize", "size_fdiag", "bottom_right_corner" } },
        { Qt::SizeBDiagCursor, { "nesw-resize", "size_bdiag", "bottom_left_corner" } },
        { Qt::SizeVerCursor, { "ns-resize", "size_ver", "bottom_side" } },
        { Qt::SizeHorCursor, { "ew-resize", "size_hor", "right_side" } },
        { Qt::SizeAllCursor, { "all-scroll", "size_all", "fleur", "grabbing" } },
        { Qt::OpenHandCursor, { "grab", "openhand", "hand1" } },
    };
    const auto found = names.find(shape);
    return found == names.end() ? QByteArrayList { "default", "left_ptr" } : found->second;
}

} // namespace

void WaylandCursors::Free::operator()(wl_cursor_theme *theme) const
{
    wl_cursor_theme_destroy(theme);
}

WaylandCursors::WaylandCursors(const WaylandConnection &connection)
    : m_shm(connection.bind<wl_shm>(wl_shm_interface, 1))
    , m_compositor(connection.bind<wl_compositor>(wl_compositor_interface, 1))
{
    const QByteArray theme = qgetenv("XCURSOR_THEME");
    if (m_shm)
        m_theme.reset(
            wl_cursor_theme_load(theme.isEmpty() ? nullptr : theme.constData(), themeSize(), m_shm.get()));
    if (m_compositor)
        m_surface.reset(wl_compositor_create_surface(m_compositor.get()));
}

WaylandCursors::~WaylandCursors() = default;

wl_cursor *WaylandCursors::cursor(Qt::CursorShape shape) const
{
    if (!m_theme)
        return nullptr;
    const QByteArrayList names = namesOf(shape);
    for (const QByteArray &name : names) {
        if (wl_cursor *const found = wl_cursor_theme_get_cursor(m_theme.get(), name.constData()))
            return found;
    }
    return nullptr;
}

void WaylandCursors::show(wl_pointer &pointer, std::uint32_t serial, Qt::CursorShape shape)
{
    const wl_cursor *const found = cursor(shape);
    if (!found || !m_surface)
        return;
    wl_cursor_image *const image = found->images[0];
    wl_surface_attach(m_surface.get(), wl_cursor_image_get_buffer(image), 0, 0);
    wl_surface_damage(m_surface.get(),
                      0,
                      0,
                      static_cast<std::int32_t>(image->width),
                      static_cast<std::int32_t>(image->height));
    wl_surface_commit(m_surface.get());
    wl_pointer_set_cursor(&pointer,
                          serial,
                          m_surface.get(),
                          static_cast<std::int32_t>(image->hotspot_x),
                          static_cast<std::int32_t>(image->hotspot_y));
}

} // namespace vornic
