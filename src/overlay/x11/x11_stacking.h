#pragma once

#include "overlay/x11/x11_window_stack.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

namespace vornic {

class X11Connection;
class X11Events;

/// Keeps a window of ours above those of other programs, panels, menus and full-screen windows too, but never
/// above one that locks the screen.
///
/// Made by OverlayServer and WindowOnTop; main thread only. The window is one that the window manager does not
/// manage. Whenever another window is raised above it, it goes up again; but not without end against one that
/// does the same.
class X11Stacking : public QObject
{
    Q_OBJECT
public:
    /// Where the program's other windows belong. One that lies beneath another program's stays where it is.
    enum class OwnWindows { Above, Anywhere };

    /// Borrows \a events for life.
    X11Stacking(X11Events &events, OwnWindows ownWindows);

    /// Puts \a window in its place at once and keeps it there. \a inputWindow, which may be 0, goes along,
    /// directly above \a window.
    void keepOnTop(std::uint32_t window, std::uint32_t inputWindow = 0);
    void stop();
    /// Tells of \a window also what happens to it within its decoration: there it is moved and resized a
    /// little after the decoration, or alone.
    void watch(std::uint32_t window);

signals:
    /// Some other window was shown, hidden, moved or stacked anew; this one is in its place again.
    void desktopChanged();

private:
    using Stack = std::vector<StackedWindow>;

    void check();
    void restack(std::uint32_t ceiling);
    [[nodiscard]] bool isKept(const StackedWindow &window) const;
    [[nodiscard]] Stack::const_iterator ceilingOf(const Stack &stack) const;
    [[nodiscard]] bool isInPlace(const Stack &stack, Stack::const_iterator ceiling) const;
    [[nodiscard]] bool isOfShowing(const xcb_generic_event_t &event) const;
    [[nodiscard]] bool mayRestack();

    X11Connection &m_connection;
    X11Events &m_events;
    const OwnWindows m_ownWindows;
    std::uint32_t m_window = 0; ///< 0: nothing is kept
    std::uint32_t m_inputWindow = 0;
    QTimer m_soon;
    QElapsedTimer m_sinceRestack;
    int m_restacksInARow = 0;
};

} // namespace vornic
