#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

namespace vornic {

class X11Connection;
class X11Events;

/// Keeps a window above all others of the desktop, menus too, but directly beneath one of ours.
///
/// Made by OverlayServer; main thread only. The window is one that the window manager does not manage.
/// Whenever another window is raised above it, it goes up again; but not without end against one that does
/// the same.
class X11Stacking : public QObject
{
    Q_OBJECT
public:
    /// Borrows \a events for life.
    explicit X11Stacking(X11Events &events);

    /// Puts \a window in its place at once and keeps it there: directly beneath \a windowAbove, or at the very
    /// top while that one is not shown or is 0. \a inputWindow goes along, directly above \a window.
    void keepOnTop(std::uint32_t window, std::uint32_t windowAbove, std::uint32_t inputWindow);
    void stop();
    /// Tells of \a window also what happens to it within its decoration: there it is moved and resized a
    /// little after the decoration, or alone.
    void watch(std::uint32_t window);

signals:
    /// Some other window was shown, hidden, moved or stacked anew; this one is in its place again.
    void desktopChanged();

private:
    void check();
    void restack(std::uint32_t frameAbove);
    [[nodiscard]] std::vector<std::uint32_t> windowsFromBelow() const;
    [[nodiscard]] std::uint32_t topLevelOf(std::uint32_t window) const;
    [[nodiscard]] std::uint32_t frameAbove() const;
    [[nodiscard]] bool isViewable(std::uint32_t window) const;
    [[nodiscard]] bool isInPlace(std::uint32_t frameAbove) const;
    [[nodiscard]] bool isOfShowing(const xcb_generic_event_t &event) const;
    [[nodiscard]] bool mayRestack();

    X11Connection &m_connection;
    X11Events &m_events;
    std::uint32_t m_window = 0; ///< 0: nothing is kept
    std::uint32_t m_windowAbove = 0;
    std::uint32_t m_inputWindow = 0;
    QTimer m_soon;
    QElapsedTimer m_sinceRestack;
    int m_restacksInARow = 0;
};

} // namespace vornic
