#include "record_sway_fixture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <set>

namespace vornic {
namespace {

using ::testing::HasSubstr;

TEST_F(RecordSwayTest, WhatMovesOnTheMonitorIsInTheMovie)
{
    startDesktop();
    const Result result = recordMoving(test::knownPicture(size), { "--duration", "2" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_LE(differenceFromBars(lastFrame(size)), 3);
    std::vector<int> numbers;
    for (int frame = 0; frame < frameCount(); frame += 5)
        numbers.push_back(numberIn(testing::decodedPicture(movie(), frame, size)));
    EXPECT_TRUE(std::ranges::is_sorted(numbers));
    EXPECT_EQ(std::set(numbers.begin(), numbers.end()).size(), numbers.size());
    EXPECT_GE(numbers.size(), 3U);
}

TEST_F(RecordSwayTest, EveryScaleIsRecordedInDevicePixels)
{
    for (const double scale : { 1.5, 2.0 }) {
        startDesktop({ .size = size, .scale = scale });
        const Result result = recordMoving(test::knownPicture(size), { "--duration", "1" });
        ASSERT_EQ(result.status, 0) << result.error.toStdString();
        EXPECT_EQ(sizeOf(movie()), size) << scale;
        EXPECT_LE(differenceFromBars(lastFrame(size)), 3) << scale;
        m_painter.reset();
        m_portal.reset();
        m_desktop.reset();
    }
}

TEST_F(RecordSwayTest, ARegionIsExactToThePixel)
{
    startDesktop();
    // Every other pixel of a region has another colour, and none around it has.
    const QRect region(211, 107, 64, 48);
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::green);
    for (int y = region.top(); y <= region.bottom(); ++y)
        for (int x = region.left(); x <= region.right(); ++x)
            picture.setPixelColor(x, y, Qt::white);
    const Result result = recordMoving(picture, { "--duration", "1", "--region", "211,107,64,48" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    const QImage shown = lastFrame(region.size());
    for (const QPoint corner : { QPoint(0, 0), QPoint(63, 0), QPoint(0, 47), QPoint(63, 47) })
        EXPECT_GE(shown.pixelColor(corner).red(), 250) << corner.x() << ',' << corner.y();
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
        EXPECT_NE(numberIn(lastFrame(seen)), 0) << transform;
        m_painter.reset();
        m_portal.reset();
        m_desktop.reset();
    }
}

TEST_F(RecordSwayTest, WhenTheCompositorDiesWhatWasRecordedIsAMovie)
{
    startDesktop();
    const auto process = startVornic({ "record", "--ignore-low-space", "o.mp4" });
    QString seen;
    ASSERT_TRUE(showUntil(test::knownPicture(size), [&] {
        seen += QString::fromUtf8(process->readAllStandardError());
        process->waitForReadyRead(1);
        return seen.contains("00:00:00");
    }));
    m_desktop->kill();
    const Result result = finish(*process);
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_THAT((seen + result.error).toStdString(), HasSubstr("The display is gone"));
    EXPECT_EQ(sizeOf(movie()), size);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return vornic::isSwayInstalled() ? RUN_ALL_TESTS() : 77;
}
