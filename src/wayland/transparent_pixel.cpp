#include "wayland/transparent_pixel.h"

#include "base/thread.h"
#include "wayland/layer_surface.h"
#include "wayland/shm_buffer.h"
#include "wayland/wayland_connection.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <memory>
#include <utility>
#include <vector>

namespace vornic {

namespace {

/// On one monitor.
struct Dot {
    std::unique_ptr<ShmBuffer> buffer;
    std::unique_ptr<LayerSurface> surface;
};

/// One for each monitor that lets itself be drawn on.
std::vector<Dot> dotsOn(WaylandConnection &connection)
{
    std::vector<Dot> dots;
    const QSize onePixel(1, 1);
    const auto shm = connection.bind<wl_shm>(wl_shm_interface, 1);
    if (!shm)
        return dots;
    for (const WaylandOutput &output : connection.outputs().all()) {
        Dot dot { ShmBuffer::create(*shm, onePixel),
                  LayerSurface::create(connection, connection.outputs().handleOf(output.id), onePixel) };
        if (dot.buffer && dot.surface)
            dots.push_back(std::move(dot));
    }
    return dots;
}

/// Whether any is shown; a monitor may just have gone.
bool mapped(const std::vector<Dot> &dots)
{
    bool isAnyMapped = false;
    for (const Dot &dot : dots) {
        if (!dot.surface->isConfigured())
            continue;
        wl_surface_attach(dot.surface->get(), dot.buffer->handOver(), 0, 0);
        wl_surface_damage_buffer(dot.surface->get(), 0, 0, 1, 1);
        dot.surface->commit();
        isAnyMapped = true;
    }
    return isAnyMapped;
}

} // namespace

TransparentPixel::TransparentPixel(std::chrono::milliseconds time)
    : m_wakeFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    // A system without another thread goes without the pixel.
    if (!runGuarded("the transparent pixel",
                    [&] { m_thread = startThread("vornic pixel", [this, time] { run(time); }); }))
        m_state = State::Over;
}

TransparentPixel::~TransparentPixel()
{
    eventfd_write(m_wakeFd, 1);
    if (m_thread.joinable())
        m_thread.join();
    close(m_wakeFd);
}

void TransparentPixel::run(std::chrono::milliseconds time)
{
    if (const auto connection = WaylandConnection::open(m_wakeFd))
        show(*connection, time);
    m_state = State::Over;
}

void TransparentPixel::show(WaylandConnection &connection, std::chrono::milliseconds time)
{
    const std::vector<Dot> dots = dotsOn(connection);
    if (dots.empty() || !connection.roundTrip() || !mapped(dots) || !connection.roundTrip())
        return;
    m_state = State::Shown;
    pollfd wake { m_wakeFd, POLLIN, 0 };
    poll(&wake, 1, static_cast<int>(time.count()));
}

} // namespace vornic
