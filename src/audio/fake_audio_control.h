#pragma once

#include "audio/audio_control.h"

namespace vornic {

/// Audio input devices without a sound server: two that are always there.
///
/// For tests, and chosen only by VORNIC_AUDIO=fake. Their sound is described at FakeAudioRecorder. On the main
/// thread.
class FakeAudioControl final : public AudioControl
{
public:
    static constexpr std::uint32_t microphoneID = 1; ///< plays a tone with clicks
    static constexpr std::uint32_t monitorID = 2;    ///< is silent

    [[nodiscard]] bool hasSystemSound() override { return true; }
    [[nodiscard]] bool isMonitor(std::uint32_t deviceID) override { return deviceID != microphoneID; }
    /// "Fake microphone" and "Monitor of fake output".
    [[nodiscard]] QStringList inputDevicesName() override;
    [[nodiscard]] std::uint32_t deviceIDFromName(const QString &name) override;
    /// The devices never change: \a delegate is not told of anything.
    void setDelegate(PKAudioControlDelegate *delegate) override;
    [[nodiscard]] std::unique_ptr<AudioRecorder> createRecorder(std::uint32_t deviceID) override;
};

} // namespace vornic
