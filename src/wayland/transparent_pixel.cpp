#include "wayland/transparent_pixel.h"

#include "base/thread.h"
#include "wayland/layer_surface.h"
#include "wayland/shm_buffer.h"
#include "wayland/wayland_connection.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
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

TransparentPixel::TransparentPixel(std::chrono::milliseconds time, const QString &output)
    : m_wakeFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    // A system without another thread goes without the pixel.
    if (!runGuarded("the transparent pixel", [&] {
            m_thread = startThread("vornic pixel", [this, time, output] { run(time, output); });
        }))
        m_state = State::Over;
}

TransparentPixel::~TransparentPixel()
{
    eventfd_write(m_wakeFd, 1);
    if (m_thread.joinable())
        m_thread.join();
    close(m_wakeFd);
}

void TransparentPixel::run(std::chrono::milliseconds time, const QString &output)
{
    if (const auto connection = WaylandConnection::open(m_wakeFd))
        show(*connection, time, output);
    m_state = State::Over;
}

void TransparentPixel::show(WaylandConnection &connection,
                            std::chrono::milliseconds time,
                            const QString &output)
{
    const QSize onePixel(1, 1);
    const auto shm = connection.bind<wl_shm>(wl_shm_interface, 1);
    const auto buffer = shm ? ShmBuffer::create(*shm, onePixel) : nullptr;
    const auto surface
        = buffer ? LayerSurface::create(connection, outputNamed(connection, output), onePixel) : nullptr;
    if (!surface || !connection.roundTrip() || !surface->isConfigured())
        return;
    wl_surface_attach(surface->get(), buffer->handOver(), 0, 0);
    wl_surface_damage_buffer(surface->get(), 0, 0, 1, 1);
    surface->commit();
    if (!connection.roundTrip())
        return;
    m_state = State::Shown;
    pollfd wake { m_wakeFd, POLLIN, 0 };
    poll(&wake, 1, static_cast<int>(time.count()));
}

} // namespace vornic
