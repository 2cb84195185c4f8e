#include "display/x11/x11_damage.h"

#include "display/changed_bands.h"
#include "display/x11/x11_changes.h"
#include "x11/x11_connection.h"
#include "x11/xcb_reply.h"

#include <xcb/damage.h>
#include <xcb/xfixes.h>

namespace vornic {

X11Damage::X11Damage(X11Connection &connection, X11Changes &changes)
    : m_connection(connection)
    , m_changes(changes)
{
    if (!changes.hasDamage())
        return;
    m_damage = xcb_generate_id(connection.get());
    m_region = xcb_generate_id(connection.get());
    xcb_damage_create(connection.get(), m_damage, connection.root(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_xfixes_create_region(connection.get(), m_region, 0, nullptr);
}

X11Damage::~X11Damage()
{
    if (m_damage == 0)
        return;
    xcb_xfixes_destroy_region(m_connection.get(), m_region);
    xcb_damage_destroy(m_connection.get(), m_damage);
    xcb_flush(m_connection.get());
}

void X11Damage::takeInto(ChangedBands &bands, const QRect &onRoot)
{
    if (m_damage == 0) {
        bands.addAll();
        return;
    }
    if (!m_changes.take(X11Change::Picture))
        return;
    xcb_connection_t *const connection = m_connection.get();
    xcb_damage_subtract(connection, m_damage, XCB_NONE, m_region);
    const auto cookie = xcb_xfixes_fetch_region(connection, m_region);
    const XcbReply<xcb_xfixes_fetch_region_reply_t> region(
        xcb_xfixes_fetch_region_reply(connection, cookie, nullptr));
    if (!region) {
        bands.addAll();
        return;
    }
    const xcb_rectangle_t *const rectangles = xcb_xfixes_fetch_region_rectangles(region.get());
    for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(region.get()); ++i) {
        const xcb_rectangle_t &drawn = rectangles[i];
        const QRect shown = onRoot.intersected(QRect(drawn.x, drawn.y, drawn.width, drawn.height));
        if (!shown.isEmpty())
            bands.addRows(shown.y() - onRoot.y(), shown.height());
    }
}

} // namespace vornic
