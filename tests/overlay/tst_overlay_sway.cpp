#include "overlay/overlay_geometry.h"
#include "support/built_program.h"
#include "support/line_program.h"
#include "support/sway_session.h"
#include "support/virtual_pointer.h"
#include "support/wait_until.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace vornic {
namespace {

using test::SwaySession;
using test::VirtualPointer;
using test::waitUntil;

const QColor lightGrey(204, 204, 204);
const QColor background(QColor::fromRgb(SwaySession::background));
const QColor tinted(0x1c, 0x52, 0x74);
const QColor beneathColour(0x80, 0x60, 0x20);
const QColor mainColour(0x30, 0x60, 0x30);
/// Of the fake display, which is also the monitor's.
constexpr QSize display(1920, 1080);

/// The overlay on a Wayland desktop, with a mouse. Frames are in screen coordinates, y up; points on the desktop are
/// its device pixels, y down.
class OverlaySway : public ::testing::Test
{
protected:
    void start(double scale, const QString &platform = QStringLiteral("wayland"))
    {
        desktop = SwaySession::start({ .size = display, .scale = scale, .hasXwayland = platform == u"xcb" });
        ASSERT_TRUE(desktop);
        mouse = VirtualPointer::plugIn(display);
        ASSERT_TRUE(mouse);
        mouse->moveTo(aside);
        environment.set("VORNIC_DISPLAY", "fake");
        stage = std::make_unique<LineProgram>(
            test::builtProgram("tests/overlay/overlay_stage"), QStringList(), 1, platform);
        ASSERT_TRUE(stage->waitForLine("ready"));
        stage->say("set recordRegion 1");
    }

    void place(const QRectF &frame)
    {
        current = frame;
        stage->say("rect " + numbersOf(frame.adjusted(8, 8, -8, -8)));
        stage->say("place");
    }
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
    /// A window of another program, 1200 x 800 pixels at (120, 120).
    [[nodiscard]] std::unique_ptr<LineProgram> startBeneath(double scale) const
    {
        const auto logical
            = [scale](int pixels) { return QString::number(static_cast<int>(pixels / scale)); };
        const QStringList arguments { "Beneath", logical(1200), logical(800), beneathColour.name() };
        auto window = std::make_unique<LineProgram>(
            test::builtProgram("tests/overlay/plain_window"), arguments, 1, "wayland");
        EXPECT_TRUE(window->waitForLine("ready"));
        // It has painted, but the desktop need not have heard of it yet.
        const QString move
            = QStringLiteral("[title=\"Beneath\"] move absolute position %1 %1").arg(logical(120));
        EXPECT_TRUE(waitUntil([&] { return desktop->command(move); }));
        EXPECT_TRUE(waitUntil([&] { return isLike(desktop->screen().pixelColor(130, 130), beneathColour); }));
        return window;
    }

    /// A window of another program from which \a file can be dragged, about (100, 100).
    [[nodiscard]] std::unique_ptr<LineProgram> startSource(const QString &file) const
    {
        const QStringList arguments { "Source", "200", "200", beneathColour.name(), file };
        auto window = std::make_unique<LineProgram>(
            test::builtProgram("tests/overlay/plain_window"), arguments, 1, "wayland");
        EXPECT_TRUE(window->waitForLine("ready"));
        const QString move = QStringLiteral("[title=\"Source\"] move absolute position 40 40");
        EXPECT_TRUE(waitUntil([&] { return desktop->command(move); }));
        EXPECT_TRUE(waitUntil([&] { return isLike(desktop->screen().pixelColor(100, 100), beneathColour); }));
        return window;
    }

    [[nodiscard]] static QString numbersOf(const QRectF &rect)
    {
        return QStringLiteral("%1 %2 %3 %4").arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
    }
    [[nodiscard]] static QPoint onDesktop(QPointF screenPoint)
    {
        return { static_cast<int>(screenPoint.x()),
                 display.height() - 1 - static_cast<int>(screenPoint.y()) };
    }
    [[nodiscard]] static QRect onDesktop(const QRectF &frame)
    {
        return { QPoint(static_cast<int>(frame.x()), display.height() - static_cast<int>(frame.bottom())),
                 frame.size().toSize() };
    }
    /// Of the desktop, where the picture of the pointer hides nothing that is looked at.
    static constexpr QPoint aside { 5, 1070 };
    [[nodiscard]] QImage screenWithoutPointer() const
    {
        return desktop->screen().copy(0, 0, display.width(), 1000);
    }
    /// The last line of that kind that the stage has told by now.
    [[nodiscard]] QString lastTold(const QString &begin) const
    {
        stage->say("nothing");
        const QStringList lines = stage->told.filter(begin);
        return lines.isEmpty() ? QString() : lines.last();
    }

    /// What lies 0, 1, 2 ... pixels from each edge of \a frame towards its middle, beside the handles.
    [[nodiscard]] static std::array<std::vector<QColor>, 4> edges(const QImage &screen, const QRect &frame)
    {
        constexpr int deep = 8;
        const QPoint beside = frame.topLeft() + QPoint(frame.width() / 4, frame.height() / 4);
        std::array<std::vector<QColor>, 4> colours;
        for (int distance = -1; distance < deep; ++distance) {
            colours[0].push_back(screen.pixelColor(frame.left() + distance, beside.y()));
            colours[1].push_back(screen.pixelColor(frame.right() - distance, beside.y()));
            colours[2].push_back(screen.pixelColor(beside.x(), frame.top() + distance));
            colours[3].push_back(screen.pixelColor(beside.x(), frame.bottom() - distance));
        }
        return colours;
    }
    /// The frame is there to the pixel: a hairline half as bright, four pixels of bar, the tint.
    [[nodiscard]] bool isFrameAt(const QRect &frame, bool isTinted = true) const
    {
        const QImage screen = desktop->screen();
        const QColor half(0x10, 0x20, 0x30);
        const QColor inside = isTinted ? tinted : background;
        const std::vector<QColor> wanted { background, background, half,   lightGrey, lightGrey,
                                           lightGrey,  lightGrey,  inside, inside };
        for (const std::vector<QColor> &edge : edges(screen, frame)) {
            for (std::size_t at = 0; at < edge.size(); ++at) {
                if (!isLike(edge[at], wanted[at]))
                    return false;
            }
        }
        return true;
    }
    [[nodiscard]] static bool isLike(const QColor &a, const QColor &b)
    {
        return std::abs(a.red() - b.red()) <= 2 && std::abs(a.green() - b.green()) <= 2
            && std::abs(a.blue() - b.blue()) <= 2;
    }

    /// Presses at \a from of the frame, in pixels from its lower left, goes \a by (y up), and checks what is told and seen.
    void dragAndCheck(QPointF from, QPoint by, const QRectF &expected)
    {
        SCOPED_TRACE(testing::Message() << "from " << from.x() << ' ' << from.y());
        const QPoint pressed = onDesktop(current.topLeft() + from);
        mouse->drag(pressed, pressed + QPoint(by.x(), -by.y()));
        const QString wanted = "rect " + numbersOf(expected.adjusted(8, 8, -8, -8));
        ASSERT_TRUE(waitUntil([&] { return lastTold("rect ") == wanted; }))
            << qPrintable(wanted) << ", not " << qPrintable(lastTold("rect "));
        ASSERT_TRUE(waitUntil([&] { return isFrameAt(onDesktop(expected)); }));
        current = expected;
    }

    test::ScopedEnvironment environment;
    QTemporaryDir folder;
    std::unique_ptr<SwaySession> desktop;
    std::unique_ptr<VirtualPointer> mouse;
    std::unique_ptr<LineProgram> stage;
    QRectF current;
};

/// A second monitor, right of the first.
class OverlaySecondMonitor : public OverlaySway
{
protected:
    void SetUp() override
    {
        start(1);
        ASSERT_TRUE(desktop->addMonitor(size, { display.width(), 0 }));
        mouse = VirtualPointer::plugIn({ display.width() + size.width(), display.height() });
        ASSERT_TRUE(mouse);
        mouse->moveTo(aside);
        place(frame); // on the first
        ASSERT_TRUE(waitUntil([&] { return isFrameAt(onDesktop(frame)); }));
        secondIsChosen = QStringLiteral("monitor HEADLESS-2 %1 0 %2 %3")
                             .arg(display.width())
                             .arg(size.width())
                             .arg(size.height());
    }

    /// The frame's left bar, 60 pixels beneath its upper edge, on the second monitor.
    [[nodiscard]] static QPoint onBar(const QRectF &shown)
    {
        return { static_cast<int>(shown.x()) + 3, size.height() - static_cast<int>(shown.bottom()) + 60 };
    }
    [[nodiscard]] bool isOnSecond(const QRectF &shown) const
    {
        const QPoint bar = onBar(shown);
        return isLike(desktop->screen("HEADLESS-2").pixelColor(bar), lightGrey)
            && isLike(desktop->screen("HEADLESS-2").pixelColor(bar - QPoint(6, 0)), background);
    }
    [[nodiscard]] bool isNotOnFirst() const
    {
        const QRect shown = onDesktop(frame);
        return isLike(desktop->screen().pixelColor(shown.topLeft() + QPoint(3, 60)), background);
    }

    static constexpr QSize size { 1280, 800 };
    static constexpr QRectF frame { 101, 83, 617, 411 };
    QString secondIsChosen;
};

TEST_F(OverlaySecondMonitor, StandsOnTheMonitorThatIsRecorded)
{
    stage->say(secondIsChosen);
    EXPECT_TRUE(waitUntil([&] { return isOnSecond(frame) && isNotOnFirst(); }));
    const QPoint middle = QPoint(display.width(), 0) + onBar(frame) + QPoint(300, 100);
    mouse->drag(middle, middle + QPoint(51, -17));
    const QRectF moved = frame.translated(51, 17);
    const QString wanted = "rect " + numbersOf(moved.adjusted(8, 8, -8, -8));
    EXPECT_TRUE(waitUntil([&] { return lastTold("rect ") == wanted; })) << qPrintable(lastTold("rect "));
    EXPECT_TRUE(waitUntil([&] { return isOnSecond(moved); }));
}

TEST_F(OverlaySecondMonitor, GoesThereWhenItIsChosenAsTheRecordingBegins)
{
    stage->say("main 100 100 200 100");
    stage->say(secondIsChosen);
    stage->say("recording 1");
    EXPECT_TRUE(waitUntil([&] { return isOnSecond(frame) && isNotOnFirst(); }));
}

class OverlaySwayScaled : public OverlaySway, public ::testing::WithParamInterface<double>
{
};

TEST_P(OverlaySwayScaled, StandsAtItsPixels)
{
    start(GetParam());
    // Odd, so that no factor divides it.
    for (const QRectF &frame :
         { QRectF(101, 83, 817, 611), QRectF(1103, 469, 825, 619), QRectF(-8, -8, 301, 203) }) {
        SCOPED_TRACE(qPrintable(numbersOf(frame)));
        place(frame);
        if (QRect(QPoint(), display).contains(onDesktop(frame).adjusted(-1, -1, 1, 1))) {
            EXPECT_TRUE(waitUntil([&] { return isFrameAt(onDesktop(frame)); }));
        } else {
            const QRect held = onDesktop(frame);
            const QPoint onBar(held.left() < 0 ? held.right() - 3 : held.left() + 3, held.top() + 60);
            EXPECT_TRUE(waitUntil([&] { return desktop->screen().pixelColor(onBar) == lightGrey; }));
        }
    }
}

TEST_P(OverlaySwayScaled, EveryHandleAndTheInsideDragIt)
{
    start(GetParam());
    place({ 401, 301, 616, 516 });
    ASSERT_TRUE(waitUntil([&] { return isFrameAt(onDesktop(current)); }));
    dragAndCheck({ 612, 258 }, { 51, 17 }, { 401, 301, 667, 516 });   // right
    dragAndCheck({ 4, 258 }, { -33, 9 }, { 368, 301, 700, 516 });     // left
    dragAndCheck({ 350, 512 }, { 5, 41 }, { 368, 301, 700, 557 });    // top
    dragAndCheck({ 350, 4 }, { 7, -25 }, { 368, 276, 700, 582 });     // bottom
    dragAndCheck({ 4, 578 }, { 21, -13 }, { 389, 276, 679, 569 });    // upper left
    dragAndCheck({ 675, 565 }, { -19, 11 }, { 389, 276, 660, 580 });  // upper right
    dragAndCheck({ 4, 4 }, { 31, 23 }, { 420, 299, 629, 557 });       // lower left
    dragAndCheck({ 625, 4 }, { 15, -29 }, { 420, 270, 644, 586 });    // lower right
    dragAndCheck({ 322, 293 }, { 111, -57 }, { 531, 213, 644, 586 }); // the middle
    dragAndCheck({ 50, 60 }, { -77, 39 }, { 454, 252, 644, 586 });    // anywhere inside
}

TEST_P(OverlaySwayScaled, TheLogoIsDragged)
{
    start(GetParam());
    place({ 392, 292, 616, 516 });
    useLogo();
    const QPoint onLogo = onDesktop(QPointF(392 + 108 + 30, 292 + 108 + 20));
    const auto isRed
        = [&](QPoint point) { return isLike(desktop->screen().pixelColor(point), QColor(Qt::red)); };
    ASSERT_TRUE(waitUntil([&] { return isRed(onLogo); }));
    const QPoint by(120, -70);
    mouse->drag(onLogo, onLogo + by);
    EXPECT_TRUE(waitUntil([&] { return lastTold("logo ").startsWith("logo 228 178 "); }))
        << qPrintable(lastTold("logo "));
    mouse->moveTo(aside);
    EXPECT_TRUE(waitUntil([&] { return isRed(onLogo + by) && !isRed(onLogo); }));
    EXPECT_TRUE(isFrameAt(onDesktop(current))) << "only the logo has moved";
}

TEST_P(OverlaySwayScaled, WhileRecordingTheWindowBeneathGetsTheClicks)
{
    start(GetParam());
    const auto beneath = startBeneath(GetParam());
    place({ 142, 300, 700, 600 });
    useLogo();
    stage->say("recording 1");
    const QPoint inside(400, 400);
    const QPoint onLogo = onDesktop(QPointF(142 + 138, 300 + 128));
    const QPoint onBar = onDesktop(QPointF(142 + 200, 300 + 600 - 4));
    EXPECT_TRUE(isLike(desktop->screen().pixelColor(onLogo), QColor(Qt::red)));
    EXPECT_TRUE(isLike(desktop->screen().pixelColor(onBar), lightGrey));
    for (const QPoint point : { inside, onLogo, onBar }) {
        mouse->click(point);
        EXPECT_TRUE(beneath->waitForLine("released")) << point.x() << ' ' << point.y();
    }
    stage->say("recording 0");
    const auto toldBefore = beneath->told.size();
    mouse->drag(inside, inside + QPoint(20, 0));
    EXPECT_TRUE(waitUntil([&] { return lastTold("rect ") == "rect 170 308 684 584"; }))
        << qPrintable(lastTold("rect "));
    EXPECT_FALSE(beneath->tells("pressed", 0));
    EXPECT_EQ(beneath->told.size(), toldBefore) << "idle, the overlay takes them";
}

#ifdef VORNIC_X11 // whose server tells where windows are
TEST_P(OverlaySwayScaled, LeavesTheProgramsOwnWindowsToTheMouse)
{
    start(GetParam(), QStringLiteral("xcb"));
    place({ 142, 300, 900, 700 });
    stage->say("main 0 0 300 200");
    const auto logical = static_cast<int>(300 / GetParam());
    const QString move = QStringLiteral("[title=\"Stage\"] move absolute position %1 %1").arg(logical);
    ASSERT_TRUE(waitUntil([&] { return desktop->command(move); }));
    const QPoint onMain(310, 310);
    const auto shows = [&](QPoint point, const QColor &colour) {
        return waitUntil([&] { return isLike(desktop->screen().pixelColor(point), colour); });
    };
    EXPECT_TRUE(shows(onMain, mainColour)) << "not tinted";
    EXPECT_TRUE(shows({ 290, 290 }, tinted));
    mouse->click(onMain);
    EXPECT_TRUE(stage->waitForLine("main pressed"));
    mouse->moveTo(aside);
    stage->say("main");
    EXPECT_TRUE(shows(onMain, tinted)) << "the hole has gone with the window";
}
#endif

TEST_P(OverlaySwayScaled, NothingIsLeftWhenItIsOrderedOut)
{
    start(GetParam());
    place({ 401, 301, 616, 516 });
    ASSERT_TRUE(waitUntil([&] { return isFrameAt(onDesktop(current)); }));
    stage->say("set recordRegion 0");
    stage->say("place");
    QImage empty = screenWithoutPointer();
    empty.fill(SwaySession::background);
    EXPECT_TRUE(waitUntil([&] { return screenWithoutPointer() == empty; }));
}

TEST_F(OverlaySway, FollowsTheMonitorThroughSizesAndScales)
{
    start(1);
    place({ 101, 583, 401, 305 });
    ASSERT_TRUE(waitUntil([&] { return isFrameAt(onDesktop(current)); }));
    // Of sizes that 1.5 divides: the program that takes the picture scales what else there is.
    for (const char *setting : { "scale 1.5", "mode 1536x864", "scale 1", "mode 1920x1080" }) {
        ASSERT_TRUE(desktop->command(QStringLiteral("output HEADLESS-1 ") + setting));
        EXPECT_TRUE(waitUntil([&] { return isFrameAt(onDesktop(current)); })) << setting;
    }
    dragAndCheck({ 200, 100 }, { 31, -17 }, { 132, 566, 401, 305 });
}

TEST_F(OverlaySway, ThePointersShapeTellsWhatAPressWouldHold)
{
    start(1);
    place({ 401, 301, 616, 516 });
    ASSERT_TRUE(waitUntil([&] { return isFrameAt(onDesktop(current)); }));
    // An arrow points to the upper left: nothing of it is there.
    const auto reachesUpperLeft = [&](QPoint pointer) {
        const QImage part = desktop->screen().copy(QRect(pointer - QPoint(24, 24), QSize(22, 22)));
        QImage plain = part;
        plain.fill(part.pixel(0, 0));
        return part != plain;
    };
    const QPoint inside = onDesktop(QPointF(401 + 100, 301 + 100));
    mouse->moveTo(inside);
    EXPECT_TRUE(waitUntil([&] { return reachesUpperLeft(inside); })) << "arrows to all sides";
    stage->say("recording 1");
    mouse->moveTo(inside + QPoint(1, 0));
    EXPECT_TRUE(waitUntil([&] { return !reachesUpperLeft(inside + QPoint(1, 0)); })) << "the desktop's";
}

TEST_F(OverlaySway, APictureThatIsDroppedBecomesTheLogo)
{
    start(1.5);
    place({ 601, 301, 616, 516 });
    useLogo();
    const QString file = folder.filePath("dropped.png");
    QImage blue(50, 30, QImage::Format_RGB32);
    blue.fill(Qt::blue);
    ASSERT_TRUE(blue.save(file));
    const auto source = startSource(file);
    const auto drops = [&](QPoint point) {
        mouse->moveTo({ 100, 100 });
        mouse->press();
        mouse->moveTo({ 120, 110 });
        EXPECT_TRUE(source->waitForLine("drags"));
        mouse->moveTo(point - QPoint(3, 3));
        mouse->moveTo(point);
        stage->say("nothing");
        mouse->release();
        return source->waitFor([](const QString &line) { return line.startsWith("dropped "); });
    };
    // A desktop lets nothing be dropped before the overlay has read the names and said that it would take them.
    EXPECT_TRUE(waitUntil([&] { return drops({ 800, 500 }) == "dropped copy"; }));
    // Its middle is where it was dropped: 199 pixels from the left edge, 237 from the upper one.
    EXPECT_TRUE(waitUntil([&] { return lastTold("logo ") == "logo 174 264 50 30"; }))
        << qPrintable(lastTold("logo "));
    mouse->moveTo(aside);
    EXPECT_TRUE(waitUntil([&] { return isLike(desktop->screen().pixelColor(790, 490), QColor(Qt::blue)); }));
    stage->say("set logoContext.LogoType 0");
    EXPECT_EQ(drops({ 700, 600 }), "dropped nothing") << "a text takes no picture";
}

TEST_F(OverlaySway, TheProgramEndsWithTheCompositor)
{
    start(1);
    place({ 401, 301, 616, 516 });
    desktop->kill();
    EXPECT_TRUE(stage->hasEnded());
}

std::string percentOf(const testing::TestParamInfo<double> &info)
{
    return "Percent" + std::to_string(static_cast<int>(info.param * 100));
}

INSTANTIATE_TEST_SUITE_P(Scales, OverlaySwayScaled, testing::Values(1, 1.25, 1.5, 2), percentOf);

} // namespace
} // namespace vornic
