#include "support/spooled_movie.h"

#include "app/session/movie_job.h"
#include "app/session/recording.h"
#include "capture/record/VNBufferDiscr.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKMuxerTask.h"
#include "codec/PKVideoFrame2.h"
#include "codec/file_identity.h"
#include "display/bitmap_image.h"
#include "display/fake_display.h"

#include <QEventLoop>

namespace vornic::test {

namespace {

/// The folder must be known before the spool is made.
int useCacheFolder(const QString &path)
{
    qputenv("XDG_CACHE_HOME", path.toUtf8());
    return 0;
}

std::shared_ptr<PKMuxerContext> settings(const QString &file, QSize size, std::int32_t bitRate)
{
    auto context = std::make_shared<PKMuxerContext>(file);
    context->setReplacedFile(identityOfFile(file));
    context->setWidth(size.width());
    context->setHeight(size.height());
    context->setVideoCodecID(PKMuxerContext::videoCodecH264);
    context->setFrameRate(30);
    context->setVideoBitrate(bitRate);
    return context;
}

} // namespace

SpooledMovie::SpooledMovie(QSize size)
    : m_size(size)
    , m_display(std::make_shared<FakeDisplay>(size))
    , m_bitRate(size.width() * size.height() * 5 / 2)
    , m_spool(useCacheFolder(m_cache.path()))
{
    setMainDisplay(m_display);
    m_spool.readyToRecord();
    m_spool.setRecordRect(QRectF(QPointF(0, 0), size));
}

SpooledMovie::~SpooledMovie()
{
    setMainDisplay(nullptr);
}

void SpooledMovie::setPicture(const QImage &picture)
{
    m_display->setPicture(picture);
    m_grabbed = nullptr;
}

void SpooledMovie::setPointer(QPoint position)
{
    m_display->setPointerPosition(position);
}

void SpooledMovie::setPointerShape(CursorShape shape)
{
    m_display->setCursorShape(std::move(shape));
}

void SpooledMovie::record(std::int64_t ticks)
{
    if (!m_grabbed)
        m_grabbed = m_display->grab(QRect(QPoint(0, 0), m_size));
    const auto record = VNBufferDiscr::createWithScreenImage(m_grabbed);
    record->setBufferTimestamp(static_cast<std::uint64_t>(ticks));
    m_spool.pushRecordBuffer(*record);
}

void SpooledMovie::end()
{
    m_grabbed = nullptr;
    m_spool.endVideoRecord();
    m_spool.setExit(true);
}

WrittenMovie SpooledMovie::write(const QString &file, const ProgressSink &progress)
{
    m_spool.rewind();
    m_spool.setMuxerContext(settings(file, m_size, m_bitRate));
    MovieJob job(std::make_shared<Recording>(), m_spool, nullptr);
    WrittenMovie written;
    QEventLoop loop;
    job.start([&](const QString &action, const QVariant &value) {
        if (action == PKMuxerTaskActionProgress && progress)
            progress(value.toDouble());
        if (action == PKMuxerTaskActionFailed)
            written.failure = value.value<Error>();
        if (action == PKMuxerTaskActionComplete)
            written.statistics = value.value<MovieStatistics>();
        if (action == PKMuxerTaskActionFailed || action == PKMuxerTaskActionComplete)
            loop.quit();
    });
    loop.exec();
    return written;
}

void SpooledMovie::readBack(const FrameSink &sink)
{
    m_spool.rewind();
    MovieJob job(std::make_shared<Recording>(), m_spool, nullptr);
    while (const auto frame = job.PKMuxerTaskGetVideoFrame())
        sink(*frame);
}

} // namespace vornic::test
