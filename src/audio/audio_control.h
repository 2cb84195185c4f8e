#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>

namespace vornic {

class AudioRecorder;
class PKAudioControlDelegate;

/// The audio input devices that can be recorded; one class for each sound backend.
///
/// Made through the table of backends (mainAudioControl()), or by a test, and lent to the application delegate.
/// Used on the main thread.
class AudioControl
{
public:
    virtual ~AudioControl() = default;
    AudioControl(const AudioControl &) = delete;
    AudioControl &operator=(const AudioControl &) = delete;

    /// The ID of what the system plays: the monitor of the output that is the default one at the time. It is none of the
    /// list's.
    static constexpr std::uint32_t systemSoundID = 0xFFFFFFFF;
    /// Whether there is an output to record it from.
    [[nodiscard]] virtual bool hasSystemSound() { return false; }
    /// Whether that device is what the system plays, as it is now.
    [[nodiscard]] virtual bool isSystemSound(std::uint32_t /*deviceID*/) { return false; }

    /// Whether that device is the monitor of an output, which is silent while nothing is played.
    [[nodiscard]] virtual bool isMonitor(std::uint32_t /*deviceID*/) { return false; }

    /// The devices' names in the order in which to show them, the desktop's default device first. No two
    /// devices have the same name.
    [[nodiscard]] virtual QStringList inputDevicesName() = 0;
    /// 0 when no device has that name. A device keeps its ID as long as the program runs, also while it is
    /// unplugged.
    [[nodiscard]] virtual std::uint32_t deviceIDFromName(const QString &name) = 0;
    /// Borrows \a delegate; null for none. It is called when the list of names becomes another than the one
    /// that inputDevicesName() returned last before this call, and at every change after that.
    virtual void setDelegate(PKAudioControlDelegate *delegate) = 0;
    /// A recorder of that device, which may not outlive the control.
    [[nodiscard]] virtual std::unique_ptr<AudioRecorder> createRecorder(std::uint32_t deviceID) = 0;

protected:
    AudioControl() = default;
};

} // namespace vornic
