#include "record_sound_fixture.h"

#include <gmock/gmock.h>

namespace vornic {

using test::SoundServer;
using testing::probe;

INSTANTIATE_TEST_SUITE_P(Servers, RecordSoundTest, bothServers, nameOfServer);

TEST_P(RecordSoundTest, DevicesAreListedAndTheNamedOneIsRecorded)
{
    startSound();
    EXPECT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    EXPECT_FALSE(sound->addOutput("headset", "Headset").isEmpty());
    EXPECT_FALSE(sound->addMicrophone("mic", "Desk microphone").isEmpty());
    ASSERT_TRUE(sound->setDefault("source", "speakers.monitor"));
    ASSERT_TRUE(sound->setDefault("sink", "headset"));
    const Result devices = vornic({ "devices" });
    EXPECT_EQ(devices.status, 0);
    EXPECT_EQ(devices.output.toStdString(), "Monitor of Speakers\nDesk microphone\nMonitor of Headset\n");

    const auto player = play({ "tone", "120", "1000", "0.25" });
    const Result named = record(small + QStringList { "--audio=Monitor of Headset", "--duration", "1" });
    ASSERT_EQ(named.status, 0) << named.error.toStdString();
    EXPECT_GT(secondsOfTone(), 0.7);
    const Result first = record(small + QStringList { "--overwrite", "--audio", "--duration", "1" });
    ASSERT_EQ(first.status, 0) << first.error.toStdString();
    EXPECT_GT(lengthOf(probe(movie()), "audio"), 0.8);
    EXPECT_EQ(secondsOfTone(), 0);
}

TEST_P(RecordSoundTest, AnUnknownNameIsRefusedWithTheListOfThoseThereAre)
{
    startSound();
    EXPECT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    EXPECT_FALSE(sound->addMicrophone("mic", "Desk microphone").isEmpty());
    const Result result = record({ "--audio=Kitchen", "--duration", "2" });
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.error.toStdString(), ::testing::HasSubstr("\"Kitchen\""));
    EXPECT_THAT(result.error.toStdString(), ::testing::HasSubstr("\n  Desk microphone\n"));
    EXPECT_THAT(result.error.toStdString(), ::testing::HasSubstr("\n  Monitor of Speakers\n"));
    EXPECT_FALSE(QFile::exists(movie()));
}

TEST_P(RecordSoundTest, WithoutASoundServerThereAreNoDevices)
{
    startSound();
    sound->kill();
    const Result devices = vornic({ "devices" });
    EXPECT_EQ(devices.status, 1);
    EXPECT_TRUE(devices.output.isEmpty());
    const Result recording = record({ "--audio", "--duration", "2" });
    EXPECT_EQ(recording.status, 1);
    EXPECT_THAT(recording.error.toStdString(), ::testing::HasSubstr("There is no audio input device"));
    EXPECT_EQ(record(small + QStringList { "--duration", "0.5" }).status, 0);
}

/// A recording whose sound ends in the middle.
class LostSoundTest : public RecordSoundTest
{
protected:
    /// Records for a second with sound, does \a loses, and records for a second more. The movie is complete: its
    /// picture goes on and its sound does not. Where the machine was so busy that nothing was recorded in that second,
    /// it is done again, from \a prepares on.
    void recordWhile(const std::function<void()> &prepares, const std::function<void()> &loses)
    {
        double goesOnFor = 0;
        for (int attempt = 0; attempt < attempts && goesOnFor <= 0.8 && !HasFatalFailure(); ++attempt) {
            prepares();
            recordOnceWhile(loses);
            goesOnFor = lengthOf(probe(movie()), "video") - lengthOf(probe(movie()), "audio");
        }
        EXPECT_GT(goesOnFor, 0.8);
        EXPECT_GT(lengthOf(probe(movie()), "audio"), 0.8);
    }

private:
    void recordOnceWhile(const std::function<void()> &loses)
    {
        const auto recorder = startVornic(QStringList { "record", "--ignore-low-space", "--overwrite" }
                                          + small + QStringList { "--audio=Monitor of Speakers", "o.mp4" });
        QString said;
        ASSERT_TRUE(waitForText(*recorder, "00:00:00", said)) << said.toStdString();
        letPass(std::chrono::seconds(1));
        loses();
        ASSERT_TRUE(waitForText(*recorder, "goes on without sound", said)) << said.toStdString();
        letPass(std::chrono::seconds(1));
        signal(*recorder, SIGINT);
        const Result result = finish(*recorder);
        EXPECT_EQ(result.status, 0) << result.error.toStdString();
    }
};

INSTANTIATE_TEST_SUITE_P(Servers, LostSoundTest, bothServers, nameOfServer);

TEST_P(LostSoundTest, ADeviceThatVanishesEndsTheSoundAndNotThePicture)
{
    startSound();
    EXPECT_FALSE(sound->addMicrophone("mic", "Desk microphone").isEmpty());
    QString speakers;
    std::unique_ptr<QProcess> player;
    recordWhile(
        [&] {
            speakers = sound->addOutput("speakers", "Speakers");
            player = play({ "tone", "120", "1000", "0.25" });
        },
        [&] { sound->remove(speakers); });
    EXPECT_GT(secondsOfTone(), 0.7);
}

TEST_P(LostSoundTest, AServerThatDiesLeavesAPlayableMovie)
{
    startSound();
    recordWhile([&] { EXPECT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty()); },
                [&] { ASSERT_TRUE(sound->restart()); });
}

TEST_P(RecordSoundTest, WhoWaitsForSoundIsToldSo)
{
    startSound();
    EXPECT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    if (sound->pactl({ "suspend-sink", "speakers", "1" }); GetParam() == SoundServer::Kind::PipeWire)
        GTEST_SKIP() << "this server wakes a suspended device for whoever records it";
    const auto recorder = startVornic(QStringList { "record", "--ignore-low-space" } + small
                                      + QStringList { "--audio", "--duration", "4", "o.mp4" });
    QString said;
    ASSERT_TRUE(waitForText(*recorder, "waiting for audio", said)) << said.toStdString();
    EXPECT_FALSE(said.contains("00:00:00"));
    sound->pactl({ "suspend-sink", "speakers", "0" });
    EXPECT_EQ(finish(*recorder).status, 0);
    EXPECT_NEAR(lengthOf(probe(movie()), "video"), 4, 0.3) << "what was waited does not count";
    EXPECT_NEAR(lengthOf(probe(movie()), "audio"), lengthOf(probe(movie()), "video"), 0.1);
}

TEST_P(RecordSoundTest, SoundThatNeverComesCostsNoMoreThanTheSound)
{
    startSound();
    EXPECT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    if (sound->pactl({ "suspend-sink", "speakers", "1" }); GetParam() == SoundServer::Kind::PipeWire)
        GTEST_SKIP() << "this server wakes a suspended device for whoever records it";
    // Stopped before the program gives up waiting, and after that.
    for (const QString &text : { QString("waiting for audio"), QString("00:00:00") }) {
        const auto recorder
            = startVornic(QStringList { "record", "--ignore-low-space", "--overwrite", "--audio" } + small
                          + QStringList { "o.mp4" });
        QString said;
        ASSERT_TRUE(waitForText(*recorder, text, said)) << said.toStdString();
        signal(*recorder, SIGINT);
        finish(*recorder);
        const QJsonObject made = probe(movie());
        EXPECT_FALSE(testing::streamOf(made, "video").isEmpty()) << text.toStdString();
        EXPECT_TRUE(testing::streamOf(made, "audio").isEmpty()) << said.toStdString();
    }
}

/// A device that is there, and gives no sound.
class SilentSoundTest : public RecordSoundTest
{
protected:
    /// A pipe that nobody writes to.
    QString loadSilentDevice() const
    {
        return sound->pactl({ "load-module", "module-pipe-source", "file=" + folder.filePath("sound") });
    }
    Result recordSilent(const char *duration)
    {
        startSound();
        EXPECT_FALSE(loadSilentDevice().isEmpty());
        return record(small + QStringList { "--audio", "--duration", duration });
    }
    const QString missing = "vornic: No sound came: the movie has none.\n";
};

// Only this server has a device that gives nothing, and one of any name.
INSTANTIATE_TEST_SUITE_P(Servers,
                         SilentSoundTest,
                         ::testing::Values(SoundServer::Kind::PulseAudio),
                         nameOfServer);

TEST_P(SilentSoundTest, WithoutItTheRecordingGoesOnUntilItsTimeIsOver)
{
    const Result result = recordSilent("5");
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.error.toStdString(),
                ::testing::HasSubstr("vornic: No sound has come; the recording goes on without it.\n"));
    EXPECT_TRUE(result.error.endsWith(missing)) << result.error.toStdString();
    EXPECT_EQ(result.output.trimmed().split('\n').last(), "o.mp4");
    EXPECT_GT(lengthOf(probe(movie()), "video"), 0.5);
    EXPECT_LT(lengthOf(probe(movie()), "video"), 4) << "the time counts from the start";
    EXPECT_TRUE(testing::streamOf(probe(movie()), "audio").isEmpty());
}

TEST_P(SilentSoundTest, AShortRecordingHoldsAPictureAllTheSame)
{
    const Result result = recordSilent("0.5");
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(result.error.endsWith(missing)) << result.error.toStdString();
    EXPECT_GT(lengthOf(probe(movie()), "video"), 0);
}

TEST_P(SilentSoundTest, AStopWhileItIsWaitedForKeepsAPicture)
{
    startSound();
    EXPECT_FALSE(loadSilentDevice().isEmpty());
    const auto recorder = startVornic(QStringList { "record", "--ignore-low-space", "--audio" } + small
                                      + QStringList { "o.mp4" });
    QString said;
    ASSERT_TRUE(waitForText(*recorder, "waiting for audio", said)) << said.toStdString();
    signal(*recorder, SIGINT);
    EXPECT_EQ(finish(*recorder).status, 3);
    EXPECT_GT(lengthOf(probe(movie()), "video"), 0);
}

TEST_P(SilentSoundTest, NamesWithControlCharactersAreListedOneALine)
{
    startSound();
    EXPECT_FALSE(sound->addMicrophone("mic", "Desk\n\x1b[2Jmicrophone").isEmpty());
    const Result devices = vornic({ "devices" });
    EXPECT_EQ(devices.output.toStdString(), "Desk\\n\\x1b[2Jmicrophone\n");
    EXPECT_EQ(record({ "--audio=Kitchen" }).error.toStdString(),
              "vornic: There is no audio input device \"Kitchen\". Available devices:\n"
              "  Desk\\n\\x1b[2Jmicrophone\n");
    const QString asListed = devices.output.trimmed();
    const Result result = record(small + QStringList { "--audio=" + asListed, "--duration", "0.5" });
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
}

} // namespace vornic
