#include "display/x11/x11_display.h"

#include "display/bitmap_image.h"
#include "display/display_rectangle.h"
#include "display/x11/x11_requirements.h"

#include <QCoreApplication>

#include <utility>

namespace vornic {

std::unique_ptr<DisplayBackend> X11Display::create(QString &whyNot)
{
    auto connection = openRecordableConnection(whyNot);
    if (!connection)
        return nullptr;
    auto format = X11PixelFormat::ofScreen(*xcb_get_setup(connection->get()), connection->screen(), whyNot);
    if (!format)
        return nullptr;
    std::unique_ptr<DisplayBackend> display(new X11Display(std::move(connection), std::move(*format)));
    // What a server says it can do and what it lets this program do are known apart only by trying.
    if (!display->grab(QRect(0, 0, 1, 1))) {
        whyNot
            = QCoreApplication::translate("vornic", "The X server refuses to give pictures of its screen.");
        return nullptr;
    }
    return display;
}

X11Display::X11Display(std::unique_ptr<X11Connection> connection, X11PixelFormat format)
    : m_connection(std::move(connection))
    , m_changes(*m_connection)
    , m_monitor(*m_connection, m_changes)
    , m_grabber(*m_connection, m_changes, std::move(format))
    , m_pointer(*m_connection, m_changes)
{
}

std::uint32_t X11Display::mainDisplayId() const
{
    return m_monitor.layout().id;
}

QSize X11Display::mainDisplaySize() const
{
    return m_monitor.layout().rectangle.size();
}

QPoint X11Display::mainDisplayOrigin() const
{
    return m_monitor.layout().rectangle.topLeft();
}

std::shared_ptr<const BitmapImage> X11Display::grab(const QRect &rectangle)
{
    X11Layout layout = m_monitor.layout();
    while (true) {
        const QRect visible = partOnDisplay(rectangle, layout.rectangle.size());
        auto image = visible.isEmpty()
            ? nullptr
            : m_grabber.grab(visible.translated(layout.rectangle.topLeft()), layout.version);
        if (image)
            return image;
        // A display that has shrunk since refuses what is no longer there, and has told of that before.
        const X11Layout now = m_monitor.layout();
        if (now.version == layout.version)
            return nullptr;
        layout = now;
    }
}

QPoint X11Display::pointerPosition()
{
    return m_pointer.positionOnRoot() - m_monitor.layout().rectangle.topLeft();
}

std::shared_ptr<const CursorShape> X11Display::cursorShape()
{
    return m_pointer.shape();
}

} // namespace vornic
