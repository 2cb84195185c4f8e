#include "codec/planar_picture.h"

#include <algorithm>
#include <cstring>

namespace vornic {

namespace {

/// Vector code of the scaler may read and write this many bytes beyond the last row.
constexpr std::size_t slackBytes = 64;

constexpr int roundedUpToEven(int size)
{
    return size + (size & 1);
}

} // namespace

PlanarPicture::PlanarPicture(int width, int height)
    : m_width(roundedUpToEven(width))
    , m_height(roundedUpToEven(height))
    , m_stride((static_cast<qsizetype>(m_width) + 127) / 128 * 128)
    , m_byteCount(static_cast<std::size_t>(m_stride * m_height / 2 * 3) + slackBytes)
    , m_memory(static_cast<uchar *>(::operator new(m_byteCount, alignment)))
{
}

qsizetype PlanarPicture::offset(int plane) const
{
    const qsizetype lumaBytes = m_stride * m_height;
    return plane == 0 ? 0 : lumaBytes + (plane - 1) * (lumaBytes / 4);
}

std::shared_ptr<PlanarPicture> PlanarPicture::copy() const
{
    const auto pool = m_pool.lock();
    auto result = pool ? pool->take(m_width, m_height) : std::make_shared<PlanarPicture>(m_width, m_height);
    std::memcpy(result->data(0), data(0), m_byteCount);
    return result;
}

void PlanarPicture::repeatLumaEdges(int width, int height)
{
    if (width < m_width) {
        for (int y = 0; y < height; ++y) {
            uchar *row = data(0) + y * m_stride;
            row[width] = row[width - 1];
        }
    }
    if (height < m_height) {
        uchar *last = data(0) + (height - 1) * m_stride;
        std::memcpy(last + m_stride, last, static_cast<std::size_t>(m_width));
    }
}

void PlanarPicture::fillBlack()
{
    constexpr int blackLuma = 16;
    constexpr int noColour = 128;
    for (int plane = 0; plane < 3; ++plane)
        std::memset(data(plane),
                    plane == 0 ? blackLuma : noColour,
                    static_cast<std::size_t>(stride(plane) * planeHeight(plane)));
}

void PlanarPicture::put(const PlanarPicture &picture, int x, int y)
{
    for (int plane = 0; plane < 3; ++plane) {
        const int shrink = plane == 0 ? 1 : 2;
        uchar *to = data(plane) + y / shrink * stride(plane) + x / shrink;
        const uchar *from = picture.data(plane);
        for (int row = 0; row < picture.planeHeight(plane); ++row)
            std::memcpy(to + row * stride(plane),
                        from + row * picture.stride(plane),
                        static_cast<std::size_t>(picture.planeWidth(plane)));
    }
}

std::shared_ptr<PlanarPicture> PlanarPicturePool::take(int width, int height)
{
    std::unique_ptr<PlanarPicture> picture;
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_free.empty()) {
            picture = std::move(m_free.back());
            m_free.pop_back();
        }
    }
    if (!picture || picture->width() != roundedUpToEven(width)
        || picture->height() != roundedUpToEven(height)) {
        picture = std::make_unique<PlanarPicture>(width, height);
        picture->m_pool = weak_from_this();
    }
    return { picture.release(), [pool = weak_from_this()](PlanarPicture *used) {
                std::unique_ptr<PlanarPicture> owned(used);
                if (const auto alive = pool.lock())
                    alive->giveBack(std::move(owned));
            } };
}

void PlanarPicturePool::giveBack(std::unique_ptr<PlanarPicture> picture)
{
    const std::scoped_lock lock(m_mutex);
    m_free.push_back(std::move(picture));
}

} // namespace vornic
