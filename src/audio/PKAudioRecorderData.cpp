#include "audio/PKAudioRecorderData.h"

#include "base/keyed_archive.h"

#include <utility>

namespace vornic {

namespace {

constexpr QLatin1StringView dataKey("data");
constexpr QLatin1StringView formatKey("dataFormat");

} // namespace

PKAudioRecorderData::PKAudioRecorderData(QByteArray data, const AudioStreamBasicDescription &format)
    : m_data(std::move(data))
    , m_format(format)
{
}

void PKAudioRecorderData::encodeWithCoder(KeyedArchiver &archiver) const
{
    archiver.encodeData(dataKey, m_data);
    archiver.encodeObject(formatKey, [this](KeyedArchiver &nested) { m_format.encodeWithCoder(nested); });
}

std::optional<PKAudioRecorderData> PKAudioRecorderData::createWithCoder(const KeyedUnarchiver &unarchiver)
{
    std::optional<QByteArray> data = unarchiver.decodeData(dataKey);
    const std::optional<KeyedUnarchiver> format = unarchiver.decodeObject(formatKey);
    if (!data || !format)
        return std::nullopt;
    return PKAudioRecorderData(*std::move(data), AudioStreamBasicDescription::createWithCoder(*format));
}

} // namespace vornic
