#include "support/built_program.h"
#include "support/line_program.h"
#include "support/screen_painter.h"
#include "support/test_pictures.h"
#include "support/wait_until.h"
#include "support/xvfb_server.h"

#include <QElapsedTimer>
#include <QRegularExpression>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <utility>

namespace vornic {
namespace {

/// A rectangle is chosen with mouse and keyboard on an X server of the test's own, whose background is noise.
class SelectionDesktop : public testing::Test
{
protected:
    void startDesktop(QSize size = { 800, 600 })
    {
        display = QRect(QPoint(), size);
        server = test::XvfbServer::start({ size, 24, {} });
        ASSERT_TRUE(server);
        painter = test::ScreenPainter::connect();
        ASSERT_TRUE(painter);
        openbox = server->startOpenbox();
        ASSERT_TRUE(openbox);
        server->xdotool({ "mousemove", "1", "1" });
        painter->setRootBackground(test::noisePicture({ 64, 64 }, 1));
        painter->sync();
    }
    void startStage(double scaleFactor = 1)
    {
        stage = std::make_unique<LineProgram>(
            test::builtProgram("tests/selection/selection_stage"), QStringList(), scaleFactor);
        ASSERT_TRUE(stage->waitForLine("ready"));
    }
    void start(QSize size = { 800, 600 }, double scaleFactor = 1)
    {
        startDesktop(size);
        startStage(scaleFactor);
    }
    /// Places the main monitor at \a main, and another one on the left of it.
    void placeMainDisplay(const QRect &main)
    {
        const auto geometry = [](const QRect &place) {
            return QStringLiteral("%1/%1x%2/%2+%3+%4")
                .arg(place.width())
                .arg(place.height())
                .arg(place.x())
                .arg(place.y());
        };
        const QString left = geometry({ 0, 0, main.x(), main.height() });
        ASSERT_EQ(server->run({ "xrandr", "--setmonitor", "other", left, "screen" }), 0);
        ASSERT_EQ(server->run({ "xrandr", "--setmonitor", "*main", geometry(main), "none" }), 0);
        display = main;
    }

    /// Begins with a rectangle in screen coordinates; returns once all but that is dark.
    void begin(const QRect &rectangle = { 300, 200, 200, 100 })
    {
        // A terminal that has just come is not drawn at once, and its frame later on a busy machine.
        QElapsedTimer same;
        ASSERT_TRUE(test::waitUntil([&] {
            if (QImage seen = painter->screen(); !same.isValid() || seen != before) {
                before = std::move(seen);
                same.start();
            }
            return same.hasExpired(500);
        }));
        stage->write(QStringLiteral("begin %1 %2 %3 %4")
                         .arg(rectangle.x())
                         .arg(rectangle.y())
                         .arg(rectangle.width())
                         .arg(rectangle.height()));
        const int fromTop = display.height() - rectangle.y() - rectangle.height();
        ASSERT_TRUE(test::waitUntil([&] {
            return isBright({ QPoint(rectangle.x(), fromTop), rectangle.size() });
        }));
    }

    [[nodiscard]] QColor pixel(QPoint onDesktop) const
    {
        return painter->screen(QRect(onDesktop, QSize(1, 1))).pixelColor(0, 0);
    }
    [[nodiscard]] bool isScreenAsBefore() const { return painter->screen() == before; }
    /// \a onDisplay, from the display's upper left, shows the desktop as it was, and a line around it does not.
    [[nodiscard]] bool isBright(const QRect &onDisplay) const
    {
        const QRect inside = onDisplay.translated(display.topLeft());
        const QRect around = inside.adjusted(-1, -1, 1, 1).intersected(display);
        const QImage now = painter->screen();
        if (now.copy(inside) != before.copy(inside))
            return false;
        for (int x = around.left(); x <= around.right(); ++x)
            for (const int y : { around.top(), around.bottom() })
                if (!inside.contains(x, y) && now.pixel(x, y) == before.pixel(x, y))
                    return false;
        for (int y = around.top(); y <= around.bottom(); ++y)
            for (const int x : { around.left(), around.right() })
                if (!inside.contains(x, y) && now.pixel(x, y) == before.pixel(x, y))
                    return false;
        return true;
    }

    static QStringList moves(const QList<QPoint> &points)
    {
        QStringList words;
        for (const QPoint point : points)
            words += { "mousemove", QString::number(point.x()), QString::number(point.y()) };
        return words;
    }
    void click(QPoint onDesktop, const QString &button = "1") const
    {
        server->xdotool(moves({ onDesktop }) + QStringList { "click", button });
    }
    /// Between pixels of the display.
    void drag(QPoint from, QPoint to) const
    {
        from += display.topLeft();
        to += display.topLeft();
        server->xdotool(moves({ from }) + QStringList { "mousedown", "1" } + moves({ (from + to) / 2, to })
                        + QStringList { "mouseup", "1" });
    }
    void keys(const QStringList &names) const { server->xdotool(QStringList { "key" } + names); }

    /// What a program prints on standard output.
    static QString output(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, arguments);
        process.waitForFinished();
        return QString::fromUtf8(process.readAllStandardOutput());
    }
    static int number(const QString &text, const QString &before)
    {
        return QRegularExpression(before + "\\s*(-?\\d+)").match(text).captured(1).toInt();
    }
    /// A terminal; its window's number.
    QString startTerminal()
    {
        terminal = server->startXterm("sleep 1000");
        EXPECT_TRUE(terminal);
        QString window;
        EXPECT_TRUE(test::waitUntil([&] {
            window = output("xdotool", { "search", "--onlyvisible", "--class", "xterm" }).trimmed();
            return !window.isEmpty() && output("xprop", { "-id", window }).contains("_NET_FRAME_EXTENTS");
        }));
        return window;
    }
    /// What the server and the window manager say of a window with its decoration.
    static QRect frameOf(const QString &window)
    {
        const QString inner = output("xwininfo", { "-id", window });
        const QStringList extents
            = output("xprop", { "-notype", "-id", window, "_NET_FRAME_EXTENTS" }).section('=', 1).split(',');
        const QRect client(number(inner, "Absolute upper-left X:"),
                           number(inner, "Absolute upper-left Y:"),
                           number(inner, "Width:"),
                           number(inner, "Height:"));
        return client.adjusted(-extents.value(0).toInt(),
                               -extents.value(2).toInt(),
                               extents.value(1).toInt(),
                               extents.value(3).toInt());
    }

    std::unique_ptr<test::XvfbServer> server;
    std::unique_ptr<test::ScreenPainter> painter;
    std::unique_ptr<test::ChildProcess> openbox;
    std::unique_ptr<test::ChildProcess> terminal;
    std::unique_ptr<LineProgram> stage;
    QRect display;
    QImage before; ///< the desktop when the choice began
};

TEST_F(SelectionDesktop, DragAndEnterTake)
{
    start();
    begin();
    drag({ 100, 150 }, { 399, 349 });
    EXPECT_TRUE(test::waitUntil([&] { return isBright({ 100, 150, 300, 200 }); }));
    keys({ "Return" });
    // 399 - 100 + 1, 349 - 150 + 1; 600 - 150 - 200 from the bottom.
    EXPECT_TRUE(stage->waitForLine("taken 100 250 300 200")) << qPrintable(stage->told.join('\n'));
    EXPECT_TRUE(test::waitUntil([&] { return isScreenAsBefore(); }));
}

TEST_F(SelectionDesktop, ClickOnWhatWasDrawnTakesIt)
{
    start();
    begin();
    drag({ 700, 500 }, { 601, 451 });
    click({ 650, 480 });
    // 60 rows at least, the last of them 500: from 441 on, 600 - 441 - 60 from the bottom.
    EXPECT_TRUE(stage->waitForLine("taken 601 99 100 60")) << qPrintable(stage->told.join('\n'));
}

TEST_F(SelectionDesktop, ClickTakesAWindowWithItsDecoration)
{
    start();
    const QRect frame = frameOf(startTerminal());
    ASSERT_GT(frame.width(), 100);
    begin();
    const QPoint onTitle(frame.center().x(), frame.y() + 2);
    server->xdotool(moves({ onTitle }));
    EXPECT_TRUE(test::waitUntil([&] { return pixel(frame.topLeft() - QPoint(1, 1)) == QColor(Qt::white); }));
    click(onTitle);
    const QString expected = QStringLiteral("taken %1 %2 %3 %4")
                                 .arg(frame.x())
                                 .arg(600 - frame.y() - frame.height())
                                 .arg(frame.width())
                                 .arg(frame.height());
    EXPECT_TRUE(stage->waitForLine(expected)) << qPrintable(expected + '\n' + stage->told.join('\n'));
}

TEST_F(SelectionDesktop, WindowIsCutToTheDisplay)
{
    start();
    const QString window = startTerminal();
    server->xdotool({ "windowmove", "--sync", window, "650", "500" });
    const QRect frame = frameOf(window);
    ASSERT_GT(frame.right(), 800);
    ASSERT_GT(frame.bottom(), 600);
    ASSERT_LT(frame.right() - 799, frame.width() - 60);
    begin();
    keys({ "Tab", "Return" });
    const QString expected
        = QStringLiteral("taken %1 0 %2 %3").arg(frame.x()).arg(800 - frame.x()).arg(600 - frame.y());
    EXPECT_TRUE(stage->waitForLine(expected)) << qPrintable(expected + '\n' + stage->told.join('\n'));
}

TEST_F(SelectionDesktop, MinimisedWindowIsNone)
{
    start();
    const QString window = startTerminal();
    const QRect frame = frameOf(window);
    server->xdotool({ "windowminimize", "--sync", window });
    ASSERT_TRUE(test::waitUntil([&] {
        return output("xwininfo", { "-id", window }).contains("IsUnMapped");
    }));
    begin({ 300, 200, 200, 100 });
    keys({ "Tab" });
    click(frame.topLeft() + QPoint(5, 5));
    keys({ "Right", "Return" });
    EXPECT_TRUE(stage->waitForLine("taken 301 200 200 100")) << qPrintable(stage->told.join('\n'));
}

TEST_F(SelectionDesktop, PanelIsNoWindow)
{
    start();
    const QString window = startTerminal();
    const QString type("_NET_WM_WINDOW_TYPE");
    output("xprop", { "-id", window, "-f", type, "32a", "-set", type, "_NET_WM_WINDOW_TYPE_DOCK" });
    begin();
    keys({ "Tab", "Right", "Return" });
    EXPECT_TRUE(stage->waitForLine("taken 301 200 200 100")) << qPrintable(stage->told.join('\n'));
}

TEST_F(SelectionDesktop, ShadowIsNoPartOfAWindow)
{
    start();
    const QString window = startTerminal();
    const QRect frame = frameOf(window);
    const QString shadow("_GTK_FRAME_EXTENTS");
    output("xprop", { "-id", window, "-f", shadow, "32c", "-set", shadow, "5,6,7,8" });
    begin();
    keys({ "Tab", "Return" });
    // 5 on the left, 6 on the right, 7 above, 8 below.
    const QString expected = QStringLiteral("taken %1 %2 %3 %4")
                                 .arg(frame.x() + 5)
                                 .arg(600 - frame.y() - frame.height() + 8)
                                 .arg(frame.width() - 11)
                                 .arg(frame.height() - 15);
    EXPECT_TRUE(stage->waitForLine(expected)) << qPrintable(expected + '\n' + stage->told.join('\n'));
}

TEST_F(SelectionDesktop, KeyboardAloneDoesIt)
{
    start();
    startTerminal(); // it has the focus
    begin({ 100, 100, 200, 150 });
    keys({ "Right", "ctrl+Down", "shift+Right", "shift+Down", "ctrl+shift+Right" });
    // One to the right and ten down; 1 + 10 wider; one row more at the bottom.
    EXPECT_TRUE(test::waitUntil([&] { return isBright({ 101, 360, 211, 151 }); })) << "600 - 100 - 150 + 10";
    keys({ "KP_Enter" });
    EXPECT_TRUE(stage->waitForLine("taken 101 89 211 151")) << qPrintable(stage->told.join('\n'));
}

TEST_F(SelectionDesktop, HomeTakesTheWholeDisplay)
{
    start();
    begin();
    keys({ "Home", "Return" });
    EXPECT_TRUE(stage->waitForLine("taken 0 0 800 600")) << qPrintable(stage->told.join('\n'));
}

TEST_F(SelectionDesktop, EscapeAndTheRightButtonCancel)
{
    start();
    begin();
    drag({ 100, 150 }, { 399, 349 });
    keys({ "Escape" });
    EXPECT_TRUE(stage->waitForLine("cancelled"));
    EXPECT_TRUE(test::waitUntil([&] { return isScreenAsBefore(); }));
    begin();
    click({ 400, 300 }, "3");
    EXPECT_TRUE(stage->waitForLine("cancelled"));
    EXPECT_TRUE(test::waitUntil([&] { return isScreenAsBefore(); }));
    EXPECT_EQ(stage->told.filter("taken").size(), 0);
    EXPECT_EQ(stage->told.filter("cancelled").size(), 2);
}

TEST_F(SelectionDesktop, IsExactAtScaleFactors)
{
    startDesktop({ 1603, 1201 });
    for (const double factor : { 1.25, 1.5, 2.0 }) {
        SCOPED_TRACE(factor);
        startStage(factor);
        for (const auto &[from, to] : { std::pair(QPoint(301, 152), QPoint(603, 351)),
                                        std::pair(QPoint(302, 153), QPoint(602, 350)),
                                        std::pair(QPoint(303, 151), QPoint(604, 349)) }) {
            begin({ 10, 10, 61, 60 });
            drag(from, to);
            const QRect drawn(from, to);
            EXPECT_TRUE(test::waitUntil([&] { return isBright(drawn); }));
            keys({ "Return" });
            const QString expected = QStringLiteral("taken %1 %2 %3 %4")
                                         .arg(drawn.x())
                                         .arg(1201 - drawn.y() - drawn.height())
                                         .arg(drawn.width())
                                         .arg(drawn.height());
            EXPECT_TRUE(stage->waitForLine(expected)) << qPrintable(expected + '\n' + stage->told.join('\n'));
        }
        begin();
        drag({ 0, 0 }, { 1602, 1200 });
        keys({ "Return" });
        EXPECT_TRUE(stage->waitForLine("taken 0 0 1603 1201")) << qPrintable(stage->told.join('\n'));
        stage.reset();
    }
}

TEST_F(SelectionDesktop, IsExactOnAMainDisplayOnTheRight)
{
    startDesktop({ 1440, 700 });
    placeMainDisplay({ 640, 40, 800, 600 });
    for (const double factor : { 1.0, 1.5 }) {
        SCOPED_TRACE(factor);
        startStage(factor);
        begin();
        const QRect left(0, 0, 630, 700);
        EXPECT_EQ(painter->screen(left), before.copy(left)) << "the other display is as it was";
        drag({ 101, 150 }, { 399, 349 });
        EXPECT_TRUE(test::waitUntil([&] { return isBright({ 101, 150, 299, 200 }); }));
        drag({ 300, 300 }, { -200, 900 }); // to the other display, and below
        keys({ "Return" });
        EXPECT_TRUE(stage->waitForLine("taken 0 0 301 300")) << qPrintable(stage->told.join('\n'));
        stage.reset();
    }
}

TEST_F(SelectionDesktop, WorksWithACompositingManager)
{
    startDesktop();
    const auto picom = server->startPicom();
    ASSERT_TRUE(picom);
    const QRect frame = frameOf(startTerminal()); // the root's background is not shown
    ASSERT_TRUE(test::waitUntil([&] { return pixel(frame.center()) == QColor(Qt::white); }));
    startStage();
    begin();
    drag({ 100, 150 }, { 399, 349 });
    EXPECT_TRUE(test::waitUntil([&] { return isBright({ 100, 150, 300, 200 }); }));
    keys({ "Return" });
    EXPECT_TRUE(stage->waitForLine("taken 100 250 300 200")) << qPrintable(stage->told.join('\n'));
}

TEST_F(SelectionDesktop, WorksWithoutAWindowManager)
{
    start();
    openbox.reset();
    painter->showWindow(test::smoothPicture({ 150, 120 }), { 50, 70 });
    painter->showWindow(test::smoothPicture({ 200, 100 }), { 100, 100 });
    painter->sync();
    begin();
    click({ 120, 120 }); // on both
    EXPECT_TRUE(stage->waitForLine("taken 100 400 200 100")) << "600 - 100 - 100";
    begin();
    click({ 60, 80 });
    EXPECT_TRUE(stage->waitForLine("taken 50 410 150 120")) << "600 - 70 - 120";
}

/// Another program that has the keyboard.
class KeyboardHolder
{
public:
    KeyboardHolder()
    {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        const auto cookie = xcb_grab_keyboard(
            m_connection, 0, root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        auto *reply = xcb_grab_keyboard_reply(m_connection, cookie, nullptr);
        EXPECT_TRUE(reply && reply->status == XCB_GRAB_STATUS_SUCCESS);
        std::free(reply);
    }
    ~KeyboardHolder() { xcb_disconnect(m_connection); }
    KeyboardHolder(const KeyboardHolder &) = delete;
    KeyboardHolder &operator=(const KeyboardHolder &) = delete;

private:
    xcb_connection_t *m_connection = xcb_connect(nullptr, nullptr);
};

TEST_F(SelectionDesktop, KeyboardIsTakenOnceAnotherProgramLetsGo)
{
    start();
    auto holder = std::make_unique<KeyboardHolder>();
    begin();
    keys({ "Home" });
    holder.reset();
    EXPECT_TRUE(test::waitUntil([&] {
        keys({ "Escape" });
        return stage->tells("cancelled", 50);
    }));
}

TEST_F(SelectionDesktop, KeyboardFollowsTheFocusWhenItCannotBeTaken)
{
    start();
    auto holder = std::make_unique<KeyboardHolder>();
    begin();
    const QString own = output("xdotool", { "search", "--name", "Select on screen" }).trimmed();
    EXPECT_TRUE(test::waitUntil([&] { return output("xdotool", { "getwindowfocus" }).trimmed() == own; }));
    holder.reset();
    keys({ "Escape" });
    EXPECT_TRUE(stage->waitForLine("cancelled"));
}

TEST_F(SelectionDesktop, DisplayOfAnotherSizeCancels)
{
    start();
    const QString mode = "small 25 640 656 720 800 480 481 484 500";
    server->run(QStringList { "xrandr", "--newmode" } + mode.split(u' '));
    server->run({ "xrandr", "--addmode", "screen", "small" });
    begin();
    ASSERT_EQ(server->run({ "xrandr", "--output", "screen", "--mode", "small" }), 0);
    EXPECT_TRUE(stage->waitForLine("cancelled"));
}

TEST_F(SelectionDesktop, LosingTheWindowCancels)
{
    start();
    begin();
    const QString own = output("xdotool", { "search", "--name", "Select on screen" }).trimmed();
    ASSERT_FALSE(own.isEmpty());
    server->xdotool({ "windowunmap", own });
    EXPECT_TRUE(stage->waitForLine("cancelled"));
}

TEST_F(SelectionDesktop, EndOfTheProgramCancels)
{
    start();
    begin();
    stage->write("quit");
    EXPECT_TRUE(stage->waitForLine("cancelled"));
    EXPECT_TRUE(test::waitUntil([&] { return isScreenAsBefore(); }));
}

} // namespace
} // namespace vornic
