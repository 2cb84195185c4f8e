#include "display/bitmap_image.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <utility>

namespace vornic {

namespace {

class OwnedBitmapImage final : public BitmapImage
{
public:
    OwnedBitmapImage(QImage pixels, std::vector<std::uint64_t> versions)
        : BitmapImage(
            pixels.width(), pixels.height(), pixels.bytesPerLine(), pixels.constBits(), std::move(versions))
        , m_pixels(std::move(pixels))
    {
    }

private:
    QImage m_pixels;
};

} // namespace

BitmapImage::BitmapImage(
    int width, int height, qsizetype bytesPerLine, const uchar *bits, std::vector<std::uint64_t> bandVersions)
    : m_width(width)
    , m_height(height)
    , m_bytesPerLine(bytesPerLine)
    , m_bits(bits)
    , m_bandVersions(std::move(bandVersions))
{
}

bool BitmapImage::isSamePicture(const BitmapImage &other) const
{
    return m_width == other.m_width && m_height == other.m_height && m_bandVersions == other.m_bandVersions;
}

QImage BitmapImage::view() const
{
    return { m_bits, m_width, m_height, m_bytesPerLine, QImage::Format_RGB32 };
}

std::uint64_t newBandVersion()
{
    static std::atomic<std::uint64_t> last { 0 };
    return ++last;
}

std::vector<bool> changedBandsOf(const std::vector<std::uint64_t> &now,
                                 const std::vector<std::uint64_t> &before)
{
    std::vector<bool> changed(now.size(), true);
    if (now.size() == before.size())
        std::transform(now.begin(), now.end(), before.begin(), changed.begin(), std::not_equal_to<>());
    return changed;
}

std::shared_ptr<const BitmapImage> bitmapImageFrom(const QImage &picture)
{
    std::vector<std::uint64_t> versions(static_cast<std::size_t>(bandCount(picture.height())));
    std::ranges::generate(versions, newBandVersion);
    return bitmapImageFrom(picture, std::move(versions));
}

std::shared_ptr<const BitmapImage> bitmapImageFrom(const QImage &picture, std::vector<std::uint64_t> versions)
{
    QImage pixels = picture.convertToFormat(QImage::Format_RGB32);
    pixels.detach();
    return std::make_shared<const OwnedBitmapImage>(std::move(pixels), std::move(versions));
}

} // namespace vornic
