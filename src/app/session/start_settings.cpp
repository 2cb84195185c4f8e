#include "app/session/start_settings.h"

#include "base/user_defaults.h"

#include <algorithm>

namespace vornic::start_settings {

namespace {

const QString countdownKey = QStringLiteral("com.kavlor.countdown");
const QString audioDeviceKey = QStringLiteral("com.kavlor.audioDevice");
const QString shortcutKey = QStringLiteral("com.kavlor.shortcut");
const QString pauseShortcutKey = QStringLiteral("com.kavlor.pauseShortcut");

QString storedKey(const QString &key, const QString &unlessStored)
{
    const QVariant stored = user_defaults::value(key);
    return stored.isValid() ? stored.toString() : unlessStored;
}

} // namespace

int countdownSeconds()
{
    const int stored = user_defaults::value(countdownKey).toInt();
    return std::ranges::count(countdowns, stored) > 0 ? stored : 0;
}

void setCountdownSeconds(int seconds)
{
    user_defaults::setValue(countdownKey, seconds);
}

QString shortcut()
{
    return storedKey(shortcutKey, QStringLiteral("Ctrl+Alt+R"));
}

void setShortcut(const QString &portableText)
{
    user_defaults::setValue(shortcutKey, portableText);
}

QString pauseShortcut()
{
    return storedKey(pauseShortcutKey, QStringLiteral("Ctrl+Alt+P"));
}

void setPauseShortcut(const QString &portableText)
{
    user_defaults::setValue(pauseShortcutKey, portableText);
}

QString audioDevice()
{
    return user_defaults::value(audioDeviceKey).toString();
}

void setAudioDevice(const QString &name)
{
    user_defaults::setValue(audioDeviceKey, name);
}

} // namespace vornic::start_settings
