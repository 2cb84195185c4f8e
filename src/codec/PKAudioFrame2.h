#pragma once

#include <QByteArray>

#include <cstdint>
#include <memory>

namespace vornic {

/// A block of interleaved audio samples, without a time: blocks follow each other from time 0.
///
/// Made by a movie's data source, never changed afterwards.
class PKAudioFrame2
{
public:
    /// Copies the samples. \a sampleFormat is 1 for 16 bits signed (native byte order) and 0 for 8 bits
    /// unsigned; \a numberOfSamples counts each channel's. An invalid block (no channels, no rate, no
    /// samples, another format) is empty.
    PKAudioFrame2(std::int32_t sampleFormat,
                  std::int32_t numberOfChannel,
                  std::int32_t sampleRate,
                  std::int32_t numberOfSamples,
                  const void *samples);

    [[nodiscard]] std::int32_t sampleFormat() const { return m_sampleFormat; }
    [[nodiscard]] std::int32_t numberOfChannel() const { return m_numberOfChannel; }
    [[nodiscard]] std::int32_t sampleRate() const { return m_sampleRate; }
    /// A block of \a count of its channels, from the one with the number \a first on; a channel that it does not have is
    /// silent.
    [[nodiscard]] std::shared_ptr<const PKAudioFrame2> channels(std::int32_t first, std::int32_t count) const;
    /// 0 for an empty block.
    [[nodiscard]] std::int32_t numberOfSamples() const { return m_numberOfSamples; }
    [[nodiscard]] const QByteArray &samples() const { return m_samples; }

private:
    std::int32_t m_sampleFormat;
    std::int32_t m_numberOfChannel;
    std::int32_t m_sampleRate;
    std::int32_t m_numberOfSamples = 0;
    QByteArray m_samples;
};

} // namespace vornic
