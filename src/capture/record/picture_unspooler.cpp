#include "capture/record/picture_unspooler.h"

#include "base/keyed_archive.h"
#include "capture/jpeg/jpeg_picture.h"
#include "capture/record/band_changes.h"
#include "capture/record/picture_keys.h"

namespace vornic {

namespace {

/// Nothing where \a bytes are not as many as \a count bits take.
std::optional<std::vector<bool>> bitsFrom(const QByteArray &bytes, std::size_t count)
{
    if (static_cast<std::size_t>(bytes.size()) != (count + 7) / 8)
        return std::nullopt;
    std::vector<bool> bits(count);
    for (std::size_t i = 0; i < count; ++i)
        bits[i] = (bytes[static_cast<qsizetype>(i / 8)] >> i % 8 & 1) != 0;
    return bits;
}

} // namespace

std::shared_ptr<const JpegPicture> PictureUnspooler::readWhole(const KeyedUnarchiver &unarchiver) const
{
    const std::optional<QByteArray> jpeg = unarchiver.decodeData(pictureKey);
    if (!jpeg)
        return nullptr;
    const std::optional<QByteArray> bytes = m_last ? unarchiver.decodeData(newBandsKey) : std::nullopt;
    const std::optional<std::vector<bool>> changed
        = bytes ? bitsFrom(*bytes, m_last->bandVersions().size()) : std::nullopt;
    return changed ? JpegPicture::fromJpeg(*jpeg, *m_last, *changed) : JpegPicture::fromJpeg(*jpeg);
}

std::shared_ptr<const JpegPicture> PictureUnspooler::readChanges(const KeyedUnarchiver &unarchiver) const
{
    const std::optional<QByteArray> bytes = m_last ? unarchiver.decodeData(changedBandsKey) : std::nullopt;
    const std::optional<BandChanges> changes = bytes ? BandChanges::read(*bytes) : std::nullopt;
    if (!changes || changes->size != m_last->size())
        return nullptr;
    return m_last->withBands(changes->bands, *bytes);
}

std::shared_ptr<const JpegPicture> PictureUnspooler::decode(const KeyedUnarchiver &unarchiver)
{
    if (unarchiver.decodeBool(samePictureKey))
        return m_last;
    m_last
        = unarchiver.containsValueForKey(changedBandsKey) ? readChanges(unarchiver) : readWhole(unarchiver);
    return m_last;
}

} // namespace vornic
