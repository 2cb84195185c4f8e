#pragma once

#include "wayland/wayland_handle.h"
#include "wayland/wayland_outputs.h"

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

namespace vornic {

/// A connection to a Wayland compositor, beside the one that the toolkit has.
///
/// Made by whoever talks to the compositor, each with one of its own: overlay, WaylandOutputWatch, TransparentPixel.
/// It and all that is made through it belong to one thread at a time, which also handles the events: by dispatch(), or
/// by a WaylandEvents in the toolkit's loop. When the compositor is gone it stays a valid object: requests then do
/// nothing, and no more events come.
class WaylandConnection
{
public:
    /// Connects to $WAYLAND_DISPLAY and learns what the compositor offers; null where none answers within two seconds.
    /// \a borrowedWakeFd ends the waiting for answers, here and in round trips, when it can be read; -1: none.
    [[nodiscard]] static std::unique_ptr<WaylandConnection> open(int borrowedWakeFd = -1);
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection &) = delete;
    WaylandConnection &operator=(const WaylandConnection &) = delete;

    [[nodiscard]] wl_display *get() const { return m_display.get(); }
    [[nodiscard]] bool isAlive() const { return wl_display_get_error(m_display.get()) == 0; }
    /// The monitors, from open() on.
    [[nodiscard]] WaylandOutputs &outputs() { return m_outputs; }

    /// The thing of that kind that the compositor offers, at most of \a maxVersion; null where it offers none.
    template<typename T, typename Destroy = WaylandDestroy>
    [[nodiscard]] std::unique_ptr<T, Destroy> bind(const wl_interface &kind, std::uint32_t maxVersion) const
    {
        return std::unique_ptr<T, Destroy>(static_cast<T *>(bindFirst(kind, maxVersion)));
    }

    /// Handles the events that have come. Where there are none it waits for some, and ends waiting when
    /// \a borrowedWakeFd can be read; -1: none. False when the compositor is gone.
    bool dispatch(std::chrono::milliseconds maxWait = {}, int borrowedWakeFd = -1);
    /// Returns once the compositor has done what it was asked for and its answers are handled; false when that took
    /// more than two seconds, was not to be waited for, or it is gone.
    bool roundTrip();
    /// Sends the requests that are waiting.
    void flush() { wl_display_flush(m_display.get()); }

private:
    /// What the compositor offers.
    struct Global {
        std::uint32_t name = 0;
        QByteArray kind;
        std::uint32_t version = 0;
    };

    WaylandConnection(WaylandPtr<wl_display> display, int wakeFd);
    [[nodiscard]] void *bindFirst(const wl_interface &kind, std::uint32_t maxVersion) const;
    [[nodiscard]] void *
    bindGlobal(const Global &global, const wl_interface &kind, std::uint32_t maxVersion) const;
    void globalCame(Global global);
    void globalWent(std::uint32_t name);
    static const wl_registry_listener registryListener;

    WaylandPtr<wl_display> m_display;
    const int m_wakeFd;
    WaylandPtr<wl_registry> m_registry;
    std::vector<Global> m_globals;
    WaylandOutputs m_outputs;
};

} // namespace vornic
