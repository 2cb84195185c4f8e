#include "audio/PKAudioRecorderData.h"

#include "audio/chunk_keys.h"
#include "base/keyed_archive.h"

#include <utility>

namespace vornic {

namespace {

/// Many times what a recorder delivers at once.
constexpr double maxDuration = 10;

} // namespace

PKAudioRecorderData::PKAudioRecorderData(QByteArray data, const AudioStreamBasicDescription &format)
    : m_data(std::move(data))
    , m_format(format)
{
}

bool PKAudioRecorderData::isUsable() const
{
    const std::int64_t bytesPerFrame = m_format.bytesPerFrame();
    const std::int64_t frames = bytesPerFrame > 0 ? m_data.size() / bytesPerFrame : 0;
    return bytesPerFrame > 0 && static_cast<double>(frames) <= maxDuration * m_format.mSampleRate;
}

std::int64_t PKAudioRecorderData::frameCount() const
{
    return isUsable() ? m_data.size() / m_format.bytesPerFrame() : 0;
}

double PKAudioRecorderData::duration() const
{
    return isUsable() ? static_cast<double>(frameCount()) / m_format.mSampleRate : 0;
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
    PKAudioRecorderData chunk(*std::move(data), AudioStreamBasicDescription::createWithCoder(*format));
    return chunk.isUsable() ? std::optional(std::move(chunk)) : std::nullopt;
}

} // namespace vornic
