#include "overlay/x11/x11_part_window.h"

#include "x11/x11_connection.h"
#include "x11/x11_shape.h"
#include "x11/x11_windows.h"

#include <algorithm>
#include <array>

namespace vornic {

namespace {

constexpr std::uint8_t translucentDepth = 32;

/// The first kind of window whose pixels have an opacity; 0 where there is none.
xcb_visualid_t translucentVisual(const xcb_screen_t &screen)
{
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0; xcb_depth_next(&depth)) {
        const auto visuals = xcb_depth_visuals_iterator(depth.data);
        if (depth.data->depth == translucentDepth && visuals.rem > 0)
            return visuals.data->visual_id;
    }
    return 0;
}

/// Sends \a picture to \a drawable, in as many requests as it takes.
void putPicture(xcb_connection_t *connection,
                xcb_drawable_t drawable,
                xcb_gcontext_t context,
                const QImage &picture)
{
    constexpr std::uint32_t header = 64; // more than there is
    const std::uint32_t most = xcb_get_maximum_request_length(connection) * 4 - header;
    const auto rowBytes = static_cast<std::uint32_t>(picture.bytesPerLine());
    const int rows = std::max(1, static_cast<int>(most / rowBytes));
    for (int y = 0; y < picture.height(); y += rows) {
        const int height = std::min(rows, picture.height() - y);
        xcb_put_image(connection,
                      XCB_IMAGE_FORMAT_Z_PIXMAP,
                      drawable,
                      context,
                      static_cast<std::uint16_t>(picture.width()),
                      static_cast<std::uint16_t>(height),
                      0,
                      static_cast<std::int16_t>(y),
                      0,
                      translucentDepth,
                      rowBytes * static_cast<std::uint32_t>(height),
                      picture.constScanLine(y));
    }
}

} // namespace

X11PartWindow::X11PartWindow(const X11Connection &connection,
                             Mouse mouse,
                             const QRect &place,
                             const QImage &picture)
    : m_connection(toolkitConnection())
    , m_window(xcb_generate_id(m_connection))
    , m_colours(xcb_generate_id(m_connection))
{
    create(connection);
    if (mouse == Mouse::Left)
        setShape(m_connection, m_window, XCB_SHAPE_SK_INPUT, QRegion());
    show(place, picture);
    xcb_map_window(m_connection, m_window);
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(m_connection);
}

void X11PartWindow::create(const X11Connection &connection)
{
    const xcb_visualid_t visual = translucentVisual(connection.screen());
    xcb_create_colormap(m_connection, XCB_COLORMAP_ALLOC_NONE, m_colours, connection.root(), visual);
    const std::array<std::uint32_t, 4> values { 0, 0, 1, m_colours };
    xcb_create_window(m_connection,
                      translucentDepth,
                      m_window,
                      connection.root(),
                      0,
                      0,
                      1,
                      1,
                      0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP,
                      values.data());
}

X11PartWindow::~X11PartWindow()
{
    xcb_destroy_window(m_connection, m_window);
    xcb_free_colormap(m_connection, m_colours);
    xcb_flush(m_connection);
}

void X11PartWindow::show(const QRect &place, const QImage &picture)
{
    const bool isElsewhere = place != m_place;
    if (!isElsewhere && picture == m_picture)
        return;
    m_place = place;
    m_picture = picture;
    if (isElsewhere) {
        const std::array<std::int32_t, 4> values { place.x(), place.y(), place.width(), place.height() };
        xcb_configure_window(m_connection,
                             m_window,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH
                                 | XCB_CONFIG_WINDOW_HEIGHT,
                             values.data());
    }
    paint();
}

void X11PartWindow::paint()
{
    const xcb_pixmap_t pixels = xcb_generate_id(m_connection);
    const xcb_gcontext_t context = xcb_generate_id(m_connection);
    xcb_create_pixmap(m_connection,
                      translucentDepth,
                      pixels,
                      m_window,
                      static_cast<std::uint16_t>(m_picture.width()),
                      static_cast<std::uint16_t>(m_picture.height()));
    xcb_create_gc(m_connection, context, pixels, 0, nullptr);
    putPicture(m_connection, pixels, context, m_picture);
    xcb_change_window_attributes(m_connection, m_window, XCB_CW_BACK_PIXMAP, &pixels);
    xcb_clear_area(m_connection, 0, m_window, 0, 0, 0, 0);
    xcb_free_gc(m_connection, context);
    xcb_free_pixmap(m_connection, pixels);
    xcb_flush(m_connection);
}

} // namespace vornic
