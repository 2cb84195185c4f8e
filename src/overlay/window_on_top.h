#pragma once

#include <QObject>

#include <memory>

class QWindow;

namespace vornic {

/// Keeps a window of ours, which the window manager does not manage, above every other window of the desktop
/// as long as it lives: full-screen ones too, but not one that locks the screen. The overlay stays beneath it.
///
/// Made for the stop bar and the like through the table of overlay backends; main thread only. Where the
/// desktop offers nothing for that it does nothing.
class WindowOnTop : public QObject
{
    Q_OBJECT
public:
    /// \a window has the flag Qt::BypassWindowManagerHint; borrowed, it may die first. Never null. The window
    /// need not be shown yet.
    [[nodiscard]] static std::unique_ptr<WindowOnTop> create(QWindow &window);
    ~WindowOnTop() override = default;

protected:
    WindowOnTop() = default;
};

} // namespace vornic
