#pragma once

#include "audio/AudioStreamBasicDescription.h"

#include <cstdint>

namespace vornic {

class PKAudioRecorderDelegate;

/// Records one input device; one class for each sound backend.
///
/// Made by an AudioControl and owned by the caller, who may use it on any thread but the recorder's own, one
/// call at a time.
class AudioRecorder
{
public:
    virtual ~AudioRecorder() = default;
    AudioRecorder(const AudioRecorder &) = delete;
    AudioRecorder &operator=(const AudioRecorder &) = delete;

    /// Borrows \a delegate; set before the first start.
    virtual void setDelegate(PKAudioRecorderDelegate *delegate) = 0;
    /// Selects the device to record, also while a recording runs. 0 is no device.
    virtual void setDeviceID(std::uint32_t deviceID) = 0;
    /// True when chunks will come, in the format of currentDataFormat(). Blocks for a few seconds at most.
    [[nodiscard]] virtual bool startRecordWithFormat(const AudioStreamBasicDescription &format) = 0;
    [[nodiscard]] virtual AudioStreamBasicDescription currentDataFormat() const = 0;
    /// May be called when already stopped. The delegate is not called any more once it has returned.
    virtual void stopRecord() = 0;

protected:
    AudioRecorder() = default;
};

} // namespace vornic
