#include "record_window_fixture.h"

#include <QRegularExpression>

namespace vornic {
namespace {

using test::waitUntil;

/// What a person meets who records while other programs are in the way.
class RecordDeskTest : public RecordWindowTest
{
protected:
    /// A terminal that covers the screen, as a video player does, with the keyboard.
    std::unique_ptr<test::ChildProcess> startFullScreenProgram()
    {
        auto xterm = server->startProgram(
            { "xterm", "-T", "player", "-bg", "#204060", "-fullscreen", "-e", "sleep", "1000" });
        const QString window = waitForWindow("^player$");
        EXPECT_TRUE(waitUntil([&] {
            xdotool({ "windowactivate", window });
            return xdotool({ "getactivewindow" }) == window && isFullScreen(window);
        }));
        return xterm;
    }
    static bool isFullScreen(const QString &window)
    {
        return xdotool({ "getwindowgeometry", window }).contains("1280x720");
    }
    /// The part of the screen that a window takes.
    static QRect placeOf(const QString &window)
    {
        const QString told = xdotool({ "getwindowgeometry", window });
        static const QRegularExpression form("Position: (-?\\d+),(-?\\d+).*Geometry: (\\d+)x(\\d+)",
                                             QRegularExpression::DotMatchesEverythingOption);
        const QRegularExpressionMatch match = form.match(told);
        return { match.captured(1).toInt(),
                 match.captured(2).toInt(),
                 match.captured(3).toInt(),
                 match.captured(4).toInt() };
    }
    /// Whether something other than the program that covers the screen is seen there.
    [[nodiscard]] bool showsBarAt(const QRect &place) const
    {
        const QImage seen = painter->screen(place);
        int others = 0;
        for (int y = 0; y < seen.height(); ++y)
            for (int x = 0; x < seen.width(); ++x)
                others += (seen.pixel(x, y) & 0xffffffU) != 0x204060U ? 1 : 0;
        return others > place.width() * place.height() / 2;
    }
    static bool isShown(const QString &title)
    {
        return !xdotool({ "search", "--onlyvisible", "--name", title }).isEmpty();
    }
    void chooseRectangle() { key(waitForWindow("^Vornic$"), "alt+s"); }
};

TEST_F(RecordDeskTest, OneKeyStartsAndStopsWhateverIsInFront)
{
    const auto player = startFullScreenProgram();
    xdotool({ "key", "ctrl+alt+r" });
    letPass(std::chrono::milliseconds(1500));
    xdotool({ "key", "ctrl+alt+r" });
    const QString path = waitForMovie();
    ASSERT_FALSE(path.isEmpty());
    EXPECT_TRUE(QRegularExpression("/Recording \\d{4}-\\d\\d-\\d\\d \\d\\d-\\d\\d-\\d\\d.mp4$")
                    .match(path)
                    .hasMatch())
        << qPrintable(path);
    EXPECT_EQ(sizeOf(path), QSize(1280, 720));
    EXPECT_GT(secondsOf(path), 0.7);
    endProgram();
}

TEST_F(RecordDeskTest, TheBarTakesNoKeysFromWhoWorks)
{
    const auto xterm = server->startXterm("cat");
    ASSERT_TRUE(xterm);
    const QString terminal = xdotoolUntil({ "search", "--onlyvisible", "--class", "xterm" });
    xdotool({ "windowactivate", "--sync", terminal });
    ASSERT_FALSE(startRecording().isEmpty());
    EXPECT_TRUE(waitUntil([&] { return xdotool({ "getactivewindow" }) == terminal; }))
        << "the window that was active before has the keyboard";
    for (int i = 0; i < 10; ++i)
        xdotool({ "key", "space", "key", "Return" });
    letPass(std::chrono::milliseconds(1500));
    EXPECT_FALSE(QFile::exists(movie("window.mp4"))) << "it goes on";
    clickStopBar();
    EXPECT_TRUE(waitForFile(movie("window.mp4")));
    endProgram();
}

TEST_F(RecordDeskTest, WithNothingElseToTakeTheKeyboardAKeyStopsNothingAtOnce)
{
    const QString bar = startRecording();
    ASSERT_FALSE(bar.isEmpty());
    for (int i = 0; i < 10; ++i)
        xdotool({ "key", "space", "key", "Return" });
    letPass(std::chrono::milliseconds(500));
    EXPECT_FALSE(QFile::exists(movie("window.mp4")));
    clickStopBar();
    EXPECT_TRUE(waitForFile(movie("window.mp4")));
    endProgram();
}

TEST_F(RecordDeskTest, TheBarIsSeenAboveAFullScreenProgram)
{
    chooseRectangle();
    ASSERT_FALSE(startRecording().isEmpty());
    const auto player = startFullScreenProgram();
    QRect place;
    EXPECT_TRUE(waitUntil([&] {
        place = placeOf(waitForWindow("^Stop recording$"));
        return !place.isEmpty() && showsBarAt(place);
    }));
    xdotool({ "windowactivate", waitForWindow("^player$") });
    xdotool({ "windowraise", waitForWindow("^player$") });
    EXPECT_TRUE(waitUntil([&] { return showsBarAt(place); })) << "raised again it does not cover it";
    xdotool({ "mousemove",
              QString::number(place.center().x()),
              QString::number(place.center().y()),
              "click",
              "1" });
    EXPECT_TRUE(waitForFile(movie("window.mp4")));
    endProgram();
}

TEST_F(RecordDeskTest, TheBarCanBeMovedButNotClosed)
{
    chooseRectangle();
    const QString bar = startRecording();
    ASSERT_FALSE(bar.isEmpty());
    const QRect before = placeOf(bar);
    const QPoint grip = before.center();
    xdotool({ "mousemove", QString::number(grip.x()), QString::number(grip.y()), "mousedown", "1" });
    for (int step = 1; step <= 10; ++step)
        xdotool({ "mousemove", QString::number(grip.x() - 10 * step), QString::number(grip.y() + step) });
    xdotool({ "mouseup", "1" });
    EXPECT_TRUE(waitUntil([&] { return placeOf(bar).topLeft() == before.topLeft() + QPoint(-100, 10); }));
    letPass(std::chrono::milliseconds(1300)); // until it may have the keyboard
    xdotool({ "windowactivate", bar });
    xdotool({ "key", "alt+F4" });
    letPass(std::chrono::milliseconds(300));
    EXPECT_TRUE(isShown("^Stop recording$"));
    EXPECT_FALSE(QFile::exists(movie("window.mp4"))) << "neither has stopped it";
    clickStopBar();
    EXPECT_TRUE(waitForFile(movie("window.mp4")));
    endProgram();
}

TEST_F(RecordDeskTest, InAMovieOfTheWholeDisplayTheBarHidesUntilThePointerCallsIt)
{
    ASSERT_FALSE(startRecording().isEmpty());
    xdotool({ "mousemove", "640", "400" });
    EXPECT_TRUE(waitUntil([&] { return !isShown("^Stop recording$"); }));
    EXPECT_FALSE(QFile::exists(movie("window.mp4")));
    xdotool({ "mousemove", "640", "0" });
    EXPECT_FALSE(waitForWindow("^Stop recording$").isEmpty());
    clickStopBar();
    EXPECT_TRUE(waitForFile(movie("window.mp4")));
    endProgram();
}

TEST_F(RecordDeskTest, WithAFileTheCommandLineStartsAtOnce)
{
    endProgram();
    startProgram({ "--record=rectangle", "now.mp4" });
    ASSERT_FALSE(waitForWindow("^Stop recording$").isEmpty());
    letPass(std::chrono::milliseconds(700));
    clickStopBar();
    ASSERT_TRUE(waitForFile(movie("now.mp4")));
    EXPECT_EQ(sizeOf(movie("now.mp4")), QSize(800, 600));
    endProgram();
}

TEST_F(RecordDeskTest, ACountdownIsSeenAndCancelledByEscape)
{
    endProgram();
    store("com.kavlor.countdown", "10");
    startProgram();
    const auto player = startFullScreenProgram();
    xdotool({ "key", "ctrl+alt+r" });
    const QString countdown = waitForWindow("^Countdown$");
    ASSERT_FALSE(countdown.isEmpty());
    const QRect place = placeOf(countdown);
    EXPECT_EQ(place.center(), QPoint(639, 359));
    EXPECT_TRUE(waitUntil([&] { return showsBarAt(place); }));
    xdotool({ "key", "Escape" });
    EXPECT_TRUE(waitUntil([&] { return !isShown("^Countdown$"); }));
    xdotool({ "key", "ctrl+alt+r" });
    EXPECT_FALSE(waitForWindow("^Countdown$").isEmpty()) << "it is idle again";
    xdotool({ "key", "ctrl+alt+r" });
    EXPECT_TRUE(waitUntil([&] { return !isShown("^Countdown$"); })) << "the key cancels too";
    EXPECT_TRUE(QDir(folder.path()).entryList({ "*.mp4" }).isEmpty());
    endProgram();
}

TEST_F(RecordDeskTest, AfterACountdownItRecords)
{
    endProgram();
    store("com.kavlor.countdown", "3");
    startProgram();
    xdotool({ "key", "ctrl+alt+r" });
    ASSERT_FALSE(waitForWindow("^Countdown$").isEmpty());
    ASSERT_FALSE(waitForWindow("^Stop recording$").isEmpty());
    letPass(std::chrono::milliseconds(700));
    xdotool({ "key", "ctrl+alt+r" });
    EXPECT_FALSE(waitForMovie().isEmpty());
    endProgram();
}

/// The folder cannot be shown, which is told; whoever has heard of it or not records again.
TEST_F(RecordDeskTest, WhatOnlyTellsDoesNotHoldUpTheKey)
{
    QFile launcher(folder.filePath("bin/xdg-open"));
    ASSERT_TRUE(launcher.open(QIODevice::WriteOnly));
    launcher.write("#!/bin/sh\nexit 3\n");
    launcher.close();
    for (int movies = 1; movies <= 2; ++movies) {
        xdotool({ "key", "ctrl+alt+r" });
        ASSERT_FALSE(callStopBar().isEmpty());
        xdotool({ "key", "ctrl+alt+r" });
        EXPECT_TRUE(waitUntil([&] { return isShown("could not be shown"); }));
        EXPECT_EQ(QDir(folder.path()).entryList({ "*.mp4" }).size(), movies);
    }
    xdotool({ "windowactivate", "--sync", waitForWindow("could not be shown") });
    xdotool({ "key", "Return" });
    EXPECT_TRUE(waitUntil([&] { return !isShown("could not be shown"); }));
    endProgram();
}

TEST_F(RecordDeskTest, NoPixelOfTheWindowIsInTheMovie)
{
    constexpr QRgb background = 0xff3070a0;
    QImage plain(16, 16, QImage::Format_RGB32);
    plain.fill(background);
    painter->setRootBackground(plain);
    xdotool({ "mousemove", "5", "700" });
    xdotool({ "key", "ctrl+alt+r" });
    letPass(std::chrono::milliseconds(4500)); // until the bar has hidden itself
    xdotool({ "key", "ctrl+alt+r" });
    const QString path = waitForMovie();
    ASSERT_FALSE(path.isEmpty());
    // All but the pointer, and the corner of the bar, which is there for the first three seconds.
    const QRegion others = QRegion(0, 0, 1280, 720) - QRect(1280 - 300, 0, 300, 100) - QRect(0, 690, 40, 30);
    for (const int number : { 0, 1, 5 }) {
        const QImage seen = testing::decodedPicture(path, number, { 1280, 720 });
        for (const QRect &part : others)
            EXPECT_LT(differenceFrom(seen, part.adjusted(-16, -16, 16, 16) & seen.rect(), background), 24)
                << "frame " << number;
    }
    endProgram();
}

TEST_F(RecordDeskTest, WhatIsOpenedAfterwardsIsInFront)
{
    chooseRectangle();
    ASSERT_FALSE(startRecording().isEmpty());
    letPass(std::chrono::milliseconds(300));
    clickStopBar();
    ASSERT_TRUE(waitForFile(movie("window.mp4"))); // whose folder is shown, as is the default
    EXPECT_TRUE(waitUntil([&] { return !isShown("^Recorded rectangle$"); }));
    const QString window = waitForWindow("^Vornic$");
    QProcess states;
    states.start("xprop", { "-id", window, "_NET_WM_STATE" });
    states.waitForFinished();
    EXPECT_FALSE(states.readAllStandardOutput().contains("ABOVE"));
    const auto opened = server->startXterm("cat");
    ASSERT_TRUE(opened);
    xdotool({ "windowactivate", "--sync", xdotoolUntil({ "search", "--onlyvisible", "--class", "xterm" }) });
    letPass(std::chrono::milliseconds(500));
    EXPECT_FALSE(isShown("^Recorded rectangle$"));
    xdotool({ "windowactivate", window });
    EXPECT_TRUE(waitUntil([&] { return isShown("^Recorded rectangle$"); }))
        << "with the window the rectangle comes back";
    endProgram();
}

/// A rectangle that leaves room beside it, drawn on the screen.
class RecordSelectionTest : public RecordDeskTest
{
protected:
    static constexpr QRect rectangle { 40, 50, 301, 201 };

    void selectOnScreen()
    {
        QImage plain(16, 16, QImage::Format_RGB32);
        plain.fill(background);
        painter->setRootBackground(plain);
        const QString window = waitForWindow("^Vornic$");
        key(window, "alt+n");
        ASSERT_TRUE(waitUntil([&] {
            return (painter->screen({ 5, 5, 1, 1 }).pixel(0, 0)) != background;
        })) << "the display is dimmed";
        const auto to = [](QPoint point) {
            xdotool({ "mousemove", QString::number(point.x()), QString::number(point.y()) });
        };
        to(rectangle.topLeft());
        xdotool({ "mousedown", "1" });
        to({ 200, 120 });
        to(rectangle.bottomRight());
        xdotool({ "mouseup", "1", "key", "Return" });
        ASSERT_TRUE(waitUntil([&] { return isShown("^Recorded rectangle$") && isShown("^Vornic$"); }));
    }

    static constexpr QRgb background = 0xff3070a0;
};

TEST_F(RecordSelectionTest, WhatIsDrawnOnTheScreenIsRecorded)
{
    selectOnScreen();
    EXPECT_FALSE(placeOf(waitForWindow("^Vornic$")).intersects(rectangle)) << "the window stands beside it";
    xdotool({ "key", "ctrl+alt+r" });
    letPass(std::chrono::milliseconds(1500));
    xdotool({ "key", "ctrl+alt+r" });
    const QString path = waitForMovie();
    ASSERT_FALSE(path.isEmpty());
    EXPECT_EQ(sizeOf(path), QSize(302, 202)) << "movies have even sizes";
    endProgram();
}

TEST_F(RecordSelectionTest, TheQuestionWhetherToQuitIsNotInTheMovie)
{
    selectOnScreen();
    const QString window = waitForWindow("^Vornic$");
    xdotool({ "mousemove", "1000", "700", "key", "ctrl+alt+r" });
    ASSERT_FALSE(waitForWindow("^Stop recording$").isEmpty());
    letPass(std::chrono::milliseconds(500));
    const QString question = closeUntilAsked(window);
    ASSERT_FALSE(question.isEmpty());
    EXPECT_TRUE(waitUntil([&] {
        const QRect place = placeOf(question);
        return !place.isEmpty() && !place.intersects(rectangle.adjusted(-8, -8, 8, 8));
    }));
    letPass(std::chrono::milliseconds(300));
    key(question, "Escape");
    letPass(std::chrono::milliseconds(300));
    xdotool({ "key", "ctrl+alt+r" });
    const QString path = waitForMovie();
    ASSERT_FALSE(path.isEmpty());
    const auto frames
        = static_cast<int>(testing::numbersOf(testing::probe(path), "packets", "video", "pts").size());
    for (int number = 0; number < frames; number += 5) {
        const QImage seen = testing::decodedPicture(path, number, { 302, 202 });
        EXPECT_LT(differenceFrom(seen, seen.rect().adjusted(-16, -16, 16, 16) & seen.rect(), background), 12)
            << "frame " << number;
    }
    endProgram();
}

} // namespace
} // namespace vornic
