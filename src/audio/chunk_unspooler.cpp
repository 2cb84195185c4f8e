#include "audio/chunk_unspooler.h"

#include "audio/PKAudioRecorderData.h"
#include "audio/chunk_keys.h"
#include "base/keyed_archive.h"

#include <utility>

namespace vornic {

std::optional<PKAudioRecorderData> ChunkUnspooler::decode(const KeyedUnarchiver &unarchiver)
{
    if (!unarchiver.containsValueForKey(sameFormatKey)) {
        std::optional<PKAudioRecorderData> chunk = PKAudioRecorderData::createWithCoder(unarchiver);
        if (chunk)
            m_format = chunk->dataFormat();
        return chunk;
    }
    std::optional<QByteArray> data = unarchiver.decodeData(chunkDataKey);
    if (!data || !m_format || unarchiver.decodeInt64(sameFormatKey) != checksumOf(*m_format))
        return std::nullopt;
    return PKAudioRecorderData(*std::move(data), *m_format);
}

} // namespace vornic
