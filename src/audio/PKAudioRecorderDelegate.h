#pragma once

#include "audio/AudioStreamBasicDescription.h"

#include <cstdint>

namespace vornic {

class AudioRecorder;

/// Receives what a recorder records.
///
/// Called on the recorder's own thread, and not once stopRecord() has returned.
class PKAudioRecorderDelegate
{
public:
    /// One chunk of interleaved samples; \a bytes are valid only during the call.
    virtual void dataRecord(AudioRecorder & /*recorder*/,
                            const void * /*bytes*/,
                            std::uint32_t /*byteCount*/,
                            const AudioStreamBasicDescription & /*format*/)
    {
    }
    /// The input is gone: no sound comes until soundCameBack().
    virtual void soundWasLost(AudioRecorder & /*recorder*/) { }
    /// The same input is there again, and is recorded: what was missed is silence.
    virtual void soundCameBack(AudioRecorder & /*recorder*/) { }

protected:
    ~PKAudioRecorderDelegate() = default;
};

} // namespace vornic
