#include "program_fixture.h"
#include "support/screen_cast_portal.h"
#include "support/sway_session.h"
#include "support/test_pictures.h"
#include "support/wayland_painter.h"

#include <QStandardPaths>

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <set>

namespace vornic {
namespace {

using ::testing::HasSubstr;

constexpr QSize size(1280, 720);

/// The built program on a Wayland desktop of the test's own, with a portal that grants the monitor.
class RecordSwayTest : public ProgramTest
{
protected:
    void startDesktop(const test::SwaySession::Options &options = { .size = size })
    {
        m_desktop = test::SwaySession::start(options);
        ASSERT_TRUE(m_desktop);
        m_portal = test::ScreenCastPortal::start(*m_desktop);
        ASSERT_TRUE(m_portal);
        m_painter = test::WaylandPainter::start();
        ASSERT_TRUE(m_painter);
    }

    QProcessEnvironment environment() const override
    {
        QProcessEnvironment variables = ProgramTest::environment();
        variables.remove("DISPLAY");
        return variables;
    }

    /// \a picture with \a number written into it, in squares of 32 pixels that are black or white.
    static QImage numbered(QImage picture, int number)
    {
        for (int bit = 0; bit < numberBits; ++bit)
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 32; ++x)
                    picture.setPixel(bit * 32 + x, y, (number >> bit & 1) != 0 ? 0xffffffff : 0xff000000);
        return picture;
    }
    static int numberIn(const QImage &picture)
    {
        int number = 0;
        for (int bit = 0; bit < numberBits; ++bit)
            number |= picture.pixelColor(bit * 32 + 16, 16).red() > 127 ? 1 << bit : 0;
        return number;
    }

    /// Shows numbered pictures until \a isSo.
    [[nodiscard]] bool showUntil(const QImage &picture, const std::function<bool()> &isSo)
    {
        return test::waitUntil([&] { return !m_painter->show(numbered(picture, ++m_number)) || isSo(); },
                               std::chrono::seconds(60));
    }
    /// Records while numbered pictures are shown.
    Result recordMoving(const QImage &picture, const QStringList &options)
    {
        const auto process = startVornic(QStringList { "record", "--overwrite", "--ignore-low-space" }
                                         + options + QStringList { "o.mp4" });
        EXPECT_TRUE(showUntil(picture, [&] { return process->state() == QProcess::NotRunning; }));
        return finish(*process);
    }
    [[nodiscard]] int frameCount() const
    {
        return static_cast<int>(
            testing::numbersOf(testing::probe(movie()), "packets", "video", "pts").size());
    }
    [[nodiscard]] QImage lastFrame(QSize shown) const
    {
        return testing::decodedPicture(movie(), frameCount() - 1, shown);
    }
    /// The largest difference of a channel from the middle of a bar of the known picture.
    static int differenceFromBars(const QImage &shown)
    {
        int most = 0;
        for (const test::KnownPatch &patch : test::knownPatches(shown.size())) {
            const QColor middle = shown.pixelColor(patch.rectangle.center());
            const QColor right(patch.colour);
            most = std::max({ most,
                              std::abs(middle.red() - right.red()),
                              std::abs(middle.green() - right.green()),
                              std::abs(middle.blue() - right.blue()) });
        }
        return most;
    }

    static constexpr int numberBits = 12;
    std::unique_ptr<test::SwaySession> m_desktop;
    std::unique_ptr<test::ScreenCastPortal> m_portal;
    std::unique_ptr<test::WaylandPainter> m_painter;
    int m_number = 0;
};

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

bool isInstalled()
{
    return std::ranges::all_of(
        std::initializer_list<const char *> { "sway", "pipewire", "wireplumber" }, [](const char *program) {
            return !QStandardPaths::findExecutable(QLatin1StringView(program)).isEmpty();
        });
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return vornic::isInstalled() ? RUN_ALL_TESTS() : 77;
}
