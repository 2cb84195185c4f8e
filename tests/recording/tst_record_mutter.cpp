#include "program_fixture.h"
#include "support/mutter_monitor.h"
#include "support/mutter_session.h"
#include "support/screen_painter.h"
#include "support/test_pictures.h"

#include <QCoreApplication>
#include <QSettings>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>

namespace vornic {
namespace {

constexpr QSize size(1280, 720);
const QString tokenKey = QStringLiteral("com.kavlor.screenCastToken");

/// The built program on GNOME's Wayland desktop, whose user has agreed before: a question now would stand for ever.
class RecordMutterTest : public ProgramTest
{
protected:
    void startDesktop(const QImage &picture)
    {
        m_desktop = test::MutterSession::start({ .size = size });
        ASSERT_TRUE(m_desktop);
        m_monitor = test::MutterMonitor::attach();
        ASSERT_TRUE(m_monitor);
        m_painter = test::ScreenPainter::connect();
        ASSERT_TRUE(m_painter);
        m_window = m_painter->showWindow(picture, { 0, 0 });
        ASSERT_TRUE(test::waitUntil([&] { return m_monitor->screen() == picture; }));
        QSettings settings(settingsFile(), QSettings::IniFormat);
        settings.setValue(tokenKey, test::MutterSession::consentToken);
    }
    [[nodiscard]] QString settingsFile() const { return folder.filePath("config/kavlor/Vornic.conf"); }
    [[nodiscard]] QString token() const
    {
        return QSettings(settingsFile(), QSettings::IniFormat).value(tokenKey).toString();
    }

    /// Records while a small patch at \a patch changes: all of a monitor would be too much to draw without a GPU.
    Result recordMoving(QPoint patch, const QStringList &options)
    {
        const auto process = startVornic(QStringList { "record", "--overwrite", "--ignore-low-space" }
                                         + options + QStringList { "o.mp4" });
        EXPECT_TRUE(test::waitUntil(
            [&] {
                QImage grey(patchSize, patchSize, QImage::Format_RGB32);
                m_grey = (m_grey + 1) % 256;
                grey.fill(QColor(m_grey, m_grey, m_grey));
                m_painter->drawInWindow(m_window, grey, patch);
                process->waitForFinished(10);
                return process->state() == QProcess::NotRunning;
            },
            std::chrono::seconds(90),
            test::everyMillisecond));
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

    static constexpr int patchSize = 32;
    std::unique_ptr<test::MutterSession> m_desktop;
    std::unique_ptr<test::MutterMonitor> m_monitor;
    std::unique_ptr<test::ScreenPainter> m_painter;
    test::ScreenPainter::Window m_window = 0;
    int m_grey = 0;
};

TEST_F(RecordMutterTest, WhatMovesOnTheMonitorIsInTheMovie)
{
    startDesktop(test::knownPicture(size));
    const Result result = recordMoving({ 10, 10 }, { "--duration", "2" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sizeOf(movie()), size);
    EXPECT_LE(differenceFromBars(lastFrame(size)), 3);
    std::set<int> greys;
    const int count = frameCount();
    for (int frame = 0; frame < count; frame += std::max(1, count / 12))
        greys.insert(testing::decodedPicture(movie(), frame, size).pixelColor(26, 26).red());
    EXPECT_GE(greys.size(), 3U);
}

TEST_F(RecordMutterTest, ARegionIsExactToThePixel)
{
    const QRect region(211, 107, 64, 48);
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::green);
    for (int y = region.top(); y <= region.bottom(); ++y)
        for (int x = region.left(); x <= region.right(); ++x)
            picture.setPixelColor(x, y, Qt::white);
    startDesktop(picture);
    const Result result = recordMoving({ 600, 600 }, { "--duration", "1", "--region", "211,107,64,48" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sizeOf(movie()), region.size());
    const QImage shown = lastFrame(region.size());
    for (const QPoint corner : { QPoint(0, 0), QPoint(63, 0), QPoint(0, 47), QPoint(63, 47) })
        EXPECT_GE(shown.pixelColor(corner).red(), 250) << corner.x() << ',' << corner.y();
}

TEST_F(RecordMutterTest, ThePointerIsThereOnce)
{
    QImage white(size, QImage::Format_RGB32);
    white.fill(Qt::white);
    startDesktop(white);
    QImage shape(16, 16, QImage::Format_ARGB32_Premultiplied);
    shape.fill(Qt::blue);
    m_painter->setCursor(shape, { 8, 8 });
    m_monitor->moveTo({ 600, 300 });
    m_monitor->moveTo({ 640, 360 });
    const Result result = recordMoving({ 10, 10 }, { "--duration", "1.5" });
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    const QImage shown = lastFrame(size);
    QRect seen;
    int count = 0;
    for (int y = 100; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            if (shown.pixelColor(x, y).red() > 127)
                continue;
            seen |= QRect(x, y, 1, 1);
            ++count;
        }
    }
    EXPECT_EQ(seen, QRect(632, 352, 16, 16));
    EXPECT_EQ(count, 256);
}

TEST_F(RecordMutterTest, WhoHasAgreedOnceIsNotAskedAgain)
{
    startDesktop(test::knownPicture(size));
    for (int i = 0; i < 3; ++i) {
        const Result result = recordMoving({ 10, 10 }, { "--duration", "0.5" });
        ASSERT_EQ(result.status, 0) << result.error.toStdString();
        EXPECT_LE(differenceFromBars(lastFrame(size)), 3);
        ASSERT_FALSE(token().isEmpty());
    }
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return vornic::test::MutterSession::isInstalled() ? RUN_ALL_TESTS() : 77;
}
