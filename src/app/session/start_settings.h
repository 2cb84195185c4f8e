#pragma once

#include <QString>

#include <array>

namespace vornic::start_settings {

/// How a recording is started, beside the options: kept in the user defaults at once, not only at the end of the
/// program. Main thread only.

/// What may be chosen, in seconds.
inline constexpr std::array countdowns { 0, 3, 5, 10 };

/// How long is counted down on the screen before a recording begins; one of countdowns, 0 where nothing is stored.
[[nodiscard]] int countdownSeconds();
void setCountdownSeconds(int seconds);

/// The key that starts and stops from any program, as QKeySequence writes it portably; empty: none. "Ctrl+Alt+R"
/// where nothing is stored.
[[nodiscard]] QString shortcut();
void setShortcut(const QString &portableText);

/// The same for the key that pauses a recording and goes on with it; "Ctrl+Alt+P" where nothing is stored.
[[nodiscard]] QString pauseShortcut();
void setPauseShortcut(const QString &portableText);

/// The name of the audio input that the user chose last; empty where none was chosen.
[[nodiscard]] QString audioDevice();
void setAudioDevice(const QString &name);

} // namespace vornic::start_settings
