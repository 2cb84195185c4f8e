#include "record_sound_fixture.h"

#include <gmock/gmock.h>

namespace vornic {

using test::SoundServer;
using testing::probe;

INSTANTIATE_TEST_SUITE_P(Servers,
                         RecordSoundTest,
                         ::testing::Values(SoundServer::Kind::PulseAudio, SoundServer::Kind::PipeWire),
                         [](const auto &kind) {
                             return kind.param == SoundServer::Kind::PulseAudio ? "PulseAudio" : "PipeWire";
                         });

TEST_P(RecordSoundTest, DevicesAreListedAndTheNamedOneIsRecorded)
{
    startSound();
    EXPECT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    EXPECT_FALSE(sound->addOutput("headset", "Headset").isEmpty());
    EXPECT_FALSE(sound->addMicrophone("mic", "Desk microphone").isEmpty());
    sound->pactl({ "set-default-source", "speakers.monitor" });
    sound->pactl({ "set-default-sink", "headset" });
    const Result devices = vornic({ "devices" });
    EXPECT_EQ(devices.status, 0);
    EXPECT_EQ(devices.output.toStdString(), "Monitor of Speakers\nDesk microphone\nMonitor of Headset\n");

    const auto player = play({ "tone", "120", "1000", "0.25" });
    const Result named = record(small + QStringList { "--audio=Monitor of Headset", "--duration", "2" });
    ASSERT_EQ(named.status, 0) << named.error.toStdString();
    EXPECT_GT(secondsOfTone(), 1.5);
    const Result first = record(small + QStringList { "--overwrite", "--audio", "--duration", "2" });
    ASSERT_EQ(first.status, 0) << first.error.toStdString();
    EXPECT_GT(lengthOf(probe(movie()), "audio"), 1.8);
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
    EXPECT_EQ(record(small + QStringList { "--duration", "1" }).status, 0);
}

TEST_P(RecordSoundTest, ADeviceThatVanishesEndsTheSoundAndNotThePicture)
{
    startSound();
    EXPECT_FALSE(sound->addMicrophone("mic", "Desk microphone").isEmpty());
    const QString speakers = sound->addOutput("speakers", "Speakers");
    const auto player = play({ "tone", "120", "1000", "0.25" });
    const auto recorder
        = startVornic(QStringList { "record", "--ignore-low-space" } + small
                      + QStringList { "--audio=Monitor of Speakers", "--duration", "6", "o.mp4" });
    QString said;
    ASSERT_TRUE(waitForText(*recorder, "00:00:00", said)) << said.toStdString();
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    sound->remove(speakers);
    ASSERT_TRUE(waitForText(*recorder, "goes on without sound", said)) << said.toStdString();
    EXPECT_EQ(finish(*recorder).status, 0);
    EXPECT_NEAR(lengthOf(probe(movie()), "video"), 6, 0.3);
    EXPECT_GT(lengthOf(probe(movie()), "audio"), 2);
    EXPECT_LT(lengthOf(probe(movie()), "audio"), 5);
    EXPECT_GT(secondsOfTone(), 2);
}

TEST_P(RecordSoundTest, AServerThatDiesLeavesAPlayableMovie)
{
    startSound();
    EXPECT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    const auto recorder = startVornic(QStringList { "record", "--ignore-low-space" } + small
                                      + QStringList { "--audio", "--duration", "5", "o.mp4" });
    QString said;
    ASSERT_TRUE(waitForText(*recorder, "00:00:00", said)) << said.toStdString();
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    ASSERT_TRUE(sound->restart());
    ASSERT_TRUE(waitForText(*recorder, "goes on without sound", said)) << said.toStdString();
    EXPECT_EQ(finish(*recorder).status, 0);
    EXPECT_NEAR(lengthOf(probe(movie()), "video"), 5, 0.3);
    EXPECT_GT(lengthOf(probe(movie()), "audio"), 1);
}

TEST_P(RecordSoundTest, WhoWaitsForSoundIsToldSo)
{
    startSound();
    EXPECT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    if (sound->pactl({ "suspend-source", "speakers.monitor", "1" });
        GetParam() == SoundServer::Kind::PipeWire)
        GTEST_SKIP() << "this server wakes a suspended device for whoever records it";
    const auto recorder = startVornic(QStringList { "record", "--ignore-low-space" } + small
                                      + QStringList { "--audio", "--duration", "2", "o.mp4" });
    QString said;
    ASSERT_TRUE(waitForText(*recorder, "waiting for audio", said)) << said.toStdString();
    EXPECT_FALSE(said.contains("00:00:00"));
    sound->pactl({ "suspend-source", "speakers.monitor", "0" });
    EXPECT_EQ(finish(*recorder).status, 0);
    EXPECT_NEAR(lengthOf(probe(movie()), "video"), 2, 0.3);
    EXPECT_NEAR(lengthOf(probe(movie()), "audio"), lengthOf(probe(movie()), "video"), 0.1);
}

TEST_P(RecordSoundTest, SoundThatNeverComesLeavesNoMovieAndEndsWhenAsked)
{
    startSound();
    EXPECT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    if (sound->pactl({ "suspend-source", "speakers.monitor", "1" });
        GetParam() == SoundServer::Kind::PipeWire)
        GTEST_SKIP() << "this server wakes a suspended device for whoever records it";
    const auto recorder = startVornic(QStringList { "record", "--ignore-low-space", "--audio" } + small
                                      + QStringList { "o.mp4" });
    QString said;
    ASSERT_TRUE(waitForText(*recorder, "waiting for audio", said)) << said.toStdString();
    ::kill(static_cast<pid_t>(recorder->processId()), SIGINT);
    EXPECT_EQ(finish(*recorder).status, 1);
    EXPECT_FALSE(QFile::exists(movie()));
}

} // namespace vornic
