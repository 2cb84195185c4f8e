#include "capture/jpeg/jpeg_band_decoder.h"

#include "base/parallel.h"
#include "capture/jpeg/jpeg_bands.h"
#include "capture/jpeg/jpeg_codec.h"
#include "display/bitmap_image.h"

#include <algorithm>
#include <atomic>
#include <optional>

namespace vornic {

namespace {

constexpr int minBandsPerThread = 4;

bool decodeRun(const JpegBands &parts, int firstBand, int count, uchar *pixels, qsizetype bytesPerLine)
{
    const int firstRow = firstBand * BitmapImage::bandHeight;
    const int rows = std::min(count * BitmapImage::bandHeight, parts.size.height() - firstRow);
    const std::vector<QByteArrayView> bands(parts.bands.begin() + firstBand,
                                            parts.bands.begin() + firstBand + count);
    const QByteArray run = joinJpegBands(jpegHeaderWithHeight(parts.header, rows), bands);
    return jpegDecompress(run, pixels + firstRow * bytesPerLine, parts.size.width(), rows, bytesPerLine);
}

std::vector<bool> changedBands(const JpegBands &now, const std::optional<JpegBands> &before)
{
    std::vector<bool> changed(now.bands.size(), true);
    if (!before || before->header != now.header || before->bands.size() != now.bands.size())
        return changed;
    for (std::size_t i = 0; i < changed.size(); ++i)
        changed[i] = now.bands[i] != before->bands[i];
    return changed;
}

} // namespace

std::vector<bool> JpegBandDecoder::decode(const QByteArray &jpeg, QImage &canvas)
{
    const QByteArray last = std::exchange(m_last, {});
    const QSize size = jpegDeclaredSize(jpeg);
    if (size.isEmpty())
        return {};
    const bool kept = canvas.size() == size && canvas.format() == QImage::Format_RGB32;
    if (!kept)
        canvas = QImage(size, QImage::Format_RGB32);
    if (canvas.isNull())
        return {};

    uchar *const pixels = canvas.bits();
    const qsizetype bytesPerLine = canvas.bytesPerLine();
    const std::optional<JpegBands> parts = JpegBands::split(jpeg);
    if (!parts || parts->size != size) {
        // Not made here, or damaged: all or nothing.
        if (!jpegDecompress(jpeg, pixels, size.width(), size.height(), bytesPerLine))
            return {};
        m_last = jpeg;
        std::vector<bool> all(static_cast<std::size_t>(bandCount(size.height())), true);
        return all;
    }

    std::vector<bool> changed
        = changedBands(*parts, kept && !last.isEmpty() ? JpegBands::split(last) : std::nullopt);
    std::atomic<bool> good = true;
    for (auto run = std::find(changed.begin(), changed.end(), true); run != changed.end();) {
        const auto end = std::find(run, changed.end(), false);
        const int firstBand = static_cast<int>(run - changed.begin());
        parallelRanges(static_cast<int>(end - run), minBandsPerThread, [&](int first, int count) {
            if (!decodeRun(*parts, firstBand + first, count, pixels, bytesPerLine))
                good = false;
        });
        run = std::find(end, changed.end(), true);
    }
    if (!good)
        return {};
    m_last = jpeg;
    return changed;
}

} // namespace vornic
