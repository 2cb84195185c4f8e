#include "record_sound_fixture.h"

#include <cmath>
#include <cstdio>
#include <numbers>

namespace vornic {

using test::SoundServer;
using testing::decodedSound;
using testing::probe;
using testing::streamOf;

INSTANTIATE_TEST_SUITE_P(Servers, RecordSoundTest, bothServers, nameOfServer);

TEST_P(RecordSoundTest, AToneIsInTheMovieAsItWasPlayed)
{
    // In small pieces this server itself drops some whenever a virtual machine is late.
    constexpr int quantum = 8192;
    startSound(quantum);
    ASSERT_FALSE(sound->addOutput("speakers", "Speakers").isEmpty());
    const auto player = play({ "tone", "120", "1000", "0.25" });
    const Result result = record(small + QStringList { "--audio", "--duration", "10" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();

    const QJsonObject probed = probe(movie());
    const QJsonObject audio = streamOf(probed, "audio");
    EXPECT_EQ(audio["codec_name"].toString(), "aac");
    EXPECT_EQ(audio["sample_rate"].toString(), "48000");
    EXPECT_EQ(audio["channels"].toInt(), 2);
    EXPECT_NEAR(lengthOf(probed, "video"), 10, 0.2);
    EXPECT_NEAR(lengthOf(probed, "audio"),
                lengthOf(probed, "video"),
                GetParam() == SoundServer::Kind::PipeWire ? 0.1 + quantum / 48000.0 : 0.1);
    EXPECT_EQ(audio["start_time"].toString().toDouble(), 0);

    // The lead-in is silent, and the encoder's first and last block fade.
    std::vector<HeardTone> tones = tonesIn(decodedSound(movie()), 1000);
    ASSERT_GT(tones.size(), 900U);
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
    const Result result = record(small + QStringList { "--audio", "--duration", "10" });
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

} // namespace vornic
