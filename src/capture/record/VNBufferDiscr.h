#pragma once

#include <QPointF>
#include <QRectF>
#include <QString>
#include <QUrl>

#include <cstdint>
#include <memory>
#include <utility>

namespace vornic {

class BitmapImage;
class FrameComposer;
class JpegPicture;
class KeyedArchiver;
class KeyedUnarchiver;
class PictureSpooler;
class PictureUnspooler;
class PKVideoFrame2;
class VNLogoContext;
struct CursorShape;

/// One captured frame: the screen's picture, the pointer with its shape, and the time.
///
/// Made by the capture pass from a grab, and again by the spool from what it wrote; used by one thread at a
/// time. Times are PKTimebase ticks since the recording's origin.
class VNBufferDiscr
{
public:
    /// A record of \a image at this moment: takes the pointer's position and shape from the main display.
    /// No object without an image: logs "use initWithScreenImage:".
    [[nodiscard]] static std::unique_ptr<VNBufferDiscr>
    createWithScreenImage(std::shared_ptr<const BitmapImage> image);

    ~VNBufferDiscr();
    VNBufferDiscr(const VNBufferDiscr &) = delete;
    VNBufferDiscr &operator=(const VNBufferDiscr &) = delete;

    /// The picture; null when there is none, or when the bytes it was read from are damaged. A record that
    /// was read back decodes its picture at the first call.
    [[nodiscard]] std::shared_ptr<const BitmapImage> recordImage() const;
    /// The picture as it was spooled when the record was read back, and can be read; else null.
    [[nodiscard]] const std::shared_ptr<const JpegPicture> &recordPicture() const { return m_picture; }

    void setBufferTimestamp(std::uint64_t ticks) { mTimestamp = ticks; }
    [[nodiscard]] std::uint64_t timestamp() const { return mTimestamp; }
    void setDuration(std::uint64_t ticks) { _duration = ticks; }
    [[nodiscard]] std::uint64_t duration() const { return _duration; }
    /// The recording was paused before it: its picture is spooled whole, and a key frame of the movie.
    void setFollowsPause(bool follows) { m_followsPause = follows; }
    [[nodiscard]] bool followsPause() const { return m_followsPause; }
    /// The middle of the pixel under the hot spot, in screen coordinates (y up).
    [[nodiscard]] QPointF mouseLocation() const { return mMouseLocation; }
    [[nodiscard]] std::uint64_t cursorIndex() const { return _cursorIndex; }
    /// The pointer's shape, which a new record has with it; else what was set, or what the table has at cursorIndex().
    /// Null for a hidden pointer, or where nobody knows the shape any more.
    [[nodiscard]] std::shared_ptr<const CursorShape> cursorShape() const;
    /// For a record that was read back: the table may have forgotten the shape, and that of another process was
    /// another.
    void setCursorShape(std::shared_ptr<const CursorShape> shape) { m_cursorShape = std::move(shape); }

    void encodeWithCoder(KeyedArchiver &archiver) const;
    [[nodiscard]] static std::unique_ptr<VNBufferDiscr> createWithCoder(const KeyedUnarchiver &unarchiver);
    /// The same for a record in a spool, whose picture is told by what changed since the one before.
    void encodeWithCoder(KeyedArchiver &archiver, PictureSpooler &pictures) const;
    [[nodiscard]] static std::unique_ptr<VNBufferDiscr> createWithCoder(const KeyedUnarchiver &unarchiver,
                                                                        PictureUnspooler &pictures);

    /// Writes \a image as a JPEG file under "cgimage.jpegrep"; nothing when it is null.
    static void encodeCGImage(const std::shared_ptr<const BitmapImage> &image, KeyedArchiver &archiver);
    /// A new image out of "cgimage.jpegrep", or null.
    [[nodiscard]] static std::shared_ptr<const BitmapImage>
    decodeCGImageFromCoder(const KeyedUnarchiver &unarchiver);

    /// The frame for the encoder, composed at the first call; later calls give the same one and ignore the
    /// arguments. Null when the record's picture is damaged or missing.
    ///
    /// The pointer is drawn when it lies in \a recordRegion (screen coordinates), or when that is empty. The
    /// logo is on the screen and so in the picture already; \a logoContext changes nothing. A \a composer
    /// that composed the frames before saves the work for what equals them; null composes from nothing.
    [[nodiscard]] std::shared_ptr<PKVideoFrame2> getVideoFrameWithLogoContext(
        const VNLogoContext *logoContext, const QRectF &recordRegion, FrameComposer *composer = nullptr);

    [[nodiscard]] static std::uint64_t indexOfCursor(const std::shared_ptr<const CursorShape> &cursor);
    /// Null when the table holds no shape at \a index, or no longer.
    [[nodiscard]] static std::shared_ptr<const CursorShape> cusorAtIndex(std::uint64_t index);
    /// The program's folder among the user's cache folders, made when missing.
    [[nodiscard]] static QString cachePath();
    [[nodiscard]] static QString tempExtension();
    /// A new UUID in its canonical form.
    [[nodiscard]] static QString uniqueFilename();
    /// Writes \a image as one PNG file; false for a null image or where no file can be made.
    static bool saveCGImage(const std::shared_ptr<const BitmapImage> &image, const QUrl &toFile);
    /// Writes \a image to "vornic-debug.png" in the cache folder, where no other user looks or puts a link; for
    /// developers, never called.
    static void saveCGImageForDebug(const std::shared_ptr<const BitmapImage> &image);
    /// The size that a recording of \a width x \a hight pixels is encoded at: its own up to 1920 x 1080, else
    /// fitted into that with truncating divisions.
    [[nodiscard]] static std::pair<double, double> calcMaxFitSize(std::int64_t width, std::int64_t hight);

private:
    VNBufferDiscr() = default;

    void encodeScalars(KeyedArchiver &archiver) const;
    void encodeVideoFrame(KeyedArchiver &archiver) const;
    [[nodiscard]] static std::unique_ptr<VNBufferDiscr>
    decodeAllButPicture(const KeyedUnarchiver &unarchiver);

    std::uint64_t _duration = 0;
    std::shared_ptr<PKVideoFrame2> _videoFrame;
    std::uint64_t _cursorIndex = 0;
    std::optional<std::shared_ptr<const CursorShape>> m_cursorShape; ///< nothing: look in the table
    std::shared_ptr<const BitmapImage> mRecordRegion;
    std::shared_ptr<const JpegPicture> m_picture;
    QPointF mMouseLocation;
    std::uint64_t mTimestamp = 0;
    bool m_followsPause = false;
};

} // namespace vornic
