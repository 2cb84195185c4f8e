#pragma once

#include "display/display_backend.h"
#include "display/x11/x11_changes.h"
#include "display/x11/x11_grabber.h"
#include "display/x11/x11_main_monitor.h"
#include "display/x11/x11_pointer.h"
#include "x11/x11_connection.h"

namespace vornic {

/// The main display of an X11 desktop.
///
/// Made by the table of backends. Errors of the server, and its end, give null images and no display.
class X11Display final : public DisplayBackend
{
public:
    /// The display at $DISPLAY; null with one sentence for the user.
    [[nodiscard]] static std::unique_ptr<DisplayBackend> create(QString &whyNot);

    [[nodiscard]] std::uint32_t mainDisplayId() const override;
    [[nodiscard]] QSize mainDisplaySize() const override;
    [[nodiscard]] QPoint mainDisplayOrigin() const override;
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &rectangle) override;
    [[nodiscard]] QPoint pointerPosition() override;
    [[nodiscard]] std::shared_ptr<const CursorShape> cursorShape() override;

private:
    X11Display(std::unique_ptr<X11Connection> connection, X11PixelFormat format);

    std::unique_ptr<X11Connection> m_connection;
    X11Changes m_changes;
    mutable X11MainMonitor m_monitor;
    X11Grabber m_grabber;
    X11Pointer m_pointer;
};

} // namespace vornic
