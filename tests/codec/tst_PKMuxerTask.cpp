#include "base/PKTimebase.h"
#include "base/assertion.h"
#include "codec/PKMuxerTask.h"
#include "codec/PKScaleContext.h"
#include "movie_test_support.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

namespace vornic::testing {
namespace {

class PKMuxerTaskTest : public ::testing::Test
{
protected:
    QTemporaryDir m_folder;
    QString m_movie = m_folder.filePath(QStringLiteral("a movie: première.mp4"));
    ListSource m_source;
};

QString text(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1StringView(key)).toString();
}

QList<qint64> videoNumbers(const QJsonObject &probed, const char *section, const char *name)
{
    return numbersOf(probed, QLatin1StringView(section), QStringLiteral("video"), QLatin1StringView(name));
}

TEST_F(PKMuxerTaskTest, writesH264HighInBt709LimitedRangeAndSaysSo)
{
    m_source.addGreys({ 320, 240 }, 10);
    const auto report = runTask(videoContext(m_movie, { 320, 240 }), m_source);
    ASSERT_TRUE(report.isComplete()) << report.reason();

    const auto probed = probe(m_movie);
    const auto stream = streamOf(probed, QStringLiteral("video"));
    EXPECT_EQ(text(stream, "codec_name"), u"h264");
    EXPECT_EQ(text(stream, "profile"), u"High");
    EXPECT_EQ(text(stream, "pix_fmt"), u"yuv420p");
    EXPECT_EQ(stream.value(u"width").toInt(), 320);
    EXPECT_EQ(stream.value(u"height").toInt(), 240);
    EXPECT_EQ(stream.value(u"has_b_frames").toInt(-1), 0);
    EXPECT_EQ(text(stream, "color_range"), u"tv");
    EXPECT_EQ(text(stream, "color_space"), u"bt709");
    EXPECT_EQ(text(stream, "color_transfer"), u"bt709");
    EXPECT_EQ(text(stream, "color_primaries"), u"bt709");
    EXPECT_EQ(text(stream, "chroma_location"), u"center");
    EXPECT_EQ(text(stream, "time_base"), u"1/90000");
    EXPECT_TRUE(streamOf(probed, QStringLiteral("audio")).isEmpty());
    EXPECT_EQ(report.statistics().framesWritten, 10);
    EXPECT_EQ(report.statistics().framesSkipped, 0);
    EXPECT_EQ(report.statistics().audioSeconds, 0);
}

TEST_F(PKMuxerTaskTest, containerItselfCarriesTheColourTags)
{
    m_source.addGreys({ 64, 64 }, 2);
    ASSERT_TRUE(runTask(videoContext(m_movie, { 64, 64 }), m_source).isComplete());
    QFile file(m_movie);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    const auto tags = bytes.indexOf("colrnclx");
    ASSERT_GT(tags, 0);
    // primaries, transfer and matrix 1 (BT.709), not full range
    EXPECT_EQ(bytes.mid(tags + 8, 7), QByteArray::fromHex("00010001000100"));
}

TEST_F(PKMuxerTaskTest, indexStandsBeforeThePictures)
{
    m_source.addGreys({ 320, 240 }, 30);
    ASSERT_TRUE(runTask(videoContext(m_movie, { 320, 240 }), m_source).isComplete());
    QStringList names;
    for (const Box &box : boxesOf(m_movie))
        names.append(box.name);
    ASSERT_TRUE(names.contains(u"moov"));
    ASSERT_TRUE(names.contains(u"mdat"));
    EXPECT_LT(names.indexOf(u"moov"), names.indexOf(u"mdat"));
}

TEST_F(PKMuxerTaskTest, timesAndDurationsAreExactToTheTick)
{
    const QList<qint64> durations { 3000, 1, 90001, 2, 4501, 2999, 123457, 3000, 7, 450000, 3003 };
    qint64 now = 0;
    QList<qint64> times;
    for (qsizetype i = 0; i < durations.size(); ++i) {
        m_source.add(flat({ 64, 48 }, QColor(20 * static_cast<int>(i), 90, 30)), now, durations[i]);
        times.append(now);
        now += durations[i];
    }
    ASSERT_TRUE(runTask(videoContext(m_movie, { 64, 48 }), m_source).isComplete());
    const auto probed = probe(m_movie);
    EXPECT_EQ(videoNumbers(probed, "packets", "pts"), times);
    EXPECT_EQ(videoNumbers(probed, "packets", "duration"), durations);
    EXPECT_EQ(streamOf(probed, QStringLiteral("video")).value(u"duration_ts").toInteger(), now);
}

TEST_F(PKMuxerTaskTest, aFirstFrameAfterTimeZeroIsShownAtItsTime)
{
    auto context = videoContext(m_movie, { 64, 48 });
    context.setAudioCodecID(PKMuxerContext::audioCodecAac);
    m_source.add(flat({ 64, 48 }, Qt::red), 12347, 3000);
    m_source.add(flat({ 64, 48 }, Qt::blue), 15347, 3000);
    const std::vector<std::int16_t> silence(48000, 0);
    m_source.audio.push_back(std::make_shared<PKAudioFrame2>(1, 1, 48000, 48000, silence.data()));
    ASSERT_TRUE(runTask(context, m_source).isComplete());
    const auto probed = probeDecoded(m_movie);
    EXPECT_EQ(videoNumbers(probed, "frames", "pts"), (QList<qint64> { 12347, 15347 }));
    EXPECT_EQ(text(streamOf(probed, QStringLiteral("audio")), "start_time").toDouble(), 0.0);
    EXPECT_EQ(streamOf(probed, QStringLiteral("audio")).value(u"duration_ts").toInteger(), 48000);
}

TEST_F(PKMuxerTaskTest, framesOutOfOrderAreSkippedAndCounted)
{
    m_source.add(flat({ 64, 48 }, Qt::red), 0, 3000);
    m_source.add(flat({ 64, 48 }, Qt::green), 3000, 3000);
    m_source.add(flat({ 64, 48 }, Qt::blue), 3000, 3000);
    m_source.add(flat({ 64, 48 }, Qt::blue), 2000, 3000);
    m_source.add(flat({ 64, 48 }, Qt::white), 6000, 1500);
    const auto report = runTask(videoContext(m_movie, { 64, 48 }), m_source);
    ASSERT_TRUE(report.isComplete());
    EXPECT_EQ(report.statistics().framesWritten, 3);
    EXPECT_EQ(report.statistics().framesSkipped, 2);
    const auto probed = probe(m_movie);
    EXPECT_EQ(videoNumbers(probed, "packets", "pts"), (QList<qint64> { 0, 3000, 6000 }));
    EXPECT_EQ(videoNumbers(probed, "packets", "duration"), (QList<qint64> { 3000, 3000, 1500 }));
    const QColor second = decodedPicture(m_movie, 1, { 64, 48 }).pixelColor(32, 24);
    EXPECT_GT(second.blue(), 200) << "of two at one time the newer one is shown";
    EXPECT_LT(second.green(), 50);
}

TEST_F(PKMuxerTaskTest, unusableFramesAreSkippedAndCounted)
{
    m_source.add(flat({ 64, 48 }, Qt::red), 0, 3000);
    m_source.add(QImage(), 3000, 3000);
    m_source.add(flat({ 64, 48 }, Qt::white), 6000, 1500);
    const auto report = runTask(videoContext(m_movie, { 64, 48 }), m_source);
    ASSERT_TRUE(report.isComplete());
    EXPECT_EQ(report.statistics().framesWritten, 2);
    EXPECT_EQ(report.statistics().framesSkipped, 1);
    EXPECT_EQ(videoNumbers(probe(m_movie), "packets", "duration"), (QList<qint64> { 6000, 1500 }));
}

TEST_F(PKMuxerTaskTest, aLastFrameThatDoesNotSayHowLongLastsAThirtiethOfASecond)
{
    m_source.add(flat({ 64, 48 }, Qt::red), 0, 0);
    ASSERT_TRUE(runTask(videoContext(m_movie, { 64, 48 }), m_source).isComplete());
    EXPECT_EQ(videoNumbers(probe(m_movie), "packets", "duration"), (QList<qint64> { PKTimebase / 30 }));
}

TEST_F(PKMuxerTaskTest, keyFramesAreNeverMoreThanTwoSecondsApart)
{
    // 60 a second, then slow, then uneven, then frames that last longer than two seconds themselves
    qint64 now = 0;
    int number = 0;
    const auto add = [&](qint64 duration) {
        QImage picture = flat({ 160, 120 }, Qt::white);
        QPainter(&picture).fillRect(number % 150, 10, 10, 10, Qt::black);
        m_source.add(picture, now, duration);
        now += duration;
        ++number;
    };
    for (int i = 0; i < 300; ++i)
        add(1500);
    for (int i = 0; i < 12; ++i)
        add(135000);
    for (int i = 0; i < 60; ++i)
        add(1000 + (i * 7919) % 60000);
    for (int i = 0; i < 3; ++i)
        add(300000);
    add(3000);
    ASSERT_TRUE(runTask(videoContext(m_movie, { 160, 120 }), m_source).isComplete());
    const auto probed = probeDecoded(m_movie);
    const auto times = videoNumbers(probed, "frames", "pts");
    const auto keys = keyFrameTimes(probed);
    ASSERT_EQ(times.size(), number);
    ASSERT_EQ(keys.value(0, -1), 0);
    for (qsizetype i = 1; i < keys.size(); ++i) {
        const bool hasFramesBetween = times[times.indexOf(keys[i]) - 1] != keys[i - 1];
        EXPECT_TRUE(keys[i] - keys[i - 1] <= 2 * PKTimebase || !hasFramesBetween)
            << keys[i - 1] << " to " << keys[i];
    }
    // and where frames are quick, not much closer either
    EXPECT_LE(std::count_if(keys.begin(), keys.end(), [](qint64 time) { return time < 300 * 1500; }), 4);
}

TEST_F(PKMuxerTaskTest, presentationTimesStrictlyIncrease)
{
    for (int i = 0; i < 90; ++i)
        m_source.add(flat({ 64, 48 }, QColor(i, 255 - i, (i * 37) % 256)), i * 2999, 2999);
    ASSERT_TRUE(runTask(videoContext(m_movie, { 64, 48 }), m_source).isComplete());
    const auto times = videoNumbers(probeDecoded(m_movie), "frames", "pts");
    ASSERT_EQ(times.size(), 90);
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end(), std::less_equal<>()));
}

TEST_F(PKMuxerTaskTest, flatColoursComeBack)
{
    const std::vector<QColor> colours { Qt::black, Qt::white, QColor(128, 128, 128),
                                        Qt::red,   Qt::green, Qt::blue };
    QImage picture({ 384, 64 }, QImage::Format_RGB32);
    QPainter painter(&picture);
    for (int i = 0; i < 6; ++i)
        painter.fillRect(i * 64, 0, 64, 64, colours[static_cast<std::size_t>(i)]);
    painter.end();
    for (int i = 0; i < 10; ++i) // as long as equal frames become at most
        m_source.add(picture, i * PKTimebase / 2, PKTimebase / 2);
    ASSERT_TRUE(runTask(videoContext(m_movie, { 384, 64 }), m_source).isComplete());
    const QImage decoded = decodedPicture(m_movie, 9, { 384, 64 });
    ASSERT_FALSE(decoded.isNull());
    for (int i = 0; i < 6; ++i) {
        const QColor expected = colours[static_cast<std::size_t>(i)];
        const QColor found = decoded.pixelColor(i * 64 + 32, 32);
        EXPECT_NEAR(found.red(), expected.red(), 3) << i;
        EXPECT_NEAR(found.green(), expected.green(), 3) << i;
        EXPECT_NEAR(found.blue(), expected.blue(), 3) << i;
    }
}

TEST_F(PKMuxerTaskTest, oddSizesArePaddedByRepeatingAndNeverMoved)
{
    const QSize size(101, 75);
    QImage picture = flat(size, Qt::white);
    for (int x = 0; x < size.width(); x += 2)
        for (int y = 0; y < size.height(); ++y)
            picture.setPixelColor(x, y, Qt::black); // columns, the last one black
    for (int x = 0; x < size.width(); ++x) {
        picture.setPixelColor(x, 0, Qt::white);
        picture.setPixelColor(x, size.height() - 1, Qt::white);
    }
    for (int i = 0; i < 20; ++i)
        m_source.add(picture, i * PKTimebase / 2, PKTimebase / 2);
    auto context = videoContext(m_movie, size);
    context.setVideoBitrate(4000000);
    ASSERT_TRUE(runTask(context, m_source).isComplete());
    const auto stream = streamOf(probe(m_movie), QStringLiteral("video"));
    EXPECT_EQ(stream.value(u"width").toInt(), 102);
    EXPECT_EQ(stream.value(u"height").toInt(), 76);
    const QByteArray planes = decodedPlanes(m_movie);
    const qsizetype pictureBytes = 102 * 76 * 3 / 2;
    ASSERT_EQ(planes.size(), 20 * pictureBytes);
    const auto luma = [&](int x, int y) {
        return static_cast<int>(static_cast<uchar>(planes[19 * pictureBytes + y * 102 + x]));
    };
    for (int x = 0; x < size.width(); ++x)
        EXPECT_NEAR(luma(x, 37), x % 2 == 0 ? 16 : 235, 25) << x;
    EXPECT_NEAR(luma(101, 37), luma(100, 37), 25);
    EXPECT_NEAR(luma(50, 0), 235, 25);
    EXPECT_NEAR(luma(50, 74), 235, 25);
    EXPECT_NEAR(luma(50, 75), 235, 25);
    EXPECT_NEAR(luma(50, 73), 16, 25);
}

TEST_F(PKMuxerTaskTest, theSmallestPictureMakesAMovie)
{
    m_source.add(flat({ 1, 1 }, Qt::white), 0, 3000);
    const auto report = runTask(videoContext(m_movie, { 1, 1 }), m_source);
    ASSERT_TRUE(report.isComplete()) << report.reason();
    EXPECT_EQ(streamOf(probe(m_movie), QStringLiteral("video")).value(u"width").toInt(), 2);
}

TEST_F(PKMuxerTaskTest, framesOfAnotherSizeAreScaledToTheMovie)
{
    const auto halves = [](QSize size) {
        QImage picture = flat(size, Qt::black);
        QPainter(&picture).fillRect(size.width() / 2, 0, size.width(), size.height(), Qt::white);
        return picture;
    };
    m_source.add(halves({ 128, 96 }), 0, 3000);
    m_source.add(halves({ 256, 192 }), 3000, 3000);
    m_source.add(halves({ 64, 48 }), 6000, 3000);
    PKScaleContext converter(256, 256, 192, 192, PKPixelFormatRGB32, PKPixelFormatYUV420P);
    const auto yuv = converter.scaleFrame(PKVideoFrame2(halves({ 256, 192 })));
    yuv->setTimeStamp(9000);
    yuv->setDuration(3000);
    m_source.video.push_back(yuv);
    ASSERT_TRUE(runTask(videoContext(m_movie, { 128, 96 }), m_source).isComplete());
    const QByteArray planes = decodedPlanes(m_movie);
    const qsizetype pictureBytes = 128 * 96 * 3 / 2;
    ASSERT_EQ(planes.size(), 4 * pictureBytes);
    for (int i = 0; i < 4; ++i) {
        EXPECT_NEAR(static_cast<uchar>(planes[i * pictureBytes + 48 * 128 + 20]), 16, 6) << i;
        EXPECT_NEAR(static_cast<uchar>(planes[i * pictureBytes + 48 * 128 + 107]), 235, 6) << i;
    }
}

TEST_F(PKMuxerTaskTest, aFrameThatClaimsToShowMoreThanItHoldsIsScaled)
{
    PKScaleContext converter(16, 16, 16, 16, PKPixelFormatRGB32, PKPixelFormatYUV420P);
    const auto small = converter.scaleFrame(PKVideoFrame2(flat({ 16, 16 }, Qt::white)));
    small->setDisplaySize(640, 480);
    small->setDuration(3000);
    m_source.video.push_back(small);
    ASSERT_TRUE(runTask(videoContext(m_movie, { 640, 480 }), m_source).isComplete());
    const QByteArray planes = decodedPlanes(m_movie);
    ASSERT_EQ(planes.size(), 640 * 480 * 3 / 2);
    // As the square that it is.
    EXPECT_NEAR(static_cast<uchar>(planes[0]), 16, 3);
    EXPECT_NEAR(static_cast<uchar>(planes[240 * 640 + 100]), 235, 3);
    EXPECT_NEAR(static_cast<uchar>(planes[240 * 640 + 540]), 235, 3);
}

TEST_F(PKMuxerTaskTest, progressGrowsInWholeStepsOnTheMainThread)
{
    // Progress is told at most once in 50 ms, so the movie has to take some time: the sleep is what is
    // tested. The first 60 frames are three percent of the movie, so that a step takes longer than that.
    qint64 now = 0;
    for (int i = 0; i < 100; ++i) {
        const qint64 duration = i < 60 ? 450 : 21825;
        m_source.add(flat({ 64, 48 }, QColor(i, i, i)), now, duration);
        now += duration;
    }
    m_source.onVideo = [] { std::this_thread::sleep_for(std::chrono::milliseconds(5)); };
    const auto report = runTask(videoContext(m_movie, { 64, 48 }), m_source);
    ASSERT_TRUE(report.isComplete());
    EXPECT_TRUE(report.wasOnMainThread);
    ASSERT_GE(report.actions.size(), 4);
    EXPECT_EQ(report.actions.first(), PKMuxerTaskActionStart);
    EXPECT_EQ(report.values.first().toDouble(), 0.0);
    EXPECT_EQ(report.actions.count(PKMuxerTaskActionStart), 1);
    EXPECT_EQ(report.actions.count(PKMuxerTaskActionComplete), 1);
    EXPECT_EQ(report.actions.count(PKMuxerTaskActionFailed), 0);
    double last = 0;
    for (qsizetype i = 1; i + 1 < report.actions.size(); ++i) {
        ASSERT_EQ(report.actions[i], PKMuxerTaskActionProgress);
        const double percent = report.values[i].toDouble();
        EXPECT_GT(percent, last);
        EXPECT_LT(percent, 100);
        EXPECT_EQ(percent, std::floor(percent));
        last = percent;
    }
}

TEST_F(PKMuxerTaskTest, anUnknownLengthGivesNoProgressButAMovie)
{
    m_source.addGreys({ 64, 48 }, 30);
    m_source.length = 0;
    const auto report = runTask(videoContext(m_movie, { 64, 48 }), m_source);
    EXPECT_EQ(report.actions, (QStringList { PKMuxerTaskActionStart, PKMuxerTaskActionComplete }));
}

TEST_F(PKMuxerTaskTest, callbacksRunOffTheMainThreadAndNeverTwiceAtOnce)
{
    std::atomic<int> inVideo = 0;
    std::atomic<int> inAudio = 0;
    std::atomic<bool> overlapped = false;
    std::atomic<bool> onMainThread = false;
    const auto mainThread = std::this_thread::get_id();
    const auto hook = [&](std::atomic<int> &inside) {
        overlapped = overlapped || inside.fetch_add(1) != 0;
        onMainThread = onMainThread || std::this_thread::get_id() == mainThread;
        std::this_thread::yield();
        --inside;
    };
    m_source.addGreys({ 64, 48 }, 60);
    const std::vector<std::int16_t> silence(4800, 0);
    for (int i = 0; i < 20; ++i)
        m_source.audio.push_back(std::make_shared<PKAudioFrame2>(1, 1, 48000, 4800, silence.data()));
    m_source.onVideo = [&] { hook(inVideo); };
    m_source.onAudio = [&] { hook(inAudio); };
    auto context = videoContext(m_movie, { 64, 48 });
    context.setAudioCodecID(PKMuxerContext::audioCodecAac);
    ASSERT_TRUE(runTask(context, m_source).isComplete());
    EXPECT_FALSE(overlapped);
    EXPECT_FALSE(onMainThread);
}

TEST_F(PKMuxerTaskTest, keepsItselfAliveUntilItsEndAndNoLonger)
{
    ensureApplication();
    m_source.addGreys({ 64, 48 }, 30);
    auto task
        = PKMuxerTask::create(std::make_shared<const PKMuxerContext>(videoContext(m_movie, { 64, 48 })));
    const std::weak_ptr<PKMuxerTask> weakTask = task;
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> weakCaptured = captured;
    bool ended = false;
    task->setDataSource(&m_source);
    task->startMuxerWithBlock([&ended, captured](const QString &action, const QVariant &) {
        ended = ended || action == PKMuxerTaskActionComplete;
    });
    task.reset();
    captured.reset();
    while (!ended) {
        EXPECT_FALSE(weakTask.expired());
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_TRUE(weakTask.expired());
    EXPECT_TRUE(weakCaptured.expired());
    for (const auto &frame : m_source.video)
        EXPECT_EQ(frame.use_count(), 1);
}

TEST_F(PKMuxerTaskTest, twoTasksAtOnceDoNotDisturbEachOther)
{
    ListSource other;
    m_source.addGreys({ 160, 120 }, 60);
    other.addGreys({ 320, 200 }, 45);
    const QString otherMovie = m_folder.filePath(QStringLiteral("b.mp4"));
    const auto reports
        = runTasks({ videoContext(m_movie, { 160, 120 }), videoContext(otherMovie, { 320, 200 }) },
                   { &m_source, &other });
    ASSERT_TRUE(reports[0].isComplete());
    ASSERT_TRUE(reports[1].isComplete());
    EXPECT_EQ(videoNumbers(probe(m_movie), "packets", "pts").size(), 60);
    EXPECT_EQ(videoNumbers(probe(otherMovie), "packets", "pts").size(), 45);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

TEST_F(PKMuxerTaskTest, aSecondStartOrNoSourceIsAnAssertionFailureAndNothingElse)
{
    ensureApplication();
    int failures = 0;
    const auto before = setAssertionHandler([&failures](const AssertionFailure &) { ++failures; });
    const auto context = std::make_shared<const PKMuxerContext>(videoContext(m_movie, { 64, 48 }));
    PKMuxerTask::create(context)->startMuxerWithBlock([](const QString &, const QVariant &) {});
    EXPECT_EQ(failures, 1);

    m_source.addGreys({ 64, 48 }, 3);
    auto task = PKMuxerTask::create(context);
    task->setDataSource(&m_source);
    bool ended = false;
    task->startMuxerWithBlock([&ended](const QString &action, const QVariant &) {
        ended = ended || action == PKMuxerTaskActionComplete;
    });
    task->startMuxerWithBlock([](const QString &, const QVariant &) { FAIL(); });
    EXPECT_EQ(failures, 2);
    while (!ended)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    setAssertionHandler(before);
}

} // namespace
} // namespace vornic::testing
