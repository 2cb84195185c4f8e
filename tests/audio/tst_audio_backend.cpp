#include "audio/audio_backend.h"
#include "audio/audio_control.h"
#include "audio/audio_recorder.h"
#include "audio/null_audio_control.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace vornic;

namespace {

/// Of a backend that is not there, the sentence for the user.
std::string reasonOf(const QByteArray &id)
{
    const auto control = createAudioControl(id);
    const auto *none = dynamic_cast<NullAudioControl *>(control.get());
    return none ? none->reason().toStdString() : std::string();
}

TEST(AudioBackendTest, TheSoundServerIsTheOnlyOneThatIsSelectedByItself)
{
    std::vector<std::string_view> ids;
    std::vector<std::string_view> selectedByItself;
    for (const AudioBackendEntry &entry : audioBackends()) {
        ids.push_back(entry.id);
        if (entry.selectedByItself)
            selectedByItself.push_back(entry.id);
    }
    EXPECT_EQ(ids, (std::vector<std::string_view> { "pulse", "fake", "none" }));
    EXPECT_EQ(selectedByItself, std::vector<std::string_view> { "pulse" });
}

TEST(AudioBackendTest, AnIdForcesABackend)
{
    EXPECT_EQ(createAudioControl("fake")->inputDevicesName(),
              QStringList({ "Fake microphone", "Monitor of fake output" }));
    EXPECT_EQ(reasonOf("fake"), "");
}

TEST(AudioBackendTest, SoundThatIsSwitchedOffHasNoDevices)
{
    EXPECT_EQ(reasonOf("none"), "Sound is switched off by the environment variable VORNIC_AUDIO.");
    const auto none = createAudioControl("none");
    EXPECT_TRUE(none->inputDevicesName().isEmpty());
    EXPECT_EQ(none->deviceIDFromName("Fake microphone"), 0U);
    EXPECT_FALSE(none->createRecorder(1)->startRecordWithFormat(defaultAudioStreamBasicDescription()));
}

TEST(AudioBackendTest, AWrongIdIsToldInOneSentenceWithTheIdsThatThereAre)
{
    EXPECT_EQ(reasonOf("loud"),
              "VORNIC_AUDIO names the sound backend \"loud\", but there are only: pulse, fake, none.");
    EXPECT_TRUE(createAudioControl("loud")->inputDevicesName().isEmpty());
}

TEST(AudioBackendTest, TheProcessHasOneThatTheEnvironmentChoosesAtTheFirstCall)
{
    qputenv("VORNIC_AUDIO", "fake");
    AudioControl &first = mainAudioControl();
    EXPECT_EQ(first.inputDevicesName().size(), 2);
    EXPECT_EQ(noAudioReason(), "");
    qputenv("VORNIC_AUDIO", "none");
    EXPECT_EQ(&mainAudioControl(), &first);
    qunsetenv("VORNIC_AUDIO");
}

} // namespace
