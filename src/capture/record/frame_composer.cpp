#include "capture/record/frame_composer.h"

#include "capture/jpeg/jpeg_picture.h"
#include "capture/record/VNBufferDiscr.h"
#include "codec/PKScaleContext.h"
#include "codec/PKVideoFrame2.h"
#include "display/bitmap_image.h"
#include "display/display_backend.h"
#include "geometry/y_up.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <utility>

namespace vornic {

namespace {

/// The left and bottom edges belong to the rectangle, the right and top ones do not (y up).
bool contains(const QRectF &rectangle, QPointF point)
{
    return point.x() >= rectangle.x() && point.x() < rectangle.x() + rectangle.width()
        && point.y() >= rectangle.y() && point.y() < rectangle.y() + rectangle.height();
}

void copyPixels(QImage &to, QPoint toTopLeft, const QImage &from)
{
    constexpr qsizetype bytesPerPixel = 4;
    const QRect target = QRect(toTopLeft, from.size()) & to.rect();
    for (int y = target.top(); y <= target.bottom(); ++y) {
        const uchar *source
            = from.constScanLine(y - toTopLeft.y()) + bytesPerPixel * (target.left() - toTopLeft.x());
        std::memcpy(to.scanLine(y) + bytesPerPixel * target.left(),
                    source,
                    static_cast<std::size_t>(bytesPerPixel * target.width()));
    }
}

} // namespace

FrameComposer::FrameComposer() = default;
FrameComposer::~FrameComposer() = default;

QRect FrameComposer::DrawnCursor::rect() const
{
    return { topLeft, shape->picture.size() };
}

void FrameComposer::reset()
{
    m_cursor.reset();
    m_frame = nullptr;
}

std::optional<FrameComposer::DrawnCursor> FrameComposer::cursorFor(const VNBufferDiscr &record,
                                                                   const QRectF &region) const
{
    const QPointF mouse = record.mouseLocation();
    if (!region.isEmpty() && !contains(region, mouse))
        return std::nullopt;
    const std::shared_ptr<const CursorShape> shape = record.cursorShape();
    if (!shape || shape->picture.isNull())
        return std::nullopt;
    const QPointF offset
        = region.isEmpty() ? QPointF() : QPointF(std::trunc(region.x()), std::trunc(region.y()));
    const double left = mouse.x() - shape->hotSpot.x() - offset.x();
    const double bottom = mouse.y() + shape->hotSpot.y() - offset.y() - shape->picture.height();
    // The mouse is in the middle of its pixel, so rounding down lands the hot spot on that pixel.
    const double top = flipped(QPointF(left, bottom + shape->picture.height()), m_canvas.height()).y();
    constexpr double maxDistance = 1e6;
    if (!(std::abs(left) < maxDistance) || !(std::abs(top) < maxDistance))
        return std::nullopt;
    return DrawnCursor { shape,
                         QPoint(static_cast<int>(std::floor(left)), static_cast<int>(std::floor(top))) };
}

void FrameComposer::markChanged(const QRect &rectangle)
{
    const QRect rows = rectangle & m_canvas.rect();
    if (rows.isEmpty())
        return;
    for (int band = rows.top() / BitmapImage::bandHeight; band <= rows.bottom() / BitmapImage::bandHeight;
         ++band)
        m_changedBands[static_cast<std::size_t>(band)] = true;
}

void FrameComposer::removeCursor()
{
    if (!m_cursor)
        return;
    copyPixels(m_canvas, m_cursor->topLeft, m_underCursor);
    markChanged(m_cursor->rect());
    m_cursor.reset();
}

bool FrameComposer::loadImage(const std::shared_ptr<const BitmapImage> &image)
{
    reset();
    m_decoder.forget();
    if (!image)
        return false;
    m_canvas = image->view().copy();
    m_changedBands.assign(static_cast<std::size_t>(bandCount(m_canvas.height())), true);
    return true;
}

bool FrameComposer::loadPicture(const VNBufferDiscr &record)
{
    const std::shared_ptr<const JpegPicture> &picture = record.recordPicture();
    if (!picture)
        return loadImage(record.recordImage());
    const QSize sizeBefore = m_canvas.size();
    const std::vector<bool> written = m_decoder.decode(*picture, m_canvas);
    if (written.empty() || m_canvas.size() != sizeBefore)
        reset();
    if (written.empty())
        return false;
    m_decodedBandCount = static_cast<int>(std::count(written.begin(), written.end(), true));
    m_changedBands.resize(written.size(), true);
    std::transform(m_changedBands.begin(),
                   m_changedBands.end(),
                   written.begin(),
                   m_changedBands.begin(),
                   std::logical_or<>());
    return true;
}

void FrameComposer::drawCursor(PKVideoFrame2 &frame) const
{
    if (!m_cursor)
        return;
    const QRect rect = m_cursor->rect();
    const QPointF bottomLeft(rect.left(), frame.codeHeight() - rect.top() - rect.height());
    drawImageYUp(*frame.creatContextRef(), QRectF(bottomLeft, QSizeF(rect.size())), m_cursor->shape->picture);
}

std::shared_ptr<PKVideoFrame2> FrameComposer::convert(const PKVideoFrame2 &frame)
{
    const bool scales
        = frame.codeWidth() != frame.displayWidth() || frame.codeHeight() != frame.displayHeight();
    const bool changesAll = std::ranges::find(m_changedBands, false) == m_changedBands.end();
    if (!m_frame || scales || changesAll) {
        if (!m_scaler || !m_frame)
            m_scaler = std::make_unique<PKScaleContext>(frame.codeWidth(),
                                                        frame.displayWidth(),
                                                        frame.codeHeight(),
                                                        frame.displayHeight(),
                                                        frame.pixFormat(),
                                                        PKPixelFormatYUV420P);
        m_convertedBandCount = static_cast<int>(m_changedBands.size());
        return m_scaler->scaleFrame(frame);
    }
    m_convertedBandCount = static_cast<int>(std::count(m_changedBands.begin(), m_changedBands.end(), true));
    std::shared_ptr<PKVideoFrame2> result = m_frame->sharingPixels();
    for (auto run = std::find(m_changedBands.begin(), m_changedBands.end(), true);
         run != m_changedBands.end();) {
        const auto end = std::find(run, m_changedBands.end(), false);
        const int firstRow = static_cast<int>(run - m_changedBands.begin()) * BitmapImage::bandHeight;
        const int lastRow = std::min(static_cast<int>(end - m_changedBands.begin()) * BitmapImage::bandHeight,
                                     frame.codeHeight());
        m_scaler->convertRows(frame, *result, firstRow, lastRow - firstRow);
        run = std::find(end, m_changedBands.end(), true);
    }
    return result;
}

std::shared_ptr<PKVideoFrame2> FrameComposer::compose(const VNBufferDiscr &record, const QRectF &region)
{
    m_decodedBandCount = 0;
    m_convertedBandCount = 0;
    // A pointer that stays where it was over pixels that stay is left in the canvas.
    const bool samePicture = record.recordPicture() && m_decoder.holds(*record.recordPicture());
    if (samePicture && m_frame && cursorFor(record, region) == m_cursor)
        return m_frame->sharingPixels();

    removeCursor();
    if (!loadPicture(record))
        return nullptr;
    m_cursor = cursorFor(record, region);
    if (m_cursor) {
        m_underCursor = m_canvas.copy(m_cursor->rect());
        markChanged(m_cursor->rect());
    }

    PKVideoFrame2 frame(std::exchange(m_canvas, {}));
    const auto [width, height] = VNBufferDiscr::calcMaxFitSize(frame.codeWidth(), frame.codeHeight());
    frame.setDisplaySize(std::max(1, static_cast<int>(width)), std::max(1, static_cast<int>(height)));
    drawCursor(frame);
    m_frame = convert(frame);
    m_canvas = frame.takeImage();
    std::fill(m_changedBands.begin(), m_changedBands.end(), false);
    return m_frame ? m_frame->sharingPixels() : nullptr;
}

} // namespace vornic
