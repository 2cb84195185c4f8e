#pragma once

#include "codec/PKPixelFormat.h"

#include <QImage>
#include <QPainter>

#include <cstdint>
#include <memory>
#include <utility>

namespace vornic {

class KeyedArchiver;
class KeyedUnarchiver;
class PlanarPicture;

/// One picture of a movie, with the time at which it is shown and for how long.
///
/// RGB frames are made from an image, YUV frames by a PKScaleContext. A frame is used by one thread at a
/// time; as shared_ptr<const PKVideoFrame2> any number of threads may read it. Pixels are shared between
/// frames and copied only when one of them is written to.
class PKVideoFrame2
{
public:
    /// An RGB frame of the image's pixels. No pixel is copied when a Format_RGB32 image is moved in; other
    /// formats are converted. Memory that the image only borrows must outlive the frame.
    explicit PKVideoFrame2(QImage image);
    /// A YUV frame showing the top left \a displayWidth x \a displayHeight of \a planes.
    PKVideoFrame2(std::shared_ptr<PlanarPicture> planes, int displayWidth, int displayHeight);
    ~PKVideoFrame2();
    PKVideoFrame2 &operator=(const PKVideoFrame2 &) = delete;

    /// A painter straight onto the pixels of an RGB frame: y up, origin at the lower left corner of the
    /// lower left pixel, one unit a pixel. End it before the frame is read. Null for a YUV frame.
    [[nodiscard]] std::unique_ptr<QPainter> creatContextRef();

    /// Moves the image out of an RGB frame; the frame is of no use afterwards.
    [[nodiscard]] QImage takeImage() { return std::exchange(m_image, {}); }

    void encodeWithCoder(KeyedArchiver &archiver) const;
    /// Null where the archive does not hold the pixels that its sizes call for.
    [[nodiscard]] static std::shared_ptr<PKVideoFrame2> createWithCoder(const KeyedUnarchiver &unarchiver);

    /// The stored size; always even for a YUV frame.
    [[nodiscard]] int codeWidth() const;
    [[nodiscard]] int codeHeight() const;
    /// The size shown. A YUV frame stores at most one more column and row, repeating the last one shown.
    [[nodiscard]] int displayWidth() const { return m_displayWidth; }
    [[nodiscard]] int displayHeight() const { return m_displayHeight; }
    /// Asks whoever converts this frame to scale it to that size; the pixels stay as they are.
    void setDisplaySize(int width, int height);
    [[nodiscard]] PKPixelFormat pixFormat() const;

    /// When the frame is shown and for how long, in PKTimebase ticks; both 0 at first.
    [[nodiscard]] std::int64_t timeStamp() const { return m_timeStamp; }
    void setTimeStamp(std::int64_t ticks) { m_timeStamp = ticks; }
    [[nodiscard]] std::int64_t duration() const { return m_duration; }
    void setDuration(std::int64_t ticks) { m_duration = ticks; }
    /// The movie can be entered here, whatever the frames before: the encoder makes it a key frame.
    [[nodiscard]] bool isKey() const { return m_isKey; }
    void setIsKey(bool isKey) { m_isKey = isKey; }
    /// Is shown in the place of \a other.
    void takePlaceOf(const PKVideoFrame2 &other);

    /// A frame of its own times over the same pixels, which are not copied.
    [[nodiscard]] std::shared_ptr<PKVideoFrame2> sharingPixels() const;
    /// A frame with the same times over a copy of the pixels that nobody shares.
    [[nodiscard]] std::shared_ptr<PKVideoFrame2> deepCopy() const;
    [[nodiscard]] bool sharesPixelsWith(const PKVideoFrame2 &other) const;

    /// Rows from top to bottom; plane 0 of an RGB frame, planes 0 (Y), 1 (Cb) and 2 (Cr) of a YUV frame.
    /// Valid as long as the frame and until it is painted on.
    [[nodiscard]] const uchar *planeData(int plane) const;
    [[nodiscard]] qsizetype planeStride(int plane) const;
    /// The memory of a YUV frame, which may outlive the frame; null for an RGB frame.
    [[nodiscard]] std::shared_ptr<const PlanarPicture> planes() const;

private:
    friend class PKScaleContext;
    PKVideoFrame2(const PKVideoFrame2 &) = default;

    QImage m_image;                          ///< null for a YUV frame
    std::shared_ptr<PlanarPicture> m_planes; ///< null for an RGB frame
    int m_displayWidth = 0;
    int m_displayHeight = 0;
    std::int64_t m_timeStamp = 0;
    std::int64_t m_duration = 0;
    bool m_isKey = false;
};

} // namespace vornic
