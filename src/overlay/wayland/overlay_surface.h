#pragma once

#include "overlay/wayland/output_grid.h"
#include "wayland/layer_surface.h"
#include "wayland/shm_buffer.h"
#include "wayland/wayland_handle.h"
#include "wayland/wayland_output.h"

#include <QRegion>
#include <QSize>
#include <QTimer>

#include <array>
#include <functional>
#include <memory>

class QPainter;

namespace vornic {

class WaylandConnection;

/// A surface above all of a monitor, on which every pixel painted is one of the monitor, whatever the scale.
///
/// Made by LayerShellServer while the overlay is shown; main thread only. It is painted as often as the compositor
/// draws, not more, and only where something looks otherwise. Regions are device pixels from the monitor's upper left.
class OverlaySurface
{
public:
    /// Paints with a painter that has the monitor's upper left as its origin and is clipped to what is wanted, which is
    /// transparent.
    using Paint = std::function<void(QPainter &)>;

    /// Null where the compositor lacks something, or memory is short.
    [[nodiscard]] static std::unique_ptr<OverlaySurface>
    create(WaylandConnection &connection, const WaylandOutput &output, Paint paint);
    ~OverlaySurface();
    OverlaySurface(const OverlaySurface &) = delete;
    OverlaySurface &operator=(const OverlaySurface &) = delete;

    [[nodiscard]] wl_surface *get() const { return m_layer->get(); }
    /// \a pixels look otherwise now; painted soon.
    void repaint(const QRegion &pixels);
    /// Where it takes the mouse; soon.
    void setInputArea(const QRegion &pixels);
    /// Returns once the compositor has drawn all that was asked for; after a tenth of a second in any case, as it may
    /// draw nothing while the monitor sleeps. Handles what else it says meanwhile.
    void wait();
    /// The compositor has taken it away.
    void onClosed(std::function<void()> callback) { m_layer->onClosed(std::move(callback)); }

private:
    /// A picture of all of the surface, and where it is not what is to be seen.
    struct Page {
        std::unique_ptr<ShmBuffer> buffer;
        QRegion stale;
    };

    OverlaySurface(WaylandConnection &connection, const WaylandOutput &output, Paint paint);
    [[nodiscard]] bool makePages();
    [[nodiscard]] bool makeSurface(wl_output *handle);
    void commitSoon();
    void commit();
    [[nodiscard]] bool showPage();
    void paintPage(Page &page) const;
    static const wl_callback_listener frameListener;

    WaylandConnection &m_connection;
    const QSize m_size; ///< pixels
    const OutputGrid m_grid;
    const Paint m_paint;
    std::unique_ptr<LayerSurface> m_layer;
    WaylandPtr<wp_viewport> m_viewport; ///< goes before the surface
    WaylandPtr<wl_callback> m_frame;    ///< not null: the compositor has not drawn yet what was sent last
    std::array<Page, 2> m_pages;
    QRegion m_changed; ///< since the last commit
    QRegion m_inputArea;
    bool m_hasNews = true; ///< something is to be committed
    QTimer m_soon;
};

} // namespace vornic
