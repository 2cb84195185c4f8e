#include "support/screen_painter.h"

#include <xcb/render.h>
#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace vornic::test {

namespace {

struct Free {
    void operator()(void *reply) const { std::free(reply); }
};

template<typename T>
using Reply = std::unique_ptr<T, Free>;

std::int16_t coordinate(int value)
{
    return static_cast<std::int16_t>(value);
}

std::uint16_t length(int value)
{
    return static_cast<std::uint16_t>(value);
}

/// Row by row: Qt converts large pictures on threads of its own, into which the thread sanitizer cannot see.
QImage converted(const QImage &picture, QImage::Format format)
{
    if (picture.format() == format)
        return picture;
    QImage result(picture.size(), format);
    for (int y = 0; y < picture.height(); ++y) {
        const QImage row = picture.copy(0, y, picture.width(), 1).convertToFormat(format);
        std::memcpy(result.scanLine(y), row.constScanLine(0), static_cast<std::size_t>(row.bytesPerLine()));
    }
    return result;
}

xcb_render_pictformat_t argbFormat(xcb_connection_t *connection)
{
    const Reply<xcb_render_query_pict_formats_reply_t> reply(
        xcb_render_query_pict_formats_reply(connection, xcb_render_query_pict_formats(connection), nullptr));
    for (auto all = xcb_render_query_pict_formats_formats_iterator(reply.get()); all.rem > 0;
         xcb_render_pictforminfo_next(&all)) {
        if (all.data->depth == 32 && all.data->direct.alpha_shift == 24 && all.data->direct.red_shift == 16)
            return all.data->id;
    }
    return XCB_NONE;
}

} // namespace

std::unique_ptr<ScreenPainter> ScreenPainter::connect()
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) == 0)
        return std::unique_ptr<ScreenPainter>(new ScreenPainter(connection));
    xcb_disconnect(connection);
    return nullptr;
}

ScreenPainter::ScreenPainter(xcb_connection_t *connection)
    : m_connection(connection)
    , m_screen(xcb_setup_roots_iterator(xcb_get_setup(connection)).data)
    , m_context(xcb_generate_id(connection))
{
    const std::uint32_t noExposures = 0;
    xcb_create_gc(m_connection, m_context, m_screen->root, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
}

ScreenPainter::~ScreenPainter()
{
    xcb_disconnect(m_connection);
}

void ScreenPainter::sync() const
{
    Reply<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

QSize ScreenPainter::screenSize() const
{
    const Reply<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, m_screen->root), nullptr));
    return reply ? QSize(reply->width, reply->height) : QSize();
}

QImage::Format ScreenPainter::serverFormat() const
{
    switch (m_screen->root_depth) {
    case 16:
        return QImage::Format_RGB16;
    case 30:
        return QImage::Format_RGB30;
    default:
        return QImage::Format_RGB32;
    }
}

QImage ScreenPainter::screen(const QRect &rectangle) const
{
    const auto cookie = xcb_get_image(m_connection,
                                      XCB_IMAGE_FORMAT_Z_PIXMAP,
                                      m_screen->root,
                                      coordinate(rectangle.x()),
                                      coordinate(rectangle.y()),
                                      length(rectangle.width()),
                                      length(rectangle.height()),
                                      ~std::uint32_t { 0 });
    const Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(m_connection, cookie, nullptr));
    // A large reply overtakes small ones: once the server answers again, it has also told everybody else what changed
    // before the picture was taken.
    sync();
    if (!reply)
        return {};
    const QImage sent(xcb_get_image_data(reply.get()),
                      rectangle.width(),
                      rectangle.height(),
                      xcb_get_image_data_length(reply.get()) / rectangle.height(),
                      serverFormat());
    QImage result = converted(sent, QImage::Format_RGB32);
    result.detach();
    auto *const bytes = result.bits();
    for (qsizetype alpha = 3; alpha < result.sizeInBytes(); alpha += 4)
        bytes[alpha] = 0xff;
    return result;
}

void ScreenPainter::put(const QImage &picture, std::uint32_t drawable, QPoint position)
{
    const QImage pixels = converted(picture, serverFormat());
    const auto line = static_cast<std::uint32_t>(pixels.bytesPerLine());
    const std::uint32_t mostBytes = 4 * (xcb_get_maximum_request_length(m_connection) - 16);
    const int mostRows = std::max(1, static_cast<int>(std::min(mostBytes / line, 4096U)));
    for (int row = 0; row < pixels.height(); row += mostRows) {
        const int rows = std::min(mostRows, pixels.height() - row);
        xcb_put_image(m_connection,
                      XCB_IMAGE_FORMAT_Z_PIXMAP,
                      drawable,
                      m_context,
                      length(pixels.width()),
                      length(rows),
                      coordinate(position.x()),
                      coordinate(position.y() + row),
                      0,
                      m_screen->root_depth,
                      line * static_cast<std::uint32_t>(rows),
                      pixels.constScanLine(row));
    }
}

std::uint32_t ScreenPainter::pixmapOf(const QImage &picture)
{
    const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
    xcb_create_pixmap(m_connection,
                      m_screen->root_depth,
                      pixmap,
                      m_screen->root,
                      length(picture.width()),
                      length(picture.height()));
    put(picture, pixmap, QPoint(0, 0));
    return pixmap;
}

void ScreenPainter::drawOnRoot(const QImage &picture, QPoint position)
{
    put(picture, m_screen->root, position);
    sync();
}

void ScreenPainter::setRootBackground(const QImage &picture)
{
    const xcb_pixmap_t pixmap = pixmapOf(picture);
    xcb_change_window_attributes(m_connection, m_screen->root, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_free_pixmap(m_connection, pixmap);
    xcb_clear_area(m_connection, 0, m_screen->root, 0, 0, 0, 0);
    sync();
}

ScreenPainter::Window ScreenPainter::showWindow(const QImage &picture, QPoint position)
{
    return showWindow(picture, position, m_screen->root);
}

ScreenPainter::Window ScreenPainter::showWindow(const QImage &picture, QPoint position, Window parent)
{
    const xcb_window_t window = xcb_generate_id(m_connection);
    const std::uint32_t values[] { m_screen->black_pixel, 1 };
    xcb_create_window(m_connection,
                      XCB_COPY_FROM_PARENT,
                      window,
                      parent,
                      coordinate(position.x()),
                      coordinate(position.y()),
                      length(picture.width()),
                      length(picture.height()),
                      0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT,
                      values);
    xcb_map_window(m_connection, window);
    put(picture, window, QPoint(0, 0));
    sync();
    return window;
}

void ScreenPainter::drawInWindow(Window window, const QImage &picture, QPoint position)
{
    put(picture, window, position);
    sync();
}

void ScreenPainter::moveWindow(Window window, QPoint position)
{
    const std::int32_t values[] { position.x(), position.y() };
    xcb_configure_window(m_connection, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
    sync();
}

void ScreenPainter::stack(Window window, std::uint32_t mode)
{
    xcb_configure_window(m_connection, window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
    sync();
}

void ScreenPainter::raiseWindow(Window window)
{
    stack(window, XCB_STACK_MODE_ABOVE);
}

void ScreenPainter::lowerWindow(Window window)
{
    stack(window, XCB_STACK_MODE_BELOW);
}

void ScreenPainter::hideWindow(Window window)
{
    xcb_unmap_window(m_connection, window);
    sync();
}

void ScreenPainter::showAgain(Window window)
{
    xcb_map_window(m_connection, window);
    sync();
}

void ScreenPainter::destroyWindow(Window window)
{
    xcb_destroy_window(m_connection, window);
    sync();
}

void ScreenPainter::shapeWindow(Window window, const QRegion &shape)
{
    std::vector<xcb_rectangle_t> rectangles;
    for (const QRect &part : shape)
        rectangles.push_back(
            { coordinate(part.x()), coordinate(part.y()), length(part.width()), length(part.height()) });
    xcb_shape_rectangles(m_connection,
                         XCB_SHAPE_SO_SET,
                         XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED,
                         window,
                         0,
                         0,
                         static_cast<std::uint32_t>(rectangles.size()),
                         rectangles.data());
    sync();
}

void ScreenPainter::scrollWindow(Window window, int pixels)
{
    const Reply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr));
    xcb_copy_area(m_connection,
                  window,
                  window,
                  m_context,
                  0,
                  coordinate(pixels),
                  0,
                  0,
                  size->width,
                  length(size->height - pixels));
    sync();
}

void ScreenPainter::setCursor(const QImage &picture, QPoint hotSpot)
{
    const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
    const xcb_gcontext_t context = xcb_generate_id(m_connection);
    const xcb_render_picture_t source = xcb_generate_id(m_connection);
    const xcb_cursor_t cursor = xcb_generate_id(m_connection);
    const std::uint16_t width = length(pixels.width());
    const std::uint16_t height = length(pixels.height());
    xcb_create_pixmap(m_connection, 32, pixmap, m_screen->root, width, height);
    xcb_create_gc(m_connection, context, pixmap, 0, nullptr);
    xcb_put_image(m_connection,
                  XCB_IMAGE_FORMAT_Z_PIXMAP,
                  pixmap,
                  context,
                  width,
                  height,
                  0,
                  0,
                  0,
                  32,
                  static_cast<std::uint32_t>(pixels.sizeInBytes()),
                  pixels.constBits());
    xcb_render_create_picture(m_connection, source, pixmap, argbFormat(m_connection), 0, nullptr);
    xcb_render_create_cursor(m_connection, cursor, source, length(hotSpot.x()), length(hotSpot.y()));
    xcb_change_window_attributes(m_connection, m_screen->root, XCB_CW_CURSOR, &cursor);
    xcb_free_cursor(m_connection, cursor);
    xcb_render_free_picture(m_connection, source);
    xcb_free_gc(m_connection, context);
    xcb_free_pixmap(m_connection, pixmap);
    sync();
}

QPoint ScreenPainter::pointerPosition() const
{
    const Reply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, m_screen->root), nullptr));
    return pointer ? QPoint(pointer->root_x, pointer->root_y) : QPoint();
}

void ScreenPainter::movePointer(QPoint position)
{
    xcb_warp_pointer(m_connection,
                     XCB_NONE,
                     m_screen->root,
                     0,
                     0,
                     0,
                     0,
                     coordinate(position.x()),
                     coordinate(position.y()));
    sync();
}

} // namespace vornic::test
