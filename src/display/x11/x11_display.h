#pragma once

#include "display/display_backend.h"

#include <memory>

namespace vornic {

/// The main display of an X11 desktop.
///
/// Made by the table of backends. Errors of the server, and its end, give null images and no display. A server that does
/// not answer for two seconds counts as gone until it answers again: nobody waits for it longer than that.
class X11Display final : public DisplayBackend
{
public:
    /// Whether there is an X server, which may be the one of a Wayland session.
    [[nodiscard]] static bool isForThisSession();
    /// The display at $DISPLAY; null with one sentence for the user.
    [[nodiscard]] static std::unique_ptr<DisplayBackend> create(QString &whyNot);
    ~X11Display() override;

    [[nodiscard]] std::uint32_t mainDisplayId() const override;
    [[nodiscard]] QSize mainDisplaySize() const override;
    [[nodiscard]] QPoint mainDisplayOrigin() const override;
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &rectangle) override;
    [[nodiscard]] QPoint pointerPosition() override;
    [[nodiscard]] std::shared_ptr<const CursorShape> cursorShape() override;

private:
    struct Server;
    class Link;

    explicit X11Display(std::shared_ptr<Link> link);

    std::shared_ptr<Link> m_link; ///< shared with the thread that connects anew
};

} // namespace vornic
