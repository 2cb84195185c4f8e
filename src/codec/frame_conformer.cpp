#include "codec/frame_conformer.h"

#include "codec/PKVideoFrame2.h"

#include <algorithm>

namespace vornic {

namespace {

/// Colour is stored for pairs of pixels: what is shorter than \a room is even, so that its neighbours stay black.
int fittedLength(int length, int room)
{
    return length >= room ? room : std::min(std::max(2, length / 2 * 2), room);
}

/// \a shown in its own shape, as large as \a size allows. What is narrower than a bar of two pixels is a rounding.
QSize fitted(QSize shown, QSize size)
{
    const QSize scaled = shown.scaled(size, Qt::KeepAspectRatio);
    if (size.width() - scaled.width() < 2 && size.height() - scaled.height() < 2)
        return size;
    return { fittedLength(scaled.width(), size.width()), fittedLength(scaled.height(), size.height()) };
}

} // namespace

std::shared_ptr<const PKVideoFrame2> FrameConformer::betweenBars(const PKVideoFrame2 &picture)
{
    const QSize rest = m_size - m_fitted;
    const std::shared_ptr<PlanarPicture> canvas = m_pool->take(m_size.width(), m_size.height());
    canvas->fillBlack();
    canvas->put(*picture.planes(), rest.width() / 4 * 2, rest.height() / 4 * 2);
    auto frame = std::make_shared<PKVideoFrame2>(canvas, m_size.width(), m_size.height());
    frame->takePlaceOf(picture);
    return frame;
}

std::shared_ptr<const PKVideoFrame2> FrameConformer::scaled(const PKVideoFrame2 &frame, QSize shown)
{
    if (!m_scaler || m_shown != shown || m_format != frame.pixFormat()) {
        m_shown = shown;
        m_format = frame.pixFormat();
        m_fitted = fitted(shown, m_size);
        m_scaler.emplace(shown.width(),
                         m_fitted.width(),
                         shown.height(),
                         m_fitted.height(),
                         m_format,
                         PKPixelFormatYUV420P);
    }
    const std::shared_ptr<PKVideoFrame2> result = m_scaler->scaleFrame(frame);
    return result && m_fitted != m_size ? betweenBars(*result) : result;
}

std::shared_ptr<const PKVideoFrame2>
FrameConformer::conform(const std::shared_ptr<const PKVideoFrame2> &frame)
{
    const bool isYuv = frame->pixFormat() == PKPixelFormatYUV420P;
    const QSize stored(frame->codeWidth(), frame->codeHeight());
    const QSize shown
        = isYuv ? QSize(frame->displayWidth(), frame->displayHeight()).boundedTo(stored) : stored;
    if (shown.isEmpty() || (isYuv && shown == m_size))
        return shown.isEmpty() ? nullptr : frame;
    if (m_last && m_lastResult && shown == m_shown && frame->sharesPixelsWith(*m_last)) {
        const std::shared_ptr<PKVideoFrame2> same = m_lastResult->sharingPixels();
        same->takePlaceOf(*frame);
        return same;
    }
    m_lastResult = scaled(*frame, shown);
    m_last = frame;
    return m_lastResult;
}

} // namespace vornic
