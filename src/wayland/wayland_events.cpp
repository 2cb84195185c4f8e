#include "wayland/wayland_events.h"

#include "wayland/wayland_connection.h"

#include <QAbstractEventDispatcher>
#include <QSocketNotifier>

namespace vornic {

WaylandEvents::WaylandEvents(WaylandConnection &connection)
    : m_connection(connection)
    , m_notifier(new QSocketNotifier(wl_display_get_fd(connection.get()), QSocketNotifier::Read, this))
{
    connect(m_notifier, &QSocketNotifier::activated, this, &WaylandEvents::handle);
    // Requests are collected, and sent before the loop waits.
    if (auto *const loop = QAbstractEventDispatcher::instance())
        connect(loop, &QAbstractEventDispatcher::aboutToBlock, this, [this] { m_connection.flush(); });
}

WaylandEvents::~WaylandEvents() = default;

void WaylandEvents::handle()
{
    if (m_connection.dispatch())
        return;
    m_notifier->setEnabled(false);
    emit ended();
}

} // namespace vornic
