#pragma once

#include "audio/audio_control.h"
#include "audio/audio_recorder.h"

#include <utility>

namespace vornic {

/// The audio input devices of a program without sound: none.
///
/// Made through the table of backends; carries the sentence that tells the user why. On the main thread.
class NullAudioControl final : public AudioControl
{
public:
    explicit NullAudioControl(QString reason)
        : m_reason(std::move(reason))
    {
    }

    [[nodiscard]] const QString &reason() const { return m_reason; }

    [[nodiscard]] QStringList inputDevicesName() override { return {}; }
    [[nodiscard]] std::uint32_t deviceIDFromName(const QString & /*name*/) override { return 0; }
    void setDelegate(PKAudioControlDelegate * /*delegate*/) override { }
    /// A recorder that never starts.
    [[nodiscard]] std::unique_ptr<AudioRecorder> createRecorder(std::uint32_t deviceID) override;

private:
    const QString m_reason;
};

} // namespace vornic
