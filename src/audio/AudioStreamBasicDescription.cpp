#include "audio/AudioStreamBasicDescription.h"

#include "base/keyed_archive.h"

#include <QtEndian>

#include <array>
#include <bit>
#include <cstddef>
#include <utility>

namespace vornic {

namespace {

struct Field {
    QLatin1StringView key;
    std::uint32_t AudioStreamBasicDescription::*member = nullptr;
};

constexpr std::array fields {
    Field { QLatin1StringView("mFormatID"), &AudioStreamBasicDescription::mFormatID },
    Field { QLatin1StringView("mFormatFlags"), &AudioStreamBasicDescription::mFormatFlags },
    Field { QLatin1StringView("mBytesPerPacket"), &AudioStreamBasicDescription::mBytesPerPacket },
    Field { QLatin1StringView("mFramesPerPacket"), &AudioStreamBasicDescription::mFramesPerPacket },
    Field { QLatin1StringView("mBytesPerFrame"), &AudioStreamBasicDescription::mBytesPerFrame },
    Field { QLatin1StringView("mChannelsPerFrame"), &AudioStreamBasicDescription::mChannelsPerFrame },
    Field { QLatin1StringView("mBitsPerChannel"), &AudioStreamBasicDescription::mBitsPerChannel },
    Field { QLatin1StringView("mReserved"), &AudioStreamBasicDescription::mReserved },
};

constexpr QLatin1StringView sampleRateKey("mSampleRate");

constexpr std::uint32_t maxChannels = 32;
constexpr double minSampleRate = 1'000;
constexpr double maxSampleRate = 384'000;

} // namespace

bool AudioStreamBasicDescription::isUsable() const
{
    const bool hasDepth = mBitsPerChannel == 8 || mBitsPerChannel == 16;
    return hasDepth && mChannelsPerFrame > 0 && mChannelsPerFrame <= maxChannels
        && mSampleRate >= minSampleRate && mSampleRate <= maxSampleRate;
}

std::int64_t AudioStreamBasicDescription::bytesPerFrame() const
{
    return isUsable() ? std::int64_t { mBitsPerChannel } / 8 * mChannelsPerFrame : 0;
}

void AudioStreamBasicDescription::encodeWithCoder(KeyedArchiver &archiver) const
{
    archiver.encodeDouble(sampleRateKey, mSampleRate);
    for (const Field &field : fields)
        archiver.encodeInt64(field.key, this->*field.member);
}

AudioStreamBasicDescription AudioStreamBasicDescription::createWithCoder(const KeyedUnarchiver &unarchiver)
{
    AudioStreamBasicDescription format;
    format.mSampleRate = unarchiver.decodeDouble(sampleRateKey);
    for (const Field &field : fields) {
        const std::int64_t value = unarchiver.decodeInt64(field.key);
        format.*field.member = std::in_range<std::uint32_t>(value) ? static_cast<std::uint32_t>(value) : 0;
    }
    return format;
}

std::uint16_t checksumOf(const AudioStreamBasicDescription &format)
{
    const auto bytesOf = [](auto number) {
        const auto stored = qToBigEndian(number);
        return QByteArray(reinterpret_cast<const char *>(&stored), sizeof stored);
    };
    QByteArray bytes = bytesOf(std::bit_cast<std::uint64_t>(format.mSampleRate));
    for (const Field &field : fields)
        bytes += bytesOf(format.*field.member);
    return qChecksum(bytes);
}

char silenceOf(const AudioStreamBasicDescription &format)
{
    return format.mBitsPerChannel == 8 ? static_cast<char>(0x80) : '\0';
}

AudioStreamBasicDescription defaultAudioStreamBasicDescription()
{
    AudioStreamBasicDescription format;
    format.mSampleRate = 48000.0;
    format.mFormatID = AudioStreamBasicDescription::linearPcm;
    format.mFormatFlags = AudioStreamBasicDescription::signedInteger | AudioStreamBasicDescription::packed;
    format.mBytesPerPacket = 4;
    format.mFramesPerPacket = 1;
    format.mBytesPerFrame = 4;
    format.mChannelsPerFrame = 2;
    format.mBitsPerChannel = 16;
    return format;
}

} // namespace vornic
