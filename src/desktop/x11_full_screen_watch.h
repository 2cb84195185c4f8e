#pragma once

#include "desktop/full_screen_watch.h"
#include "x11/x11_connection.h"
#include "x11/x11_events.h"

#include <cstdint>
#include <memory>

namespace vornic {

/// What the window manager says of the window with the focus.
///
/// Made by FullScreenWatch::create(); main thread only. Extended Window Manager Hints 1.5: _NET_ACTIVE_WINDOW of
/// the root window and _NET_WM_STATE of that window.
class X11FullScreenWatch final : public FullScreenWatch
{
    Q_OBJECT
public:
    /// Null without an X server.
    [[nodiscard]] static std::unique_ptr<X11FullScreenWatch> create();

    [[nodiscard]] bool isFullScreen() const override { return m_isFullScreen; }

private:
    explicit X11FullScreenWatch(std::unique_ptr<X11Connection> connection);
    void eventRead(const xcb_generic_event_t &event);
    void followActiveWindow();
    void look();

    std::unique_ptr<X11Connection> m_connection;
    X11Events m_events;
    std::uint32_t m_active = 0; ///< the window with the focus; 0: none
    bool m_isFullScreen = false;
};

} // namespace vornic
