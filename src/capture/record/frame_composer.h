#pragma once

#include "capture/jpeg/jpeg_band_decoder.h"

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QRectF>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace vornic {

class BitmapImage;
class PKScaleContext;
class PKVideoFrame2;
class VNBufferDiscr;
struct CursorShape;

/// Composes the encoder's frames of one movie, one record after the other: decodes the picture, draws the
/// pointer, converts to planar YUV at the movie's size.
///
/// Only what differs from the frame before is done again: changed bands of the picture, and the bands where
/// the pointer was and is. A frame that equals the one before shares its pixels. Owned by whoever feeds the
/// encoder and used by one thread at a time; a frame is composed on all processors.
class FrameComposer
{
public:
    FrameComposer();
    ~FrameComposer();
    FrameComposer(const FrameComposer &) = delete;
    FrameComposer &operator=(const FrameComposer &) = delete;

    /// The frame of \a record without times; null when its picture is missing or damaged. \a region in
    /// screen coordinates (y up), empty for none: the pointer is then always drawn, without an offset.
    [[nodiscard]] std::shared_ptr<PKVideoFrame2> compose(const VNBufferDiscr &record, const QRectF &region);

    /// Bands of 16 rows that the last call decoded and converted; the others stayed as they were.
    [[nodiscard]] int decodedBandCount() const { return m_decodedBandCount; }
    [[nodiscard]] int convertedBandCount() const { return m_convertedBandCount; }

private:
    /// A pointer and where it is drawn: in pixels of the canvas, from its top left.
    struct DrawnCursor {
        std::shared_ptr<const CursorShape> shape;
        QPoint topLeft;

        [[nodiscard]] QRect rect() const;
        friend bool operator==(const DrawnCursor &, const DrawnCursor &) = default;
    };

    /// Brings the canvas to the record's picture; false when that is missing or damaged.
    [[nodiscard]] bool loadPicture(const VNBufferDiscr &record);
    [[nodiscard]] bool loadImage(const std::shared_ptr<const BitmapImage> &image);
    void removeCursor();
    void drawCursor(PKVideoFrame2 &frame) const;
    /// Marks the bands that \a rectangle of the canvas reaches into.
    void markChanged(const QRect &rectangle);
    /// Converts the changed bands into a copy of the last frame, or all of \a frame where that cannot be.
    [[nodiscard]] std::shared_ptr<PKVideoFrame2> convert(const PKVideoFrame2 &frame);
    /// Forgets the last frame and the pointer in it: the next one is converted as a whole.
    void reset();

    /// The record's pointer in the canvas; nothing where it lies outside \a region, or has no picture.
    [[nodiscard]] std::optional<DrawnCursor> cursorFor(const VNBufferDiscr &record,
                                                       const QRectF &region) const;

    JpegBandDecoder m_decoder;
    QImage m_canvas;                     ///< the picture with the pointer drawn in
    std::optional<DrawnCursor> m_cursor; ///< the one in the canvas
    QImage m_underCursor;                ///< the pixels that the pointer covers in the canvas
    std::vector<bool> m_changedBands;    ///< of the canvas, since the last frame
    int m_decodedBandCount = 0;
    int m_convertedBandCount = 0;
    std::unique_ptr<PKScaleContext> m_scaler;
    std::shared_ptr<PKVideoFrame2> m_frame; ///< the last one
};

} // namespace vornic
