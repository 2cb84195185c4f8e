#include "overlay/wayland/overlay_surface.h"

#include "wayland/wayland_connection.h"

#include <QPainter>

#include <algorithm>
#include <chrono>
#include <utility>

namespace vornic {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds maxDrawTime(100);

} // namespace

const wl_callback_listener OverlaySurface::frameListener {
    [](void *data, wl_callback * /*callback*/, std::uint32_t /*timeMs*/) {
        auto &surface = *static_cast<OverlaySurface *>(data);
        surface.m_frame.reset();
        surface.commitSoon();
    },
};

std::unique_ptr<OverlaySurface>
OverlaySurface::create(WaylandConnection &connection, const WaylandOutput &output, Paint paint)
{
    wl_output *const handle = connection.outputs().handleOf(output.id);
    if (!handle || output.pixels().isEmpty())
        return nullptr;
    std::unique_ptr<OverlaySurface> surface(new OverlaySurface(connection, output, std::move(paint)));
    return surface->makePages() && surface->makeSurface(handle) ? std::move(surface) : nullptr;
}

OverlaySurface::OverlaySurface(WaylandConnection &connection, const WaylandOutput &output, Paint paint)
    : m_connection(connection)
    , m_size(output.pixels())
    , m_grid(output.factor())
    , m_paint(std::move(paint))
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(0);
    m_soon.callOnTimeout([this] {
        if (!m_frame)
            commit();
    });
}

OverlaySurface::~OverlaySurface() = default;

bool OverlaySurface::makePages()
{
    const auto shm = m_connection.bind<wl_shm>(wl_shm_interface, 1);
    if (!shm)
        return false;
    for (Page &page : m_pages) {
        page.buffer = ShmBuffer::create(*shm, m_size);
        if (!page.buffer)
            return false;
        page.stale = QRect(QPoint(), m_size);
        page.buffer->onReturned([this] { commitSoon(); });
    }
    return true;
}

bool OverlaySurface::makeSurface(wl_output *handle)
{
    const auto viewporter = m_connection.bind<wp_viewporter>(wp_viewporter_interface, 1);
    m_layer = viewporter ? LayerSurface::create(m_connection, handle, {}) : nullptr;
    if (!m_layer)
        return false;
    m_viewport.reset(wp_viewporter_get_viewport(viewporter.get(), m_layer->get()));
    m_layer->onConfigured([this] {
        const QSize logical = m_layer->configuredSize();
        wp_viewport_set_destination(m_viewport.get(), logical.width(), logical.height());
        m_changed = QRect(QPoint(), m_size);
        m_hasNews = true;
        commitSoon();
    });
    return true;
}

void OverlaySurface::repaint(const QRegion &pixels)
{
    const QRegion onSurface = pixels & QRect(QPoint(), m_size);
    if (onSurface.isEmpty())
        return;
    m_changed += onSurface;
    for (Page &page : m_pages)
        page.stale += onSurface;
    m_hasNews = true;
    commitSoon();
}

void OverlaySurface::setInputArea(const QRegion &pixels)
{
    if (std::exchange(m_inputArea, pixels) == pixels)
        return;
    m_layer->setInputRegion(m_grid.logicalInside(pixels & QRect(QPoint(), m_size)));
    m_hasNews = true;
    commitSoon();
}

void OverlaySurface::commitSoon()
{
    if (m_hasNews)
        m_soon.start();
}

void OverlaySurface::commit()
{
    if (!m_hasNews || !m_layer->isConfigured() || !showPage())
        return;
    m_frame.reset(wl_surface_frame(m_layer->get()));
    wl_callback_add_listener(m_frame.get(), &frameListener, this);
    m_layer->commit();
    m_hasNews = false;
}

/// False while the compositor reads both pages; it gives one back soon.
bool OverlaySurface::showPage()
{
    if (m_changed.isEmpty())
        return true;
    const auto page = std::ranges::find_if(m_pages, [](const Page &each) { return !each.buffer->isRead(); });
    if (page == m_pages.end())
        return false;
    paintPage(*page);
    wl_surface_attach(m_layer->get(), page->buffer->handOver(), 0, 0);
    for (const QRect &part : std::exchange(m_changed, {}))
        wl_surface_damage_buffer(m_layer->get(), part.x(), part.y(), part.width(), part.height());
    page->stale = {};
    return true;
}

void OverlaySurface::paintPage(Page &page) const
{
    QPainter painter(&page.buffer->picture());
    painter.setClipRegion(page.stale);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.fillRect(page.stale.boundingRect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    m_paint(painter);
}

void OverlaySurface::wait()
{
    const Clock::time_point deadline = Clock::now() + maxDrawTime;
    while (m_hasNews || m_frame) {
        commit();
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || !m_connection.dispatch(left))
            return;
    }
}

} // namespace vornic
