#include "desktop/portal_key_names.h"

#include <QChar>
#include <QKeySequence>
#include <QStringList>

#include <algorithm>
#include <array>

namespace vornic {

namespace {

struct NamedKey {
    Qt::Key key;
    const char *name;
};

/// Keys that are not called by a character, as the keyboard's description has them.
constexpr std::array namedKeys {
    NamedKey { Qt::Key_Escape, "Escape" },
    NamedKey { Qt::Key_Tab, "Tab" },
    NamedKey { Qt::Key_Backspace, "BackSpace" },
    NamedKey { Qt::Key_Return, "Return" },
    NamedKey { Qt::Key_Enter, "KP_Enter" },
    NamedKey { Qt::Key_Space, "space" },
    NamedKey { Qt::Key_Insert, "Insert" },
    NamedKey { Qt::Key_Delete, "Delete" },
    NamedKey { Qt::Key_Pause, "Pause" },
    NamedKey { Qt::Key_Print, "Print" },
    NamedKey { Qt::Key_SysReq, "Sys_Req" },
    NamedKey { Qt::Key_Home, "Home" },
    NamedKey { Qt::Key_End, "End" },
    NamedKey { Qt::Key_Left, "Left" },
    NamedKey { Qt::Key_Up, "Up" },
    NamedKey { Qt::Key_Right, "Right" },
    NamedKey { Qt::Key_Down, "Down" },
    NamedKey { Qt::Key_PageUp, "Page_Up" },
    NamedKey { Qt::Key_PageDown, "Page_Down" },
    NamedKey { Qt::Key_Menu, "Menu" },
    NamedKey { Qt::Key_ScrollLock, "Scroll_Lock" },
    NamedKey { Qt::Key_MediaRecord, "XF86AudioRecord" },
    NamedKey { Qt::Key_MediaStop, "XF86AudioStop" },
    NamedKey { Qt::Key_MediaPlay, "XF86AudioPlay" },
};

QString nameOf(Qt::Key key)
{
    const auto *const named = std::ranges::find(namedKeys, key, &NamedKey::key);
    if (named != namedKeys.end())
        return QLatin1StringView(named->name);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35)
        return QStringLiteral("F%1").arg(key - Qt::Key_F1 + 1);
    if (key > Qt::Key_ydiaeresis)
        return {};
    const QChar character = QChar(static_cast<char16_t>(key)).toLower();
    const bool isAscii = character.unicode() <= Qt::Key_AsciiTilde;
    constexpr int hexadecimal = 16;
    // Every character has a name with its number, too.
    return isAscii && character.isLetterOrNumber()
        ? QString(character)
        : QStringLiteral("U%1").arg(character.unicode(), 4, hexadecimal, QLatin1Char('0')).toUpper();
}

} // namespace

QString portalKeyName(const QString &portableText)
{
    const QKeySequence sequence = QKeySequence::fromString(portableText, QKeySequence::PortableText);
    const QString name = sequence.count() == 1 ? nameOf(sequence[0].key()) : QString();
    if (name.isEmpty())
        return {};
    QStringList words;
    const Qt::KeyboardModifiers held = sequence[0].keyboardModifiers();
    if (held.testFlag(Qt::ControlModifier))
        words += QStringLiteral("CTRL");
    if (held.testFlag(Qt::AltModifier))
        words += QStringLiteral("ALT");
    if (held.testFlag(Qt::ShiftModifier))
        words += QStringLiteral("SHIFT");
    if (held.testFlag(Qt::MetaModifier))
        words += QStringLiteral("LOGO");
    return (words << name).join(u'+');
}

} // namespace vornic
