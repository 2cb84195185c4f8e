#pragma once

#include <wayland-client.h>
#include <wayland-protocols/layer-shell.h>
#include <wayland-protocols/viewporter.h>
#include <wayland-protocols/xdg-output-unstable-v1.h>

#include <memory>

namespace vornic {

/// How each object of the core protocol ends; those that the compositor keeps a part of are taken from it, too.
struct CoreProtocolDestroy {
    void operator()(wl_display *display) const { wl_display_disconnect(display); }
    void operator()(wl_registry *registry) const { wl_registry_destroy(registry); }
    void operator()(wl_callback *callback) const { wl_callback_destroy(callback); }
    void operator()(wl_compositor *compositor) const { wl_compositor_destroy(compositor); }
    void operator()(wl_shm *shm) const { wl_shm_destroy(shm); }
    void operator()(wl_shm_pool *pool) const { wl_shm_pool_destroy(pool); }
    void operator()(wl_buffer *buffer) const { wl_buffer_destroy(buffer); }
    void operator()(wl_region *region) const { wl_region_destroy(region); }
    void operator()(wl_surface *surface) const { wl_surface_destroy(surface); }
    void operator()(wl_output *output) const
    {
        if (wl_output_get_version(output) >= WL_OUTPUT_RELEASE_SINCE_VERSION)
            wl_output_release(output);
        else
            wl_output_destroy(output);
    }
    void operator()(wl_seat *seat) const
    {
        if (wl_seat_get_version(seat) >= WL_SEAT_RELEASE_SINCE_VERSION)
            wl_seat_release(seat);
        else
            wl_seat_destroy(seat);
    }
    void operator()(wl_pointer *pointer) const
    {
        if (wl_pointer_get_version(pointer) >= WL_POINTER_RELEASE_SINCE_VERSION)
            wl_pointer_release(pointer);
        else
            wl_pointer_destroy(pointer);
    }
    void operator()(wl_data_device_manager *manager) const { wl_data_device_manager_destroy(manager); }
    void operator()(wl_data_offer *offer) const { wl_data_offer_destroy(offer); }
    void operator()(wl_data_device *device) const
    {
        if (wl_data_device_get_version(device) >= WL_DATA_DEVICE_RELEASE_SINCE_VERSION)
            wl_data_device_release(device);
        else
            wl_data_device_destroy(device);
    }
};

/// How each object of the other protocols ends.
struct OtherProtocolsDestroy {
    void operator()(zxdg_output_manager_v1 *manager) const { zxdg_output_manager_v1_destroy(manager); }
    void operator()(zxdg_output_v1 *output) const { zxdg_output_v1_destroy(output); }
    void operator()(wp_viewporter *viewporter) const { wp_viewporter_destroy(viewporter); }
    void operator()(wp_viewport *viewport) const { wp_viewport_destroy(viewport); }
    void operator()(zwlr_layer_shell_v1 *shell) const { zwlr_layer_shell_v1_destroy(shell); }
    void operator()(zwlr_layer_surface_v1 *surface) const { zwlr_layer_surface_v1_destroy(surface); }
};

/// How each object of the Wayland library ends.
struct WaylandDestroy : CoreProtocolDestroy, OtherProtocolsDestroy {
    using CoreProtocolDestroy::operator();
    using OtherProtocolsDestroy::operator();
};

/// An object of the Wayland library, used on the thread of its WaylandConnection and gone before that.
///
/// Made by WaylandConnection::bind() and by requests. Null where the compositor does not offer such a thing.
template<typename T>
using WaylandPtr = std::unique_ptr<T, WaylandDestroy>;

} // namespace vornic
