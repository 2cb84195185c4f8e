#include "support/built_program.h"
#include "support/line_program.h"
#include "support/mutter_monitor.h"
#include "support/mutter_session.h"
#include "support/screen_painter.h"
#include "support/wait_until.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace vornic {
namespace {

using test::MutterMonitor;
using test::MutterSession;
using test::waitUntil;

const QColor lightGrey(204, 204, 204);
const QColor windowColour(0x80, 0x60, 0x20);
constexpr int margin = 8;

/// The overlay on GNOME's Wayland desktop, which has no layer shell, above a window that is native there. Rectangles are
/// recorded ones in pixels of the monitor, y down.
class OverlayMutter : public ::testing::Test
{
protected:
    void start(QSize size = { 1280, 720 }, double scale = 1)
    {
        display = size;
        blur = scale > 1 ? 1 : 0;
        desktop = MutterSession::start({ .size = size, .scale = scale });
        ASSERT_TRUE(desktop);
        monitor = MutterMonitor::attach();
        ASSERT_TRUE(monitor);
        ASSERT_EQ(monitor->screen().size(), size);
        window = std::make_unique<LineProgram>(test::builtProgram("tests/overlay/plain_window"),
                                               QStringList { "Beneath", "400", "300", windowColour.name() },
                                               1,
                                               QStringLiteral("wayland"));
        ASSERT_TRUE(window->waitForLine("ready"));
        ASSERT_TRUE(waitUntil([&] {
            beneath = areaOf(windowColour);
            return beneath.size() == QSize(400, 300) * scale;
        }));
        environment.set("VORNIC_DISPLAY", QStringLiteral("portal"));
        stage
            = std::make_unique<LineProgram>(test::builtProgram("tests/overlay/overlay_stage"), QStringList());
        ASSERT_TRUE(stage->waitForLine("ready"));
        stage->say("set recordRegion 1");
    }
    /// The pixels that are of one colour, as one rectangle.
    [[nodiscard]] QRect areaOf(const QColor &colour) const
    {
        const QImage screen = monitor->screen();
        QRect area;
        for (int y = 0; y < screen.height(); ++y)
            for (int x = 0; x < screen.width(); ++x)
                if (screen.pixel(x, y) == colour.rgb())
                    area |= QRect(x, y, 1, 1);
        return area;
    }

    void place(const QRect &recorded)
    {
        stage->say(QStringLiteral("rect %1 %2 %3 %4")
                       .arg(recorded.x())
                       .arg(display.height() - recorded.y() - recorded.height())
                       .arg(recorded.width())
                       .arg(recorded.height()));
        stage->say("place");
    }
    /// 60 x 40 pixels of red, with the lower left at (100, 100) of the rectangle.
    void useLogo()
    {
        QImage red(60, 40, QImage::Format_RGB32);
        red.fill(Qt::red);
        ASSERT_TRUE(red.save(folder.filePath("logo.png")));
        stage->say("picture " + folder.filePath("logo.png"));
        for (const char *setting :
             { "LogoType 1", "logoPositionX 108", "logoPositionY 108", "LogoValidate true" })
            stage->say(QStringLiteral("set logoContext.") + setting);
    }
    /// Where the stage says that the rectangle is now; null before it has said so.
    [[nodiscard]] QRect toldRectangle() const
    {
        stage->say("nothing");
        const QStringList lines = stage->told.filter("rect ");
        const QStringList words = lines.isEmpty() ? QStringList() : lines.last().split(' ');
        const QSize size(words.value(3).toInt(), words.value(4).toInt());
        return { QPoint(words.value(1).toInt(), display.height() - words.value(2).toInt() - size.height()),
                 size };
    }
    /// The compositor draws faint shadows around windows of the X server.
    [[nodiscard]] static bool isLike(const QColor &a, const QColor &b)
    {
        return std::abs(a.red() - b.red()) <= 3 && std::abs(a.green() - b.green()) <= 3
            && std::abs(a.blue() - b.blue()) <= 3;
    }
    /// The bars of the frame stand where they are to, and what is around them is as it was.
    [[nodiscard]] bool isFrameAround(const QRect &recorded) const
    {
        const QImage screen = monitor->screen();
        const QRect outer = recorded.adjusted(-margin, -margin, margin, margin);
        const auto isBar = [&](int x, int y) {
            const QColor colour = screen.pixelColor(x, y);
            return isLike(colour, lightGrey) || isLike(colour, Qt::white);
        };
        const int x = outer.left() + outer.width() / 4;
        const int y = outer.top() + outer.height() / 4;
        for (int depth = 2 + blur; depth < 6 - blur; ++depth) {
            if (!isBar(outer.left() + depth, y) || !isBar(outer.right() - depth, y)
                || !isBar(x, outer.top() + depth) || !isBar(x, outer.bottom() - depth))
                return false;
        }
        return !isBar(outer.left() - 1, y) && !isBar(outer.right() + 1, y) && !isBar(x, outer.top() - 1)
            && !isBar(x, outer.bottom() + 1) && !isBar(outer.left() + margin, y)
            && !isBar(outer.right() - margin, y);
    }
    /// Moves the mouse there, above a window of the overlay. The X server loses a press that comes with the pointer.
    void hoverOver(QPoint pixel, int scale = 1)
    {
        const auto server = test::ScreenPainter::connect();
        ASSERT_TRUE(server);
        monitor->moveTo(pixel);
        EXPECT_TRUE(waitUntil(
            [&] { return server->pointerPosition() == QPoint(pixel.x() / scale, pixel.y() / scale); }));
    }
    /// Nothing lies on the window beneath there.
    [[nodiscard]] bool isOfOneColour(const QRect &area) const
    {
        QImage plain(area.size(), QImage::Format_RGB32);
        plain.fill(windowColour);
        return screenIn(area) == plain;
    }
    [[nodiscard]] QImage screenIn(const QRect &area) const { return monitor->screen().copy(area); }
    /// The window beneath tells of a press at that pixel of the monitor.
    [[nodiscard]] bool windowHears(QPoint pixel, double scale = 1) const
    {
        const QPointF inWindow = (QPointF(pixel - beneath.topLeft()) + QPointF(0.5, 0.5)) / scale;
        const QString line = window->waitFor([](const QString &told) { return told.startsWith("pressed"); });
        const QStringList words = line.split(' ');
        return std::abs(words.value(1).toDouble() - inWindow.x()) <= 1
            && std::abs(words.value(2).toDouble() - inWindow.y()) <= 1;
    }

    /// Of a click there, or of another: the compositor may show the overlay before it knows where that takes no press.
    [[nodiscard]] bool windowHearsClick(QPoint pixel)
    {
        const auto isHeard = [&] {
            monitor->click(pixel);
            return windowHears(pixel);
        };
        return isHeard() || isHeard();
    }

    test::ScopedEnvironment environment;
    QTemporaryDir folder;
    QSize display;
    QRect beneath; ///< pixels of the native window
    int blur
        = 0; ///< pixels at an edge that are of no one colour, because windows of the X server are enlarged
    std::unique_ptr<MutterSession> desktop;
    std::unique_ptr<MutterMonitor> monitor;
    std::unique_ptr<LineProgram> window;
    std::unique_ptr<LineProgram> stage;
};

TEST_F(OverlayMutter, TheFrameStandsAtItsPixelsAndIsDragged)
{
    ASSERT_NO_FATAL_FAILURE(start());
    QRect recorded = beneath.adjusted(51, 33, -71, -47);
    place(recorded);
    ASSERT_TRUE(waitUntil([&] { return isFrameAround(recorded); }));
    hoverOver(recorded.center());
    monitor->drag(recorded.center(), recorded.center() + QPoint(-37, 21));
    recorded.translate(-37, 21);
    EXPECT_TRUE(waitUntil([&] { return toldRectangle() == recorded; }));
    EXPECT_TRUE(waitUntil([&] { return isFrameAround(recorded); }));
    const QPoint corner = recorded.bottomRight() + QPoint(4, 4);
    monitor->drag(corner, corner + QPoint(40, 20));
    recorded.adjust(0, 0, 40, 20);
    EXPECT_TRUE(waitUntil([&] { return toldRectangle() == recorded; }));
    EXPECT_TRUE(waitUntil([&] { return isFrameAround(recorded); }));
}

TEST_F(OverlayMutter, RecordingNothingLiesInTheRectangleButTheLogo)
{
    ASSERT_NO_FATAL_FAILURE(start());
    const QRect recorded = beneath.adjusted(50, 30, -70, -40);
    const QImage before = screenIn(recorded);
    place(recorded);
    useLogo();
    ASSERT_TRUE(waitUntil([&] { return isFrameAround(recorded) && screenIn(recorded) != before; }));
    stage->say("recording 1");
    QImage withLogo = before;
    const QRect logo(100, recorded.height() - 140, 60, 40);
    for (int y = logo.top(); y <= logo.bottom(); ++y)
        for (int x = logo.left(); x <= logo.right(); ++x)
            withLogo.setPixel(x, y, QColor(Qt::red).rgb());
    EXPECT_TRUE(waitUntil([&] { return screenIn(recorded) == withLogo; }));
    EXPECT_TRUE(isFrameAround(recorded));
    stage->say("recording 0");
    EXPECT_TRUE(waitUntil([&] { return screenIn(recorded) != withLogo; })) << "tinted again";
    EXPECT_TRUE(waitUntil([&] { return isFrameAround(recorded); }));
}

TEST_F(OverlayMutter, RecordingTheWindowBeneathGetsTheClicks)
{
    ASSERT_NO_FATAL_FAILURE(start());
    const QRect recorded = beneath.adjusted(50, 30, -70, -40);
    place(recorded);
    useLogo();
    const QPoint beside = recorded.topLeft() + QPoint(40, 20);
    const QPoint onLogo = recorded.bottomLeft() + QPoint(130, -120);
    for (int i = 0; i < 3; ++i) {
        stage->say("recording 1");
        ASSERT_TRUE(waitUntil([&] { return monitor->screen().pixelColor(beside) == windowColour; }));
        for (const QPoint point : { beside, onLogo }) {
            EXPECT_TRUE(windowHearsClick(point)) << i;
        }
        // Idle the overlay has the mouse again.
        stage->say("recording 0");
        ASSERT_TRUE(waitUntil([&] { return monitor->screen().pixelColor(beside) != windowColour; }));
        const QRect now = toldRectangle();
        monitor->drag(beside, beside + QPoint(10, 0));
        EXPECT_TRUE(waitUntil([&] { return toldRectangle() == now.translated(10, 0); })) << i;
        place(recorded);
    }
    EXPECT_FALSE(window->tells("pressed", 0)) << "the overlay's own press";
}

TEST_F(OverlayMutter, OnTheFullDisplayOnlyTheLogoTakesTheMouse)
{
    ASSERT_NO_FATAL_FAILURE(start());
    stage->say("set recordRegion 0");
    useLogo();
    // The logo's place counts from the overlay's corner, 8 pixels beyond the display's.
    for (const QString &setting :
         { QStringLiteral("logoPositionX %1").arg(beneath.left() + 108),
           QStringLiteral("logoPositionY %1").arg(display.height() - beneath.bottom() - 1 + 108) })
        stage->say("set logoContext." + setting);
    stage->say("place");
    const QRect logo(beneath.left() + 100, beneath.bottom() + 1 - 140, 60, 40);
    ASSERT_TRUE(waitUntil([&] { return areaOf(Qt::red) == logo; }));
    const QPoint beside = beneath.topLeft() + QPoint(30, 30);
    EXPECT_TRUE(windowHearsClick(beside));
    monitor->drag(logo.center(), logo.center() + QPoint(50, -30));
    EXPECT_TRUE(waitUntil([&] { return areaOf(Qt::red) == logo.translated(50, -30); }));
    EXPECT_FALSE(window->tells("pressed", 0));
    stage->say("recording 1");
    const QPoint onLogo = logo.center() + QPoint(50, -30);
    EXPECT_TRUE(windowHearsClick(onLogo));
}

TEST_F(OverlayMutter, AtTwiceTheScaleTheFrameStandsAtItsPixels)
{
    ASSERT_NO_FATAL_FAILURE(start({ 1600, 960 }, 2));
    QRect recorded(beneath.topLeft() + QPoint(100, 60), QSize(400, 300));
    recorded.moveTopLeft({ recorded.left() / 2 * 2, recorded.top() / 2 * 2 });
    place(recorded);
    ASSERT_TRUE(waitUntil([&] { return isFrameAround(recorded); }));
    hoverOver(recorded.center(), 2);
    monitor->press();
    monitor->moveTo(recorded.center() + QPoint(10, 4));
    monitor->moveTo(recorded.center() + QPoint(40, 20));
    recorded.translate(40, 20);
    ASSERT_TRUE(waitUntil([&] { return isFrameAround(recorded); }));
    // The label that tells the size stands beneath the frame, in the middle.
    const QPoint label(recorded.center().x(), recorded.bottom() + margin + 2 * 6 + 4);
    EXPECT_TRUE(
        waitUntil([&] { return isLike(monitor->screen().pixelColor(label), QColor(0x20, 0x20, 0x20)); }));
    monitor->release();
    EXPECT_TRUE(waitUntil([&] { return toldRectangle() == recorded; }));
    stage->say("recording 1");
    EXPECT_TRUE(waitUntil([&] { return isOfOneColour(recorded) && isFrameAround(recorded); }));
    const QPoint inside = recorded.topLeft() + QPoint(50, 50);
    monitor->click(inside);
    EXPECT_TRUE(windowHears(inside, 2));
    // Where no window of the server can begin, the strips are narrower.
    stage->say("recording 0");
    recorded.translate(1, 1);
    place(recorded);
    stage->say("recording 1");
    EXPECT_TRUE(waitUntil([&] {
        return isOfOneColour(recorded) && !isOfOneColour(recorded.adjusted(-margin, 0, 0, 0))
            && !isOfOneColour(recorded.adjusted(0, 0, 0, margin));
    }));
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return vornic::test::MutterSession::isInstalled() ? RUN_ALL_TESTS() : 77;
}
