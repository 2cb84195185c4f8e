#include "capture/record/picture_unspooler.h"

#include "base/keyed_archive.h"
#include "capture/jpeg/jpeg_picture.h"
#include "capture/record/picture_keys.h"

namespace vornic {

std::shared_ptr<const JpegPicture> PictureUnspooler::decode(const KeyedUnarchiver &unarchiver)
{
    if (unarchiver.decodeBool(samePictureKey))
        return m_last;
    const std::optional<QByteArray> jpeg = unarchiver.decodeData(pictureKey);
    m_last = jpeg ? std::make_shared<const JpegPicture>(*jpeg) : nullptr;
    return m_last;
}

} // namespace vornic
