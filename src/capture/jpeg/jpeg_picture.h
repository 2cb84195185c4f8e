#pragma once

#include <QByteArray>

#include <memory>
#include <mutex>

namespace vornic {

class BitmapImage;

/// A spooled picture: the bytes of a JPEG file, shared by all records that show it.
///
/// Made when a record is read back; its functions may be called from any thread.
class JpegPicture
{
public:
    explicit JpegPicture(QByteArray jpeg);

    [[nodiscard]] const QByteArray &jpeg() const { return m_jpeg; }
    /// The decoded picture, decoded at the first call and kept; null when the bytes are damaged.
    [[nodiscard]] std::shared_ptr<const BitmapImage> image() const;

private:
    QByteArray m_jpeg;
    mutable std::once_flag m_decodeOnce;
    mutable std::shared_ptr<const BitmapImage> m_image;
};

} // namespace vornic
