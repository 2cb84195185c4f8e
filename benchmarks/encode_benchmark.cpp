/// How long it takes to write the movie of a spooled recording, beside the ffmpeg program turning the same JPEGs into
/// the same H.264: encode_benchmark [desktop|text|colours] [frames]
///
/// Both run on all processors, in turns, five times; ratios are of medians of wall time.

#include "base/PKTimebase.h"
#include "base/error.h"
#include "capture/jpeg/jpeg_picture.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/frame_composer.h"
#include "capture/spool/VNBufferMgr.h"
#include "codec/PKAudioFrame2.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKMuxerTask.h"
#include "codec/PKMuxerTaskDataSource.h"
#include "codec/PKVideoFrame2.h"
#include "codec/encoder_settings.h"
#include "display/bitmap_image.h"
#include "display/fake_display.h"
#include "support/test_pictures.h"

#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

namespace {

using namespace vornic;
using Clock = std::chrono::steady_clock;

constexpr QSize screenSize(1920, 1080);
constexpr int framesASecond = 30;
constexpr int bitRate = 5'184'000;

QImage shifted(const QImage &page, int rows)
{
    QImage picture(page.size(), page.format());
    for (int y = 0; y < page.height(); ++y)
        std::copy_n(page.constScanLine((y + rows) % page.height()), page.bytesPerLine(), picture.scanLine(y));
    return picture;
}

/// The picture of frame \a number of a scene.
using Scene = std::function<QImage(int number)>;

Scene sceneNamed(const QString &name)
{
    if (name == "desktop") {
        return [page = test::textPage(screenSize, 1)](int number) {
            QImage picture = page;
            const QImage patch = shifted(page, number / 6 * 7).copy(0, 0, 800, 500);
            for (int y = 0; y < patch.height(); ++y)
                std::copy_n(
                    patch.constScanLine(y), patch.bytesPerLine(), picture.scanLine(300 + y) + 4 * 500);
            return picture;
        };
    }
    const QImage page = name == "text" ? test::textPage(screenSize, 1) : test::smoothPicture(screenSize);
    return [page](int number) { return shifted(page, number * 3); };
}

class Recording : public PKMuxerTaskDataSource
{
public:
    Recording(const Scene &scene, int frames, const QString &jpegFile)
        : m_frames(frames)
    {
        m_manager.readyToRecord();
        const auto display = std::make_shared<FakeDisplay>(screenSize);
        setMainDisplay(display);
        for (int i = 0; i < frames; ++i) {
            display->setPicture(scene(i));
            display->setPointerPosition(QPoint(700, 500));
            const auto record
                = VNBufferDiscr::createWithScreenImage(display->grab(QRect(QPoint(0, 0), screenSize)));
            record->setBufferTimestamp(static_cast<std::uint64_t>(i * PKTimebase / framesASecond));
            m_manager.pushRecordBuffer(*record);
        }
        m_manager.endVideoRecord();
        m_manager.setExit(true);
        QFile jpegs(jpegFile);
        if (jpegs.open(QIODevice::WriteOnly))
            while (auto record = m_manager.popRecordBuffer()) {
                jpegs.write(record->recordPicture()->jpeg());
                m_records.push_back(std::move(record));
            }
    }

    /// Seconds of wall time.
    double write(const QString &movie)
    {
        m_next = 0;
        m_composer = std::make_unique<FrameComposer>();
        const auto context = std::make_shared<PKMuxerContext>(movie);
        context->setReplacedFile(identityOfFile(movie)); // that of the run before
        context->setWidth(screenSize.width());
        context->setHeight(screenSize.height());
        context->setVideoCodecID(PKMuxerContext::videoCodecH264);
        context->setFrameRate(framesASecond);
        context->setVideoBitrate(bitRate);
        const auto task = PKMuxerTask::create(context);
        task->setDataSource(this);
        const Clock::time_point start = Clock::now();
        task->startMuxerWithBlock([](const QString &action, const QVariant &value) {
            if (action == PKMuxerTaskActionFailed)
                std::fprintf(stderr, "%s\n", value.value<Error>().reason.toUtf8().constData());
            if (action == PKMuxerTaskActionFailed || action == PKMuxerTaskActionComplete)
                QCoreApplication::quit();
        });
        QCoreApplication::exec();
        return std::chrono::duration<double>(Clock::now() - start).count();
    }

    std::int64_t PKMuxerTaskLength() override { return m_frames * PKTimebase / framesASecond; }
    std::shared_ptr<const PKVideoFrame2> PKMuxerTaskGetVideoFrame() override
    {
        if (m_next == m_records.size())
            return nullptr;
        const VNBufferDiscr &record = *m_records[m_next++];
        auto frame = m_composer->compose(record, QRectF());
        frame->setTimeStamp(static_cast<std::int64_t>(record.timestamp()));
        frame->setDuration(PKTimebase / framesASecond);
        return frame;
    }
    std::shared_ptr<const PKAudioFrame2> PKMuxerTaskGetAudioFrame() override { return nullptr; }

private:
    int m_frames;
    VNBufferMgr m_manager { 4 };
    std::vector<std::unique_ptr<VNBufferDiscr>> m_records;
    std::size_t m_next = 0;
    std::unique_ptr<FrameComposer> m_composer;
};

double ffmpeg(const QString &jpegs, const QString &movie)
{
    const QStringList arguments
        = QStringLiteral(
              "-v error -y -f mjpeg -framerate %1 -i %2 -vf "
              "scale=in_range=pc:in_color_matrix=bt601:out_range=tv:out_color_matrix=bt709,format=yuv420p "
              "-c:v libx264 -preset %3 -b:v %4 -maxrate %5 -bufsize %6 -bf 0 -g 60 -level 4.2 "
              "-x264-params %7 -movflags +faststart %8")
              .arg(framesASecond)
              .arg(jpegs, QLatin1StringView(encoder_settings::videoPreset))
              .arg(bitRate)
              .arg(bitRate * encoder_settings::peakRateFactor)
              .arg(bitRate * encoder_settings::bufferFactor)
              .arg(QLatin1StringView(encoder_settings::x264Parameters), movie)
              .split(' ');
    const Clock::time_point start = Clock::now();
    QProcess::execute("ffmpeg", arguments);
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

double cpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir folder;
    qputenv("XDG_CACHE_HOME", folder.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString scene = arguments.value(1, "text");
    const int frames = arguments.value(2, "150").toInt();

    Recording recording(sceneNamed(scene), frames, folder.filePath("frames.mjpeg"));
    const double length = static_cast<double>(frames) / framesASecond;
    std::vector<double> ours;
    std::vector<double> theirs;
    const double cpuBefore = cpuSeconds();
    constexpr int turns = 5;
    for (int turn = 0; turn < turns; ++turn) {
        ours.push_back(recording.write(folder.filePath("ours.mp4")));
        theirs.push_back(ffmpeg(folder.filePath("frames.mjpeg"), folder.filePath("theirs.mp4")));
    }
    std::printf(
        "%s, %d frames: vornic %.2f s (%.3f of the length, %.1f ms of CPU a frame, %lld bytes), ffmpeg "
        "%.2f s (%lld bytes): speed ratio %.2f\n",
        qPrintable(scene),
        frames,
        median(ours),
        median(ours) / length,
        (cpuSeconds() - cpuBefore) * 1000 / turns / frames,
        static_cast<long long>(QFile(folder.filePath("ours.mp4")).size()),
        median(theirs),
        static_cast<long long>(QFile(folder.filePath("theirs.mp4")).size()),
        median(theirs) / median(ours));
    return 0;
}
