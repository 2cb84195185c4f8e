#pragma once

#include "wayland/wayland_handle.h"

#include <QRegion>
#include <QSize>

#include <cstdint>
#include <functional>
#include <memory>

namespace vornic {

class WaylandConnection;

/// A surface of ours above all windows of a monitor, full-screen ones too, that asks for no room of its own. The shell
/// for that is offered by wlroots and others, but not by every compositor.
///
/// Made by who shows something of its own; on the thread of its connection. It takes no mouse and no keys until it is
/// told otherwise.
class LayerSurface
{
public:
    /// \a output: null is where the compositor likes. \a size: in logical coordinates, at the monitor's upper left;
    /// empty is all of the monitor. Null where the shell is not offered. Nothing may be shown before isConfigured().
    [[nodiscard]] static std::unique_ptr<LayerSurface>
    create(WaylandConnection &connection, wl_output *output, QSize size);
    ~LayerSurface();
    LayerSurface(const LayerSurface &) = delete;
    LayerSurface &operator=(const LayerSurface &) = delete;

    [[nodiscard]] wl_surface *get() const { return m_surface.get(); }
    /// Whether the compositor has given it a place.
    [[nodiscard]] bool isConfigured() const { return !m_configuredSize.isEmpty(); }
    /// In logical coordinates.
    [[nodiscard]] QSize configuredSize() const { return m_configuredSize; }
    /// The compositor has given it a place, or another size, and the surface is to be committed.
    void onConfigured(std::function<void()> callback) { m_configured = std::move(callback); }
    /// The compositor has closed it, as it does when the monitor goes.
    void onClosed(std::function<void()> callback) { m_closed = std::move(callback); }

    /// Where it takes the mouse, in logical coordinates from its upper left. With the next commit.
    void setInputRegion(const QRegion &region);
    void commit() { wl_surface_commit(m_surface.get()); }

private:
    LayerSurface(WaylandPtr<wl_compositor> compositor, zwlr_layer_shell_v1 &shell, wl_output *output);
    static const zwlr_layer_surface_v1_listener listener;

    WaylandPtr<wl_compositor> m_compositor;
    WaylandPtr<wl_surface> m_surface;
    WaylandPtr<zwlr_layer_surface_v1> m_role; ///< goes before the surface
    QSize m_configuredSize;
    std::function<void()> m_configured;
    std::function<void()> m_closed;
};

} // namespace vornic
