#include "base/PKTimebase.h"
#include "recording_fixture.h"

#include <QDir>
#include <QRegularExpression>

#include <cmath>

namespace vornic {
namespace {

using testing::boxesOf;
using testing::decodedPicture;
using testing::numbersOf;
using testing::probe;
using testing::streamOf;

class RecordCommandTest : public RecordingTest
{
};

TEST_F(RecordCommandTest, AKnownPictureComesOutAsItWas)
{
    startServer();
    const QSize size(1280, 720);
    painter->showWindow(test::knownPicture(size), { 0, 0 });
    painter->movePointer({ 640, 360 });
    const Result result = record({ "--duration", "1.5" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(result.output.trimmed().split('\n').last(), "o.mp4");

    const QJsonObject probed = probe(movie());
    const QJsonObject video = streamOf(probed, "video");
    EXPECT_EQ(video["codec_name"].toString(), "h264");
    EXPECT_EQ(video["profile"].toString(), "High");
    EXPECT_EQ(video["pix_fmt"].toString(), "yuv420p");
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_EQ(video["color_range"].toString(), "tv");
    for (const char *tag : { "color_space", "color_transfer", "color_primaries" })
        EXPECT_EQ(video[QLatin1StringView(tag)].toString(), "bt709") << tag;
    EXPECT_TRUE(streamOf(probed, "audio").isEmpty());
    EXPECT_NEAR(secondsOf(movie()), 1.5, 0.2);
    QStringList boxes;
    for (const testing::Box &box : boxesOf(movie()))
        boxes += box.name;
    EXPECT_LT(boxes.indexOf("moov"), boxes.indexOf("mdat"));
    EXPECT_GE(boxes.indexOf("moov"), 0);
    const QList<qint64> times = numbersOf(probed, "packets", "video", "pts");
    EXPECT_GE(times.size(), 3) << "a still picture lasts half a second";
    for (qsizetype i = 1; i < times.size(); ++i)
        EXPECT_GT(times[i], times[i - 1]);

    const QImage shown = decodedPicture(movie(), static_cast<int>(times.size()) / 2, size);
    for (const test::KnownPatch &patch : test::knownPatches(size)) {
        if (patch.rectangle.contains(640, 360))
            continue; // the pointer is there
        EXPECT_LE(differenceFrom(shown, patch.rectangle, patch.colour), 3) << std::hex << patch.colour;
    }
}

TEST_F(RecordCommandTest, TheSummaryCountsWhatTheMovieShows)
{
    startServer({ 320, 240 });
    const Result result = record({ "--duration", "0.5" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    const QRegularExpression form(
        "^(\\d+) frames grabbed, (\\d+) frames written, 0 frames skipped, 0\\.0 s of audio$");
    const QRegularExpressionMatch match = form.match(result.output.split('\n').first());
    ASSERT_TRUE(match.hasMatch()) << result.output.toStdString();
    EXPECT_EQ(match.captured(1), match.captured(2));
    // Of a still screen not each of the equal frames is stored.
    const qlonglong written = match.captured(2).toLongLong();
    EXPECT_GT(written, 5);
    EXPECT_LE(numbersOf(probe(movie()), "packets", "video", "pts").size(), written / 2 + 1);
}

TEST_F(RecordCommandTest, ARegionIsExactToThePixel)
{
    startServer();
    const QRect region(101, 57, 641, 361);
    // A white rectangle that fills the region to its last pixel, on black.
    QImage picture(1280, 720, QImage::Format_RGB32);
    picture.fill(Qt::black);
    for (int y = region.top(); y <= region.bottom(); ++y)
        for (int x = region.left(); x <= region.right(); ++x)
            picture.setPixel(x, y, qRgb(255, 255, 255));
    // Marks in the corners show a shift of one pixel, and scaling.
    for (const QPoint corner : { region.topLeft(), region.bottomLeft() - QPoint(0, 15) })
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                picture.setPixel(corner + QPoint(x, y), qRgb(0, 0, 0));
    painter->showWindow(picture, { 0, 0 });
    painter->movePointer({ 10, 10 });
    ASSERT_EQ(record({ "--region", "101,57,641,361", "--duration", "0.5" }).status, 0);
    ASSERT_EQ(sizeOf(movie()), QSize(642, 362));
    const QImage shown = decodedPicture(movie(), 0, QSize(642, 362));
    const auto isWhite = [&](int x, int y) { return qGray(shown.pixel(x, y)) > 235; };
    const auto isBlack = [&](int x, int y) { return qGray(shown.pixel(x, y)) < 20; };
    EXPECT_TRUE(isBlack(0, 0));
    EXPECT_TRUE(isBlack(15, 15));
    EXPECT_TRUE(isWhite(16, 16));
    EXPECT_TRUE(isWhite(640, 0));
    EXPECT_TRUE(isBlack(0, 360));
    EXPECT_TRUE(isBlack(15, 345));
    EXPECT_TRUE(isWhite(16, 344));
    EXPECT_TRUE(isWhite(640, 360));
    // The column and row that make the size even repeat the last ones.
    EXPECT_TRUE(isWhite(641, 180));
    EXPECT_TRUE(isWhite(320, 361));
    EXPECT_TRUE(isBlack(4, 361));
}

TEST_F(RecordCommandTest, ARegionPartlyOffTheDisplayShowsWhatLiesOnIt)
{
    startServer({ 640, 480 });
    painter->showWindow(test::knownPicture({ 640, 480 }), { 0, 0 });
    ASSERT_EQ(record({ "--region", "540,-40,200,140", "--duration", "0.5" }).status, 0);
    EXPECT_EQ(sizeOf(movie()), QSize(100, 100));
    const Result off = record({ "--region", "640,0,100,100", "--duration", "1" }, "off.mp4");
    EXPECT_EQ(off.status, 1);
    EXPECT_EQ(off.error,
              "vornic: The region 640,0,100,100 lies off the display, which has 640x480 pixels.\n");
    EXPECT_FALSE(QFile::exists(movie("off.mp4")));
}

TEST_F(RecordCommandTest, ALargeDisplayIsFittedInto1080Lines)
{
    startServer({ 2560, 1440 });
    painter->showWindow(test::knownPicture({ 2560, 1440 }), { 0, 0 });
    painter->movePointer({ 1280, 720 });
    ASSERT_EQ(record({ "--duration", "0.5" }).status, 0);
    ASSERT_EQ(sizeOf(movie()), QSize(1920, 1080));
    const QImage shown = decodedPicture(movie(), 0, QSize(1920, 1080));
    for (const test::KnownPatch &patch : test::knownPatches({ 1920, 1080 }))
        EXPECT_LE(
            patch.rectangle.contains(960, 540) ? 0 : differenceFrom(shown, patch.rectangle, patch.colour), 3);
}

class EndingTest : public RecordingTest, public ::testing::WithParamInterface<int>
{
};

TEST_P(EndingTest, ASignalLeavesACompleteMovie)
{
    startServer({ 640, 480 });
    const auto process = startVornic({ "record", "--ignore-low-space", "o.mp4" });
    QString error;
    ASSERT_TRUE(waitForText(*process, "00:00:00", error)) << error.toStdString();
    letPass(std::chrono::milliseconds(600));
    signal(*process, GetParam());
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(result.output.trimmed().split('\n').last(), "o.mp4");
    EXPECT_GT(secondsOf(movie()), 0.5);
    EXPECT_EQ(entries(), (QStringList { "cache", "o.mp4" }));
    EXPECT_TRUE(entries("cache/com.kavlor.vornic/recordings").isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Signals, EndingTest, ::testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(RecordCommandTest, ASecondSignalDuringTheEncodingHarmsNothing)
{
    startServer({ 1280, 720 });
    painter->showWindow(test::noisePicture({ 1280, 720 }, 1), { 0, 0 });
    const auto process = startVornic({ "record", "--ignore-low-space", "--duration", "2", "o.mp4" });
    QString error;
    ASSERT_TRUE(waitForText(*process, "Writing the movie", error)) << error.toStdString();
    signal(*process, SIGINT);
    EXPECT_EQ(finish(*process).status, 0);
    EXPECT_NEAR(secondsOf(movie()), 2.0, 0.3);
}

TEST_F(RecordCommandTest, AnExistingFileIsRefusedAndKept)
{
    startServer({ 320, 240 });
    QFile old(movie());
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("precious");
    old.close();
    const Result refused = record({ "--duration", "0.5" });
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.error, "vornic: o.mp4 exists; --overwrite replaces it.\n");
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(), "precious");
    old.close();
    EXPECT_EQ(record({ "--duration", "0.5", "--overwrite" }).status, 0);
    EXPECT_EQ(sizeOf(movie()), QSize(320, 240));
}

TEST_F(RecordCommandTest, WrongUsageIsTwo)
{
    for (const QStringList &arguments : { QStringList { "record" },
                                          QStringList { "record", "--region", "1,2,3", "o.mp4" },
                                          QStringList { "record", "--duration", "soon", "o.mp4" },
                                          QStringList { "record", "--quality", "best", "o.mp4" },
                                          QStringList { "record", "o.avi" },
                                          QStringList { "play" },
                                          QStringList { "--unknown" } }) {
        const Result result = vornic(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(' ').toStdString();
        EXPECT_TRUE(result.output.isEmpty());
        EXPECT_TRUE(result.error.startsWith("vornic: ")) << result.error.toStdString();
    }
}

TEST_F(RecordCommandTest, HelpAndVersionNeedNoDisplay)
{
    qunsetenv("DISPLAY");
    const Result help = vornic({ "--help" });
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.contains("--ignore-low-space"));
    const Result version = vornic({ "--version" });
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.output.startsWith("vornic "));
}

TEST_F(RecordCommandTest, NoDisplayIsOneSentence)
{
    qunsetenv("DISPLAY");
    const Result result = record({ "--duration", "0.5" });
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error.count('\n'), 1) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("display")) << result.error.toStdString();
    qputenv("DISPLAY", ":98765");
    EXPECT_EQ(record({ "--duration", "0.5" }).status, 1);
    EXPECT_EQ(vornic({}).status, 1);
    EXPECT_FALSE(QFile::exists(movie()));
}

TEST_F(RecordCommandTest, AServerWithoutSharedMemoryIsOneSentence)
{
    startServer({ 320, 240 }, { "-extension", "MIT-SHM" });
    const Result result = record({ "--duration", "0.5" });
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.contains("MIT-SHM")) << result.error.toStdString();
}

TEST_F(RecordCommandTest, UnwritableFoldersAreOneSentence)
{
    startServer({ 320, 240 });
    for (const QString &path : { QString("/proc/o.mp4"), folder.filePath("none/o.mp4") }) {
        const Result result = record({ "--duration", "1" }, path);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.error.count('\n'), 1) << result.error.toStdString();
    }
    QDir(folder.path()).mkdir("folder.mp4");
    EXPECT_EQ(record({ "--duration", "1" }, "folder.mp4").status, 1);
}

TEST_F(RecordCommandTest, AServerThatDiesLeavesWhatWasRecorded)
{
    startServer({ 320, 240 });
    const auto process = startVornic({ "record", "--ignore-low-space", "o.mp4" });
    QString error;
    ASSERT_TRUE(waitForText(*process, "00:00:00", error));
    letPass(std::chrono::milliseconds(600));
    painter.reset();
    server->kill();
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_GT(secondsOf(movie()), 0.4);
    EXPECT_TRUE(
        result.error.contains("vornic: Failed to shot screen buffer.\n"
                              "vornic: The display is gone: the recording ends with what it holds.\n"))
        << result.error.toStdString();
}

TEST_F(RecordCommandTest, ARecordingThatEndsBeforeItsTimeIsToldSo)
{
    startServer({ 320, 240 });
    const auto process = startVornic({ "record", "--ignore-low-space", "--duration", "600", "o.mp4" });
    QString error;
    ASSERT_TRUE(waitForText(*process, "00:00:00", error));
    letPass(std::chrono::milliseconds(300));
    painter.reset();
    server->kill();
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.output.trimmed().split('\n').last(), "o.mp4");
    EXPECT_TRUE(
        result.error.endsWith("vornic: The movie is shorter than 600 s: the recording ended earlier.\n"))
        << result.error.toStdString();
    EXPECT_GT(secondsOf(movie()), 0.1);
}

} // namespace
} // namespace vornic
