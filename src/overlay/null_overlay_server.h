#pragma once

#include "overlay/overlay_server.h"

namespace vornic {

/// The server of a desktop that can do nothing for the overlay: no shapes, no input area, no stacking.
///
/// Made by the table of backends when no other works; main thread only.
class NullOverlayServer final : public OverlayServer
{
    Q_OBJECT
public:
    /// As the toolkit paints it where nothing says otherwise.
    [[nodiscard]] bool isComposited() const override { return true; }
    [[nodiscard]] bool isDragging() const override { return false; }
    [[nodiscard]] QRegion pixelsOf(const QList<QWindow *> & /*windows*/, Pixels /*which*/) override
    {
        return {};
    }
    void setAppearance(QWindow & /*window*/, const OverlayAppearance & /*appearance*/) override { }
    void setCursor(Qt::CursorShape /*shape*/) override { }
    void takeFocus(QWindow & /*window*/) override { }
    void orderFront(QWindow & /*window*/) override { }
    void orderOut() override { }
    void wait() override { }
};

} // namespace vornic
