#include "wayland/layer_surface.h"

#include "wayland/wayland_connection.h"

#include <utility>

namespace vornic {

namespace {

constexpr std::uint32_t compositorVersion = 4; // damage in pixels of the buffer
constexpr std::uint32_t shellVersion = 4;
constexpr std::uint32_t upperLeft = ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT;
constexpr std::uint32_t allEdges
    = upperLeft | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
constexpr std::int32_t beneathNoPanel = -1; // a panel that asks for room does not push it aside

} // namespace

const zwlr_layer_surface_v1_listener LayerSurface::listener {
    [](void *data,
       zwlr_layer_surface_v1 *role,
       std::uint32_t serial,
       std::uint32_t width,
       std::uint32_t height) {
        auto &surface = *static_cast<LayerSurface *>(data);
        zwlr_layer_surface_v1_ack_configure(role, serial);
        surface.m_configuredSize = QSize(static_cast<int>(width), static_cast<int>(height));
        if (surface.m_configured)
            surface.m_configured();
    },
    [](void *data, zwlr_layer_surface_v1 * /*role*/) {
        const auto closed = static_cast<LayerSurface *>(data)->m_closed; // it may end the surface
        if (closed)
            closed();
    },
};

std::unique_ptr<LayerSurface>
LayerSurface::create(WaylandConnection &connection, wl_output *output, QSize size)
{
    const auto shell = connection.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, shellVersion);
    auto compositor = connection.bind<wl_compositor>(wl_compositor_interface, compositorVersion);
    if (!shell || !compositor)
        return nullptr;
    std::unique_ptr<LayerSurface> surface(new LayerSurface(std::move(compositor), *shell, output));
    zwlr_layer_surface_v1 *const role = surface->m_role.get();
    if (!size.isEmpty())
        zwlr_layer_surface_v1_set_size(
            role, static_cast<std::uint32_t>(size.width()), static_cast<std::uint32_t>(size.height()));
    zwlr_layer_surface_v1_set_anchor(role, size.isEmpty() ? allEdges : upperLeft);
    zwlr_layer_surface_v1_set_exclusive_zone(role, beneathNoPanel);
    surface->setInputRegion({});
    surface->commit();
    return surface;
}

LayerSurface::LayerSurface(WaylandPtr<wl_compositor> compositor,
                           zwlr_layer_shell_v1 &shell,
                           wl_output *output)
    : m_compositor(std::move(compositor))
    , m_surface(wl_compositor_create_surface(m_compositor.get()))
    , m_role(zwlr_layer_shell_v1_get_layer_surface(
          &shell, m_surface.get(), output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "vornic"))
{
    zwlr_layer_surface_v1_add_listener(m_role.get(), &listener, this);
}

LayerSurface::~LayerSurface() = default;

void LayerSurface::setInputRegion(const QRegion &region)
{
    const WaylandPtr<wl_region> shape(wl_compositor_create_region(m_compositor.get()));
    for (const QRect &part : region)
        wl_region_add(shape.get(), part.x(), part.y(), part.width(), part.height());
    wl_surface_set_input_region(m_surface.get(), shape.get());
}

} // namespace vornic
