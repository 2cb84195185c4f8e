#include "codec/PKVideoFrame2.h"

#include "codec/planar_picture.h"
#include "geometry/y_up.h"

#include <utility>

namespace vornic {

PKVideoFrame2::PKVideoFrame2(QImage image)
    : m_image(image.format() == QImage::Format_RGB32 ? std::move(image)
                                                     : std::move(image).convertToFormat(QImage::Format_RGB32))
    , m_displayWidth(m_image.width())
    , m_displayHeight(m_image.height())
{
}

PKVideoFrame2::PKVideoFrame2(std::shared_ptr<PlanarPicture> planes, int displayWidth, int displayHeight)
    : m_planes(std::move(planes))
    , m_displayWidth(displayWidth)
    , m_displayHeight(displayHeight)
{
}

PKVideoFrame2::~PKVideoFrame2() = default;

std::unique_ptr<QPainter> PKVideoFrame2::creatContextRef()
{
    if (m_planes)
        return nullptr;
    auto painter = std::make_unique<QPainter>(&m_image);
    flipPainter(*painter, m_image.height());
    return painter;
}

int PKVideoFrame2::codeWidth() const
{
    return m_planes ? m_planes->width() : m_image.width();
}

int PKVideoFrame2::codeHeight() const
{
    return m_planes ? m_planes->height() : m_image.height();
}

void PKVideoFrame2::setDisplaySize(int width, int height)
{
    m_displayWidth = width;
    m_displayHeight = height;
}

PKPixelFormat PKVideoFrame2::pixFormat() const
{
    return m_planes ? PKPixelFormatYUV420P : PKPixelFormatRGB32;
}

void PKVideoFrame2::takePlaceOf(const PKVideoFrame2 &other)
{
    m_timeStamp = other.m_timeStamp;
    m_duration = other.m_duration;
    m_isKey = other.m_isKey;
}

std::shared_ptr<PKVideoFrame2> PKVideoFrame2::sharingPixels() const
{
    return std::shared_ptr<PKVideoFrame2>(new PKVideoFrame2(*this));
}

std::shared_ptr<PKVideoFrame2> PKVideoFrame2::deepCopy() const
{
    auto frame = sharingPixels();
    if (m_planes)
        frame->m_planes = m_planes->copy();
    else
        frame->m_image = m_image.copy();
    return frame;
}

bool PKVideoFrame2::sharesPixelsWith(const PKVideoFrame2 &other) const
{
    return m_planes ? m_planes == other.m_planes
                    : !other.m_planes && m_image.constBits() == other.m_image.constBits();
}

const uchar *PKVideoFrame2::planeData(int plane) const
{
    return m_planes ? std::as_const(*m_planes).data(plane) : m_image.constBits();
}

qsizetype PKVideoFrame2::planeStride(int plane) const
{
    return m_planes ? m_planes->stride(plane) : m_image.bytesPerLine();
}

std::shared_ptr<const PlanarPicture> PKVideoFrame2::planes() const
{
    return m_planes;
}

} // namespace vornic
