#pragma once

#include <cstdint>

namespace vornic {

class KeyedArchiver;
class KeyedUnarchiver;

/// The layout of a linear-PCM stream: a plain value, free to copy.
///
/// A frame holds one sample of every channel; a packet of linear PCM is one frame.
struct AudioStreamBasicDescription {
    double mSampleRate = 0.0; ///< frames a second
    std::uint32_t mFormatID = 0;
    std::uint32_t mFormatFlags = 0;
    std::uint32_t mBytesPerPacket = 0;
    std::uint32_t mFramesPerPacket = 0;
    std::uint32_t mBytesPerFrame = 0;
    std::uint32_t mChannelsPerFrame = 0;
    std::uint32_t mBitsPerChannel = 0;
    std::uint32_t mReserved = 0;

    static constexpr std::uint32_t linearPcm = 0x6C70636D; ///< the four characters 'lpcm'
    static constexpr std::uint32_t signedInteger = 4;      ///< a format flag
    static constexpr std::uint32_t packed = 8;             ///< a format flag

    /// Whether sound of this layout can be encoded: samples of 8 or 16 bits, at most 32 channels, and a rate that
    /// sound is recorded at. What was stored may say anything.
    [[nodiscard]] bool isUsable() const;
    /// By depth and channels; 0 where it is not usable.
    [[nodiscard]] std::int64_t bytesPerFrame() const;

    void encodeWithCoder(KeyedArchiver &archiver) const;
    [[nodiscard]] static AudioStreamBasicDescription createWithCoder(const KeyedUnarchiver &unarchiver);

    friend bool operator==(const AudioStreamBasicDescription &, const AudioStreamBasicDescription &)
        = default;
};

/// The same for equal formats, and hardly ever for others; stays the same from one version of the program to
/// the next.
[[nodiscard]] std::uint16_t checksumOf(const AudioStreamBasicDescription &format);

/// Each byte of a sample that is silence.
[[nodiscard]] char silenceOf(const AudioStreamBasicDescription &format);

/// What every recording asks for: 48,000 Hz, 2 channels, 16-bit signed, packed.
[[nodiscard]] AudioStreamBasicDescription defaultAudioStreamBasicDescription();

} // namespace vornic
