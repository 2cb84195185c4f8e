#include "support/wayland_painter.h"

#include "support/wait_until.h"
#include "wayland/layer_surface.h"
#include "wayland/shm_buffer.h"
#include "wayland/wayland_connection.h"

#include <QDeadlineTimer>
#include <QPainter>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace vornic::test {

struct WaylandPainter::Parts {
    [[nodiscard]] bool open();
    [[nodiscard]] ShmBuffer *freeBuffer(QSize size);

    std::unique_ptr<WaylandConnection> connection;
    WaylandPtr<wl_shm> memory;
    WaylandPtr<wp_viewporter> viewporter;
    std::unique_ptr<LayerSurface> surface;
    WaylandPtr<wp_viewport> viewport;
    std::vector<std::unique_ptr<ShmBuffer>> buffers;
};

bool WaylandPainter::Parts::open()
{
    connection = WaylandConnection::open();
    if (!connection)
        return false;
    memory = connection->bind<wl_shm>(wl_shm_interface, 1);
    viewporter = connection->bind<wp_viewporter>(wp_viewporter_interface, 1);
    surface = LayerSurface::create(*connection, nullptr, {});
    if (!memory || !viewporter || !surface)
        return false;
    viewport.reset(wp_viewporter_get_viewport(viewporter.get(), surface->get()));
    surface->commit();
    return waitUntil([this] { return !connection->roundTrip() || surface->isConfigured(); })
        && surface->isConfigured();
}

ShmBuffer *WaylandPainter::Parts::freeBuffer(QSize size)
{
    std::erase_if(buffers, [&](const auto &buffer) { return buffer->picture().size() != size; });
    const auto unread = std::ranges::find_if(buffers, [](const auto &buffer) { return !buffer->isRead(); });
    if (unread != buffers.end())
        return unread->get();
    auto buffer = ShmBuffer::create(*memory, size);
    return buffer ? buffers.emplace_back(std::move(buffer)).get() : nullptr;
}

std::unique_ptr<WaylandPainter> WaylandPainter::start()
{
    auto parts = std::make_unique<Parts>();
    if (!parts->open())
        return nullptr;
    return std::unique_ptr<WaylandPainter>(new WaylandPainter(std::move(parts)));
}

WaylandPainter::WaylandPainter(std::unique_ptr<Parts> parts)
    : m_parts(std::move(parts))
{
}

WaylandPainter::~WaylandPainter() = default;

QSize WaylandPainter::pixels() const
{
    const auto output = mainOutput(m_parts->connection->outputs().all());
    return output ? output->pixels() : QSize();
}

bool WaylandPainter::show(const QImage &picture)
{
    ShmBuffer *const buffer = m_parts->freeBuffer(picture.size());
    if (!buffer)
        return false;
    QPainter(&buffer->picture()).drawImage(0, 0, picture);
    wl_surface *const surface = m_parts->surface->get();
    const QSize logical = m_parts->surface->configuredSize();
    wp_viewport_set_destination(m_parts->viewport.get(), logical.width(), logical.height());
    wl_surface_attach(surface, buffer->handOver(), 0, 0);
    wl_surface_damage_buffer(surface, 0, 0, picture.width(), picture.height());
    m_parts->surface->commit();
    return m_parts->connection->roundTrip();
}

bool WaylandPainter::draw(const QImage &picture)
{
    static constexpr wl_callback_listener listener { [](void *data, wl_callback *, std::uint32_t) {
        *static_cast<bool *>(data) = true;
    } };
    bool isDrawn = false;
    const WaylandPtr<wl_callback> drawn(wl_surface_frame(m_parts->surface->get()));
    wl_callback_add_listener(drawn.get(), &listener, &isDrawn);
    if (!show(picture))
        return false;
    const QDeadlineTimer deadline(std::chrono::seconds(20));
    while (!isDrawn && !deadline.hasExpired()) {
        if (!m_parts->connection->dispatch(std::chrono::milliseconds(100)))
            return false;
    }
    return isDrawn;
}

} // namespace vornic::test
