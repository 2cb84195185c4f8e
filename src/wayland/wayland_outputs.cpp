#include "wayland/wayland_outputs.h"

#include <algorithm>
#include <utility>

namespace vornic {

/// One monitor: what was told of it, and what of that holds since the compositor last said that it is complete.
class WaylandOutputs::Entry
{
public:
    Entry(WaylandOutputs &outputs, std::uint32_t id, WaylandPtr<wl_output> handle)
        : m_outputs(outputs)
        , m_handle(std::move(handle))
    {
        m_told.id = id;
        wl_output_add_listener(m_handle.get(), &outputListener, this);
    }

    [[nodiscard]] std::uint32_t id() const { return m_told.id; }
    [[nodiscard]] wl_output *handle() const { return m_handle.get(); }
    [[nodiscard]] bool isKnown() const { return m_isKnown; }
    [[nodiscard]] const WaylandOutput &known() const { return m_known; }

    void askForPlace(zxdg_output_manager_v1 &manager)
    {
        m_place.reset(zxdg_output_manager_v1_get_xdg_output(&manager, m_handle.get()));
        zxdg_output_v1_add_listener(m_place.get(), &placeListener, this);
    }

private:
    static Entry &entry(void *data) { return *static_cast<Entry *>(data); }

    void becomesComplete()
    {
        WaylandOutput now = m_told;
        // Without the protocol for places this is as good as it gets.
        if (now.logical.isEmpty())
            now.logical = QRect(m_place ? now.logical.topLeft() : m_position, now.pixels() / now.scale);
        const bool isNew = !std::exchange(m_isKnown, true);
        if (std::exchange(m_known, now) != now || isNew)
            m_outputs.tell();
    }

    static wl_output_listener makeOutputListener();
    static zxdg_output_v1_listener makePlaceListener();
    static const wl_output_listener outputListener;
    static const zxdg_output_v1_listener placeListener;

    WaylandOutputs &m_outputs;
    WaylandPtr<wl_output> m_handle;
    WaylandPtr<zxdg_output_v1> m_place; ///< null until the compositor offers it
    QPoint m_position;                  ///< what the monitor itself says of its place
    WaylandOutput m_told;
    WaylandOutput m_known;
    bool m_isKnown = false;
};

wl_output_listener WaylandOutputs::Entry::makeOutputListener()
{
    wl_output_listener listener {};
    listener.geometry = [](void *data,
                           wl_output * /*output*/,
                           std::int32_t x,
                           std::int32_t y,
                           std::int32_t /*widthMm*/,
                           std::int32_t /*heightMm*/,
                           std::int32_t /*subpixels*/,
                           const char * /*maker*/,
                           const char * /*model*/,
                           std::int32_t transform) {
        entry(data).m_position = QPoint(x, y);
        entry(data).m_told.transform = transform;
    };
    listener.mode = [](void *data,
                       wl_output * /*output*/,
                       std::uint32_t flags,
                       std::int32_t width,
                       std::int32_t height,
                       std::int32_t /*refreshMilliHertz*/) {
        if ((flags & WL_OUTPUT_MODE_CURRENT) != 0)
            entry(data).m_told.mode = QSize(width, height);
    };
    listener.scale = [](void *data, wl_output * /*output*/, std::int32_t scale) {
        entry(data).m_told.scale = std::max(scale, 1);
    };
    listener.name = [](void *data, wl_output * /*output*/, const char *name) {
        entry(data).m_told.name = QString::fromUtf8(name);
    };
    listener.description = [](void * /*data*/, wl_output * /*output*/, const char * /*text*/) {};
    listener.done = [](void *data, wl_output * /*output*/) { entry(data).becomesComplete(); };
    return listener;
}

zxdg_output_v1_listener WaylandOutputs::Entry::makePlaceListener()
{
    zxdg_output_v1_listener listener {};
    listener.logical_position = [](void *data, zxdg_output_v1 * /*output*/, std::int32_t x, std::int32_t y) {
        entry(data).m_told.logical.moveTopLeft({ x, y });
    };
    listener.logical_size
        = [](void *data, zxdg_output_v1 * /*output*/, std::int32_t width, std::int32_t height) {
              entry(data).m_told.logical.setSize({ width, height });
          };
    listener.name = [](void *data, zxdg_output_v1 * /*output*/, const char *name) {
        entry(data).m_told.name = QString::fromUtf8(name);
    };
    listener.description = [](void * /*data*/, zxdg_output_v1 * /*output*/, const char * /*text*/) {};
    // Compositors that still send it send none for the monitor.
    listener.done = [](void *data, zxdg_output_v1 * /*output*/) { entry(data).becomesComplete(); };
    return listener;
}

const wl_output_listener WaylandOutputs::Entry::outputListener = makeOutputListener();
const zxdg_output_v1_listener WaylandOutputs::Entry::placeListener = makePlaceListener();

WaylandOutputs::WaylandOutputs() = default;
WaylandOutputs::~WaylandOutputs() = default;

std::vector<WaylandOutput> WaylandOutputs::all() const
{
    std::vector<WaylandOutput> outputs;
    for (const auto &entry : m_entries) {
        if (entry->isKnown())
            outputs.push_back(entry->known());
    }
    return outputs;
}

wl_output *WaylandOutputs::handleOf(std::uint32_t id) const
{
    const auto found = std::ranges::find_if(m_entries, [id](const auto &entry) { return entry->id() == id; });
    return found == m_entries.end() ? nullptr : (*found)->handle();
}

void WaylandOutputs::add(std::uint32_t id, WaylandPtr<wl_output> handle)
{
    m_entries.push_back(std::make_unique<Entry>(*this, id, std::move(handle)));
    if (m_manager)
        m_entries.back()->askForPlace(*m_manager);
}

void WaylandOutputs::remove(std::uint32_t id)
{
    if (std::erase_if(m_entries, [id](const auto &entry) { return entry->id() == id; }) > 0)
        tell();
}

void WaylandOutputs::setManager(WaylandPtr<zxdg_output_manager_v1> manager)
{
    m_manager = std::move(manager);
    for (const auto &entry : m_entries)
        entry->askForPlace(*m_manager);
}

void WaylandOutputs::tell()
{
    if (m_changed)
        m_changed();
}

} // namespace vornic
