#include "codec/PKScaleContext.h"

#include "base/assertion.h"
#include "codec/PKVideoFrame2.h"
#include "codec/av_support.h"
#include "codec/bgrx_to_yuv.h"
#include "codec/planar_picture.h"

extern "C" {
#include <libavutil/opt.h>
}

namespace vornic {

namespace {

/// A scaler between the two formats that we have: full range RGB and BT.709 in limited range, chroma in the
/// middle of its pixels.
AvPtr<SwsContext> makeScaler(QSize from, PKPixelFormat fromFormat, QSize to, PKPixelFormat toFormat)
{
    auto scaler = owned(sws_alloc_context());
    const auto set
        = [&scaler](const char *name, std::int64_t value) { av_opt_set_int(scaler.get(), name, value, 0); };
    const auto avFormat = [](PKPixelFormat format) {
        return format == PKPixelFormatYUV420P ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_BGR0;
    };
    set("srcw", from.width());
    set("srch", from.height());
    set("src_format", avFormat(fromFormat));
    set("dstw", to.width());
    set("dsth", to.height());
    set("dst_format", avFormat(toFormat));
    set("sws_flags", SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP);
    set("threads", 0);          // as many as there are processors
    constexpr int middle = 128; // in 256ths of a luma pixel
    for (const char *name : { "src_h_chr_pos", "src_v_chr_pos" })
        if (fromFormat == PKPixelFormatYUV420P)
            set(name, middle);
    for (const char *name : { "dst_h_chr_pos", "dst_v_chr_pos" })
        if (toFormat == PKPixelFormatYUV420P)
            set(name, middle);
    const auto isFullRange = [](PKPixelFormat format) { return format == PKPixelFormatRGB32 ? 1 : 0; };
    set("src_range", isFullRange(fromFormat));
    set("dst_range", isFullRange(toFormat));
    if (sws_init_context(scaler.get(), nullptr, nullptr) < 0)
        return nullptr;
    const int *bt709 = sws_getCoefficients(SWS_CS_ITU709);
    constexpr int one = 1 << 16;
    sws_setColorspaceDetails(
        scaler.get(), bt709, isFullRange(fromFormat), bt709, isFullRange(toFormat), 0, one, one);
    return scaler;
}

BgrxView viewOf(const PKVideoFrame2 &rgb, QSize size)
{
    return { rgb.planeData(0), rgb.planeStride(0), size.width(), size.height() };
}

void reportMisuse(const char *operation, const char *description)
{
    reportAssertionFailure({ QLatin1StringView(operation),
                             QStringLiteral("PKScaleContext"),
                             0,
                             QLatin1StringView(description) });
}

/// Makes the caller the only holder of the pixels: copies them where there is another.
void detach(std::shared_ptr<PlanarPicture> &planes)
{
    if (planes.use_count() > 1) {
        planes = planes->copy();
        return;
    }
    // Counting up and down synchronizes with a former holder on another thread: its reads come before our
    // writes.
    auto passing = planes;
    passing.reset();
}

} // namespace

struct PKScaleContext::Impl {
    QSize from;
    QSize to;
    PKPixelFormat fromFormat;
    PKPixelFormat toFormat;
    AvPtr<SwsContext> scaler; ///< null until the first frame that needs it
    std::shared_ptr<PlanarPicturePool> pool = std::make_shared<PlanarPicturePool>();

    [[nodiscard]] bool accepts(const PKVideoFrame2 &frame) const
    {
        return !from.isEmpty() && !to.isEmpty() && frame.pixFormat() == fromFormat
            && frame.codeWidth() >= from.width() && frame.codeHeight() >= from.height();
    }
    [[nodiscard]] bool convertsPixelForPixel() const
    {
        return from == to && fromFormat == PKPixelFormatRGB32 && toFormat == PKPixelFormatYUV420P;
    }
    [[nodiscard]] std::shared_ptr<PKVideoFrame2> makeDestination() const;
    [[nodiscard]] std::shared_ptr<PKVideoFrame2> scaled(const PKVideoFrame2 &frame);
};

std::shared_ptr<PKVideoFrame2> PKScaleContext::Impl::makeDestination() const
{
    if (toFormat == PKPixelFormatYUV420P)
        return std::make_shared<PKVideoFrame2>(pool->take(to.width(), to.height()), to.width(), to.height());
    return std::make_shared<PKVideoFrame2>(QImage(to, QImage::Format_RGB32));
}

std::shared_ptr<PKVideoFrame2> PKScaleContext::Impl::scaled(const PKVideoFrame2 &frame)
{
    if (!scaler)
        scaler = makeScaler(from, fromFormat, to, toFormat);
    auto result = makeDestination();
    const auto in = avFrameOver(frame, from.width(), from.height());
    const auto out = avFrameOver(*result, to.width(), to.height());
    if (!scaler || sws_scale_frame(scaler.get(), out.get(), in.get()) < 0)
        return nullptr;
    if (result->m_planes)
        result->m_planes->repeatLumaEdges(to.width(), to.height());
    return result;
}

PKScaleContext::PKScaleContext(int srcWidth,
                               int dstWidth,
                               int srcHeight,
                               int dstHeight,
                               PKPixelFormat srcFormat,
                               PKPixelFormat dstFormat)
    : m_impl(
        new Impl { QSize(srcWidth, srcHeight), QSize(dstWidth, dstHeight), srcFormat, dstFormat, nullptr })
{
}

PKScaleContext::~PKScaleContext() = default;

std::shared_ptr<PKVideoFrame2> PKScaleContext::scaleFrame(const PKVideoFrame2 &frame)
{
    if (!m_impl->accepts(frame)) {
        reportMisuse("scaleFrame:", "The frame is not of the context's format and size.");
        return nullptr;
    }
    std::shared_ptr<PKVideoFrame2> result;
    if (m_impl->convertsPixelForPixel()) {
        result = m_impl->makeDestination();
        convertBgrxToYuv(viewOf(frame, m_impl->from), *result->m_planes, 0, m_impl->from.height());
    } else if (m_impl->from == m_impl->to && m_impl->fromFormat == m_impl->toFormat) {
        result = frame.sharingPixels();
        result->setDisplaySize(m_impl->to.width(), m_impl->to.height());
    } else {
        result = m_impl->scaled(frame);
    }
    if (result)
        result->takePlaceOf(frame);
    return result;
}

void PKScaleContext::convertRows(const PKVideoFrame2 &rgb,
                                 PKVideoFrame2 &yuv,
                                 int firstRow,
                                 int rowCount) const
{
    const bool isPossible = m_impl->convertsPixelForPixel() && m_impl->accepts(rgb) && yuv.m_planes
        && yuv.codeWidth() >= m_impl->to.width() && yuv.codeHeight() >= m_impl->to.height();
    const bool isWholePairs
        = firstRow % 2 == 0 && (rowCount % 2 == 0 || firstRow + rowCount >= m_impl->to.height());
    if (!isPossible || firstRow < 0 || rowCount < 0 || !isWholePairs) {
        reportMisuse("convertRows", "The rows or the frames are not the context's.");
        return;
    }
    detach(yuv.m_planes);
    convertBgrxToYuv(viewOf(rgb, m_impl->from), *yuv.m_planes, firstRow, rowCount);
}

} // namespace vornic
