#include "audio/sound_peak.h"

#include "audio/AudioStreamBasicDescription.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace vornic {

double peakOf(const void *bytes, std::uint32_t byteCount, const AudioStreamBasicDescription &format)
{
    const auto *samples = static_cast<const unsigned char *>(bytes);
    int peak = 0;
    if (format.mBitsPerChannel == 8) {
        for (std::uint32_t i = 0; i < byteCount; ++i)
            peak = std::max(peak, std::abs(samples[i] - 128));
        return std::min(peak / 127.0, 1.0);
    }
    for (std::uint32_t i = 0; i + 1 < byteCount; i += 2) {
        std::int16_t sample = 0;
        std::memcpy(&sample, samples + i, sizeof sample);
        peak = std::max(peak, std::abs(int { sample }));
    }
    return std::min(peak / 32767.0, 1.0);
}

} // namespace vornic
