#include "capture/jpeg/jpeg_picture.h"

#include "capture/jpeg/jpeg_band_decoder.h"
#include "display/bitmap_image.h"

#include <utility>

namespace vornic {

JpegPicture::JpegPicture(QByteArray jpeg)
    : m_jpeg(std::move(jpeg))
{
}

std::shared_ptr<const BitmapImage> JpegPicture::image() const
{
    std::call_once(m_decodeOnce, [this] {
        QImage canvas;
        if (!JpegBandDecoder().decode(m_jpeg, canvas).empty())
            m_image = bitmapImageFrom(canvas);
    });
    return m_image;
}

} // namespace vornic
