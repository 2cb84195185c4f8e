#pragma once

#include "program_fixture.h"
#include "support/screen_cast_portal.h"
#include "support/sway_session.h"
#include "support/test_pictures.h"
#include "support/wayland_painter.h"

#include <QCoreApplication>
#include <QStandardPaths>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <vector>

namespace vornic {

/// The built program on a Wayland desktop of the test's own, with a portal that grants the monitor.
class RecordSwayTest : public ProgramTest
{
protected:
    static constexpr QSize size { 1280, 720 };

    using Consent = test::ScreenCastPortal::Consent;

    void startDesktop(const test::SwaySession::Options &options = { .size = size },
                      Consent consent = Consent::Granted)
    {
        m_desktop = test::SwaySession::start(options);
        ASSERT_TRUE(m_desktop);
        m_portal = test::ScreenCastPortal::start(*m_desktop, consent);
        ASSERT_TRUE(m_portal);
        m_painter = test::WaylandPainter::start();
        ASSERT_TRUE(m_painter);
    }

    QProcessEnvironment environment() const override
    {
        QProcessEnvironment variables = ProgramTest::environment();
        if (!m_knowsXServer)
            variables.remove("DISPLAY");
        return variables;
    }

    /// Shows numbered pictures until \a isSo, each as soon as the compositor has drawn the one before.
    [[nodiscard]] bool showUntil(const QImage &picture, const std::function<bool()> &isSo)
    {
        return test::waitUntil(
            [&] {
                const auto number = static_cast<int>(m_drawnAt.size());
                if (!m_painter->draw(test::numbered(picture, number)))
                    return true;
                m_drawnAt.push_back(std::chrono::steady_clock::now());
                return isSo();
            },
            std::chrono::seconds(60),
            test::everyMillisecond);
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

    /// What is written into each frame of a movie of the whole monitor.
    [[nodiscard]] std::vector<int> numbersInMovie() const
    {
        const QByteArray planes = testing::decodedPlanes(movie());
        const qsizetype frameBytes = qsizetype { size.width() } * size.height() * 3 / 2;
        std::vector<int> numbers;
        const auto *luma = reinterpret_cast<const uchar *>(planes.constData());
        for (const uchar *end = luma + planes.size(); end - luma >= frameBytes; luma += frameBytes)
            numbers.push_back(test::numberIn(
                QImage(luma, size.width(), size.height(), size.width(), QImage::Format_Grayscale8)));
        return numbers;
    }

    bool m_knowsXServer = false; ///< where the desktop has one
    std::unique_ptr<test::SwaySession> m_desktop;
    std::unique_ptr<test::ScreenCastPortal> m_portal;
    std::unique_ptr<test::WaylandPainter> m_painter;
    std::vector<std::chrono::steady_clock::time_point> m_drawnAt; ///< of each number
};

inline bool isSwayInstalled()
{
    return std::ranges::all_of(
        std::initializer_list<const char *> { "sway", "pipewire", "wireplumber" }, [](const char *program) {
            return !QStandardPaths::findExecutable(QLatin1StringView(program)).isEmpty();
        });
}

/// The exit status of a test program, which skips itself where there is no sway.
inline int runSwayTests(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return isSwayInstalled() ? RUN_ALL_TESTS() : 77;
}

} // namespace vornic
