#include "overlay_live_fixture.h"

#include <QRegularExpression>
#include <QTemporaryDir>

namespace vornic {
namespace {

const QColor lightGrey(204, 204, 204);
const QColor white(255, 255, 255);
const QColor background(40, 60, 80);
const QColor otherColour(200, 120, 40);
const QColor mainColour(0x30, 0x60, 0x30);
const QColor dialogColour(0x80, 0x30, 0x80);
const QColor tipColour(0xe0, 0xe0, 0x80);
const QColor barColour(0x20, 0x80, 0x80);

/// The overlay among other windows of a desktop of 800 x 600. It frames (100, 100, 400, 300), which is at
/// (100, 200) when y is down; its window begins 8 pixels beyond.
class OverlayDesktop : public OverlayLive
{
protected:
    void SetUp() override
    {
        startDesktop();
        showBackground(background);
        startStage();
        stage->say("set recordRegion 1");
        stage->say("rect 100 100 400 300");
    }

    [[nodiscard]] bool isBar(const QColor &colour) const { return colour == lightGrey || colour == white; }
    /// A point of the upper bar, beside the handles.
    static constexpr QPoint onBar { 200, 196 };
    /// A point inside.
    static constexpr QPoint inside { 200, 260 };

    /// What xwininfo says of the desktop's windows, from above.
    [[nodiscard]] static QStringList windowsFromAbove()
    {
        QProcess list;
        list.start("xwininfo", { "-root", "-children" });
        list.waitForFinished();
        return QString::fromUtf8(list.readAllStandardOutput())
            .split(u'\n')
            .filter(QRegularExpression("^ +0x"));
    }
    [[nodiscard]] static test::ScreenPainter::Window idOf(const QString &line)
    {
        return line.trimmed().section(u' ', 0, 0).toUInt(nullptr, 0);
    }
    [[nodiscard]] static test::ScreenPainter::Window windowWithName(const QString &name)
    {
        return idOf(windowsFromAbove().filter('"' + name + '"').value(0));
    }
    [[nodiscard]] static test::ScreenPainter::Window topWindow() { return idOf(windowsFromAbove().value(0)); }

    /// Whether the unmanaged window with that title is stacked above it, and not only seen through it.
    [[nodiscard]] static bool isAboveTheOverlay(const QString &title)
    {
        const QStringList windows = windowsFromAbove().filter(
            QRegularExpression(QStringLiteral("\"(%1|Recorded rectangle)\"").arg(title)));
        return windows.size() == 2 && windows.first().contains('"' + title + '"');
    }

    /// What the rectangle shows.
    [[nodiscard]] QImage recordedPixels() const { return painter->screen(recorded); }
    [[nodiscard]] bool isAll(const QImage &picture, const QColor &colour) const
    {
        QImage same(picture.size(), picture.format());
        same.fill(colour);
        return picture == same;
    }
    void useLogo()
    {
        QImage red(60, 40, QImage::Format_RGB32);
        red.fill(Qt::red);
        ASSERT_TRUE(red.save(folder.filePath("logo.png")));
        stage->say("picture " + folder.filePath("logo.png"));
        stage->say("set logoContext.LogoType 1");
        stage->say("set logoContext.logoPositionX 108");
        stage->say("set logoContext.logoPositionY 108");
        stage->say("set logoContext.LogoValidate true");
    }
    /// In the middle of that logo.
    static constexpr QPoint onLogo { 230, 380 };

    /// In the middle of the logo of 60 x 40 while the full display is recorded, as was told last.
    [[nodiscard]] QPoint onFullDisplay() const
    {
        const QStringList lines = stage->told.filter(QRegularExpression("^logo "));
        const QStringList words = lines.isEmpty() ? QStringList() : lines.last().split(u' ');
        return { words.value(1).toInt() - 8 + 30, 600 - (words.value(2).toInt() - 8) - 20 };
    }
    /// Of a window that may be decorated.
    [[nodiscard]] test::ScreenPainter::Window windowWithProperty(const QString &name) const
    {
        test::ScreenPainter::Window found = 0;
        EXPECT_TRUE(eventually([&] { return (found = nestedWindow(name)) != 0; }));
        return found;
    }
    [[nodiscard]] static test::ScreenPainter::Window nestedWindow(const QString &name)
    {
        QProcess list;
        list.start("xwininfo", { "-name", name });
        list.waitForFinished();
        const auto id = QRegularExpression("Window id: (0x[0-9a-f]+)")
                            .match(QString::fromUtf8(list.readAllStandardOutput()));
        return id.captured(1).toUInt(nullptr, 0);
    }

    [[nodiscard]] static QRect geometryOf(const QString &name)
    {
        const auto size = QRegularExpression("(\\d+)x(\\d+)\\+")
                              .match(windowsFromAbove().filter('"' + name + '"').value(0));
        return { 0, 0, size.captured(1).toInt(), size.captured(2).toInt() };
    }

    const QRect recorded { 100, 200, 400, 300 };
    QTemporaryDir folder;
};

TEST_P(OverlayDesktop, IdleIsTintedOnlyWithACompositingManager)
{
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    if (isComposited()) {
        // A compositing manager that has just begun shows less at first.
        const auto isTinted = [](QColor colour) {
            return std::abs(colour.red() - 35) <= 3 && std::abs(colour.green() - 79) <= 3
                && std::abs(colour.blue() - 103) <= 3;
        };
        EXPECT_TRUE(eventually([&] { return isTinted(pixel(inside)); }))
            << pixel(inside).name().toStdString();
    } else {
        EXPECT_TRUE(isAll(recordedPixels().copy(20, 20, 300, 200), background));
    }
}

TEST_P(OverlayDesktop, RecordingShowsTheDesktopAsItIs)
{
    stage->say("place");
    stage->say("recording 1");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    EXPECT_TRUE(eventually([&] { return isAll(recordedPixels(), background); }));
    // Neither does it when it is shown, moved and resized meanwhile.
    stage->say("place");
    EXPECT_TRUE(eventually([&] { return isAll(recordedPixels(), background); }));
}

TEST_P(OverlayDesktop, LogoShowsTheDesktopBehindItAtItsOpacity)
{
    useLogo();
    stage->say("set logoContext.LogoTransparency 128");
    stage->say("place");
    stage->say("recording 1");
    // Pure red at 128 of 255 over (40, 60, 80).
    const QColor blended((255 * 128 + 40 * 127) / 255, 60 * 127 / 255, 80 * 127 / 255);
    const auto isBlended = [&](QColor colour) {
        return std::abs(colour.red() - blended.red()) <= 2 && std::abs(colour.green() - blended.green()) <= 2
            && std::abs(colour.blue() - blended.blue()) <= 2;
    };
    const auto showsTheLogo = [&] {
        // 16 rows of it.
        const QImage logo = painter->screen(QRect(onLogo - QPoint(4, 8), QSize(8, 16)));
        int red = 0;
        int behind = 0;
        int both = 0;
        for (int y = 0; y < logo.height(); ++y) {
            red += logo.pixelColor(4, y) == QColor(Qt::red) ? 1 : 0;
            behind += logo.pixelColor(4, y) == background ? 1 : 0;
            both += isBlended(logo.pixelColor(4, y)) ? 1 : 0;
        }
        // Without a compositing manager half of the rows are left out instead.
        return isComposited() ? both == 16 : red == 8 && behind == 8;
    };
    EXPECT_TRUE(eventually(showsTheLogo)) << pixel(onLogo).name().toStdString();
    stage->say("set logoContext.LogoTransparency 255");
    EXPECT_TRUE(eventually([&] { return pixel(onLogo) == QColor(Qt::red); }));
}

TEST_P(OverlayDesktop, RecordingLetsEveryClickThrough)
{
    useLogo();
    auto other = startOther({ 60, 160, 500, 380 }, otherColour);
    stage->say("place");
    stage->say("recording 1");
    ASSERT_TRUE(eventually([&] { return pixel(onLogo) == QColor(Qt::red); }));
    EXPECT_TRUE(eventually([&] { return pixel(inside) == otherColour; }));
    for (const QPoint point : { inside, onLogo, onBar, QPoint(96, 196) }) {
        click(point);
        EXPECT_TRUE(other->tells("pressed", 10'000)) << point.x() << ' ' << point.y();
    }
    drag(inside, inside + QPoint(60, 60));
    EXPECT_TRUE(other->tells("dragged", 10'000));
    moveTo(onLogo);
    server->xdotool({ "click", "5" });
    EXPECT_TRUE(other->tells("wheel", 10'000));
    stage->say("nothing");
    EXPECT_TRUE(stage->told.filter("rect 100 100 400 300").size() == 1) << "and nothing was dragged";

    // Idle again, it takes the mouse.
    stage->say("recording 0");
    click(inside);
    EXPECT_TRUE(eventually([&] { return pixel(onBar) == white; })) << "and the keyboard focus";
    EXPECT_FALSE(other->tells("pressed", 0));
    drag(inside, inside + QPoint(10, -10));
    EXPECT_TRUE(stage->tells("rect 110 110 400 300", 10'000)
                || !stage->told.filter("rect 110 110").isEmpty());
}

TEST_P(OverlayDesktop, IsAboveWindowsPanelsAndMenus)
{
    stage->say("place");
    auto other = startOther({ 60, 160, 300, 300 }, otherColour);
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)); })) << "a window that came later";
    auto panel = startOther({ 60, 180, 300, 40 }, QColor(Qt::yellow), {}, "Panel");
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)); })) << "a panel";
    QImage menu(200, 200, QImage::Format_RGB32);
    menu.fill(Qt::cyan);
    const auto shown = painter->showWindow(menu, { 150, 150 });
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)); })) << "a menu";
    EXPECT_TRUE(eventually([&] { return pixel(QPoint(200, 180)) == QColor(Qt::cyan); }));
    painter->raiseWindow(shown);
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)); })) << "a menu that is raised again";
    painter->hideWindow(shown);
    // Clicking a window raises it, not above the overlay.
    click({ 70, 420 });
    EXPECT_TRUE(other->tells("pressed", 10'000));
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
}

TEST_P(OverlayDesktop, IsBelowTheMainWindow)
{
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    stage->say("main 150 150 200 150");
    EXPECT_TRUE(eventually([&] { return pixel(onBar) == mainColour; }));
    click(onBar);
    EXPECT_TRUE(stage->tells("main pressed", 10'000));
    // Shown again, it stays below.
    stage->say("place");
    EXPECT_TRUE(eventually([&] { return pixel(onBar) == mainColour; }));
    // Other windows come below both.
    auto other = startOther({ 320, 160, 300, 300 }, otherColour);
    EXPECT_TRUE(eventually([&] { return isBar(pixel({ 400, 196 })); }));
    EXPECT_EQ(pixel(onBar), mainColour);
    // A press on the overlay raises it not above.
    EXPECT_TRUE(eventually([&] {
        click({ 450, 450 }); // the window that came last may still be about to get the keyboard focus
        return pixel({ 400, 196 }) == white;
    }));
    EXPECT_EQ(pixel(onBar), mainColour);
    stage->say("main");
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
}

/// Window managers there are that keep every window above that they do not manage, or show it so.
TEST_P(OverlayDesktop, LetsTheMainWindowThroughWhereItCannotBeBelow)
{
    stage->say("place");
    stage->say("main 150 150 200 150");
    ASSERT_TRUE(eventually([&] { return pixel(onBar) == mainColour; }));
    const test::ScreenPainter::Window overlay = windowWithName("Recorded rectangle");
    ASSERT_NE(overlay, 0U);
    // Whatever the window manager still does about the main window lets the overlay go below it again.
    const auto holdsWhileRaised = [&](const std::function<bool()> &condition) {
        return eventually([&] {
            painter->raiseWindow(overlay);
            return condition() && topWindow() == overlay;
        });
    };
    // It is there where the main window is not.
    EXPECT_TRUE(holdsWhileRaised([&] { return pixel(onBar) == mainColour && isBar(pixel({ 400, 196 })); }));
    click(onBar);
    EXPECT_TRUE(stage->tells("main pressed", 10'000));
    stage->say("recording 1");
    EXPECT_TRUE(holdsWhileRaised([&] {
        return pixel(onBar) == mainColour && isBar(pixel({ 400, 196 }));
    })) << "a question asked meanwhile can be read";
    stage->say("recording 0");
    EXPECT_TRUE(eventually([&] { return pixel(onBar) == mainColour; }));
    stage->say("main 350 150 100 150");
    EXPECT_TRUE(eventually([&] { return pixel({ 400, 196 }) == mainColour && isBar(pixel(onBar)); }));
    drag(inside, inside + QPoint(0, 10));
    EXPECT_TRUE(stage->tells("rect 100 90 400 300", 10'000)) << "it takes the mouse there again";
    stage->say("main");
    EXPECT_TRUE(eventually([&] { return isBar(pixel({ 400, 206 })); }));
}

TEST_P(OverlayDesktop, IsBelowEveryWindowOfTheProgram)
{
    useLogo();
    stage->say("place");
    for (const char *recording : { "recording 0", "recording 1" }) {
        SCOPED_TRACE(recording);
        stage->say(recording);
        ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)) && pixel(onLogo) == QColor(Qt::red); }));
        stage->say("dialog 150 150 200 250");
        EXPECT_TRUE(
            eventually([&] { return pixel(onBar) == dialogColour && pixel(onLogo) == dialogColour; }));
        stage->say("tip 160 180 100 60");
        EXPECT_TRUE(eventually([&] { return pixel(onBar) == tipColour && isAboveTheOverlay("Tip"); }));
        EXPECT_EQ(pixel(onLogo), dialogColour);
        // One that only a menu of another program lies above stays seen where it is.
        QImage menu(30, 30, QImage::Format_RGB32);
        menu.fill(Qt::cyan);
        const auto shown = painter->showWindow(menu, { 300, 300 });
        EXPECT_TRUE(eventually([&] { return pixel({ 310, 310 }) == QColor(Qt::cyan); }));
        EXPECT_TRUE(eventually([&] { return pixel(onBar) == tipColour && pixel(onLogo) == dialogColour; }));
        painter->hideWindow(shown);
        stage->say("tip");
        stage->say("dialog");
    }
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)) && pixel(onLogo) == QColor(Qt::red); }));
}

/// The logo has no hole for a window that is not to be seen in the movie.
TEST_P(OverlayDesktop, RecordingShowsTheWholeLogoOverABuriedWindowOfTheProgram)
{
    useLogo();
    stage->say("place");
    stage->say("recording 1");
    stage->say("dialog 150 250 200 200");
    ASSERT_TRUE(eventually([&] { return pixel(onLogo) == dialogColour; }));
    auto other = startOther({ 110, 210, 350, 280 }, otherColour);
    EXPECT_TRUE(eventually([&] {
        return pixel(onLogo) == QColor(Qt::red) && pixel({ 200, 300 }) == otherColour;
    }));
}

TEST_P(OverlayDesktop, NeverGoesAboveAWindowThatLocksTheScreen)
{
    useLogo();
    stage->say("place");
    stage->say("bar 300 180 60 30");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)) && pixel({ 330, 196 }) == barColour; }));
    QImage lock(800, 600, QImage::Format_RGB32);
    lock.fill(Qt::black);
    const auto locker = painter->showWindow(lock, { 0, 0 });
    const auto showsTheLock = [&] { return isAll(painter->screen(), Qt::black); };
    ASSERT_TRUE(eventually(showsTheLock));
    // What would bring them to the top: another window, being shown anew, a recording that begins.
    auto other = startOther({ 60, 160, 300, 300 }, otherColour, {}, "Other", false);
    stage->say("place");
    stage->say("recording 1");
    stage->say("place");
    EXPECT_TRUE(eventually(showsTheLock));
    // A message of the locker's above it changes nothing.
    QImage message(100, 50, QImage::Format_RGB32);
    message.fill(Qt::cyan);
    const auto shown = painter->showWindow(message, { 180, 180 });
    ASSERT_TRUE(eventually([&] { return pixel({ 200, 196 }) == QColor(Qt::cyan); }));
    stage->say("place");
    // Asked of the server: on a busy machine, picom sometimes shows the message no longer, though it lies on top.
    QList<test::ScreenPainter::Window> order;
    for (const QString &line : windowsFromAbove())
        order += idOf(line);
    ASSERT_TRUE(order.contains(shown));
    EXPECT_LT(order.indexOf(shown), order.indexOf(locker));
    EXPECT_LT(order.indexOf(locker), order.indexOf(windowWithName("Recorded rectangle")));
    painter->hideWindow(shown);
    EXPECT_TRUE(eventually(showsTheLock));
    painter->hideWindow(locker);
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)) && pixel({ 330, 196 }) == barColour; }));
}

TEST_P(OverlayDesktop, AWindowKeptOnTopIsAboveFullScreenWindowsAndTheOverlay)
{
    stage->say("place");
    stage->say("bar 300 180 60 30");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)) && pixel({ 330, 196 }) == barColour; }));
    auto film = startOther({ 0, 0, 800, 600 }, otherColour, {}, "Film");
    const auto areAbove = [&] {
        return pixel({ 20, 20 }) == otherColour && isBar(pixel(onBar)) && pixel({ 330, 196 }) == barColour;
    };
    EXPECT_TRUE(eventually(areAbove));
    click({ 20, 20 });
    EXPECT_TRUE(film->tells("pressed", 10'000));
    EXPECT_TRUE(eventually([&] { return areAbove() && isAboveTheOverlay("Bar"); }))
        << "the window manager raised what was clicked";
    // Neither gives way to the other for ever.
    stage->say("place");
    EXPECT_TRUE(eventually(areAbove));
    QImage menu(200, 200, QImage::Format_RGB32);
    menu.fill(Qt::cyan);
    const auto shown = painter->showWindow(menu, { 150, 150 });
    EXPECT_TRUE(eventually([&] {
        return pixel({ 250, 170 }) == QColor(Qt::cyan) && isBar(pixel(onBar))
            && pixel({ 330, 196 }) == barColour;
    }));
    painter->hideWindow(shown);
    stage->say("bar");
    EXPECT_TRUE(eventually([&] { return isBar(pixel({ 330, 196 })); }));
}

/// Window managers resize in two steps, first the decoration, then the window in it.
TEST_P(OverlayDesktop, LetsThroughNoMoreThanTheMainWindow)
{
    stage->say("place");
    stage->say("main 150 150 400 350");
    ASSERT_TRUE(eventually([&] { return pixel({ 400, 196 }) == mainColour; }));
    // The test is the window manager from here on, one that has done the first step.
    openbox.reset();
    test::ScreenPainter::Window main = 0;
    ASSERT_TRUE(eventually([&] { return (main = windowWithName("Stage")) != 0; }));
    const auto told = [&](const QStringList &hints) {
        server->run(QStringList { "xprop", "-id", QString::number(main) } + hints);
    };
    told({ "-remove", "_NET_FRAME_EXTENTS" });
    QImage decoration(220, 170, QImage::Format_RGB32);
    decoration.fill(Qt::yellow);
    const auto frame = painter->showWindow(decoration, { 140, 140 });
    // Hidden meanwhile: the compositing manager now and then goes on showing one that is not.
    server->xdotool({ "windowunmap", "--sync", QString::number(main) });
    server->xdotool({ "windowreparent", QString::number(main), QString::number(frame) });
    server->xdotool({ "windowmove", QString::number(main), "10", "10" });
    server->xdotool({ "windowmap", "--sync", QString::number(main) });
    ASSERT_TRUE(eventually([&] { return pixel(onBar) == mainColour && pixel({ 400, 196 }) == background; }));
    server->xdotool({ "windowsize", QString::number(main), "200", "150" });
    EXPECT_TRUE(eventually([&] { return isBar(pixel({ 400, 196 })); }));
    EXPECT_EQ(pixel(onBar), mainColour);

    told({ "-f", "_NET_FRAME_EXTENTS", "32c", "-set", "_NET_FRAME_EXTENTS", "10, 100, 10, 10" });
    EXPECT_TRUE(eventually([&] { return pixel({ 400, 196 }) == background; }));
}

/// As window managers do that show it small elsewhere.
TEST_P(OverlayDesktop, IsWholeOverAMinimisedMainWindowThatIsStillMapped)
{
    stage->say("place");
    stage->say("main 150 150 200 150");
    ASSERT_TRUE(eventually([&] { return pixel(onBar) == mainColour; }));
    const QStringList minimised { "-set", "_NET_WM_STATE", "_NET_WM_STATE_HIDDEN" };
    EXPECT_TRUE(eventually([&] {
        // The window manager writes it as well, once it has been asked to keep the window on top.
        server->run(QStringList { "xprop", "-name", "Stage", "-f", "_NET_WM_STATE", "32a" } + minimised);
        return isBar(pixel(onBar));
    }));
}

TEST_P(OverlayDesktop, FullDisplayLeavesEveryClickButThoseOnTheLogoToTheDesktop)
{
    useLogo();
    stage->say("set recordRegion 0");
    auto other = startOther({ 300, 50, 300, 200 }, otherColour);
    stage->say("place");
    // In the window, which begins 8 pixels beyond the lower left of the display.
    const QPoint logo(100 + 30, 600 - 100 - 20);
    ASSERT_TRUE(eventually([&] { return pixel(logo) == QColor(Qt::red); }));
    click({ 400, 100 });
    EXPECT_TRUE(other->tells("pressed", 10'000));
    click({ 20, 300 });
    EXPECT_TRUE(backgroundWindow->tells("pressed", 10'000));
    for (const QPoint by : { QPoint(200, -330), QPoint(-200, 330) }) {
        const QPoint before = onFullDisplay();
        drag(before, before + by);
        EXPECT_TRUE(stage->tells("logo", 10'000));
        EXPECT_TRUE(eventually([&] {
            stage->say("nothing"); // reads what was told until now
            return pixel(onFullDisplay()) == QColor(Qt::red) && onFullDisplay() == before + by;
        }));
    }
    EXPECT_FALSE(other->tells("pressed", 0));
    click({ 350, 150 }); // where the logo has been
    EXPECT_TRUE(other->tells("pressed", 10'000));
}

TEST_P(OverlayDesktop, GoesAndComesWithTheMainWindow)
{
    stage->say("main 550 20 200 100");
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)) && pixel({ 650, 70 }) == mainColour; }));
    stage->say("minimise");
    EXPECT_TRUE(eventually([&] { return pixel(onBar) == background; }));
    click(onBar);
    EXPECT_TRUE(backgroundWindow->tells("pressed", 10'000));
    stage->say("rect 100 120 400 300");
    stage->say("restore");
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar - QPoint(0, 20))); })) << "where it is by now";
    stage->say("rect 100 100 400 300");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    // A recording's own minimising leaves it there.
    stage->say("start");
    ASSERT_TRUE(eventually([&] { return pixel({ 650, 70 }) == background; }));
    EXPECT_TRUE(isBar(pixel(onBar)));
    stage->say("recording 0");
    EXPECT_TRUE(eventually([&] { return pixel(onBar) == background; }));
    // One that begins while the window is minimised shows frame and logo.
    stage->say("recording 1");
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    stage->say("recording 0");
    stage->say("restore");
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)) && pixel({ 650, 70 }) == mainColour; }));
}

TEST_P(OverlayDesktop, KeepsTheMainWindowOnTopOnlyWhileItIsUpAndIdle)
{
    stage->say("main 550 20 200 100");
    const auto main = QString::number(windowWithProperty("Stage"));
    const auto staysOnTop = [&] {
        QProcess states;
        states.start("xprop", { "-id", main, "_NET_WM_STATE" });
        states.waitForFinished();
        return states.readAllStandardOutput().contains("_NET_WM_STATE_ABOVE");
    };
    ASSERT_TRUE(eventually([&] { return pixel({ 650, 70 }) == mainColour; }));
    EXPECT_FALSE(staysOnTop()) << "without the overlay";
    stage->say("place");
    EXPECT_TRUE(eventually(staysOnTop));
    stage->say("start");
    EXPECT_TRUE(eventually([&] { return !staysOnTop(); }));
    stage->say("restore");
    ASSERT_TRUE(eventually([&] { return pixel({ 650, 70 }) == mainColour; }));
    EXPECT_TRUE(eventually([&] { return !staysOnTop(); })) << "nor shown while recording";
    stage->say("recording 0");
    EXPECT_TRUE(eventually(staysOnTop));
    stage->say("set recordRegion 0");
    stage->say("place");
    EXPECT_TRUE(eventually([&] { return !staysOnTop(); }));
}

TEST_P(OverlayDesktop, StepsAsideUntilTheMainWindowIsTurnedTo)
{
    stage->say("main 550 20 200 100");
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)) && pixel({ 650, 70 }) == mainColour; }));
    stage->say("aside");
    EXPECT_TRUE(eventually([&] { return pixel(onBar) == background; }));
    auto opened = startOther({ 600, 60, 190, 300 }, otherColour);
    EXPECT_TRUE(eventually([&] { return pixel({ 650, 70 }) == otherColour; })) << "above the main window";
    stage->say("place");
    stage->say("nothing");
    EXPECT_EQ(pixel(onBar), background);
    click({ 570, 70 });
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)) && pixel({ 650, 70 }) == mainColour; }));
    // A recording forgets it.
    stage->say("aside");
    ASSERT_TRUE(eventually([&] { return pixel(onBar) == background; }));
    stage->say("recording 1");
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    stage->say("recording 0");
    stage->say("nothing");
    EXPECT_TRUE(isBar(pixel(onBar)));
}

TEST_P(OverlayDesktop, HugeRectanglesAreShownAsFarAsTheDesktopReaches)
{
    useLogo();
    stage->say("place");
    for (const char *rect : { "rect 0 0 1000000000 1000000000",
                              "rect 0 0 40000 40000",
                              "rect -1000000000 -1000000000 2000000000 2000000000",
                              "rect 0 0 inf inf",
                              "rect nan nan nan nan",
                              "rect -inf -inf inf inf" }) {
        SCOPED_TRACE(rect);
        stage->say(rect);
        stage->say("place");
        stage->say("recording 1");
        stage->say("recording 0");
        const QRect overlay = geometryOf("Recorded rectangle");
        EXPECT_LE(overlay.width(), 800 + 128);
        EXPECT_LE(overlay.height(), 600 + 128);
    }
    // Its lower left corner is seen, nothing has wrapped.
    stage->say("rect 100 100 40000 40000");
    EXPECT_TRUE(eventually([&] { return isBar(pixel({ 96, 200 })) && isBar(pixel({ 600, 503 })); }));
    EXPECT_FALSE(isBar(pixel({ 600, 200 })));
    stage->say("rect 100 100 400 300");
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
}

TEST_P(OverlayDesktop, FrameIsBrighterWithTheKeyboardFocus)
{
    auto other = startOther({ 600, 20, 150, 100 }, otherColour);
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return pixel(onBar) == lightGrey; })) << "shown without the focus";
    click(inside);
    EXPECT_TRUE(eventually([&] { return pixel(onBar) == white; }));
    click({ 660, 60 });
    EXPECT_TRUE(other->tells("pressed", 10'000));
    EXPECT_TRUE(eventually([&] { return pixel(onBar) == lightGrey; }));
}

TEST_P(OverlayDesktop, IsOnNoTaskBar)
{
    stage->say("main 150 150 200 150");
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return isBar(pixel({ 400, 196 })); }));
    QString clients;
    EXPECT_TRUE(eventually([&] {
        QProcess list;
        list.start("xprop", { "-root", "_NET_CLIENT_LIST" });
        list.waitForFinished();
        clients = QString::fromUtf8(list.readAllStandardOutput());
        return clients.contains("0x");
    }));
    EXPECT_EQ(clients.count("0x"), 1) << qPrintable(clients) << "the main window alone";
}

TEST_P(OverlayDesktop, CompositingManagersComeAndGo)
{
    useLogo();
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    for (int turn = 0; turn < 2; ++turn) {
        if (picom) {
            picom.reset();
            EXPECT_TRUE(eventually([&] { return pixel(inside) == background; })) << "not black, not tinted";
        } else {
            picom = server->startPicom();
            ASSERT_TRUE(picom);
            EXPECT_TRUE(eventually([&] { return pixel(inside).blue() > 95 && pixel(inside).red() < 40; }));
        }
        EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar)) && pixel(onLogo) == QColor(Qt::red); }));
        drag(inside, inside + QPoint(10, 0));
        EXPECT_TRUE(stage->tells("rect 110 100 400 300", 10'000));
        drag(inside, inside - QPoint(10, 0));
        EXPECT_TRUE(stage->tells("rect 100 100 400 300", 10'000));
    }
}

TEST_P(OverlayDesktop, DragsGoOnWhenACompositingManagerStarts)
{
    if (isComposited())
        GTEST_SKIP() << "it runs already";
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    press(inside);
    moveTo(inside + QPoint(10, 0));
    EXPECT_TRUE(stage->waitForLine("rect 110 100 400 300"));
    picom = server->startPicom();
    ASSERT_TRUE(picom);
    ASSERT_TRUE(eventually([&] { return pixel(inside + QPoint(30, 20)).blue() > 95; })) << "tinted";
    moveTo(inside + QPoint(20, 0));
    EXPECT_TRUE(stage->waitForLine("rect 120 100 400 300"));
    moveTo(inside + QPoint(20, -10));
    EXPECT_TRUE(stage->waitForLine("rect 120 110 400 300"));
    release();
    drag(inside, inside + QPoint(5, 0));
    EXPECT_TRUE(stage->waitForLine("rect 125 110 400 300")) << "the next one is another";
}

TEST_P(OverlayDesktop, TellsTheSizeBesideTheFrameWhileItIsDragged)
{
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    const QPoint corner(504, 504); // the handle at the lower right
    press(corner);
    moveTo(corner + QPoint(20, 10));
    const auto label = [] { return windowsFromAbove().filter("\"Size of the rectangle\"").value(0); };
    // The frame's window ends at 508 + 10; the label is below it.
    EXPECT_TRUE(eventually([&] {
        const QPoint there(310, 518 + 6 + 2);
        return pixel(there) == QColor(0x20, 0x20, 0x20);
    })) << qPrintable(label());
    EXPECT_TRUE(isAll(recordedPixels().copy(20, 20, 300, 200), pixel(inside))) << "nothing in the rectangle";
    release();
    EXPECT_TRUE(eventually([&] { return pixel({ 310, 526 }) == background; }));
}

TEST_P(OverlayDesktop, FullDisplayShowsNoFrame)
{
    useLogo();
    stage->say("set recordRegion 0");
    stage->say("place");
    // In the window, which begins 8 pixels beyond the lower left of the display.
    const QPoint logo(100 + 30, 600 - 100 - 20);
    EXPECT_TRUE(eventually([&] { return pixel(logo) == QColor(Qt::red); }));
    const QImage screen = painter->screen();
    EXPECT_EQ(screen.pixelColor(0, 0), screen.pixelColor(400, 100)) << "no handle";
    EXPECT_EQ(screen.pixelColor(0, 100), screen.pixelColor(400, 100)) << "no bar";
    EXPECT_EQ(screen.pixelColor(799, 599), screen.pixelColor(400, 100));
    stage->say("recording 1");
    EXPECT_TRUE(eventually([&] { return pixel({ 400, 100 }) == background; }));
    EXPECT_EQ(pixel(logo), QColor(Qt::red));
}

TEST_P(OverlayDesktop, FollowsTheSizeOfTheDisplay)
{
    useLogo();
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    const QString mode = QStringLiteral("small 25 640 656 752 800 480 490 492 525");
    server->run(QStringList { "xrandr", "--newmode" } + mode.split(u' '));
    server->run({ "xrandr", "--addmode", "screen", "small" });
    ASSERT_EQ(server->run({ "xrandr", "--output", "screen", "--mode", "small" }), 0);
    EXPECT_TRUE(eventually([&] { return isBar(pixel(onBar - QPoint(0, 120))); })) << "from the lower edge on";
    EXPECT_TRUE(eventually([&] { return !isBar(pixel(onBar)); }));
    drag(inside - QPoint(0, 60), inside - QPoint(-10, 60));
    EXPECT_TRUE(stage->waitForLine("rect 110 100 400 300"));
    stage->say("set recordRegion 0");
    stage->say("place");
    EXPECT_TRUE(eventually([&] { return pixel({ 130, 360 }) == QColor(Qt::red); }));
    ASSERT_EQ(server->run({ "xrandr", "--output", "screen", "--mode", "800x600" }), 0);
    EXPECT_TRUE(eventually([&] { return pixel({ 130, 480 }) == QColor(Qt::red); }));
}

/// A second program drags files in.
class OverlayDrop : public OverlayDesktop
{
protected:
    void SetUp() override
    {
        OverlayDesktop::SetUp();
        useLogo();
        QImage yellow(120, 80, QImage::Format_RGB32);
        yellow.fill(Qt::yellow);
        ASSERT_TRUE(yellow.save(folder.filePath("a picture.png")));
        QFile whole(folder.filePath("a picture.png"));
        QFile broken(folder.filePath("broken.png"));
        ASSERT_TRUE(whole.open(QIODevice::ReadOnly) && broken.open(QIODevice::WriteOnly));
        broken.write("no" + whole.readAll());
    }

    void startSource(const QString &file)
    {
        source = startOther({ 600, 20, 150, 100 }, otherColour, folder.filePath(file));
        stage->say("place");
        ASSERT_TRUE(eventually([&] { return isBar(pixel(onBar)); }));
    }
    /// Begins to drag the file.
    void takeFile()
    {
        press(inSource);
        moveTo(inSource + QPoint(10, 10));
        ASSERT_TRUE(source->waitForLine("drags"));
    }
    /// Drags it there, and waits for what the overlay says to that.
    void carryFile(QPoint to)
    {
        moveTo(to);
        ASSERT_TRUE(source->tells("answer", 10'000));
    }
    QString dropFile()
    {
        release();
        return source->waitFor([](const QString &line) { return line.startsWith("dropped"); });
    }
    QString dragFile(QPoint to)
    {
        takeFile();
        carryFile(to);
        return dropFile();
    }
    static constexpr QPoint inSource { 660, 60 };

    std::unique_ptr<LineProgram> source;
};

TEST_P(OverlayDrop, PictureBecomesTheLogoCentredThere)
{
    startSource("a picture.png");
    for (const QPoint to : { QPoint(350, 300), onLogo, QPoint(300, 400) }) {
        EXPECT_EQ(dragFile(to), "dropped copy");
        // The view's lower left is at (92, 508) of the desktop.
        const QString told = QStringLiteral("logo %1 %2 120 80").arg(to.x() - 92 - 60).arg(508 - to.y() - 40);
        EXPECT_TRUE(stage->waitForLine(told)) << qPrintable(stage->told.join(u'\n'));
        EXPECT_TRUE(eventually([&] {
            return pixel(to - QPoint(60, 40)) == QColor(Qt::yellow)
                && pixel(to + QPoint(59, 39)) == QColor(Qt::yellow)
                && pixel(to + QPoint(60, 0)) != QColor(Qt::yellow)
                && pixel(to - QPoint(0, 41)) != QColor(Qt::yellow);
        }));
    }
}

TEST_P(OverlayDrop, BrokenPictureIsRefused)
{
    startSource("broken.png");
    EXPECT_EQ(dragFile({ 350, 300 }), "dropped nothing");
    EXPECT_EQ(pixel(onLogo), QColor(Qt::red));
}

TEST_P(OverlayDrop, TextLogoRefuses)
{
    stage->say("set logoContext.LogoType 0");
    startSource("a picture.png");
    EXPECT_EQ(dragFile({ 350, 300 }), "dropped nothing");
    EXPECT_EQ(dragFile({ 150, 300 }), "dropped nothing") << "nor the second time";
}

TEST_P(OverlayDrop, DragThatOnlyPassesIsForgotten)
{
    startSource("a picture.png");
    takeFile();
    for (const QPoint to : { QPoint(400, 300), QPoint(380, 300), QPoint(700, 560) })
        carryFile(to); // the last is over the background
    EXPECT_EQ(dropFile(), "dropped nothing");
    EXPECT_EQ(pixel(onLogo), QColor(Qt::red));
    EXPECT_EQ(dragFile({ 350, 300 }), "dropped copy");
}

TEST_P(OverlayDrop, FullDisplayTakesAPictureAnywhere)
{
    stage->say("set recordRegion 0");
    source = startOther({ 600, 20, 150, 100 }, otherColour, folder.filePath("a picture.png"));
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return pixel({ 130, 480 }) == QColor(Qt::red); }));
    for (const QPoint to : { QPoint(350, 300), QPoint(300, 150) }) {
        takeFile();
        EXPECT_TRUE(eventually([&] {
            moveTo(to + QPoint(9, 9));
            moveTo(to + QPoint(8, 8));
            return source->tells("answer 1", 200);
        }));
        // The source tells no movement while it waits for an answer.
        while (source->tells("answer", 300))
            continue;
        carryFile(to);
        EXPECT_EQ(dropFile(), "dropped copy");
        const QString told = QStringLiteral("logo %1 %2 120 80").arg(to.x() + 8 - 60).arg(608 - to.y() - 40);
        EXPECT_TRUE(stage->waitForLine(told)) << qPrintable(stage->told.join(u'\n'));
        EXPECT_TRUE(eventually([&] {
            click({ 20, 300 });
            return backgroundWindow->tells("pressed", 500);
        })) << "then the desktop has the mouse again";
    }
}

/// What is no picture may be dragged on to the windows beneath.
TEST_P(OverlayDrop, FullDisplayLeavesOtherDragsToTheDesktop)
{
    stage->say("set recordRegion 0");
    QFile text(folder.filePath("text.txt"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no picture");
    text.close();
    source = startOther({ 600, 20, 150, 100 }, otherColour, folder.filePath("text.txt"));
    auto target = startOther({ 250, 250, 200, 200 }, QColor(Qt::green), {}, "Target");
    stage->say("place");
    ASSERT_TRUE(eventually([&] { return pixel({ 130, 480 }) == QColor(Qt::red); }));
    takeFile();
    // The overlay comes into its way, says no, and goes.
    for (const char *answer : { "answer 0", "answer 1" })
        EXPECT_TRUE(eventually([&] {
            moveTo({ 352, 300 });
            moveTo({ 350, 300 });
            return source->tells(answer, 500);
        })) << answer;
    EXPECT_TRUE(target->tells("entered", 10'000));
    // The source tells no movement while it waits for an answer.
    while (source->tells("answer", 300))
        continue;
    release();
    EXPECT_TRUE(target->tells("taken", 10'000));
}

TEST_P(OverlayDrop, IsCentredAtAScaleFactorToo)
{
    stage.reset();
    startStage(1.25);
    stage->say("set recordRegion 1");
    stage->say("rect 100 100 400 300");
    useLogo();
    startSource("a picture.png");
    for (const QPoint to : { QPoint(351, 303), QPoint(302, 399) }) {
        EXPECT_EQ(dragFile(to), "dropped copy");
        const QString told = QStringLiteral("logo %1 %2 120 80").arg(to.x() - 92 - 60).arg(508 - to.y() - 40);
        EXPECT_TRUE(stage->waitForLine(told)) << qPrintable(stage->told.join(u'\n'));
    }
}

INSTANTIATE_TEST_SUITE_P(Desktops, OverlayDesktop, testing::Bool(), compositingName);
INSTANTIATE_TEST_SUITE_P(Desktops, OverlayDrop, testing::Bool(), compositingName);

} // namespace
} // namespace vornic
