#include "capture/record/VNBufferDiscr.h"

#include "base/keyed_archive.h"
#include "base/log.h"
#include "base/native_path.h"
#include "capture/jpeg/jpeg_codec.h"
#include "capture/jpeg/jpeg_picture.h"
#include "capture/record/cursor_table.h"
#include "capture/record/frame_composer.h"
#include "capture/record/picture_keys.h"
#include "capture/record/picture_spooler.h"
#include "capture/record/picture_unspooler.h"
#include "codec/PKVideoFrame2.h"
#include "display/bitmap_image.h"
#include "display/display_backend.h"
#include "display/main_display.h"

#include <QDir>
#include <QStandardPaths>
#include <QUuid>

#include <sys/stat.h>

#include <bit>
#include <limits>

namespace vornic {

namespace {

constexpr QLatin1StringView mouseLocationKey("mMouseLocation");
constexpr QLatin1StringView durationKey("_duration");
constexpr QLatin1StringView timestampKey("mTimestamp");
constexpr QLatin1StringView cursorIndexKey("_cursorIndex");
constexpr QLatin1StringView videoFrameKey("_videoFrame");
constexpr QLatin1StringView followsPauseKey("followsPause");

/// Never the index of a shape: the pointer is hidden.
constexpr std::uint64_t noCursor = std::numeric_limits<std::uint64_t>::max();

} // namespace

VNBufferDiscr::~VNBufferDiscr() = default;

std::unique_ptr<VNBufferDiscr> VNBufferDiscr::createWithScreenImage(std::shared_ptr<const BitmapImage> image)
{
    if (!image) {
        logMessage(QStringLiteral("use initWithScreenImage:"));
        return nullptr;
    }
    std::unique_ptr<VNBufferDiscr> record(new VNBufferDiscr);
    record->mRecordRegion = std::move(image);
    record->mMouseLocation = pointerLocation();
    record->m_cursorShape = mainDisplay()->cursorShape();
    record->_cursorIndex = indexOfCursor(*record->m_cursorShape);
    return record;
}

std::shared_ptr<const BitmapImage> VNBufferDiscr::recordImage() const
{
    return m_picture ? m_picture->image() : mRecordRegion;
}

std::shared_ptr<const CursorShape> VNBufferDiscr::cursorShape() const
{
    return m_cursorShape ? *m_cursorShape : cusorAtIndex(_cursorIndex);
}

void VNBufferDiscr::encodeScalars(KeyedArchiver &archiver) const
{
    archiver.encodePoint(mouseLocationKey, mMouseLocation);
    archiver.encodeInt64(durationKey, std::bit_cast<std::int64_t>(_duration));
    archiver.encodeInt64(timestampKey, std::bit_cast<std::int64_t>(mTimestamp));
    archiver.encodeInt64(cursorIndexKey, std::bit_cast<std::int64_t>(_cursorIndex));
    if (m_followsPause)
        archiver.encodeBool(followsPauseKey, true);
}

void VNBufferDiscr::encodeVideoFrame(KeyedArchiver &archiver) const
{
    if (_videoFrame)
        archiver.encodeObject(videoFrameKey,
                              [this](KeyedArchiver &nested) { _videoFrame->encodeWithCoder(nested); });
}

void VNBufferDiscr::encodeWithCoder(KeyedArchiver &archiver) const
{
    encodeScalars(archiver);
    encodeCGImage(recordImage(), archiver);
    encodeVideoFrame(archiver);
}

void VNBufferDiscr::encodeWithCoder(KeyedArchiver &archiver, PictureSpooler &pictures) const
{
    encodeScalars(archiver);
    if (m_followsPause)
        pictures.beginPart();
    pictures.encode(recordImage(), mTimestamp, archiver);
    encodeVideoFrame(archiver);
}

std::unique_ptr<VNBufferDiscr> VNBufferDiscr::decodeAllButPicture(const KeyedUnarchiver &unarchiver)
{
    std::unique_ptr<VNBufferDiscr> record(new VNBufferDiscr);
    record->mMouseLocation = unarchiver.decodePoint(mouseLocationKey);
    record->_duration = std::bit_cast<std::uint64_t>(unarchiver.decodeInt64(durationKey));
    record->mTimestamp = std::bit_cast<std::uint64_t>(unarchiver.decodeInt64(timestampKey));
    record->_cursorIndex = std::bit_cast<std::uint64_t>(unarchiver.decodeInt64(cursorIndexKey));
    record->m_followsPause = unarchiver.decodeBool(followsPauseKey);
    if (const auto frame = unarchiver.decodeObject(videoFrameKey))
        record->_videoFrame = PKVideoFrame2::createWithCoder(*frame);
    return record;
}

std::unique_ptr<VNBufferDiscr> VNBufferDiscr::createWithCoder(const KeyedUnarchiver &unarchiver)
{
    std::unique_ptr<VNBufferDiscr> record = decodeAllButPicture(unarchiver);
    record->mRecordRegion = decodeCGImageFromCoder(unarchiver);
    return record;
}

std::unique_ptr<VNBufferDiscr> VNBufferDiscr::createWithCoder(const KeyedUnarchiver &unarchiver,
                                                              PictureUnspooler &pictures)
{
    std::unique_ptr<VNBufferDiscr> record = decodeAllButPicture(unarchiver);
    record->m_picture = pictures.decode(unarchiver);
    return record;
}

void VNBufferDiscr::encodeCGImage(const std::shared_ptr<const BitmapImage> &image, KeyedArchiver &archiver)
{
    if (!image)
        return;
    if (const auto jpeg = jpegCompress(image->bits(), image->width(), image->height(), image->bytesPerLine()))
        archiver.encodeData(pictureKey, *jpeg);
}

std::shared_ptr<const BitmapImage> VNBufferDiscr::decodeCGImageFromCoder(const KeyedUnarchiver &unarchiver)
{
    const std::optional<QByteArray> jpeg = unarchiver.decodeData(pictureKey);
    const std::shared_ptr<const JpegPicture> picture = jpeg ? JpegPicture::fromJpeg(*jpeg) : nullptr;
    return picture ? picture->image() : nullptr;
}

std::shared_ptr<PKVideoFrame2> VNBufferDiscr::getVideoFrameWithLogoContext(
    const VNLogoContext * /*logoContext*/, const QRectF &recordRegion, FrameComposer *composer)
{
    if (_videoFrame)
        return _videoFrame;
    FrameComposer fromNothing;
    _videoFrame = (composer ? *composer : fromNothing).compose(*this, recordRegion);
    if (_videoFrame) {
        _videoFrame->setTimeStamp(std::bit_cast<std::int64_t>(mTimestamp));
        _videoFrame->setDuration(std::bit_cast<std::int64_t>(_duration));
        _videoFrame->setIsKey(m_followsPause);
    }
    return _videoFrame;
}

std::uint64_t VNBufferDiscr::indexOfCursor(const std::shared_ptr<const CursorShape> &cursor)
{
    return cursor ? CursorTable::shared().indexOf(cursor) : noCursor;
}

std::shared_ptr<const CursorShape> VNBufferDiscr::cusorAtIndex(std::uint64_t index)
{
    return CursorTable::shared().at(index);
}

QString VNBufferDiscr::cachePath()
{
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (base.isEmpty()) {
        logMessage(QStringLiteral("User temporary dir."));
        base = QDir::tempPath();
    }
    QString path = base + QStringLiteral("/com.kavlor.vornic");
    errno = 0;
    // What is recorded is its user's alone, whatever the umask says.
    if (!isFolder(path) && (!QDir().mkpath(base) || ::mkdir(nativePath(path).constData(), 0700) != 0))
        logMessage(QStringLiteral("Failed to create cache path(%1), with error description:%2")
                       .arg(path, qt_error_string()));
    return path;
}

QString VNBufferDiscr::tempExtension()
{
    return QStringLiteral("png");
}

QString VNBufferDiscr::uniqueFilename()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

bool VNBufferDiscr::saveCGImage(const std::shared_ptr<const BitmapImage> &image, const QUrl &toFile)
{
    return image && image->view().save(toFile.toLocalFile(), "PNG");
}

void VNBufferDiscr::saveCGImageForDebug(const std::shared_ptr<const BitmapImage> &image)
{
    saveCGImage(image, QUrl::fromLocalFile(cachePath() + QStringLiteral("/vornic-debug.png")));
}

std::pair<double, double> VNBufferDiscr::calcMaxFitSize(std::int64_t width, std::int64_t hight)
{
    constexpr std::int64_t maxWidth = 1920;
    constexpr std::int64_t maxHeight = 1080;
    if (width <= maxWidth && hight <= maxHeight)
        return { static_cast<double>(width), static_cast<double>(hight) };
    if (width * maxHeight > hight * maxWidth) {
        const std::int64_t fittedHeight = hight * maxWidth / width;
        return { static_cast<double>(maxWidth), static_cast<double>(fittedHeight) };
    }
    const std::int64_t fittedWidth = width * maxHeight / hight;
    return { static_cast<double>(fittedWidth), static_cast<double>(maxHeight) };
}

} // namespace vornic
