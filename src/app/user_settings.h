#pragma once

#include <memory>

namespace vornic {

class AudioDeviceList;
class VNOption;

/// What the user has chosen and finds again at the next start: the options, and the audio input.
///
/// Owned by the application delegate; main thread only.
class UserSettings
{
public:
    /// Without \a options they are the stored ones; where they are given, nothing is read or stored.
    explicit UserSettings(std::unique_ptr<VNOption> options);
    ~UserSettings();

    /// Null once when the stored options cannot be read; the next call makes fresh ones.
    [[nodiscard]] VNOption *options();
    /// Writes the options to disk; false, and logged, where it does not take them.
    [[nodiscard]] bool save() const;
    /// Selects the input that was chosen last; without it, or one, \a devices stay as they are.
    void restoreAudioDevice(AudioDeviceList &devices) const;
    void rememberAudioDevice(const AudioDeviceList &devices) const;

private:
    std::unique_ptr<VNOption> m_options;
    const bool m_areStored;
};

} // namespace vornic
