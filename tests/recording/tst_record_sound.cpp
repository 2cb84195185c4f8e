#include "recording_fixture.h"
#include "sound_analysis.h"
#include "support/sound_server.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace vornic {

using test::SoundServer;
using testing::decodedSound;
using testing::probe;
using testing::streamOf;

/// The built program with a display and a sound server of the test's own.
class RecordSoundTest : public RecordingTest, public ::testing::WithParamInterface<SoundServer::Kind>
{
protected:
    void SetUp() override
    {
        if (!SoundServer::isInstalled(GetParam()))
            GTEST_SKIP() << "this sound server is not installed";
        startServer({ 640, 480 });
    }
    void startSound(int quantum = 0)
    {
        sound = SoundServer::start(GetParam(), quantum);
        ASSERT_TRUE(sound);
    }

    std::unique_ptr<QProcess> play(const QStringList &what) const
    {
        auto player = start(QStringLiteral(VORNIC_PLAY_SOUND), what);
        player->waitForReadyRead(20'000);
        return player;
    }

    static double lengthOf(const QJsonObject &probed, const QString &type)
    {
        return streamOf(probed, type)["duration"].toString().toDouble();
    }

    /// How much of the movie sounds with 1 kHz, in seconds.
    double secondsOfTone() const
    {
        const std::vector<HeardTone> tones = tonesIn(decodedSound(movie()), 1000);
        return static_cast<double>(
                   std::ranges::count_if(tones, [](const HeardTone &tone) { return tone.amplitude > 0.1; }))
            / 100;
    }

    const QStringList small { "--region", "0,0,160,120" };
    std::unique_ptr<SoundServer> sound;
};

INSTANTIATE_TEST_SUITE_P(Servers,
                         RecordSoundTest,
                         ::testing::Values(SoundServer::Kind::PulseAudio, SoundServer::Kind::PipeWire),
                         [](const auto &kind) {
                             return kind.param == SoundServer::Kind::PulseAudio ? "PulseAudio" : "PipeWire";
                         });

TEST_P(RecordSoundTest, AToneIsInTheMovieAsItWasPlayed)
{
    // In small pieces this server itself drops some whenever a virtual machine is late.
    constexpr int quantum = 8192;
    startSound(quantum);
    ASSERT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    const auto player = play({ "tone", "120", "1000", "0.25" });
    const Result result = record(small + QStringList { "--audio", "--duration", "30" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();

    const QJsonObject probed = probe(movie());
    const QJsonObject audio = streamOf(probed, "audio");
    EXPECT_EQ(audio["codec_name"].toString(), "aac");
    EXPECT_EQ(audio["sample_rate"].toString(), "48000");
    EXPECT_EQ(audio["channels"].toInt(), 2);
    EXPECT_NEAR(lengthOf(probed, "video"), 30, 0.2);
    EXPECT_NEAR(lengthOf(probed, "audio"),
                lengthOf(probed, "video"),
                GetParam() == SoundServer::Kind::PipeWire ? 0.1 + quantum / 48000.0 : 0.1);
    EXPECT_EQ(audio["start_time"].toString().toDouble(), 0);

    // The lead-in is silent, and the encoder's first and last block fade.
    std::vector<HeardTone> tones = tonesIn(decodedSound(movie()), 1000);
    ASSERT_GT(tones.size(), 2900U);
    tones.erase(tones.begin(), tones.begin() + 8);
    tones.resize(tones.size() - 8);
    double furthest = 0;
    double quietest = 1;
    double loudest = 0;
    for (std::size_t i = 1; i < tones.size(); ++i) {
        const double step = std::remainder(tones[i].phase - tones[i - 1].phase, 2 * std::numbers::pi);
        furthest = std::max(furthest, std::abs(step));
        quietest = std::min(quietest, tones[i].amplitude);
        loudest = std::max(loudest, tones[i].amplitude);
    }
    // A lost millisecond would turn the phase by a whole circle's part, and dent the level of its window.
    EXPECT_LT(furthest, 0.05);
    EXPECT_GT(20 * std::log10(quietest / 0.25), -1);
    EXPECT_LT(20 * std::log10(loudest / 0.25), 1);
    std::printf("largest phase step %.4f rad, level %.2f to %.2f dB\n",
                furthest,
                20 * std::log10(quietest / 0.25),
                20 * std::log10(loudest / 0.25));
}

TEST_P(RecordSoundTest, FlashesAndBeepsAreInStep)
{
    startSound();
    ASSERT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    // More than are recorded, however long the recording takes to begin.
    const auto player = play({ "flashes", "60", "0.7" });
    const Result result = record(small + QStringList { "--audio", "--duration", "20" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();

    EXPECT_NEAR(lengthOf(probe(movie()), "audio"), lengthOf(probe(movie()), "video"), 0.1);
    const std::vector<double> flashes = flashesIn(movie());
    const std::vector<double> beeps = beepsIn(decodedSound(movie()));
    std::vector<double> apart;
    for (const double flash : flashes) {
        // The output's latency changes when it begins to be recorded, and a beep that plays just then is cut.
        if (flash < 1)
            continue;
        const auto nearest
            = std::ranges::min_element(beeps, {}, [&](double beep) { return std::abs(beep - flash); });
        ASSERT_NE(nearest, beeps.end());
        apart.push_back((flash - *nearest) * 1000);
    }
    ASSERT_GE(apart.size(), 6U);
    std::printf("picture after sound, ms:");
    for (double &value : apart) {
        std::printf(" %.1f", value);
        value = std::abs(value);
    }
    std::ranges::sort(apart);
    std::printf("; median distance %.1f, largest %.1f\n", apart[apart.size() / 2], apart.back());
    EXPECT_LE(apart.back(), 40);
    EXPECT_LE(apart[apart.size() / 2], 20);
}

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
