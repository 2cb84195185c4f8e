#pragma once

#include <QImage>
#include <QRect>

#include <cstdint>

struct xcb_connection_t;

namespace vornic {

class X11Connection;

/// A translucent window that no window manager touches, with a picture that is painted once.
///
/// Made by XwaylandOverlayServer for each part of the overlay; main thread only. It goes through the toolkit's own
/// connection, as one of the program's windows. The picture is its background, which the server draws by itself.
class X11PartWindow
{
public:
    /// Whether it takes the mouse. Compositors learn that once, when a window comes, so each has an answer for life.
    enum class Mouse {
        Taken,
        Left, ///< to what lies beneath
    };

    /// Stands at once, \a place in pixels of the server, above all others. \a connection, which is to the same server as
    /// the toolkit's, is asked for what kinds of windows it has.
    X11PartWindow(const X11Connection &connection, Mouse mouse, const QRect &place, const QImage &picture);
    ~X11PartWindow();
    X11PartWindow(const X11PartWindow &) = delete;
    X11PartWindow &operator=(const X11PartWindow &) = delete;

    [[nodiscard]] std::uint32_t id() const { return m_window; }
    /// Moves it and shows another \a picture, as large as \a place; nothing where both are what they were.
    void show(const QRect &place, const QImage &picture);

private:
    void create(const X11Connection &connection);
    void paint();

    xcb_connection_t *const m_connection; ///< the toolkit's
    const std::uint32_t m_window;
    const std::uint32_t m_colours;
    QRect m_place;
    QImage m_picture;
};

} // namespace vornic
