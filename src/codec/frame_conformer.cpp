#include "codec/frame_conformer.h"

#include "codec/PKVideoFrame2.h"

namespace vornic {

std::shared_ptr<const PKVideoFrame2>
FrameConformer::conform(const std::shared_ptr<const PKVideoFrame2> &frame)
{
    const bool isYuv = frame->pixFormat() == PKPixelFormatYUV420P;
    const QSize stored(frame->codeWidth(), frame->codeHeight());
    const QSize shown
        = isYuv ? QSize(frame->displayWidth(), frame->displayHeight()).boundedTo(stored) : stored;
    if (shown.isEmpty() || (isYuv && shown == m_size))
        return shown.isEmpty() ? nullptr : frame;
    if (!m_scaler || m_shown != shown || m_format != frame->pixFormat()) {
        m_shown = shown;
        m_format = frame->pixFormat();
        m_scaler.emplace(
            shown.width(), m_size.width(), shown.height(), m_size.height(), m_format, PKPixelFormatYUV420P);
    }
    return m_scaler->scaleFrame(*frame);
}

} // namespace vornic
