#include "record_sway_fixture.h"
#include "support/virtual_pointer.h"

#include <QDirIterator>

#include <cstdlib>
#include <set>
#include <vector>

namespace vornic {
namespace {

TEST_F(RecordSwayTest, WhatMovesOnTheMonitorIsInTheMovie)
{
    startDesktop();
    const Result result = recordMoving(test::knownPicture(size), { "--duration", "1" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_LE(differenceFromBars(lastFrame(size)), 3);
    const std::vector<int> numbers = numbersInMovie();
    EXPECT_TRUE(std::ranges::is_sorted(numbers));
    EXPECT_GE(std::set(numbers.begin(), numbers.end()).size(), 3U);
}

class RecordSwayScaleTest : public RecordSwayTest, public ::testing::WithParamInterface<double>
{
protected:
    static constexpr QRect mark { 51, 107, 63, 47 };

    /// The known picture with a white rectangle on its first bar, which is black.
    static QImage marked()
    {
        QImage picture = test::knownPicture(size);
        for (int y = mark.top(); y <= mark.bottom(); ++y)
            for (int x = mark.left(); x <= mark.right(); ++x)
                picture.setPixel(x, y, 0xffffffff);
        return picture;
    }
    /// Whether the edges of \a rectangle lie between the pixels where they should: within it is white, around it black.
    static void expectMark(const QImage &shown, const QRect &rectangle)
    {
        const QPoint middle = rectangle.center();
        for (const int x : { rectangle.left(), rectangle.right() })
            EXPECT_GT(shown.pixelColor(x, middle.y()).green(), 190) << "column " << x;
        for (const int x : { rectangle.left() - 1, rectangle.right() + 1 })
            EXPECT_LT(shown.pixelColor(x, middle.y()).green(), 65) << "column " << x;
        for (const int y : { rectangle.top(), rectangle.bottom() })
            EXPECT_GT(shown.pixelColor(middle.x(), y).green(), 190) << "row " << y;
        for (const int y : { rectangle.top() - 1, rectangle.bottom() + 1 })
            EXPECT_LT(shown.pixelColor(middle.x(), y).green(), 65) << "row " << y;
    }
};

TEST_P(RecordSwayScaleTest, EveryDevicePixelIsInItsPlace)
{
    startDesktop({ .size = size, .scale = GetParam() });
    Result result = recordMoving(marked(), { "--duration", "1" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_LE(differenceFromBars(lastFrame(size)), 3);
    expectMark(lastFrame(size), mark);

    const QRect region(11, 0, 160, 180); // with numbers, so that it moves, too
    result = recordMoving(marked(), { "--duration", "1", "--region", "11,0,160,180" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sizeOf(movie()), region.size());
    expectMark(lastFrame(region.size()), mark.translated(-region.topLeft()));
}

INSTANTIATE_TEST_SUITE_P(Scales, RecordSwayScaleTest, ::testing::Values(1, 1.5, 2));

/// The part of \a picture that is not of \a background, as far as lossy compression can be told from it.
QRect foreground(const QImage &picture, QRgb background)
{
    constexpr int clearly = 60;
    QRect part;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (std::abs(qGreen(picture.pixel(x, y)) - qGreen(background)) > clearly)
                part |= QRect(x, y, 1, 1);
    return part;
}

TEST_F(RecordSwayTest, ThePointerIsInThePictureOnceWhereverItGoes)
{
    startDesktop();
    constexpr QRgb grey = 0xff808080;
    ASSERT_TRUE(m_painter->show(testing::flat(size, QColor(grey))));
    const auto pointer = test::VirtualPointer::plugIn(size);
    ASSERT_TRUE(pointer);
    const auto shownAt = [&](QPoint place) {
        pointer->moveTo(place);
        QRect part;
        EXPECT_TRUE(test::waitUntil([&] {
            part = foreground(m_desktop->screen(), grey);
            return part.contains(place);
        }));
        EXPECT_LT(part.width(), 64);
        return part;
    };
    const auto expectAlike = [](const QRect &seen, const QRect &right) {
        EXPECT_NEAR(seen.left(), right.left(), 2);
        EXPECT_NEAR(seen.top(), right.top(), 2);
        EXPECT_NEAR(seen.right(), right.right(), 2);
        EXPECT_NEAR(seen.bottom(), right.bottom(), 2);
    };
    const QRect before = shownAt({ 300, 200 });
    const auto process = startVornic({ "record", "--ignore-low-space", "o.mp4" });
    QString seen;
    ASSERT_TRUE(waitForText(*process, "00:00:00", seen));
    letPass(std::chrono::seconds(1));
    const QRect after = shownAt({ 901, 503 });
    letPass(std::chrono::seconds(1));
    process->terminate();
    const Result result = finish(*process);
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    expectAlike(foreground(testing::decodedPicture(movie(), 0, size), grey), before);
    expectAlike(foreground(lastFrame(size), grey), after);
}

TEST_F(RecordSwayTest, AScreenThatStandsStillIsRecordedAgainAndAgain)
{
    startDesktop();
    ASSERT_TRUE(m_painter->show(test::knownPicture(size)));
    for (int i = 0; i < 3; ++i) {
        const Result result = record({ "--duration", "0.5", "--overwrite" });
        ASSERT_EQ(result.status, 0) << result.error.toStdString();
        EXPECT_LE(differenceFromBars(lastFrame(size)), 3);
    }
}

TEST_F(RecordSwayTest, AStillScreenIsRecordedAlsoWhereTheStreamBeginsLate)
{
    startDesktop();
    ASSERT_TRUE(m_painter->show(test::knownPicture(size)));
    ASSERT_EQ(record({ "--duration", "0.5" }).status, 0);
    // The session manager connects the program with the stream. The second one is told nothing of a still screen.
    const auto process
        = startVornic({ "record", "--ignore-low-space", "--overwrite", "--duration", "0.5", "o.mp4" });
    m_portal->setFrozen(test::ScreenCastPortal::Part::WirePlumber, true);
    letPass(std::chrono::seconds(2));
    EXPECT_EQ(process->state(), QProcess::Running);
    m_portal->setFrozen(test::ScreenCastPortal::Part::WirePlumber, false);
    const Result result = finish(*process);
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_LE(differenceFromBars(lastFrame(size)), 3);
}

TEST_F(RecordSwayTest, TheMonitorThatIsGrantedIsRecordedAlsoWhereItStandsStill)
{
    constexpr QSize second(1024, 768);
    m_desktop = test::SwaySession::start({ .size = size });
    ASSERT_TRUE(m_desktop);
    ASSERT_TRUE(m_desktop->addMonitor(second, { size.width(), 0 }));
    ASSERT_TRUE(m_desktop->command("output HEADLESS-2 bg #c08020 solid_color"));
    ASSERT_TRUE(test::waitUntil(
        [&] { return m_desktop->screen("HEADLESS-2").pixelColor(500, 400) == QColor(0xc0, 0x80, 0x20); }));
    m_portal = test::ScreenCastPortal::start(*m_desktop, Consent::Granted, "HEADLESS-2");
    ASSERT_TRUE(m_portal);
    for (int i = 0; i < 2; ++i) { // the second stream of a still screen gets no picture by itself
        const Result result = record({ "--duration", "0.5", "--overwrite" });
        ASSERT_EQ(result.status, 0) << result.error.toStdString();
        EXPECT_EQ(sizeOf(movie()), second);
        const QColor shown = lastFrame(second).pixelColor(500, 400);
        EXPECT_NEAR(shown.red(), 0xc0, 3);
        EXPECT_NEAR(shown.green(), 0x80, 3);
        EXPECT_NEAR(shown.blue(), 0x20, 3);
    }
    QFile settings(folder.filePath("config/kavlor/Vornic.conf"));
    ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
    EXPECT_TRUE(settings.readAll().contains("HEADLESS-2")) << "for the next start";
}

/// As by a key of the desktop that is bound to the command.
TEST_F(RecordSwayTest, ToggledTwiceItRecordsAMovie)
{
    startDesktop();
    const auto program = startVornic({ "--toggle" }); // there is none yet
    const auto spooled = [this] {
        QDirIterator files(folder.path(), { "vornicvideo.tmp" }, QDir::Files, QDirIterator::Subdirectories);
        return files.hasNext() && QFileInfo(files.next()).size() > 0;
    };
    ASSERT_TRUE(test::waitUntil(spooled));
    EXPECT_EQ(vornic({ "--toggle" }).status, 0);
    const QDir home(m_desktop->filePath("home"));
    EXPECT_TRUE(test::waitUntil([&] { return !home.entryList({ "*.mp4" }).isEmpty(); }));
    const QString movie = home.filePath(home.entryList({ "*.mp4" }).value(0));
    EXPECT_EQ(sizeOf(movie), size);
    EXPECT_EQ(vornic({ "--stop" }).status, 1) << "nothing records any more";
    signal(*program, SIGTERM);
    EXPECT_EQ(finish(*program).status, 0);
}

TEST_F(RecordSwayTest, AMonitorThatIsTurnedIsRecordedUpright)
{
    constexpr QSize small(800, 600); // which is not scaled, however it is turned
    for (const char *transform : { "90", "270", "flipped", "flipped-90" }) {
        startDesktop(
            { .size = small, .settings = { QStringLiteral("output HEADLESS-1 transform ") + transform } });
        const QSize seen = m_desktop->screen().size();
        const Result result = recordMoving(test::knownPicture(seen), { "--duration", "0.5" });
        ASSERT_EQ(result.status, 0) << result.error.toStdString();
        EXPECT_EQ(sizeOf(movie()), seen) << transform;
        EXPECT_LE(differenceFromBars(lastFrame(seen)), 3) << transform;
        EXPECT_NE(test::numberIn(lastFrame(seen)), 0) << transform;
        m_painter.reset();
        m_portal.reset();
        m_desktop.reset();
    }
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runSwayTests(argc, argv);
}
