#include "codec/PKAudioFrame2.h"

namespace vornic {

PKAudioFrame2::PKAudioFrame2(std::int32_t sampleFormat,
                             std::int32_t numberOfChannel,
                             std::int32_t sampleRate,
                             std::int32_t numberOfSamples,
                             const void *samples)
    : m_sampleFormat(sampleFormat)
    , m_numberOfChannel(numberOfChannel)
    , m_sampleRate(sampleRate)
{
    const bool known = sampleFormat == 0 || sampleFormat == 1;
    if (!known || numberOfChannel <= 0 || sampleRate <= 0 || numberOfSamples <= 0 || !samples)
        return;
    m_numberOfSamples = numberOfSamples;
    const qsizetype sampleBytes = sampleFormat == 1 ? 2 : 1;
    m_samples
        = QByteArray(static_cast<const char *>(samples), sampleBytes * numberOfChannel * numberOfSamples);
}

} // namespace vornic
