#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QSize>

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace vornic {

class BitmapImage;

/// A spooled picture: a JPEG picture in bands, each with a version as in BitmapImage::bandVersions().
///
/// Made when a record is read back, and shared by all records that show it. It keeps no bytes of its own: its
/// bands lie in the blocks that they were read from, those that did not change in one with the pictures
/// before. Its functions may be called from any thread.
class JpegPicture
{
public:
    /// A band that stands in place of another: its number from the top, and its bytes.
    using Replacement = std::pair<int, QByteArrayView>;

    /// A whole JPEG file, each band of a new version; null where \a jpeg has no header that can be read. A
    /// file that is not in bands is kept as it is.
    [[nodiscard]] static std::shared_ptr<const JpegPicture> fromJpeg(const QByteArray &jpeg);
    /// The same where only the bands in \a changed differ from \a before: the others keep their versions. All
    /// are new where the two do not fit together.
    [[nodiscard]] static std::shared_ptr<const JpegPicture>
    fromJpeg(const QByteArray &jpeg, const JpegPicture &before, const std::vector<bool> &changed);
    /// This picture with some bands replaced by others, which look into \a block and have new versions. Null
    /// when this one is not in bands, when a number is not that of a band, or when bytes cannot be a band's.
    [[nodiscard]] std::shared_ptr<const JpegPicture> withBands(const std::vector<Replacement> &replacements,
                                                               const QByteArray &block) const;

    [[nodiscard]] QSize size() const { return m_size; }
    [[nodiscard]] const std::vector<std::uint64_t> &bandVersions() const { return m_versions; }
    /// Whether its bands can be decoded apart.
    [[nodiscard]] bool isInBands() const { return !m_bands.empty(); }
    /// What stands before the bands of its file; only where isInBands().
    [[nodiscard]] const QByteArray &header() const { return m_header; }
    /// Of one band, without markers; valid as long as the picture. Only where isInBands().
    [[nodiscard]] QByteArrayView bandBytes(int band) const
    {
        return m_bands[static_cast<std::size_t>(band)].bytes;
    }
    /// The whole picture as a JPEG file.
    [[nodiscard]] QByteArray jpeg() const;
    /// The decoded picture, decoded at the first call and kept; null when the bytes are damaged.
    [[nodiscard]] std::shared_ptr<const BitmapImage> image() const;

private:
    struct Band {
        QByteArray block; ///< what the bytes lie in
        QByteArrayView bytes;
    };

    JpegPicture(QSize size, QByteArray header, std::vector<Band> bands, std::vector<std::uint64_t> versions);

    QSize m_size;
    QByteArray m_header;       ///< all of the file where the picture is not in bands
    std::vector<Band> m_bands; ///< empty where it is not
    std::vector<std::uint64_t> m_versions;
    mutable std::once_flag m_decodeOnce;
    mutable std::shared_ptr<const BitmapImage> m_image;
};

} // namespace vornic
