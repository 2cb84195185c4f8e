#include "capture/jpeg/jpeg_band_compressor.h"

#include "base/parallel.h"
#include "capture/jpeg/jpeg_codec.h"
#include "display/bitmap_image.h"

#include <algorithm>
#include <atomic>

namespace vornic {

namespace {

/// Below, handing a range of bands to another thread costs as much as compressing it there saves.
constexpr int minBandsPerThread = 4;

} // namespace

void JpegBandCompressor::start(const BitmapImage &image)
{
    const QSize size(image.width(), image.height());
    if (size == m_size && m_bands.size() == image.bandVersions().size())
        return;
    m_size = size;
    m_header.clear();
    m_bands.assign(image.bandVersions().size(), Band {});
}

std::vector<JpegBandCompressor::Run> JpegBandCompressor::changedRuns(const BitmapImage &image) const
{
    std::vector<Run> runs;
    const std::vector<std::uint64_t> &versions = image.bandVersions();
    for (std::size_t i = 0; i < versions.size(); ++i) {
        if (m_bands[i].version == versions[i])
            continue;
        const int band = static_cast<int>(i);
        if (!runs.empty() && runs.back().firstBand + runs.back().bandCount == band)
            ++runs.back().bandCount;
        else
            runs.push_back({ band, 1 });
    }
    return runs;
}

bool JpegBandCompressor::compressRun(const BitmapImage &image, Run run)
{
    const int firstRow = run.firstBand * BitmapImage::bandHeight;
    const int rows = std::min(run.bandCount * BitmapImage::bandHeight, image.height() - firstRow);
    std::optional<QByteArray> jpeg = jpegCompress(
        image.bits() + firstRow * image.bytesPerLine(), image.width(), rows, image.bytesPerLine());
    const std::optional<JpegBands> parts = jpeg ? JpegBands::split(*jpeg) : std::nullopt;
    if (!parts)
        return false;
    for (int i = 0; i < run.bandCount; ++i) {
        const auto band = static_cast<std::size_t>(run.firstBand) + static_cast<std::size_t>(i);
        m_bands[band] = { image.bandVersions()[band], *jpeg, parts->bands[static_cast<std::size_t>(i)] };
    }
    if (run.firstBand == 0)
        m_header = jpegHeaderWithHeight(parts->header, image.height());
    return true;
}

std::optional<JpegBands> JpegBandCompressor::compress(const BitmapImage &image)
{
    start(image);
    std::atomic<bool> good = true;
    m_compressedBandCount = 0;
    for (const Run run : changedRuns(image)) {
        m_compressedBandCount += run.bandCount;
        parallelRanges(run.bandCount, minBandsPerThread, [&](int first, int count) {
            if (!compressRun(image, { run.firstBand + first, count }))
                good = false;
        });
    }
    if (!good || m_header.isEmpty()) {
        m_size = {};
        return std::nullopt;
    }
    JpegBands result { m_size, m_header, {} };
    result.bands.reserve(m_bands.size());
    for (const Band &band : m_bands)
        result.bands.push_back(band.bytes);
    return result;
}

} // namespace vornic
