#pragma once

#include <QtGlobal>

#include <memory>

namespace vornic {

/// Whether a window that was hidden or minimised is still to be seen, as on its way to the task bar.
///
/// Made after the application object; main thread only. Where the desktop cannot be asked, it is gone at once.
class WindowPresence
{
public:
    /// Never null.
    [[nodiscard]] static std::unique_ptr<WindowPresence> create();
    virtual ~WindowPresence() = default;
    WindowPresence(const WindowPresence &) = delete;
    WindowPresence &operator=(const WindowPresence &) = delete;

    /// \a window as the toolkit's winId(). Blocks for some exchanges with the display server.
    [[nodiscard]] virtual bool isOnScreen(quintptr /*window*/) const { return false; }
    /// Whether a compositing manager decides what is seen, and may show a window a little longer.
    [[nodiscard]] virtual bool isComposited() const { return false; }

protected:
    WindowPresence() = default;
};

} // namespace vornic
