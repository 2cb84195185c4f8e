#include "audio/chunk_unspooler.h"

#include "audio/PKAudioRecorderData.h"
#include "audio/chunk_keys.h"
#include "base/keyed_archive.h"

#include <utility>

namespace vornic {

std::optional<PKAudioRecorderData> ChunkUnspooler::decodeSamples(const KeyedUnarchiver &unarchiver)
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
    PKAudioRecorderData chunk(*std::move(data), *m_format);
    return chunk.isUsable() ? std::optional(std::move(chunk)) : std::nullopt;
}

std::optional<PKAudioRecorderData> ChunkUnspooler::decode(const KeyedUnarchiver &unarchiver)
{
    std::optional<PKAudioRecorderData> chunk = decodeSamples(unarchiver);
    if (chunk)
        chunk->setBegin(unarchiver.decodeDouble(chunkBeginKey));
    return chunk;
}

} // namespace vornic
