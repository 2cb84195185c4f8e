#include "record_window_fixture.h"

#include <QColor>
#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace vornic {
namespace {

using test::waitUntil;

constexpr QSize desktopSize(2400, 720);        // with room for the window beside the rectangle
constexpr QRect region(800, 60, 800, 600);     // the rectangle of a first start, pixels from the upper left
constexpr QRect mainWindow(1650, 0, 750, 720); // where it is moved to, off what is measured
constexpr QSize logoSize(64, 48);
const QColor background(128, 128, 128); // as picom paints a root window without a picture

/// The window with its overlay around a rectangle and a picture as the logo.
class RecordOverlayTest : public RecordWindowTest, public ::testing::WithParamInterface<bool>
{
protected:
    void SetUp() override
    {
        startServer(desktopSize);
        QImage desktop(desktopSize, QImage::Format_RGB32);
        desktop.fill(background);
        painter->setRootBackground(desktop);
        openbox = server->startOpenbox();
        ASSERT_TRUE(openbox);
        if (GetParam()) {
            picom = server->startPicom();
            ASSERT_TRUE(picom);
        }
        startProgram();
    }

    void chooseRectangleAndPicture()
    {
        QImage logo(logoSize, QImage::Format_RGB32);
        logo.fill(Qt::white);
        ASSERT_TRUE(logo.save(folder.filePath("logo.png")));
        const QString window = waitForWindow("^Vornic$");
        xdotool({ "windowmove", "--sync", window, QString::number(mainWindow.x()), "0" });
        ASSERT_TRUE(waitUntil([&] { return xdotool({ "getactivewindow" }) == window; }));
        for (const char *keys : { "alt+s", "alt+l", "alt+i", "alt+c" }) {
            key(window, keys);
            ASSERT_TRUE(mainWindowRests()) << keys; // each enables the next one's control
        }
        const QString panel = waitForWindow("^Choose the logo's picture$");
        ASSERT_FALSE(panel.isEmpty());
        xdotool({ "windowfocus", "--sync", panel });
        xdotool({ "type", "--clearmodifiers", folder.filePath("logo.png") });
        xdotool({ "key", "--clearmodifiers", "Return" });
        ASSERT_TRUE(waitUntil([this] { return brightBox(painter->screen(region)).size() == logoSize; }));
    }

    /// Waits until the main window has looked the same for 0.3 s.
    bool mainWindowRests() const
    {
        QImage seen;
        QElapsedTimer same;
        return waitUntil([&] {
            if (QImage shown = painter->screen(mainWindow); shown != seen) {
                seen = std::move(shown);
                same.start();
            }
            return same.hasExpired(300);
        });
    }

    static bool isBackground(QRgb pixel)
    {
        const QColor colour(pixel);
        return std::abs(colour.red() - background.red()) <= 6
            && std::abs(colour.green() - background.green()) <= 6
            && std::abs(colour.blue() - background.blue()) <= 6;
    }

    /// Around all that is bright in the middle of the picture, where no frame and no window is.
    static QRect brightBox(const QImage &picture)
    {
        QRect box;
        for (int y = 330; y < picture.height() - 4; ++y)
            for (int x = 4; x < 500; ++x)
                if (qGray(picture.pixel(x, y)) > 150)
                    box |= QRect(x, y, 1, 1);
        return box;
    }

    std::unique_ptr<test::ChildProcess> picom;
};

INSTANTIATE_TEST_SUITE_P(Compositing, RecordOverlayTest, ::testing::Bool(), [](const auto &kind) {
    return kind.param ? "WithPicom" : "Without";
});

TEST_P(RecordOverlayTest, TheMovieHoldsTheLogoAndNothingElseOfTheOverlay)
{
    chooseRectangleAndPicture();
    // Of the view, which is 8 larger than the rectangle on every side, the logo stands at (150, 100), y up.
    const QRect expected(QPoint(150 - 8, region.height() + 8 - 100 - logoSize.height()), logoSize);
    EXPECT_EQ(brightBox(painter->screen(region)), expected);

    const auto beneath
        = start("stdbuf", { "-oL", "xev", "-geometry", "200x150+1340+450", "-event", "button" });
    ASSERT_FALSE(waitForWindow("^Event Tester$").isEmpty());
    const QString stopBar = startRecording();
    ASSERT_FALSE(stopBar.isEmpty());
    letPass(std::chrono::milliseconds(300));
    xdotool({ "mousemove", "1440", "520", "click", "1" });
    QString told;
    EXPECT_TRUE(waitUntil([&] {
        beneath->waitForReadyRead(10);
        told += QString::fromUtf8(beneath->readAllStandardOutput());
        return told.contains("ButtonPress");
    }));
    beneath->kill();
    beneath->waitForFinished();
    xdotool({ "mousemove", "5", "5" });
    letPass(std::chrono::milliseconds(500));
    EXPECT_EQ(brightBox(painter->screen(region)), expected);
    xdotool({ "mousemove", "--window", stopBar, "20", "20", "click", "1" });
    ASSERT_TRUE(waitForFile(movie("window.mp4")));

    const auto frames = static_cast<int>(
        testing::numbersOf(testing::probe(movie("window.mp4")), "packets", "video", "pts").size());
    // The first frame, in which a slow overlay would still show its tint, and one of the last.
    for (const int number : { 0, std::max(0, frames - 3) }) {
        const QImage picture = testing::decodedPicture(movie("window.mp4"), number, region.size());
        EXPECT_EQ(brightBox(picture), expected);
        for (const QPoint point : { QPoint(1, 1),
                                    QPoint(400, 1),
                                    QPoint(798, 1),
                                    QPoint(1, 300),
                                    QPoint(798, 300),
                                    QPoint(1, 598),
                                    QPoint(400, 598),
                                    QPoint(798, 598),
                                    QPoint(300, 350) })
            EXPECT_TRUE(isBackground(picture.pixel(point))) << point.x() << "," << point.y();
    }
    endProgram();
}

} // namespace
} // namespace vornic
