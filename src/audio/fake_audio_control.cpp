#include "audio/fake_audio_control.h"

#include "audio/fake_audio_recorder.h"

namespace vornic {

QStringList FakeAudioControl::inputDevicesName()
{
    return { QStringLiteral("Fake microphone"), QStringLiteral("Monitor of fake output") };
}

std::uint32_t FakeAudioControl::deviceIDFromName(const QString &name)
{
    // Device IDs are positions in the list, from 1 on; -1 for a name that is not in it becomes 0.
    return static_cast<std::uint32_t>(inputDevicesName().indexOf(name) + 1);
}

void FakeAudioControl::setDelegate(PKAudioControlDelegate * /*delegate*/)
{
}

std::unique_ptr<AudioRecorder> FakeAudioControl::createRecorder(std::uint32_t deviceID)
{
    return std::make_unique<FakeAudioRecorder>(deviceID);
}

} // namespace vornic
