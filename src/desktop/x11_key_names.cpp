#include "desktop/x11_key_names.h"

#include <QChar>
#include <QKeySequence>

#include <xcb/xcb.h>

#include <algorithm>
#include <array>

namespace vornic {

namespace {

struct NamedKey {
    Qt::Key key;
    std::uint32_t symbol;
};

/// Keys whose symbol is not their character. X Window System Protocol, appendix A: the 0xff.. symbols are those of
/// function keys; 0x1008ff.. are the vendor symbols for the keys of media keyboards.
constexpr std::array namedKeys {
    NamedKey { Qt::Key_Escape, 0xff1b },
    NamedKey { Qt::Key_Tab, 0xff09 },
    NamedKey { Qt::Key_Backspace, 0xff08 },
    NamedKey { Qt::Key_Return, 0xff0d },
    NamedKey { Qt::Key_Enter, 0xff8d },
    NamedKey { Qt::Key_Insert, 0xff63 },
    NamedKey { Qt::Key_Delete, 0xffff },
    NamedKey { Qt::Key_Pause, 0xff13 },
    NamedKey { Qt::Key_Print, 0xff61 },
    NamedKey { Qt::Key_SysReq, 0xff15 },
    NamedKey { Qt::Key_Home, 0xff50 },
    NamedKey { Qt::Key_End, 0xff57 },
    NamedKey { Qt::Key_Left, 0xff51 },
    NamedKey { Qt::Key_Up, 0xff52 },
    NamedKey { Qt::Key_Right, 0xff53 },
    NamedKey { Qt::Key_Down, 0xff54 },
    NamedKey { Qt::Key_PageUp, 0xff55 },
    NamedKey { Qt::Key_PageDown, 0xff56 },
    NamedKey { Qt::Key_Menu, 0xff67 },
    NamedKey { Qt::Key_ScrollLock, 0xff14 },
    NamedKey { Qt::Key_MediaRecord, 0x1008ff1c },
    NamedKey { Qt::Key_MediaStop, 0x1008ff15 },
    NamedKey { Qt::Key_MediaPlay, 0x1008ff14 },
};

std::optional<std::uint32_t> symbolOf(Qt::Key key)
{
    const auto *const named = std::ranges::find(namedKeys, key, &NamedKey::key);
    if (named != namedKeys.end())
        return named->symbol;
    constexpr std::uint32_t firstFunctionKey = 0xffbe;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35)
        return firstFunctionKey + static_cast<std::uint32_t>(key - Qt::Key_F1);
    // The symbol of a letter or sign of Latin-1 is its character, a key's own is the small letter.
    if ((key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde)
        || (key >= Qt::Key_nobreakspace && key <= Qt::Key_ydiaeresis))
        return QChar(static_cast<char16_t>(key)).toLower().unicode();
    return std::nullopt;
}

std::uint16_t modifierMask(Qt::KeyboardModifiers modifiers)
{
    int mask = 0;
    if (modifiers.testFlag(Qt::ShiftModifier))
        mask |= XCB_MOD_MASK_SHIFT;
    if (modifiers.testFlag(Qt::ControlModifier))
        mask |= XCB_MOD_MASK_CONTROL;
    if (modifiers.testFlag(Qt::AltModifier))
        mask |= XCB_MOD_MASK_1;
    if (modifiers.testFlag(Qt::MetaModifier))
        mask |= XCB_MOD_MASK_4;
    return static_cast<std::uint16_t>(mask);
}

} // namespace

std::optional<X11Key> x11Key(const QString &portableText)
{
    const QKeySequence sequence = QKeySequence::fromString(portableText, QKeySequence::PortableText);
    if (sequence.count() != 1)
        return std::nullopt;
    const QKeyCombination keys = sequence[0];
    const std::optional<std::uint32_t> symbol = symbolOf(keys.key());
    return symbol ? std::optional(X11Key { *symbol, modifierMask(keys.keyboardModifiers()) }) : std::nullopt;
}

} // namespace vornic
