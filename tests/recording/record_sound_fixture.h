#pragma once

#include "recording_fixture.h"
#include "sound_analysis.h"
#include "support/sound_server.h"

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
        auto player = start(QStringLiteral(VORNIC_PLAY_SOUND), what);
        player->waitForReadyRead(20'000);
        return player;
    }

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
