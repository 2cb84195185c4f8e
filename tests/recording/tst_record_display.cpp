#include "recording_fixture.h"
#include "support/built_program.h"
#include "support/pseudo_terminal.h"

#include <algorithm>

namespace vornic {
namespace {

using testing::decodedPicture;
using testing::numbersOf;
using testing::probe;

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

    /// Records while the display goes from \a first to \a second. On a terminal the clock is shown each second.
    void recordAcross(QSize first, QSize second)
    {
        startServerAt({ 1280, 720 }, first);
        test::PseudoTerminal terminal;
        const auto process = start(
            "sh",
            { "-c",
              "exec " + test::vornicProgram() + " record --ignore-low-space o.mp4 2>" + terminal.device() });
        ASSERT_TRUE(test::waitUntil([&] { return terminal.written().contains("00:00:00"); }));
        resizeTo(second);
        const qsizetype resized = terminal.written().size();
        // Between two steps of the clock lies a second in which the display had its new size.
        ASSERT_TRUE(test::waitUntil([&] { return terminal.written().sliced(resized).count("00:00:0") >= 2; }))
            << terminal.written().toStdString();
        signal(*process, SIGINT);
        const Result result = finish(*process);
        ASSERT_EQ(result.status, 0) << terminal.written().toStdString();
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
    ASSERT_EQ(record({ "--region", "100,60,400,300", "--duration", "0.5" }).status, 0);
    EXPECT_EQ(darkPixels({ 400, 300 }), QRect(100, 40, 24, 24));
}

TEST_F(CursorTest, OnTheFirstAndLastPixelItIsInside)
{
    showWhiteWithBlackCursor({ 0, 0 });
    painter->movePointer({ 100, 60 });
    ASSERT_EQ(record({ "--region", "100,60,400,300", "--duration", "0.5" }).status, 0);
    EXPECT_EQ(darkPixels({ 400, 300 }), QRect(0, 0, 24, 24));
    painter->setCursor(blackSquare(), { 23, 23 });
    painter->movePointer({ 499, 359 });
    ASSERT_EQ(record({ "--region", "100,60,400,300", "--duration", "0.5", "--overwrite" }).status, 0);
    EXPECT_EQ(darkPixels({ 400, 300 }), QRect(376, 276, 24, 24));
}

TEST_F(CursorTest, OutsideTheRegionItIsNotThere)
{
    showWhiteWithBlackCursor({ 0, 0 });
    // One pixel left of the region: the picture of the pointer reaches in, but its hot spot does not.
    painter->movePointer({ 99, 200 });
    ASSERT_EQ(record({ "--region", "100,60,400,300", "--duration", "0.5" }).status, 0);
    EXPECT_TRUE(darkPixels({ 400, 300 }).isNull());
}

} // namespace
} // namespace vornic
