#include "audio/null_audio_control.h"

namespace vornic {

namespace {

/// Made by NullAudioControl for callers that ask for a recorder all the same; never records.
class NullAudioRecorder final : public AudioRecorder
{
public:
    void setDelegate(PKAudioRecorderDelegate * /*delegate*/) override { }
    void setDeviceID(std::uint32_t /*deviceID*/) override { }
    [[nodiscard]] bool startRecordWithFormat(const AudioStreamBasicDescription & /*format*/) override
    {
        return false;
    }
    [[nodiscard]] AudioStreamBasicDescription currentDataFormat() const override { return {}; }
    void stopRecord() override { }
};

} // namespace

std::unique_ptr<AudioRecorder> NullAudioControl::createRecorder(std::uint32_t /*deviceID*/)
{
    return std::make_unique<NullAudioRecorder>();
}

} // namespace vornic
