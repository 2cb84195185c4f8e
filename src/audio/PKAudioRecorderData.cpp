#include "audio/PKAudioRecorderData.h"

#include "audio/chunk_keys.h"
#include "base/keyed_archive.h"

#include <utility>

namespace vornic {

PKAudioRecorderData::PKAudioRecorderData(QByteArray data, const AudioStreamBasicDescription &format)
    : m_data(std::move(data))
    , m_format(format)
{
}

void PKAudioRecorderData::encodeWithCoder(KeyedArchiver &archiver) const
{
    archiver.encodeData(chunkDataKey, m_data);
    archiver.encodeObject(chunkFormatKey,
                          [this](KeyedArchiver &nested) { m_format.encodeWithCoder(nested); });
}

std::optional<PKAudioRecorderData> PKAudioRecorderData::createWithCoder(const KeyedUnarchiver &unarchiver)
{
    std::optional<QByteArray> data = unarchiver.decodeData(chunkDataKey);
    const std::optional<KeyedUnarchiver> format = unarchiver.decodeObject(chunkFormatKey);
    if (!data || !format)
        return std::nullopt;
    return PKAudioRecorderData(*std::move(data), AudioStreamBasicDescription::createWithCoder(*format));
}

} // namespace vornic
