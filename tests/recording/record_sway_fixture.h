#pragma once

#include "program_fixture.h"
#include "support/screen_cast_portal.h"
#include "support/sway_session.h"
#include "support/test_pictures.h"
#include "support/wayland_painter.h"

#include <QStandardPaths>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace vornic {

/// The built program on a Wayland desktop of the test's own, with a portal that grants the monitor.
class RecordSwayTest : public ProgramTest
{
protected:
    static constexpr QSize size { 1280, 720 };

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

inline bool isSwayInstalled()
{
    return std::ranges::all_of(
        std::initializer_list<const char *> { "sway", "pipewire", "wireplumber" }, [](const char *program) {
            return !QStandardPaths::findExecutable(QLatin1StringView(program)).isEmpty();
        });
}

} // namespace vornic
