#include "base/PKTimebase.h"
#include "codec/PKAudioFrame2.h"
#include "movie_test_support.h"

#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vornic::testing {
namespace {

/// Interleaved samples of a tone of half the full strength.
template<typename T>
std::vector<T> tone(double hertz, int rate, int channels, int samples, double strength, double middle)
{
    std::vector<T> result;
    for (int i = 0; i < samples; ++i) {
        const double value = middle + strength * std::sin(2 * std::numbers::pi * hertz * i / rate);
        result.insert(result.end(), static_cast<std::size_t>(channels), static_cast<T>(std::lround(value)));
    }
    return result;
}

class MovieSoundTest : public ::testing::Test
{
protected:
    /// Adds a sound in blocks of \a blockSamples.
    template<typename T>
    void addSound(const std::vector<T> &samples, int rate, int channels, int blockSamples)
    {
        const int total = static_cast<int>(samples.size()) / channels;
        for (int first = 0; first < total; first += blockSamples) {
            m_source.audio.push_back(std::make_shared<PKAudioFrame2>(
                sizeof(T) == 2 ? 1 : 0,
                channels,
                rate,
                std::min(blockSamples, total - first),
                samples.data() + static_cast<std::ptrdiff_t>(first) * channels));
        }
    }

    TaskReport run()
    {
        auto context = videoContext(m_movie, { 64, 48 });
        context.setAudioCodecID(PKMuxerContext::audioCodecAac);
        return runTask(context, m_source);
    }

    QTemporaryDir m_folder;
    QString m_movie = m_folder.filePath(QStringLiteral("a.mp4"));
    ListSource m_source;
};

/// How strong one frequency is in one channel, as the amplitude of a sine.
double amplitudeOf(const std::vector<std::int16_t> &stereo,
                   std::size_t channel,
                   double hertz,
                   std::size_t first,
                   std::size_t count)
{
    double cosine = 0;
    double sine = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double phase = 2 * std::numbers::pi * hertz * static_cast<double>(i) / 48000;
        cosine += stereo[2 * (first + i) + channel] * std::cos(phase);
        sine += stereo[2 * (first + i) + channel] * std::sin(phase);
    }
    return 2 * std::hypot(cosine, sine) / static_cast<double>(count);
}

/// The sound has its whole length, no gap, and its frequency on both sides.
void expectTone(const QString &movie, double hertz, double strength, int samples)
{
    const auto probed = probe(movie);
    const auto stream = streamOf(probed, QStringLiteral("audio"));
    EXPECT_EQ(stream.value(u"codec_name").toString(), u"aac");
    EXPECT_EQ(stream.value(u"profile").toString(), u"LC");
    EXPECT_EQ(stream.value(u"sample_rate").toString(), u"48000");
    EXPECT_EQ(stream.value(u"channels").toInt(), 2);
    EXPECT_EQ(stream.value(u"start_time").toString().toDouble(), 0.0);
    EXPECT_NEAR(static_cast<double>(stream.value(u"duration_ts").toInteger()), samples, 2);
    const auto times
        = numbersOf(probed, QStringLiteral("packets"), QStringLiteral("audio"), QStringLiteral("pts"));
    const auto durations
        = numbersOf(probed, QStringLiteral("packets"), QStringLiteral("audio"), QStringLiteral("duration"));
    for (qsizetype i = 1; i < times.size(); ++i)
        ASSERT_EQ(times[i], times[i - 1] + durations[i - 1]);
    const auto decoded = decodedSound(movie);
    ASSERT_GE(decoded.size(), static_cast<std::size_t>(2 * samples));
    const std::size_t window = 4800;
    for (std::size_t first = 4800; first + 2 * window < static_cast<std::size_t>(samples); first += window) {
        EXPECT_NEAR(amplitudeOf(decoded, 0, hertz, first, window), strength, strength * 0.06) << first;
        EXPECT_NEAR(amplitudeOf(decoded, 1, hertz, first, window), strength, strength * 0.06) << first;
        EXPECT_LT(amplitudeOf(decoded, 0, hertz * 2, first, window), strength * 0.05) << first;
    }
}

TEST_F(MovieSoundTest, sixteenBitStereoOf48kHz)
{
    m_source.addGreys({ 64, 48 }, 30);
    addSound(tone<std::int16_t>(1000, 48000, 2, 48000, 16000, 0), 48000, 2, 4800);
    const auto report = run();
    ASSERT_TRUE(report.isComplete()) << report.reason();
    EXPECT_NEAR(report.statistics().audioSeconds, 1.0, 1e-9);
    expectTone(m_movie, 1000, 16000, 48000);
}

TEST_F(MovieSoundTest, eightBitMonoAtALowRateInUnevenBlocks)
{
    m_source.addGreys({ 64, 48 }, 30);
    addSound(tone<std::uint8_t>(500, 11025, 1, 11025, 60, 128), 11025, 1, 777);
    const auto report = run();
    ASSERT_TRUE(report.isComplete()) << report.reason();
    EXPECT_NEAR(report.statistics().audioSeconds, 1.0, 1e-9);
    expectTone(m_movie, 500, 60 * 256, 48000);
}

TEST_F(MovieSoundTest, sixteenBitOf44100Hz)
{
    m_source.addGreys({ 64, 48 }, 30);
    addSound(tone<std::int16_t>(440, 44100, 1, 44100, 12000, 0), 44100, 1, 4410);
    ASSERT_TRUE(run().isComplete());
    expectTone(m_movie, 440, 12000, 48000);
}

TEST_F(MovieSoundTest, aDeviceOfManyChannelsGivesItsFirstTwo)
{
    m_source.addGreys({ 64, 48 }, 30);
    addSound(tone<std::int16_t>(1000, 48000, 10, 48000, 12000, 0), 48000, 10, 4800);
    const auto report = run();
    ASSERT_TRUE(report.isComplete()) << report.reason();
    expectTone(m_movie, 1000, 12000, 48000);
}

TEST_F(MovieSoundTest, aChangeOfFormatOnTheWayLeavesNoGap)
{
    m_source.addGreys({ 64, 48 }, 30);
    addSound(tone<std::int16_t>(1000, 16000, 1, 8000, 16000, 0), 16000, 1, 1600);
    addSound(tone<std::int16_t>(1000, 48000, 2, 24000, 16000, 0), 48000, 2, 4800);
    const auto report = run();
    ASSERT_TRUE(report.isComplete()) << report.reason();
    EXPECT_NEAR(report.statistics().audioSeconds, 1.0, 1e-9);
    expectTone(m_movie, 1000, 16000, 48000);
}

TEST_F(MovieSoundTest, theLastPartOfAFrameIsKept)
{
    m_source.addGreys({ 64, 48 }, 3);
    addSound(std::vector<std::int16_t>(1500, 0), 48000, 1, 1500);
    ASSERT_TRUE(run().isComplete());
    EXPECT_EQ(streamOf(probe(m_movie), QStringLiteral("audio")).value(u"duration_ts").toInteger(), 1500);
}

TEST_F(MovieSoundTest, soundLongerThanThePicturesIsKeptWhole)
{
    m_source.addGreys({ 64, 48 }, 3);
    addSound(tone<std::int16_t>(1000, 48000, 2, 96000, 16000, 0), 48000, 2, 48000);
    ASSERT_TRUE(run().isComplete());
    expectTone(m_movie, 1000, 16000, 96000);
}

TEST_F(MovieSoundTest, aTrackThatGetsNoSoundIsLeftOut)
{
    m_source.addGreys({ 64, 48 }, 3);
    m_source.audio.push_back(std::make_shared<PKAudioFrame2>(1, 0, 48000, 10, nullptr)); // invalid
    const auto report = run();
    ASSERT_TRUE(report.isComplete()) << report.reason();
    EXPECT_EQ(report.statistics().audioSeconds, 0);
    const auto probed = probe(m_movie);
    EXPECT_TRUE(streamOf(probed, QStringLiteral("audio")).isEmpty());
    EXPECT_FALSE(streamOf(probed, QStringLiteral("video")).isEmpty());
}

TEST_F(MovieSoundTest, soundIsNotAskedForWithoutACodec)
{
    m_source.addGreys({ 64, 48 }, 3);
    m_source.onAudio = [] { FAIL(); };
    EXPECT_TRUE(runTask(videoContext(m_movie, { 64, 48 }), m_source).isComplete());
}

TEST_F(MovieSoundTest, soundAndPicturesOfOneTimeLieTogetherInTheFile)
{
    m_source.addGreys({ 64, 48 }, 300);
    addSound(tone<std::int16_t>(1000, 48000, 2, 480000, 16000, 0), 48000, 2, 4800);
    ASSERT_TRUE(run().isComplete());
    // the packets come in file order
    double lastVideo = 0;
    double lastAudio = 0;
    for (const QJsonValue &packet : probe(m_movie).value(u"packets").toArray()) {
        const double time = packet[u"pts_time"].toString().toDouble();
        (packet[u"codec_type"].toString() == u"video" ? lastVideo : lastAudio) = time;
        ASSERT_LE(std::abs(lastVideo - lastAudio), 1.5);
    }
}

/// The sound of the audio track with that number, as interleaved stereo.
std::vector<std::int16_t> decodedTrack(const QString &movie, int track)
{
    const QTemporaryDir folder;
    const QString alone = folder.filePath(QStringLiteral("track.mp4"));
    EXPECT_EQ(
        QProcess::execute(
            QStringLiteral("ffmpeg"),
            { "-v", "error", "-i", movie, "-map", QStringLiteral("0:a:%1").arg(track), "-c", "copy", alone }),
        0);
    return decodedSound(alone);
}

TEST_F(MovieSoundTest, pairsOfChannelsBecomeTracksWithTitles)
{
    m_source.addGreys({ 64, 48 }, 30);
    const auto first = tone<std::int16_t>(1000, 48000, 2, 48000, 16000, 0);
    const auto second = tone<std::int16_t>(400, 48000, 2, 48000, 8000, 0);
    std::vector<std::int16_t> both;
    for (std::size_t i = 0; i < first.size(); i += 2)
        both.insert(both.end(), { first[i], first[i + 1], second[i], second[i + 1] });
    addSound(both, 48000, 4, 4800);
    auto context = videoContext(m_movie, { 64, 48 });
    context.setAudioCodecID(PKMuxerContext::audioCodecAac);
    context.setAudioTracks({ QStringLiteral("Mikrofon (Büro)"), QStringLiteral("What the system plays") });
    const auto report = runTask(context, m_source);
    ASSERT_TRUE(report.isComplete()) << report.reason();
    QList<QJsonObject> tracks;
    for (const QJsonValue &stream : probe(m_movie).value(u"streams").toArray()) {
        if (stream[u"codec_type"].toString() == u"audio")
            tracks += stream.toObject();
    }
    ASSERT_EQ(tracks.size(), 2);
    for (qsizetype i = 0; i < 2; ++i) {
        EXPECT_EQ(tracks[i][u"tags"][u"handler_name"].toString(), context.audioTracks().at(i));
        EXPECT_EQ(tracks[i][u"disposition"][u"default"].toInt(), i == 0 ? 1 : 0);
        EXPECT_EQ(tracks[i][u"channels"].toInt(), 2);
        const std::vector<std::int16_t> sound = decodedTrack(m_movie, static_cast<int>(i));
        ASSERT_NEAR(static_cast<double>(sound.size()), 96'000, 4096);
        for (const std::size_t channel : { 0U, 1U }) {
            EXPECT_NEAR(amplitudeOf(sound, channel, 1000, 4800, 38'400), i == 0 ? 16000 : 0, 400);
            EXPECT_NEAR(amplitudeOf(sound, channel, 400, 4800, 38'400), i == 0 ? 0 : 8000, 400);
        }
    }
}

TEST(PKAudioFrame2, givesSomeOfItsChannels)
{
    const std::vector<std::int16_t> samples { 1, 2, 3, 4, 5, 6 };
    const PKAudioFrame2 frame(1, 3, 48000, 2, samples.data());
    EXPECT_EQ(frame.channels(1, 2)->samples(), QByteArray::fromHex("0200030005000600"));
    EXPECT_EQ(frame.channels(1, 2)->numberOfChannel(), 2);
    EXPECT_EQ(frame.channels(2, 2)->samples(), QByteArray::fromHex("0300000006000000"));
    EXPECT_EQ(frame.channels(3, 2)->samples(), QByteArray(8, '\0')) << "it has none of them";
    const unsigned char unsignedSamples[] = { 1, 2 };
    EXPECT_EQ(PKAudioFrame2(0, 1, 48000, 2, unsignedSamples).channels(0, 2)->samples(),
              QByteArray::fromHex("01800280"));
}

TEST(PKAudioFrame2, copiesItsSamples)
{
    std::vector<std::int16_t> samples { 1, 2, 3, 4 };
    const PKAudioFrame2 frame(1, 2, 44100, 2, samples.data());
    samples[0] = 99;
    EXPECT_EQ(frame.numberOfSamples(), 2);
    EXPECT_EQ(frame.numberOfChannel(), 2);
    EXPECT_EQ(frame.sampleRate(), 44100);
    EXPECT_EQ(frame.sampleFormat(), 1);
    EXPECT_EQ(frame.samples(), QByteArray::fromHex("0100020003000400"));
}

TEST(PKAudioFrame2, anInvalidBlockIsEmpty)
{
    const char byte = 0;
    EXPECT_EQ(PKAudioFrame2(1, 0, 48000, 1, &byte).numberOfSamples(), 0);
    EXPECT_EQ(PKAudioFrame2(0, 1, 0, 1, &byte).numberOfSamples(), 0);
    EXPECT_EQ(PKAudioFrame2(0, 1, 48000, -1, &byte).numberOfSamples(), 0);
    EXPECT_EQ(PKAudioFrame2(2, 1, 48000, 1, &byte).numberOfSamples(), 0);
    EXPECT_EQ(PKAudioFrame2(0, 1, 48000, 1, nullptr).numberOfSamples(), 0);
    EXPECT_EQ(PKAudioFrame2(0, 1, 48000, 1, &byte).numberOfSamples(), 1);
}

} // namespace
} // namespace vornic::testing
