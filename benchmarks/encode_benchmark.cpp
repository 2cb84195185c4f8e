/// How long the movie of a spooled recording is waited for, beside the ffmpeg program turning the same JPEGs into the
/// same H.264:
///
///     encode_benchmark [scene,scene,...|all] [frames] [turns] [--each-frame]
///
/// Scenes: static, desktop, typing, colours, text. Both run on all processors, in turns. A line tells for each: the wait
/// as a fraction of the recording's length and the processor time of a frame (medians of the turns), luma against the
/// composed frames, the bit rate, and the memory at its peak. Ours begins with reading the spool; the processor time of
/// ffmpeg is not in it. With --each-frame the luma of every frame of ours follows.

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
#include <QTemporaryDir>

#include <malloc.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <cmath>
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

// ---- what is recorded

/// The picture of frame \a number of a scene.
using Scene = std::function<QImage(int number)>;

QImage shifted(const QImage &page, int rows)
{
    QImage picture(page.size(), page.format());
    for (int y = 0; y < page.height(); ++y)
        std::copy_n(page.constScanLine((y + rows) % page.height()), page.bytesPerLine(), picture.scanLine(y));
    return picture;
}

void putPatch(QImage &picture, QPoint topLeft, const QImage &patch)
{
    for (int y = 0; y < patch.height(); ++y)
        std::copy_n(patch.constScanLine(y),
                    4 * patch.width(),
                    picture.scanLine(topLeft.y() + y) + std::ptrdiff_t { 4 } * topLeft.x());
}

/// A letter more in every frame, in a line that begins anew on a new row.
Scene typing()
{
    constexpr QSize letter(8, 16);
    constexpr int lettersInARow = 100;
    constexpr int rows = 30;
    const QPoint begin(500, 300);
    QImage page = test::textPage(screenSize, 1);
    QImage empty(lettersInARow * letter.width(), rows * letter.height(), QImage::Format_RGB32);
    empty.fill(Qt::white);
    putPatch(page, begin, empty);
    const QImage letters = test::textPage(screenSize, 2).copy(QRect({ 24, 12 }, empty.size()));
    return [=](int number) {
        QImage picture = page;
        for (int i = 0; i <= number; ++i) {
            const QPoint place(i % lettersInARow * letter.width(),
                               i / lettersInARow % rows * letter.height());
            putPatch(picture, begin + place, letters.copy(QRect(place, letter)));
        }
        return picture;
    };
}

Scene sceneNamed(const QString &name)
{
    if (name == "static")
        return [page = test::textPage(screenSize, 1)](int) { return page; };
    if (name == "typing")
        return typing();
    if (name == "desktop") {
        return [page = test::textPage(screenSize, 1)](int number) {
            QImage picture = page;
            putPatch(picture, { 500, 300 }, shifted(page, number / 6 * 7).copy(0, 0, 800, 500));
            return picture;
        };
    }
    const QImage page = name == "text" ? test::textPage(screenSize, 1) : test::smoothPicture(screenSize);
    return [page](int number) { return shifted(page, number * 3); };
}

// ---- what is measured

struct Figures {
    double seconds = 0; ///< of wall time
    double processorSeconds = 0;
    double peakMiB = 0;
};

double secondsOf(const timeval &time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

double processorSeconds(const rusage &usage)
{
    return secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
}

double ownProcessorSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return processorSeconds(usage);
}

double medianOf(const std::vector<Figures> &figures, double Figures::*value)
{
    std::vector<double> values;
    for (const Figures &turn : figures)
        values.push_back(turn.*value);
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// From here on the peak of this process's memory is counted anew.
void forgetPeak()
{
    malloc_trim(0);
    QFile file("/proc/self/clear_refs");
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

double ownPeakMiB()
{
    QFile file("/proc/self/status");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.simplified().split(' ')[1].toDouble() / 1024;
    return 0;
}

Figures runProgram(const QByteArrayList &arguments)
{
    std::vector<char *> pointers;
    for (const QByteArray &argument : arguments)
        pointers.push_back(const_cast<char *>(argument.constData()));
    pointers.push_back(nullptr);
    const Clock::time_point start = Clock::now();
    pid_t process = 0;
    rusage usage {};
    int status = -1;
    if (posix_spawnp(&process, pointers[0], nullptr, nullptr, pointers.data(), environ) == 0)
        wait4(process, &status, 0, &usage);
    if (status != 0)
        std::fprintf(stderr, "%s failed\n", pointers[0]);
    return { std::chrono::duration<double>(Clock::now() - start).count(),
             processorSeconds(usage),
             static_cast<double>(usage.ru_maxrss) / 1024 };
}

Figures ffmpeg(const QString &jpegs, const QString &movie)
{
    const QString arguments
        = QStringLiteral(
              "ffmpeg -v error -y -f mjpeg -framerate %1 -i %2 -vf "
              "scale=in_range=pc:in_color_matrix=bt601:out_range=tv:out_color_matrix=bt709,format=yuv420p "
              "-c:v libx264 -preset %3 -b:v %4 -maxrate %5 -bufsize %6 -bf 0 -g 60 -level 4.2 "
              "-x264-params %7 -movflags +faststart %8")
              .arg(framesASecond)
              .arg(jpegs, QLatin1StringView(encoder_settings::videoPreset))
              .arg(bitRate)
              .arg(bitRate * encoder_settings::peakRateFactor)
              .arg(bitRate * encoder_settings::bufferFactor)
              .arg(QLatin1StringView(encoder_settings::x264Parameters), movie);
    return runProgram(arguments.toUtf8().split(' '));
}

// ---- the recording

/// A recording in the spool, and the movie made of it as the program makes it.
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
        setMainDisplay(nullptr);
        QFile jpegs(jpegFile);
        if (jpegs.open(QIODevice::WriteOnly))
            while (const auto record = m_manager.popRecordBuffer())
                jpegs.write(record->recordPicture()->jpeg());
        rewind();
    }
    ~Recording() override { m_manager.clear(); }

    Figures write(const QString &movie)
    {
        rewind();
        const auto context = std::make_shared<PKMuxerContext>(movie);
        context->setReplacedFile(identityOfFile(movie)); // that of the run before
        context->setWidth(screenSize.width());
        context->setHeight(screenSize.height());
        context->setVideoCodecID(PKMuxerContext::videoCodecH264);
        context->setFrameRate(framesASecond);
        context->setVideoBitrate(bitRate);
        const auto task = PKMuxerTask::create(context);
        task->setDataSource(this);
        forgetPeak();
        const double processorBefore = ownProcessorSeconds();
        const Clock::time_point start = Clock::now();
        task->startMuxerWithBlock([](const QString &action, const QVariant &value) {
            if (action == PKMuxerTaskActionFailed)
                std::fprintf(stderr, "%s\n", value.value<Error>().reason.toUtf8().constData());
            if (action == PKMuxerTaskActionFailed || action == PKMuxerTaskActionComplete)
                QCoreApplication::quit();
        });
        QCoreApplication::exec();
        return { std::chrono::duration<double>(Clock::now() - start).count(),
                 ownProcessorSeconds() - processorBefore,
                 ownPeakMiB() };
    }

    /// Back to the first frame.
    void rewind()
    {
        m_manager.rewind();
        m_composer = std::make_unique<FrameComposer>();
    }

    std::int64_t PKMuxerTaskLength() override { return m_frames * PKTimebase / framesASecond; }
    std::shared_ptr<const PKVideoFrame2> PKMuxerTaskGetVideoFrame() override
    {
        const auto record = m_manager.popRecordBuffer();
        if (!record)
            return nullptr;
        record->setDuration(PKTimebase / framesASecond);
        return record->getVideoFrameWithLogoContext(nullptr, QRectF(), m_composer.get());
    }
    std::shared_ptr<const PKAudioFrame2> PKMuxerTaskGetAudioFrame() override { return nullptr; }

private:
    int m_frames;
    VNBufferMgr m_manager { 4 };
    std::unique_ptr<FrameComposer> m_composer;
};

// ---- quality

using Pipe = std::unique_ptr<FILE, int (*)(FILE *)>;

Pipe outputOf(const QString &command)
{
    return { popen(command.toUtf8().constData(), "r"), pclose };
}

/// When the pictures of a movie are shown, in ticks.
std::vector<std::int64_t> timesOf(const QString &movie)
{
    const Pipe pipe
        = outputOf("ffprobe -v error -select_streams v -show_entries packet=pts_time -of csv=p=0 " + movie);
    std::vector<std::int64_t> times;
    double seconds = 0;
    while (std::fscanf(pipe.get(), "%lf%*[^\n]", &seconds) == 1)
        times.push_back(std::llround(seconds * static_cast<double>(PKTimebase)));
    return times;
}

double squaresBetween(const PKVideoFrame2 &frame, const std::vector<uchar> &decoded)
{
    std::int64_t squares = 0;
    for (int y = 0; y < screenSize.height(); ++y) {
        const uchar *wanted = frame.planeData(0) + y * frame.planeStride(0);
        const uchar *got = decoded.data() + std::ptrdiff_t { y } * screenSize.width();
        int ofRow = 0;
        for (int x = 0; x < screenSize.width(); ++x)
            ofRow += (wanted[x] - got[x]) * (wanted[x] - got[x]);
        squares += ofRow;
    }
    return static_cast<double>(squares);
}

double decibels(double squares, double frames)
{
    const double mean = squares / frames / screenSize.width() / screenSize.height();
    return mean > 0 ? 10 * std::log10(255.0 * 255.0 / mean) : 99;
}

/// Squared differences of luma between each frame of the recording and what the movie shows at its time.
std::vector<double> differences(Recording &recording, const QString &movie)
{
    const std::vector<std::int64_t> times = timesOf(movie);
    const Pipe pipe
        = outputOf("ffmpeg -v error -i " + movie + " -fps_mode passthrough -f rawvideo -pix_fmt yuv420p -");
    const std::size_t luma = static_cast<std::size_t>(screenSize.width()) * screenSize.height();
    std::vector<uchar> picture(luma / 2 * 3);
    std::size_t next = 0;
    std::vector<double> result;
    recording.rewind();
    while (const auto frame = recording.PKMuxerTaskGetVideoFrame()) {
        while (next < times.size() && times[next] <= frame->timeStamp() + 1) {
            ++next;
            if (std::fread(picture.data(), 1, picture.size(), pipe.get()) != picture.size())
                return result;
        }
        result.push_back(squaresBetween(*frame, picture));
    }
    return result;
}

double quality(const std::vector<double> &squares)
{
    double sum = 0;
    for (const double ofFrame : squares)
        sum += ofFrame;
    return decibels(sum, static_cast<double>(squares.size()));
}

// ---- the table

void print(const char *who, const std::vector<Figures> &turns, int frames, const QString &movie, double luma)
{
    const double length = static_cast<double>(frames) / framesASecond;
    std::printf("  %-6s %.3f of the length, %5.1f ms of CPU a frame, %5.2f dB, %5.2f Mbit/s, %3.0f MiB\n",
                who,
                medianOf(turns, &Figures::seconds) / length,
                medianOf(turns, &Figures::processorSeconds) * 1000 / frames,
                luma,
                static_cast<double>(QFile(movie).size()) * 8 / length / 1e6,
                medianOf(turns, &Figures::peakMiB));
}

void measure(const QString &scene, int frames, int turns, bool tellsEachFrame)
{
    const QTemporaryDir folder;
    const QString jpegs = folder.filePath("frames.mjpeg");
    const QString ours = folder.filePath("ours.mp4");
    const QString theirs = folder.filePath("theirs.mp4");
    Recording recording(sceneNamed(scene), frames, jpegs);
    std::vector<Figures> own;
    std::vector<Figures> others;
    for (int turn = 0; turn < turns; ++turn) {
        own.push_back(recording.write(ours));
        others.push_back(ffmpeg(jpegs, theirs));
    }
    const std::vector<double> squares = differences(recording, ours);
    const double otherLuma = quality(differences(recording, theirs));
    std::printf("%s, %d frames\n", qPrintable(scene), frames);
    print("vornic", own, frames, ours, quality(squares));
    print("ffmpeg", others, frames, theirs, otherLuma);
    std::printf("  %.2f times as fast\n",
                medianOf(others, &Figures::seconds) / medianOf(own, &Figures::seconds));
    for (std::size_t i = 0; tellsEachFrame && i < squares.size(); ++i)
        std::printf("  frame %zu: %.2f dB\n", i, decibels(squares[i], 1));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir folder;
    qputenv("XDG_CACHE_HOME", folder.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    const bool tellsEachFrame = arguments.removeAll("--each-frame") > 0;
    QString scenes = arguments.value(1, "all");
    if (scenes == "all")
        scenes = "static,desktop,typing,colours,text";
    for (const QString &scene : scenes.split(','))
        measure(scene, arguments.value(2, "150").toInt(), arguments.value(3, "5").toInt(), tellsEachFrame);
    return 0;
}
