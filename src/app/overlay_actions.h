#pragma once

#include <chrono>

namespace vornic {

class VNOption;
class VNRecorderWndCtrl;
class VNRecorderWndCtrlDelegate;

/// What the application does with the overlay; nothing where it has none.
///
/// Owned by the application delegate; main thread only.
class OverlayActions
{
public:
    OverlayActions() = default;
    /// Takes back what adopt() gave.
    ~OverlayActions();
    OverlayActions(const OverlayActions &) = delete;
    OverlayActions &operator=(const OverlayActions &) = delete;

    /// Borrowed for life.
    void setController(VNRecorderWndCtrl *controller) { m_controller = controller; }
    /// The overlay shows \a options from now on, and asks \a delegate; both are borrowed for life.
    void adopt(VNOption &options, VNRecorderWndCtrlDelegate &delegate);
    /// After a change of the logo, or of the recording's state.
    void reload();
    /// After a change of the region, or of whether there is a logo.
    void place();
    void orderOut();
    /// How long a compositing manager may go on showing the overlay's tint and handles once they are gone.
    [[nodiscard]] std::chrono::milliseconds settlingTime() const;

private:
    VNRecorderWndCtrl *m_controller = nullptr;
};

} // namespace vornic
