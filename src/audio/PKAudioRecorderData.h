#pragma once

#include "audio/AudioStreamBasicDescription.h"

#include <QByteArray>

#include <optional>

namespace vornic {

class KeyedArchiver;
class KeyedUnarchiver;

/// One spooled chunk of recorded sound: interleaved samples with their format.
///
/// Made by the audio callback, or by the spool from what it reads back; immutable, free to copy.
class PKAudioRecorderData
{
public:
    PKAudioRecorderData(QByteArray data, const AudioStreamBasicDescription &format);

    [[nodiscard]] const QByteArray &data() const { return m_data; }
    [[nodiscard]] const AudioStreamBasicDescription &dataFormat() const { return m_format; }

    void encodeWithCoder(KeyedArchiver &archiver) const;
    /// No object where the samples or their format are missing.
    [[nodiscard]] static std::optional<PKAudioRecorderData>
    createWithCoder(const KeyedUnarchiver &unarchiver);

private:
    QByteArray m_data;
    AudioStreamBasicDescription m_format;
};

} // namespace vornic
