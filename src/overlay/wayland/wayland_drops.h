#pragma once

#include "overlay/wayland/output_grid.h"
#include "wayland/wayland_handle.h"

#include <QByteArray>
#include <QPoint>
#include <QPointF>

#include <cstdint>
#include <memory>
#include <optional>

class QSocketNotifier;

namespace vornic {

class InputReceiver;
class WaylandConnection;

/// Takes names of files that other programs drag over the surface of the overlay.
///
/// Made by LayerShellServer; main thread only. The names come through a pipe, which is read as the source writes, so
/// that nobody waits for it.
class WaylandDrops
{
public:
    /// Borrows both for life.
    WaylandDrops(WaylandConnection &connection, InputReceiver &receiver);
    ~WaylandDrops();
    WaylandDrops(const WaylandDrops &) = delete;
    WaylandDrops &operator=(const WaylandDrops &) = delete;

    /// How the surface's coordinates become pixels of the desktop, on which its upper left lies at \a origin.
    void setGrid(const OutputGrid &grid, QPoint origin);

private:
    /// What another program hands out; not all of it is dragged.
    struct Offer {
        WaylandPtr<wl_data_offer> handle;
        bool namesFiles = false;
        bool mayCopy = false;
    };
    /// An offer that is over the surface.
    struct Drag {
        Offer offer;
        std::uint32_t serial = 0;
        QPoint onDesktop;
        QByteArray names; ///< text/uri-list, as far as it has come
        bool isComplete = false;
        bool isTaken = false;   ///< the receiver would take them
        bool isDropped = false; ///< before the names had come
    };

    void entered(std::uint32_t serial, QPointF onSurface, const wl_data_offer *offer);
    void moved(QPointF onSurface);
    void left();
    void forget();
    void dropped();
    void askForNames();
    void readNames();
    void namesCame();
    void finish();
    void endReading();
    static wl_data_offer_listener makeOfferListener();
    static wl_data_device_listener makeDeviceListener();
    static const wl_data_offer_listener offerListener;
    static const wl_data_device_listener deviceListener;

    WaylandConnection &m_connection;
    InputReceiver &m_receiver;
    OutputGrid m_grid;
    QPoint m_origin;
    WaylandPtr<wl_seat> m_seat;
    WaylandPtr<wl_data_device> m_device; ///< null where the compositor has none
    Offer m_announced;                   ///< not known yet what it is for
    std::optional<Drag> m_drag;
    int m_readFd = -1; ///< the names come from there
    std::unique_ptr<QSocketNotifier> m_reader;
};

} // namespace vornic
