#include "audio/chunk_spooler.h"

#include "audio/PKAudioRecorderData.h"
#include "audio/chunk_keys.h"
#include "base/keyed_archive.h"

namespace vornic {

namespace {

constexpr int chunksBetweenFormats = 100;

} // namespace

void ChunkSpooler::beginSpool()
{
    m_chunksWithFormat = 0;
    m_seconds = 0;
}

void ChunkSpooler::encode(const PKAudioRecorderData &chunk, KeyedArchiver &archiver)
{
    const bool isTold = m_chunksWithFormat > 0 && m_chunksWithFormat < chunksBetweenFormats
        && chunk.dataFormat() == m_format;
    if (m_seconds > 0)
        archiver.encodeDouble(chunkBeginKey, m_seconds);
    m_seconds += chunk.duration();
    if (isTold) {
        archiver.encodeData(chunkDataKey, chunk.data());
        archiver.encodeInt64(sameFormatKey, checksumOf(m_format));
        ++m_chunksWithFormat;
        return;
    }
    chunk.encodeWithCoder(archiver);
    m_format = chunk.dataFormat();
    m_chunksWithFormat = 1;
}

} // namespace vornic
