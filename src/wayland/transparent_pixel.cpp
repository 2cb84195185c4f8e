#include "wayland/transparent_pixel.h"

#include "wayland/layer_surface.h"
#include "wayland/shm_buffer.h"
#include "wayland/wayland_connection.h"

#include <algorithm>
#include <vector>

namespace vornic {

namespace {

wl_output *outputNamed(WaylandConnection &connection, const QString &name)
{
    const std::vector<WaylandOutput> outputs = connection.outputs().all();
    const auto found = std::ranges::find(outputs, name, &WaylandOutput::name);
    return found == outputs.end() ? nullptr : connection.outputs().handleOf(found->id);
}

} // namespace

std::unique_ptr<TransparentPixel> TransparentPixel::show(const QString &output)
{
    std::unique_ptr<TransparentPixel> pixel(new TransparentPixel);
    return pixel->map(output) ? std::move(pixel) : nullptr;
}

TransparentPixel::TransparentPixel() = default;
TransparentPixel::~TransparentPixel() = default;

bool TransparentPixel::map(const QString &output)
{
    const QSize onePixel(1, 1);
    m_connection = WaylandConnection::open();
    const auto shm = m_connection ? m_connection->bind<wl_shm>(wl_shm_interface, 1) : nullptr;
    if (!shm)
        return false;
    m_buffer = ShmBuffer::create(*shm, onePixel);
    m_surface = LayerSurface::create(*m_connection, outputNamed(*m_connection, output), onePixel);
    if (!m_buffer || !m_surface || !m_connection->roundTrip() || !m_surface->isConfigured())
        return false;
    wl_surface_attach(m_surface->get(), m_buffer->handOver(), 0, 0);
    wl_surface_damage_buffer(m_surface->get(), 0, 0, 1, 1);
    m_surface->commit();
    return m_connection->roundTrip();
}

} // namespace vornic
