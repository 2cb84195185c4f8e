/// Feeds damaged chunks of sound to their reader, and what it takes for sound through the hand-off to the encoder:
/// fuzz_sound [inputs [seed]].
///
/// Prints how many gave sound. Fails where an input ends the encoder, which would cost the movie, and where hardly any
/// gave sound: then the inputs test nothing.

#include "app/session/spooled_sound.h"
#include "audio/PKAudioRecorderData.h"
#include "audio/chunk_keys.h"
#include "audio/chunk_unspooler.h"
#include "base/keyed_archive.h"
#include "codec/PKAudioFrame2.h"
#include "codec/PKMuxerContext.h"
#include "codec/audio_encoder.h"
#include "codec/av_support.h"
#include "support/fuzz_run.h"

#include <QCborMap>
#include <QCborValue>

#include <array>
#include <cstdio>
#include <exception>
#include <utility>

using namespace vornic;

namespace {

/// Numbers that have led arithmetic astray, and some that are right.
qint64 oddNumber(test::FuzzRandom &random)
{
    constexpr std::array<qint64, 12> odd { 0,  -1,         1,          8,          16,         24,
                                           32, 0x10000001, 0x20000001, 0x80000008, 0xFFFFFFFF, 1LL << 40 };
    return random.below(2) == 0 ? odd[static_cast<std::size_t>(random.below(std::ssize(odd)))]
                                : random.below(40);
}

double oddSeconds(test::FuzzRandom &random, double now)
{
    switch (random.below(6)) {
    case 0:
        return -1e9;
    case 1:
        return 1e300;
    case 2:
        return random.below(1'000'000);
    default:
        // A gap is encoded as silence, and takes as long as sound.
        return now + random.below(100) / (random.below(200) == 0 ? 50.0 : 20'000.0);
    }
}

/// Each rate that is like no other makes the resampler reckon a filter anew, which takes it longer than the sound.
double oddRate(test::FuzzRandom &random)
{
    constexpr std::array<double, 5> common { 8000, 22'050, 44'100, 96'000, 192'000 };
    return random.below(10) == 0 ? static_cast<double>(random.next() % 400'000)
                                 : common[static_cast<std::size_t>(random.below(std::ssize(common)))];
}

QCborMap oddFormat(test::FuzzRandom &random)
{
    KeyedArchiver archiver;
    defaultAudioStreamBasicDescription().encodeWithCoder(archiver);
    QCborMap format = QCborValue::fromCbor(archiver.bytes()).toMap();
    for (int changes = random.below(4); changes > 0; --changes) {
        switch (random.below(5)) {
        case 0:
            format[QLatin1StringView("mBitsPerChannel")] = random.below(2) == 0 ? 8 : oddNumber(random);
            break;
        case 1:
        case 2:
            format[QLatin1StringView("mChannelsPerFrame")] = oddNumber(random);
            break;
        case 3:
            format[QLatin1StringView("mSampleRate")] = oddRate(random);
            break;
        default:
            format[QLatin1StringView("mSampleRate")] = static_cast<double>(oddNumber(random));
        }
    }
    return format;
}

QByteArray archive(test::FuzzRandom &random, double now)
{
    QCborMap map;
    // Most of the time goes into encoding what was taken, and noise takes the longest; a few chunks are as long as
    // real ones.
    const QByteArray noise = random.bytes(random.below(64) == 0 ? 4000 : 200);
    map[chunkDataKey] = random.below(8) == 0 ? noise : QByteArray(noise.size(), 'v');
    if (random.below(3) == 0)
        map[sameFormatKey] = qint64 { checksumOf(defaultAudioStreamBasicDescription()) };
    else
        map[chunkFormatKey] = oddFormat(random);
    if (random.below(3) == 0)
        map[chunkBeginKey] = oddSeconds(random, now);
    QByteArray bytes = map.toCborValue().toCbor();
    if (random.below(4) == 0)
        bytes[random.below(bytes.size())] = static_cast<char>(random.below(256));
    return bytes;
}

} // namespace

int main(int argc, char **argv)
{
    test::FuzzRun run(argc, argv, 100'000);
    test::FuzzRandom &random = run.random();
    routeAvLog();
    ChunkUnspooler chunks;
    std::optional<PKAudioRecorderData> chunk;
    SpooledSound sound([&] { return std::exchange(chunk, std::nullopt); });
    AudioEncoder encoder(PKMuxerContext::audioCodecAac);
    const PacketSink sink = [](const auto & /*packet*/) {};
    int heard = 0;
    try {
        run.feedAll("chunks of sound", [&](int) {
            const auto unarchiver = KeyedUnarchiver::create(archive(random, encoder.seconds()));
            chunk = unarchiver ? chunks.decode(*unarchiver) : std::nullopt;
            // The test goes on while the recording has no end.
            while (const auto block = sound.next(encoder.seconds() + 1)) {
                encoder.add(*block, sink);
                ++heard;
            }
        });
        encoder.finish(sink);
    } catch (const std::exception &failure) {
        std::printf("the encoder gave up: %s\n", failure.what());
        return 1;
    }
    std::printf("%d blocks of sound, %.0f seconds\n", heard, encoder.seconds());
    return heard > run.count() / 4 ? 0 : 1;
}
