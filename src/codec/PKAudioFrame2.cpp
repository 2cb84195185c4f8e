#include "codec/PKAudioFrame2.h"

#include <algorithm>

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

std::shared_ptr<const PKAudioFrame2> PKAudioFrame2::channels(std::int32_t first, std::int32_t count) const
{
    const qsizetype sampleBytes = m_sampleFormat == 1 ? 2 : 1;
    const char silence = m_sampleFormat == 1 ? '\0' : static_cast<char>(0x80);
    QByteArray samples(sampleBytes * count * m_numberOfSamples, silence);
    const std::int32_t taken = std::clamp(m_numberOfChannel - first, 0, count);
    for (qsizetype frame = 0; taken > 0 && frame < m_numberOfSamples; ++frame)
        std::copy_n(m_samples.constData() + (frame * m_numberOfChannel + first) * sampleBytes,
                    taken * sampleBytes,
                    samples.data() + frame * count * sampleBytes);
    return std::make_shared<const PKAudioFrame2>(
        m_sampleFormat, count, m_sampleRate, m_numberOfSamples, samples.constData());
}

} // namespace vornic
