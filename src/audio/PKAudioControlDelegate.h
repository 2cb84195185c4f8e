#pragma once

namespace vornic {

class AudioControl;

/// Is told when input devices come, go or change their names; on the main thread.
class PKAudioControlDelegate
{
public:
    virtual void audioControlInputDeviceChanged(AudioControl & /*control*/) { }

protected:
    ~PKAudioControlDelegate() = default;
};

} // namespace vornic
