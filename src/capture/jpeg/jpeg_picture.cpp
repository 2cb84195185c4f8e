#include "capture/jpeg/jpeg_picture.h"

#include "capture/jpeg/jpeg_band_decoder.h"
#include "capture/jpeg/jpeg_bands.h"
#include "capture/jpeg/jpeg_codec.h"
#include "display/bitmap_image.h"

#include <algorithm>
#include <utility>

namespace vornic {

JpegPicture::JpegPicture(QSize size,
                         QByteArray header,
                         std::vector<Band> bands,
                         std::vector<std::uint64_t> versions)
    : m_size(size)
    , m_header(std::move(header))
    , m_bands(std::move(bands))
    , m_versions(std::move(versions))
{
}

std::shared_ptr<const JpegPicture> JpegPicture::fromJpeg(const QByteArray &jpeg)
{
    const QSize size = jpegDeclaredSize(jpeg);
    if (size.isEmpty())
        return nullptr;
    std::vector<std::uint64_t> versions(static_cast<std::size_t>(bandCount(size.height())));
    std::ranges::generate(versions, newBandVersion);
    std::vector<Band> bands;
    const std::optional<JpegBands> parts = JpegBands::split(jpeg);
    if (!parts || parts->size != size)
        return std::shared_ptr<const JpegPicture>(new JpegPicture(size, jpeg, {}, std::move(versions)));
    bands.reserve(parts->bands.size());
    for (const QByteArrayView band : parts->bands)
        bands.push_back({ jpeg, band });
    return std::shared_ptr<const JpegPicture>(
        new JpegPicture(size, parts->header, std::move(bands), std::move(versions)));
}

std::shared_ptr<const JpegPicture>
JpegPicture::fromJpeg(const QByteArray &jpeg, const JpegPicture &before, const std::vector<bool> &changed)
{
    std::shared_ptr<const JpegPicture> now = fromJpeg(jpeg);
    if (!now || !now->isInBands() || now->m_size != before.m_size || now->m_header != before.m_header
        || now->m_bands.size() != before.m_bands.size() || now->m_bands.size() != changed.size())
        return now;
    std::vector<std::uint64_t> versions = now->m_versions;
    for (std::size_t i = 0; i < changed.size(); ++i) {
        if (changed[i])
            continue;
        // What is said to be the same is as long at least.
        if (now->m_bands[i].bytes.size() != before.m_bands[i].bytes.size())
            return now;
        versions[i] = before.m_versions[i];
    }
    return std::shared_ptr<const JpegPicture>(
        new JpegPicture(now->m_size, now->m_header, now->m_bands, std::move(versions)));
}

std::shared_ptr<const JpegPicture> JpegPicture::withBands(const std::vector<Replacement> &replacements,
                                                          const QByteArray &block) const
{
    std::vector<Band> bands = m_bands;
    std::vector<std::uint64_t> versions = m_versions;
    for (const auto &[place, bytes] : replacements) {
        if (place < 0 || static_cast<std::size_t>(place) >= bands.size() || !isJpegBand(bytes))
            return nullptr;
        bands[static_cast<std::size_t>(place)] = { block, bytes };
        versions[static_cast<std::size_t>(place)] = newBandVersion();
    }
    if (bands.empty())
        return nullptr;
    return std::shared_ptr<const JpegPicture>(
        new JpegPicture(m_size, m_header, std::move(bands), std::move(versions)));
}

QByteArray JpegPicture::jpeg() const
{
    if (!isInBands())
        return m_header;
    JpegBands parts { m_size, m_header, {} };
    parts.bands.reserve(m_bands.size());
    for (const Band &band : m_bands)
        parts.bands.push_back(band.bytes);
    return parts.joined();
}

std::shared_ptr<const BitmapImage> JpegPicture::image() const
{
    std::call_once(m_decodeOnce, [this] {
        QImage canvas;
        if (!JpegBandDecoder().decode(*this, canvas).empty())
            m_image = bitmapImageFrom(canvas, m_versions);
    });
    return m_image;
}

} // namespace vornic
