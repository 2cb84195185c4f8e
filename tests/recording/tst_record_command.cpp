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
    const Result result = record({ "--duration", "3" });
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
    EXPECT_NEAR(secondsOf(movie()), 3.0, 0.2);
    QStringList boxes;
    for (const testing::Box &box : boxesOf(movie()))
        boxes += box.name;
    EXPECT_LT(boxes.indexOf("moov"), boxes.indexOf("mdat"));
    EXPECT_GE(boxes.indexOf("moov"), 0);
    const QList<qint64> times = numbersOf(probed, "packets", "video", "pts");
    EXPECT_GT(times.size(), 10);
    for (qsizetype i = 1; i < times.size(); ++i)
        EXPECT_GT(times[i], times[i - 1]);

    const QImage shown = decodedPicture(movie(), static_cast<int>(times.size()) / 2, size);
    for (const test::KnownPatch &patch : test::knownPatches(size)) {
        if (patch.rectangle.contains(640, 360))
            continue; // the pointer is there
        EXPECT_LE(differenceFrom(shown, patch.rectangle, patch.colour), 3) << std::hex << patch.colour;
    }
}

TEST_F(RecordCommandTest, TheSummaryCountsWhatTheMovieHolds)
{
    startServer({ 320, 240 });
    const Result result = record({ "--duration", "1" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    const QRegularExpression form(
        "^(\\d+) frames grabbed, (\\d+) frames written, 0 frames skipped, 0\\.0 s of audio$");
    const QRegularExpressionMatch match = form.match(result.output.split('\n').first());
    ASSERT_TRUE(match.hasMatch()) << result.output.toStdString();
    EXPECT_EQ(match.captured(1), match.captured(2));
    EXPECT_EQ(match.captured(2).toLongLong(), numbersOf(probe(movie()), "packets", "video", "pts").size());
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
    ASSERT_EQ(record({ "--region", "101,57,641,361", "--duration", "1" }).status, 0);
    ASSERT_EQ(sizeOf(movie()), QSize(642, 362));
    const QImage shown = decodedPicture(movie(), 5, QSize(642, 362));
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
    ASSERT_EQ(record({ "--region", "540,-40,200,140", "--duration", "1" }).status, 0);
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
    ASSERT_EQ(record({ "--duration", "1" }).status, 0);
    ASSERT_EQ(sizeOf(movie()), QSize(1920, 1080));
    const QImage shown = decodedPicture(movie(), 2, QSize(1920, 1080));
    for (const test::KnownPatch &patch : test::knownPatches({ 1920, 1080 }))
        EXPECT_LE(
            patch.rectangle.contains(960, 540) ? 0 : differenceFrom(shown, patch.rectangle, patch.colour), 3);
}

/// A display that takes other sizes while it is recorded.
class ChangingDisplayTest : public RecordingTest
{
protected:
    /// A server of \a size that has modes of the sizes below, in the first of which it is to be.
    void startServerAt(QSize size, QSize first)
    {
        startServer(size);
        for (const QSize mode : { QSize(1280, 720), QSize(640, 360) }) {
            const QString width = QString::number(mode.width());
            const QString height = QString::number(mode.height());
            // Without hardware, no timing is wrong.
            ASSERT_EQ(server->run({ "xrandr",
                                    "--newmode",
                                    nameOf(mode),
                                    "60",
                                    width,
                                    width,
                                    width,
                                    width,
                                    height,
                                    height,
                                    height,
                                    height }),
                      0);
            ASSERT_EQ(server->run({ "xrandr", "--addmode", "screen", nameOf(mode) }), 0);
        }
        resizeTo(first);
    }

    void resizeTo(QSize size)
    {
        ASSERT_EQ(server->run({ "xrandr", "--output", "screen", "--mode", nameOf(size) }), 0);
        painter->showWindow(test::knownPicture(size), { 0, 0 });
        painter->movePointer({ size.width() / 2, size.height() / 2 });
    }

    static QString nameOf(QSize size)
    {
        return QStringLiteral("m%1x%2").arg(size.width()).arg(size.height());
    }

    /// Whether the last frame shows all bars.
    static bool showsAllBars(const QString &file, QSize size)
    {
        const int count = static_cast<int>(numbersOf(probe(file), "packets", "video", "pts").size());
        const QImage shown = decodedPicture(file, count - 1, size);
        int most = 0;
        for (const test::KnownPatch &patch : test::knownPatches(size))
            if (!patch.rectangle.contains(size.width() / 2, size.height() / 2)) // the pointer is there
                most = std::max(most, differenceFrom(shown, patch.rectangle, patch.colour));
        return most <= 6;
    }

    /// Records while the display goes from \a first to \a second.
    void recordAcross(QSize first, QSize second)
    {
        startServerAt({ 1280, 720 }, first);
        const auto process = startVornic({ "record", "--ignore-low-space", "o.mp4" });
        QString error;
        ASSERT_TRUE(waitForText(*process, "00:00:00", error)) << error.toStdString();
        resizeTo(second);
        // Ten seconds later the clock is told again.
        ASSERT_TRUE(waitForText(*process, "00:00:10", error)) << error.toStdString();
        ::kill(static_cast<pid_t>(process->processId()), SIGINT);
        const Result result = finish(*process);
        ASSERT_EQ(result.status, 0) << error.toStdString() << result.error.toStdString();
        EXPECT_TRUE(result.output.contains(", 0 frames skipped")) << result.output.toStdString();
    }
};

TEST_F(ChangingDisplayTest, OneThatGrowsIsShownWhole)
{
    recordAcross({ 640, 360 }, { 1280, 720 });
    ASSERT_EQ(sizeOf(movie()), QSize(640, 360));
    EXPECT_TRUE(showsAllBars(movie(), { 640, 360 }));
}

TEST_F(ChangingDisplayTest, OneThatShrinksIsShownWhole)
{
    recordAcross({ 1280, 720 }, { 640, 360 });
    ASSERT_EQ(sizeOf(movie()), QSize(1280, 720));
    EXPECT_TRUE(showsAllBars(movie(), { 1280, 720 }));
}

class CursorTest : public RecordingTest
{
protected:
    /// The rectangle of the dark pixels in the movie's last frame: luma is stored for each pixel.
    QRect darkPixels(QSize size) const
    {
        const int count = static_cast<int>(numbersOf(probe(movie()), "packets", "video", "pts").size());
        const QImage shown = decodedPicture(movie(), count - 1, size);
        QRect found;
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                if (qGray(shown.pixel(x, y)) < 100)
                    found |= QRect(x, y, 1, 1);
        return found;
    }

    static QImage blackSquare()
    {
        QImage cursor(24, 24, QImage::Format_ARGB32_Premultiplied);
        cursor.fill(Qt::black);
        return cursor;
    }

    void showWhiteWithBlackCursor(QPoint hotSpot)
    {
        startServer({ 640, 480 });
        QImage white(640, 480, QImage::Format_RGB32);
        white.fill(Qt::white);
        painter->drawOnRoot(white, { 0, 0 });
        painter->setCursor(blackSquare(), hotSpot);
    }
};

TEST_F(CursorTest, InsideTheRegionItStandsAtItsHotSpot)
{
    showWhiteWithBlackCursor({ 5, 7 });
    painter->movePointer({ 205, 107 });
    ASSERT_EQ(record({ "--region", "100,60,400,300", "--duration", "1" }).status, 0);
    EXPECT_EQ(darkPixels({ 400, 300 }), QRect(100, 40, 24, 24));
}

TEST_F(CursorTest, OnTheFirstAndLastPixelItIsInside)
{
    showWhiteWithBlackCursor({ 0, 0 });
    painter->movePointer({ 100, 60 });
    ASSERT_EQ(record({ "--region", "100,60,400,300", "--duration", "1" }).status, 0);
    EXPECT_EQ(darkPixels({ 400, 300 }), QRect(0, 0, 24, 24));
    painter->setCursor(blackSquare(), { 23, 23 });
    painter->movePointer({ 499, 359 });
    ASSERT_EQ(record({ "--region", "100,60,400,300", "--duration", "1", "--overwrite" }).status, 0);
    EXPECT_EQ(darkPixels({ 400, 300 }), QRect(376, 276, 24, 24));
}

TEST_F(CursorTest, OutsideTheRegionItIsNotThere)
{
    showWhiteWithBlackCursor({ 0, 0 });
    // One pixel left of the region: the picture of the pointer reaches in, but its hot spot does not.
    painter->movePointer({ 99, 200 });
    ASSERT_EQ(record({ "--region", "100,60,400,300", "--duration", "1" }).status, 0);
    EXPECT_TRUE(darkPixels({ 400, 300 }).isNull());
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
    std::this_thread::sleep_for(std::chrono::milliseconds(800));
    ::kill(static_cast<pid_t>(process->processId()), GetParam());
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(result.output.trimmed().split('\n').last(), "o.mp4");
    EXPECT_GT(secondsOf(movie()), 0.5);
    EXPECT_EQ(entries(), (QStringList { "cache", "o.mp4" }));
    EXPECT_TRUE(entries("cache/com.kavlor.vornic").isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Signals, EndingTest, ::testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(RecordCommandTest, ASecondSignalDuringTheEncodingHarmsNothing)
{
    startServer({ 1280, 720 });
    painter->showWindow(test::noisePicture({ 1280, 720 }, 1), { 0, 0 });
    const auto process = startVornic({ "record", "--ignore-low-space", "--duration", "2", "o.mp4" });
    QString error;
    ASSERT_TRUE(waitForText(*process, "Writing the movie", error)) << error.toStdString();
    ::kill(static_cast<pid_t>(process->processId()), SIGINT);
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
    const Result refused = record({ "--duration", "1" });
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.error, "vornic: o.mp4 exists; --overwrite replaces it.\n");
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(), "precious");
    old.close();
    EXPECT_EQ(record({ "--duration", "1", "--overwrite" }).status, 0);
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
    const Result result = record({ "--duration", "1" });
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error.count('\n'), 1) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("display")) << result.error.toStdString();
    qputenv("DISPLAY", ":98765");
    EXPECT_EQ(record({ "--duration", "1" }).status, 1);
    EXPECT_EQ(vornic({}).status, 1);
    EXPECT_FALSE(QFile::exists(movie()));
}

TEST_F(RecordCommandTest, AServerWithoutSharedMemoryIsOneSentence)
{
    startServer({ 320, 240 }, { "-extension", "MIT-SHM" });
    const Result result = record({ "--duration", "1" });
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
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    painter.reset();
    server->kill();
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_GT(secondsOf(movie()), 0.4);
}

/// Runs of the program in a mount namespace of their own, with small volumes.
class SmallVolumeTest : public RecordingTest
{
protected:
    /// Mounts \a size bytes at "volume" in the test's folder and runs \a script there; what it leaves outside
    /// of the volume stays.
    Result inVolume(qint64 size, const QString &script) const
    {
        QDir(folder.path()).mkdir("volume");
        const QString mounted
            = QStringLiteral("mount -t tmpfs -o size=%1 tmpfs volume && { %2; }").arg(size).arg(script);
        const auto process = start("unshare", { "-Urm", "sh", "-c", mounted });
        return finish(*process);
    }
    static bool namespacesWork()
    {
        return QProcess::execute("unshare", { "-Urm", "sh", "-c", "mount -t tmpfs tmpfs /mnt" }) == 0;
    }
    void SetUp() override
    {
        if (!namespacesWork())
            GTEST_SKIP() << "this machine allows no mount namespaces";
        startServer();
        scene = server->startProgram({ VORNIC_SHOW_SCENE, "video", "--fps", "30", "--seconds", "100" });
    }

    const QString program = QStringLiteral(VORNIC_PROGRAM);
    const qint64 gibibyte = 1LL << 30;
    std::unique_ptr<test::ChildProcess> scene;
};

TEST_F(SmallVolumeTest, AnOutputVolumeThatFillsLeavesNoPartialFile)
{
    const Result result = inVolume(
        100'000,
        program
            + " record --ignore-low-space --duration 3 volume/o.mp4; status=$?; ls -A volume; exit $status");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error.count("vornic: "), 1) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("full")) << result.error.toStdString();
}

TEST_F(SmallVolumeTest, ACacheVolumeThatFillsEndsTheRecordingWithAllThatWasSpooled)
{
    const Result result = inVolume(gibibyte + gibibyte / 40,
                                   "XDG_CACHE_HOME=$PWD/volume " + program
                                       + " record --ignore-low-space --duration 60 o.mp4");
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("Disk free space is too low")) << result.error.toStdString();
    const double seconds = secondsOf(movie());
    EXPECT_GT(seconds, 1.0);
    EXPECT_LT(seconds, 55.0);
    const QStringList words = result.output.split(' ');
    EXPECT_EQ(words[0], words[3]) << result.output.toStdString();
    EXPECT_EQ(words[3].toLongLong(), numbersOf(probe(movie()), "packets", "video", "pts").size());
}

TEST_F(SmallVolumeTest, LittleSpaceIsRefusedNamingTheRule)
{
    const Result result
        = inVolume(2 * gibibyte, "XDG_CACHE_HOME=$PWD/volume " + program + " record --duration 1 o.mp4");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.contains("10.0 GiB")) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("--ignore-low-space"));
    EXPECT_FALSE(QFile::exists(movie()));
    const Result hopeless
        = inVolume(gibibyte / 2,
                   "XDG_CACHE_HOME=$PWD/volume " + program + " record --ignore-low-space --duration 1 o.mp4");
    EXPECT_EQ(hopeless.status, 1);
    EXPECT_TRUE(hopeless.error.contains("1.0 GiB")) << hopeless.error.toStdString();
}

TEST_F(SmallVolumeTest, ASpoolThatCannotGrowEndsTheRecordingNormally)
{
    // The limit stands in for a quota: the volume says that it has room, and takes no more.
    const auto process = start(
        "sh",
        { "-c", "ulimit -f 20000; exec " + program + " record --ignore-low-space --duration 60 o.mp4" });
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_LT(secondsOf(movie()), 55.0);
    EXPECT_EQ(result.output.split(' ')[0], result.output.split(' ')[3]);
}

} // namespace
} // namespace vornic
