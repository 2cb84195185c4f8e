#pragma once

#include "desktop/global_key.h"
#include "x11/x11_connection.h"
#include "x11/x11_events.h"

#include <xcb/xcb_keysyms.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace vornic {

/// A key that the X server sends to us alone: a passive grab on the root window.
///
/// Made by GlobalKey::create(); main thread only. The grab holds whatever the state of Caps Lock and Num Lock, and
/// follows the keyboard when its layout changes.
class X11GlobalKey final : public GlobalKey
{
    Q_OBJECT
public:
    /// Null without an X server, and inside a Wayland session, whose windows' keys the server never hears.
    [[nodiscard]] static std::unique_ptr<X11GlobalKey> create();
    ~X11GlobalKey() override;

    [[nodiscard]] Answer listenFor(const QString &portableText) override;

private:
    /// A key of the keyboard and the modifiers that are held with it.
    struct Grab {
        xcb_keycode_t code = 0;
        std::uint16_t modifiers = 0;

        bool operator==(const Grab &) const = default;
    };
    struct FreeSymbols {
        void operator()(xcb_key_symbols_t *symbols) const { xcb_key_symbols_free(symbols); }
    };

    explicit X11GlobalKey(std::unique_ptr<X11Connection> connection);
    void eventRead(const xcb_generic_event_t &event);
    void keyboardChanged(const xcb_mapping_notify_event_t &event);
    [[nodiscard]] std::vector<Grab> grabsFor(const QString &portableText) const;
    [[nodiscard]] std::uint16_t numLockModifier() const;
    [[nodiscard]] bool take(const std::vector<Grab> &grabs);
    void release();

    std::unique_ptr<X11Connection> m_connection;
    X11Events m_events;
    std::unique_ptr<xcb_key_symbols_t, FreeSymbols> m_symbols;
    QString m_key; ///< as it was asked for
    std::vector<Grab> m_grabs;
    std::uint32_t m_releaseTime = 0; ///< by the server's clock
};

} // namespace vornic
