#pragma once

#include "capture/jpeg/jpeg_band_compressor.h"

#include <QSize>

#include <cstdint>
#include <memory>
#include <vector>

namespace vornic {

class BitmapImage;
class KeyedArchiver;

/// Writes the pictures of the records pushed into one spool: only the bands that changed since the record
/// before, or a mark where none did. Every 2 seconds at the latest a picture is written whole, so that a damaged
/// block costs no more than that.
///
/// Owned by the spool manager, used on its video queue.
class PictureSpooler
{
public:
    /// \a timestamp in PKTimebase ticks. Writes nothing for a null image.
    void
    encode(const std::shared_ptr<const BitmapImage> &image, std::uint64_t timestamp, KeyedArchiver &archiver);
    /// The next picture is written whole: it begins a new spool, or what follows a pause.
    void beginPart() { m_lastVersions.clear(); }

private:
    [[nodiscard]] bool isWholePictureDue(std::uint64_t timestamp) const;

    JpegBandCompressor m_compressor;
    QSize m_lastSize;
    std::vector<std::uint64_t> m_lastVersions; ///< of the picture written last, in whichever form
    std::uint64_t m_lastWholeTimestamp = 0;
};

} // namespace vornic
