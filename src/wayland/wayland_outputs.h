#pragma once

#include "wayland/wayland_handle.h"
#include "wayland/wayland_output.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace vornic {

/// The monitors that a compositor has, as it tells of them.
///
/// Made by WaylandConnection, and used on its thread. A monitor counts once all is known of it.
class WaylandOutputs
{
public:
    WaylandOutputs();
    ~WaylandOutputs();
    WaylandOutputs(const WaylandOutputs &) = delete;
    WaylandOutputs &operator=(const WaylandOutputs &) = delete;

    /// In the order in which the compositor named them.
    [[nodiscard]] std::vector<WaylandOutput> all() const;
    /// Null for a monitor that is gone.
    [[nodiscard]] wl_output *handleOf(std::uint32_t id) const;
    /// Called whenever all() is another answer, in the middle of the handling of events.
    void onChange(std::function<void()> callback) { m_changed = std::move(callback); }

    /// The compositor names a monitor; \a id is the global's.
    void add(std::uint32_t id, WaylandPtr<wl_output> handle);
    /// It takes the global with that id away, which need not be a monitor.
    void remove(std::uint32_t id);
    /// Through which logical coordinates are told; may be named behind the monitors.
    void setManager(WaylandPtr<zxdg_output_manager_v1> manager);

private:
    class Entry;

    void tell();

    WaylandPtr<zxdg_output_manager_v1> m_manager; ///< null where there is none
    std::vector<std::unique_ptr<Entry>> m_entries;
    std::function<void()> m_changed;
};

} // namespace vornic
