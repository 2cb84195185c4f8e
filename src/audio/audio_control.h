#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>

namespace vornic {

class AudioRecorder;
class PKAudioControlDelegate;

/// The audio input devices there are; PKAudioControl asks the desktop's sound server for them.
///
/// Made by main, or by a test, and lent to the application delegate; used on the main thread.
class AudioControl
{
public:
    virtual ~AudioControl() = default;
    AudioControl(const AudioControl &) = delete;
    AudioControl &operator=(const AudioControl &) = delete;

    /// The devices' names, each another, in the order to show them; the desktop's default device is the
    /// first.
    [[nodiscard]] virtual QStringList inputDevicesName() = 0;
    /// 0 when no device has that name. A device keeps its number as long as the program runs.
    [[nodiscard]] virtual std::uint32_t deviceIDFromName(const QString &name) = 0;
    /// Borrows \a delegate; null for none. It is told of lists that differ from the one read last before
    /// this.
    virtual void setDelegate(PKAudioControlDelegate *delegate) = 0;
    [[nodiscard]] virtual std::unique_ptr<AudioRecorder> createRecorder(std::uint32_t deviceID) = 0;

protected:
    AudioControl() = default;
};

} // namespace vornic
