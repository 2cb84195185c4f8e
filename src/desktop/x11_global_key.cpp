#include "desktop/x11_global_key.h"

#include "desktop/x11_key_names.h"
#include "x11/x11_nesting.h"
#include "x11/xcb_reply.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace vornic {

std::unique_ptr<X11GlobalKey> X11GlobalKey::create()
{
    auto connection = X11Connection::open();
    return connection && !isInsideWayland(*connection)
        ? std::unique_ptr<X11GlobalKey>(new X11GlobalKey(std::move(connection)))
        : nullptr;
}

X11GlobalKey::X11GlobalKey(std::unique_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
    , m_events(*m_connection)
    , m_symbols(xcb_key_symbols_alloc(m_connection->get()))
{
    connect(&m_events, &X11Events::eventRead, this, &X11GlobalKey::eventRead);
}

X11GlobalKey::~X11GlobalKey() = default;

GlobalKey::Answer X11GlobalKey::listenFor(const QString &portableText)
{
    release();
    m_key = portableText;
    if (portableText.isEmpty())
        return Answer::Heard;
    const std::vector<Grab> grabs = grabsFor(portableText);
    if (grabs.empty())
        return Answer::NoSuchKey;
    return take(grabs) ? Answer::Heard : Answer::TakenByOther;
}

void X11GlobalKey::eventRead(const xcb_generic_event_t &event)
{
    switch (kindOf(event)) {
    case XCB_KEY_PRESS:
        // The server repeats a key that is held down as a release and a press of the same time.
        if (as<xcb_key_press_event_t>(event).time != m_releaseTime)
            emit pressed();
        break;
    case XCB_KEY_RELEASE:
        m_releaseTime = as<xcb_key_release_event_t>(event).time;
        break;
    case XCB_MAPPING_NOTIFY:
        keyboardChanged(as<xcb_mapping_notify_event_t>(event));
        break;
    default:
        break;
    }
}

/// The server tells of a change when another keyboard is used than before, too. A key that is the same stays grabbed: it
/// may be pressed at this very moment.
void X11GlobalKey::keyboardChanged(const xcb_mapping_notify_event_t &event)
{
    auto changed = event;
    xcb_refresh_keyboard_mapping(m_symbols.get(), &changed);
    if (event.request != XCB_MAPPING_POINTER && grabsFor(m_key) != m_grabs)
        static_cast<void>(listenFor(m_key));
}

/// One for each key that bears the symbol and each state of the locks, which would be modifiers as well.
std::vector<X11GlobalKey::Grab> X11GlobalKey::grabsFor(const QString &portableText) const
{
    const std::optional<X11Key> key = x11Key(portableText);
    if (!key)
        return {};
    const std::unique_ptr<xcb_keycode_t, XcbFree> codes(
        xcb_key_symbols_get_keycode(m_symbols.get(), key->symbol));
    const std::uint16_t numLock = numLockModifier();
    constexpr std::uint16_t capsLock = XCB_MOD_MASK_LOCK;
    std::vector<Grab> grabs;
    for (const xcb_keycode_t *code = codes.get(); code && *code != XCB_NO_SYMBOL; ++code) {
        for (const int locks : { 0, int { capsLock }, int { numLock }, capsLock | numLock })
            grabs.push_back({ *code, static_cast<std::uint16_t>(key->modifiers | locks) });
    }
    return grabs;
}

/// The modifier that the keyboard's Num Lock key is; the usual one where it has none.
std::uint16_t X11GlobalKey::numLockModifier() const
{
    constexpr xcb_keysym_t numLock = 0xff7f;
    constexpr std::size_t modifierCount = 8;
    const XcbReply<xcb_get_modifier_mapping_reply_t> reply(xcb_get_modifier_mapping_reply(
        m_connection->get(), xcb_get_modifier_mapping(m_connection->get()), nullptr));
    if (!reply)
        return XCB_MOD_MASK_2;
    const std::span codes(xcb_get_modifier_mapping_keycodes(reply.get()),
                          modifierCount * reply->keycodes_per_modifier);
    for (std::size_t i = 0; i < codes.size(); ++i) {
        if (codes[i] != 0 && xcb_key_symbols_get_keysym(m_symbols.get(), codes[i], 0) == numLock)
            return static_cast<std::uint16_t>(1U << (i / reply->keycodes_per_modifier));
    }
    return XCB_MOD_MASK_2;
}

bool X11GlobalKey::take(const std::vector<Grab> &grabs)
{
    xcb_connection_t *const connection = m_connection->get();
    std::vector<xcb_void_cookie_t> asked;
    asked.reserve(grabs.size());
    for (const Grab &grab : grabs)
        asked.push_back(xcb_grab_key_checked(connection,
                                             0,
                                             m_connection->root(),
                                             grab.modifiers,
                                             grab.code,
                                             XCB_GRAB_MODE_ASYNC,
                                             XCB_GRAB_MODE_ASYNC));
    m_grabs = grabs;
    bool isTaken = true;
    for (const xcb_void_cookie_t cookie : asked) {
        const XcbReply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
        isTaken = isTaken && !error;
    }
    if (!isTaken)
        release();
    m_events.flush();
    return isTaken && m_connection->isAlive();
}

void X11GlobalKey::release()
{
    for (const Grab &grab : std::exchange(m_grabs, {}))
        xcb_ungrab_key(m_connection->get(), grab.code, m_connection->root(), grab.modifiers);
    m_events.flush();
}

} // namespace vornic
