#include "capture/jpeg/jpeg_band_decoder.h"

#include "base/parallel.h"
#include "capture/jpeg/jpeg_codec.h"
#include "capture/jpeg/jpeg_picture.h"
#include "display/bitmap_image.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace vornic {

namespace {

constexpr int minBandsPerThread = 4;

bool decodeRun(const JpegPicture &picture, int firstBand, int count, uchar *pixels, qsizetype bytesPerLine)
{
    const int firstRow = firstBand * BitmapImage::bandHeight;
    const int rows = std::min(count * BitmapImage::bandHeight, picture.size().height() - firstRow);
    std::vector<QByteArrayView> bands;
    bands.reserve(static_cast<std::size_t>(count));
    for (int band = firstBand; band < firstBand + count; ++band)
        bands.push_back(picture.bandBytes(band));
    return jpegDecompressBands(picture.header(),
                               bands,
                               pixels + firstRow * bytesPerLine,
                               picture.size().width(),
                               rows,
                               bytesPerLine);
}

bool decodeBands(const JpegPicture &picture,
                 const std::vector<bool> &wanted,
                 uchar *pixels,
                 qsizetype bytesPerLine)
{
    std::atomic<bool> good = true;
    for (auto run = std::find(wanted.begin(), wanted.end(), true); run != wanted.end();) {
        const auto end = std::find(run, wanted.end(), false);
        const int firstBand = static_cast<int>(run - wanted.begin());
        parallelRanges(static_cast<int>(end - run), minBandsPerThread, [&](int first, int count) {
            if (!decodeRun(picture, firstBand + first, count, pixels, bytesPerLine))
                good = false;
        });
        run = std::find(end, wanted.end(), true);
    }
    return good;
}

} // namespace

bool JpegBandDecoder::holds(const JpegPicture &picture) const
{
    return m_versions == picture.bandVersions();
}

std::vector<bool> JpegBandDecoder::decode(const JpegPicture &picture, QImage &canvas)
{
    std::vector<std::uint64_t> before = std::exchange(m_versions, {});
    const QSize size = picture.size();
    if (canvas.size() != size || canvas.format() != QImage::Format_RGB32) {
        before.clear();
        canvas = QImage(size, QImage::Format_RGB32);
    }
    if (canvas.isNull())
        return {};

    std::vector<bool> changed = changedBandsOf(picture.bandVersions(), before);
    uchar *const pixels = canvas.bits();
    const qsizetype bytesPerLine = canvas.bytesPerLine();
    if (picture.isInBands()) {
        if (!decodeBands(picture, changed, pixels, bytesPerLine))
            return {};
    } else {
        // Not made here: all or nothing.
        if (!jpegDecompress(picture.jpeg(), pixels, size.width(), size.height(), bytesPerLine))
            return {};
        changed.assign(changed.size(), true);
    }
    m_versions = picture.bandVersions();
    return changed;
}

} // namespace vornic
