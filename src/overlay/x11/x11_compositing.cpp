#include "overlay/x11/x11_compositing.h"

#include "x11/x11_connection.h"
#include "x11/x11_events.h"

#include <utility>

namespace vornic {

namespace {

std::uint32_t managersSelection(const X11Connection &connection)
{
    return connection.atom("_NET_WM_CM_S" + QByteArray::number(connection.screenNumber()));
}

} // namespace

X11Compositing::X11Compositing(X11Events &events)
    : m_manager(events, managersSelection(events.connection()))
    , m_isActive(m_manager.owner() != XCB_NONE)
{
    connect(&m_manager, &X11SelectionWatch::ownerSet, this, [this] {
        const bool isActive = m_manager.owner() != XCB_NONE;
        if (std::exchange(m_isActive, isActive) != isActive)
            emit changed();
    });
    events.flush();
}

} // namespace vornic
