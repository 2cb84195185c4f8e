#pragma once

#include "recording_fixture.h"
#include "sound_analysis.h"
#include "support/built_program.h"
#include "support/sound_server.h"

#include <QFile>

#include <algorithm>
#include <string>

namespace vornic {

/// The built program with a display and a sound server of the test's own.
class RecordSoundTest : public RecordingTest, public ::testing::WithParamInterface<test::SoundServer::Kind>
{
protected:
    void SetUp() override
    {
        if (!test::SoundServer::isInstalled(GetParam()))
            GTEST_SKIP() << "this sound server is not installed";
        startServer({ 640, 480 });
    }
    void startSound(int quantum = 0)
    {
        sound = test::SoundServer::start(GetParam(), quantum);
        ASSERT_TRUE(sound);
    }

    std::unique_ptr<QProcess> play(const QStringList &what) const
    {
        auto player = start(test::builtProgram("tests/support/vornic_play_sound"), what);
        player->waitForReadyRead(20'000);
        return player;
    }

    /// What the server's own recorder makes of that output's sound in the same seconds: where a machine is busy with other
    /// things, a server comes late and drops sound, which no recorder can undo.
    std::unique_ptr<QProcess> startReference(const QString &output) const
    {
        return start("parec",
                     { "--device=" + output + ".monitor",
                       "--rate=48000",
                       "--channels=2",
                       "--format=s16le",
                       reference(output) });
    }
    /// Once that recorder has ended.
    std::vector<std::int16_t> referenceSound(const QString &output) const
    {
        QFile file(reference(output));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        std::vector<std::int16_t> samples(static_cast<std::size_t>(file.size()) / sizeof(std::int16_t));
        file.read(reinterpret_cast<char *>(samples.data()),
                  static_cast<qint64>(samples.size() * sizeof(std::int16_t)));
        return samples;
    }
    QString reference(const QString &output) const { return folder.filePath(output + ".raw"); }

    static double lengthOf(const QJsonObject &probed, const QString &type)
    {
        return testing::streamOf(probed, type)["duration"].toString().toDouble();
    }

    /// How much of the movie sounds with 1 kHz, in seconds.
    double secondsOfTone() const
    {
        const std::vector<HeardTone> tones = tonesIn(testing::decodedSound(movie()), 1000);
        return static_cast<double>(
                   std::ranges::count_if(tones, [](const HeardTone &tone) { return tone.amplitude > 0.1; }))
            / 100;
    }

    static constexpr int attempts = 3; ///< to record what a busy machine may disturb
    static constexpr int maxTurns = 7; ///< with those in which the server's own recorder missed sound too

    const QStringList small { "--region", "0,0,160,120" };
    std::unique_ptr<test::SoundServer> sound;
};

inline const auto bothServers
    = ::testing::Values(test::SoundServer::Kind::PulseAudio, test::SoundServer::Kind::PipeWire);

inline std::string nameOfServer(const ::testing::TestParamInfo<test::SoundServer::Kind> &kind)
{
    return kind.param == test::SoundServer::Kind::PulseAudio ? "PulseAudio" : "PipeWire";
}

} // namespace vornic
