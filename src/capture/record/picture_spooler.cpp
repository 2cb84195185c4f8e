#include "capture/record/picture_spooler.h"

#include "base/PKTimebase.h"
#include "base/keyed_archive.h"
#include "capture/record/band_changes.h"
#include "capture/record/picture_keys.h"
#include "display/bitmap_image.h"

#include <QBitArray>

#include <algorithm>
#include <functional>

namespace vornic {

namespace {

constexpr std::uint64_t ticksBetweenWholePictures = 2 * std::uint64_t { PKTimebase };

void writeWhole(const JpegBands &picture, const std::vector<bool> &changed, KeyedArchiver &archiver)
{
    archiver.encodeData(pictureKey, picture.pieces());
    if (std::ranges::all_of(changed, std::identity()))
        return;
    QBitArray bits(static_cast<qsizetype>(changed.size()));
    for (std::size_t i = 0; i < changed.size(); ++i)
        bits.setBit(static_cast<qsizetype>(i), changed[i]);
    archiver.encodeData(newBandsKey, QByteArray(bits.bits(), (bits.size() + 7) / 8));
}

void writeChanges(const JpegBands &picture, const std::vector<bool> &changed, KeyedArchiver &archiver)
{
    const QByteArray head = BandChanges::head(picture, changed);
    std::vector<QByteArrayView> pieces { head };
    for (std::size_t i = 0; i < changed.size(); ++i) {
        if (changed[i])
            pieces.push_back(picture.bands[i]);
    }
    archiver.encodeData(changedBandsKey, pieces);
}

} // namespace

bool PictureSpooler::isWholePictureDue(std::uint64_t timestamp) const
{
    // Behind a timestamp that went back the difference is huge, and a whole picture due.
    return m_lastVersions.empty() || timestamp - m_lastWholeTimestamp >= ticksBetweenWholePictures;
}

void PictureSpooler::encode(const std::shared_ptr<const BitmapImage> &image,
                            std::uint64_t timestamp,
                            KeyedArchiver &archiver)
{
    if (!image) {
        m_lastVersions.clear();
        return;
    }
    const QSize size(image->width(), image->height());
    if (size != m_lastSize)
        m_lastVersions.clear();
    const std::vector<bool> changed = changedBandsOf(image->bandVersions(), m_lastVersions);
    const bool isWhole = isWholePictureDue(timestamp) || std::ranges::all_of(changed, std::identity());
    if (!isWhole && std::ranges::none_of(changed, std::identity())) {
        archiver.encodeBool(samePictureKey, true);
        return;
    }
    const std::optional<JpegBands> picture = m_compressor.compress(*image);
    if (!picture) {
        m_lastVersions.clear();
        return;
    }
    if (isWhole) {
        writeWhole(*picture, changed, archiver);
        m_lastWholeTimestamp = timestamp;
    } else {
        writeChanges(*picture, changed, archiver);
    }
    m_lastSize = size;
    m_lastVersions = image->bandVersions();
}

} // namespace vornic
