#pragma once

#include "capture/jpeg/jpeg_band_compressor.h"

#include <QLatin1StringView>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace vornic {

class BitmapImage;
class JpegPicture;
class KeyedArchiver;
class KeyedUnarchiver;

/// A record's picture, the bytes of a JPEG file.
inline constexpr QLatin1StringView pictureKey("cgimage.jpegrep");
/// True in place of the bytes: the picture is that of the record before.
inline constexpr QLatin1StringView samePictureKey("cgimage.same");

/// Writes the pictures of the records pushed into one spool: the bytes, or a mark where the picture equals
/// the one before. A whole picture stands at least every 2 seconds, so a damaged block costs at most that.
///
/// Owned by the spool manager, used on its video queue.
class PictureSpooler
{
public:
    /// \a timestamp in PKTimebase ticks. Writes nothing for a null image.
    void
    encode(const std::shared_ptr<const BitmapImage> &image, std::uint64_t timestamp, KeyedArchiver &archiver);
    /// The next record begins a new spool: its picture is written whole.
    void reset() { m_lastVersions.clear(); }

private:
    [[nodiscard]] bool canMark(const BitmapImage &image, std::uint64_t timestamp) const;

    JpegBandCompressor m_compressor;
    QSize m_lastSize;
    std::vector<std::uint64_t> m_lastVersions; ///< of the picture written last, whole or as a mark
    std::uint64_t m_lastWholeTimestamp = 0;
};

/// Reads the pictures back in the order in which they were written. Owned and used likewise.
class PictureUnspooler
{
public:
    /// The record's picture; null when there is none, or when it is a mark behind a record that was lost.
    [[nodiscard]] std::shared_ptr<const JpegPicture> decode(const KeyedUnarchiver &unarchiver);
    /// A record was lost: marks mean nothing until the next whole picture.
    void forget() { m_last = nullptr; }

private:
    std::shared_ptr<const JpegPicture> m_last;
};

} // namespace vornic
