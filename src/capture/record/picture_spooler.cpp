#include "capture/record/picture_spooler.h"

#include "base/PKTimebase.h"
#include "base/keyed_archive.h"
#include "capture/record/picture_keys.h"
#include "display/bitmap_image.h"

namespace vornic {

namespace {

constexpr std::uint64_t ticksBetweenWholePictures = 2 * std::uint64_t { PKTimebase };

} // namespace

bool PictureSpooler::canWriteMark(const BitmapImage &image, std::uint64_t timestamp) const
{
    return !m_lastVersions.empty() && QSize(image.width(), image.height()) == m_lastSize
        && image.bandVersions() == m_lastVersions && timestamp >= m_lastWholeTimestamp
        && timestamp - m_lastWholeTimestamp < ticksBetweenWholePictures;
}

void PictureSpooler::encode(const std::shared_ptr<const BitmapImage> &image,
                            std::uint64_t timestamp,
                            KeyedArchiver &archiver)
{
    if (!image) {
        m_lastVersions.clear();
        return;
    }
    if (canWriteMark(*image, timestamp)) {
        archiver.encodeBool(samePictureKey, true);
        return;
    }
    const std::optional<QByteArray> jpeg = m_compressor.compress(*image);
    if (!jpeg) {
        m_lastVersions.clear();
        return;
    }
    archiver.encodeData(pictureKey, *jpeg);
    m_lastSize = QSize(image->width(), image->height());
    m_lastVersions = image->bandVersions();
    m_lastWholeTimestamp = timestamp;
}

} // namespace vornic
