#pragma once

#include "audio/AudioStreamBasicDescription.h"

#include <QByteArray>

#include <cstdint>
#include <optional>

namespace vornic {

class KeyedArchiver;
class KeyedUnarchiver;

/// One spooled chunk of recorded sound: interleaved samples with their format.
///
/// Made by the audio callback, or by the spool from what it reads back; free to copy.
class PKAudioRecorderData
{
public:
    PKAudioRecorderData(QByteArray data, const AudioStreamBasicDescription &format);

    [[nodiscard]] const QByteArray &data() const { return m_data; }
    [[nodiscard]] const AudioStreamBasicDescription &dataFormat() const { return m_format; }

    /// Whether it can be encoded: its format is usable, and it holds no more than a recorder puts into one chunk.
    [[nodiscard]] bool isUsable() const;
    /// Whole frames; 0 where it is not usable.
    [[nodiscard]] std::int64_t frameCount() const;
    /// Seconds; 0 where it is not usable.
    [[nodiscard]] double duration() const;
    /// Where it begins in the sound of its recording, seconds; 0 also where that is not known.
    [[nodiscard]] double begin() const { return m_begin; }
    void setBegin(double seconds) { m_begin = seconds; }

    void encodeWithCoder(KeyedArchiver &archiver) const;
    /// No object where the samples or their format are missing, or where it is not usable.
    [[nodiscard]] static std::optional<PKAudioRecorderData>
    createWithCoder(const KeyedUnarchiver &unarchiver);

private:
    QByteArray m_data;
    AudioStreamBasicDescription m_format;
    double m_begin = 0;
};

} // namespace vornic
