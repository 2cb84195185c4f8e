#pragma once

#include <QImage>

#include <cstdint>
#include <memory>
#include <vector>

namespace vornic {

/// One grabbed picture: 32-bit pixels in memory order B, G, R, unused; rows top to bottom, device pixels.
///
/// Made by a display backend and shared as shared_ptr<const BitmapImage>; nothing changes while one exists.
/// The pixels may lie in memory shared with the display server, so an image is let go soon after its use:
/// a backend whose last image is still held must fetch into other memory.
class BitmapImage
{
public:
    /// Rows in a band, the unit in which two pictures are compared; the last band may hold fewer.
    static constexpr int bandHeight = 16;

    virtual ~BitmapImage() = default;
    BitmapImage(const BitmapImage &) = delete;
    BitmapImage &operator=(const BitmapImage &) = delete;

    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    [[nodiscard]] qsizetype bytesPerLine() const { return m_bytesPerLine; }
    /// height() rows of bytesPerLine() bytes, valid as long as the image.
    [[nodiscard]] const uchar *bits() const { return m_bits; }

    /// One version for each band from the top, ceil(height / bandHeight) of them.
    ///
    /// Bands at the same place of two images of the same width that bear the same version hold the same
    /// pixels. Versions are unique in the process (newBandVersion()); different ones prove nothing.
    [[nodiscard]] const std::vector<std::uint64_t> &bandVersions() const { return m_bandVersions; }

    /// True when both are known to show the same picture: equal size and equal versions.
    [[nodiscard]] bool isSamePicture(const BitmapImage &other) const;

    /// A view over the same pixels in QImage::Format_RGB32; valid only as long as this image.
    [[nodiscard]] QImage view() const;

protected:
    BitmapImage(int width,
                int height,
                qsizetype bytesPerLine,
                const uchar *bits,
                std::vector<std::uint64_t> bandVersions);

private:
    int m_width;
    int m_height;
    qsizetype m_bytesPerLine;
    const uchar *m_bits;
    std::vector<std::uint64_t> m_bandVersions;
};

/// The number of bands in a picture of \a height rows.
[[nodiscard]] constexpr int bandCount(int height)
{
    return (height + BitmapImage::bandHeight - 1) / BitmapImage::bandHeight;
}

/// A version that no band has borne before, from any thread; never 0.
[[nodiscard]] std::uint64_t newBandVersion();

/// For each band whether its version in \a now is another than in \a before; all are where their numbers differ.
[[nodiscard]] std::vector<bool> changedBandsOf(const std::vector<std::uint64_t> &now,
                                               const std::vector<std::uint64_t> &before);

/// An image that owns a copy of \a picture (converted to 32-bit where needed); every band gets a new version.
[[nodiscard]] std::shared_ptr<const BitmapImage> bitmapImageFrom(const QImage &picture);

/// The same with \a versions for its bands, as many as bandCount() says, for a caller that knows which bands are as before.
[[nodiscard]] std::shared_ptr<const BitmapImage> bitmapImageFrom(const QImage &picture,
                                                                 std::vector<std::uint64_t> versions);

} // namespace vornic
