#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QRegion>

#include <cstdint>
#include <memory>

struct xcb_connection_t;
struct xcb_screen_t;

namespace vornic::test {

/// Changes what an X server shows, and reads what it shows, through a connection of its own.
///
/// Made by a test, used on one thread. Every function returns only once the server has done it. Coordinates
/// are device pixels, y down, from the top left of the root window (or of a window where one is named).
class ScreenPainter
{
public:
    using Window = std::uint32_t;

    /// Connects to $DISPLAY; null without a server.
    [[nodiscard]] static std::unique_ptr<ScreenPainter> connect();
    /// Its windows end with it; background and cursor stay.
    ~ScreenPainter();
    ScreenPainter(const ScreenPainter &) = delete;
    ScreenPainter &operator=(const ScreenPainter &) = delete;

    [[nodiscard]] QSize screenSize() const;
    /// What the server shows, read in the plainest way; alpha is 0xff everywhere.
    [[nodiscard]] QImage screen(const QRect &rectangle) const;
    [[nodiscard]] QImage screen() const { return screen(QRect(QPoint(0, 0), screenSize())); }

    /// Draws on the root window itself, beneath all windows.
    void drawOnRoot(const QImage &picture, QPoint position);
    /// Makes \a picture the tiled background of the root window.
    void setRootBackground(const QImage &picture);

    /// Shows a window that no window manager touches, above all others, with \a picture in it.
    Window showWindow(const QImage &picture, QPoint position);
    /// The same inside \a parent.
    Window showWindow(const QImage &picture, QPoint position, Window parent);
    void drawInWindow(Window window, const QImage &picture, QPoint position);
    void moveWindow(Window window, QPoint position);
    void raiseWindow(Window window);
    void lowerWindow(Window window);
    void hideWindow(Window window);
    void showAgain(Window window);
    void destroyWindow(Window window);
    void shapeWindow(Window window, const QRegion &shape);
    /// Scrolls the contents up, as text programs do; what comes in from below keeps its old pixels.
    void scrollWindow(Window window, int pixels);

    /// The shape of the pointer over everything that sets none of its own.
    void setCursor(const QImage &picture, QPoint hotSpot);
    void movePointer(QPoint position);
    /// Where the server takes the pointer to be.
    [[nodiscard]] QPoint pointerPosition() const;

    void sync() const;

private:
    explicit ScreenPainter(xcb_connection_t *connection);
    void put(const QImage &picture, std::uint32_t drawable, QPoint position);
    [[nodiscard]] std::uint32_t pixmapOf(const QImage &picture);
    [[nodiscard]] QImage::Format serverFormat() const;
    void stack(Window window, std::uint32_t mode);

    xcb_connection_t *m_connection;
    const xcb_screen_t *m_screen;
    std::uint32_t m_context;
};

} // namespace vornic::test
