#include "overlay/overlay_geometry.h"
#include "overlay_live_fixture.h"

#include <QTemporaryDir>

#include <map>
#include <utility>
#include <vector>

namespace vornic {
namespace {

const QColor lightGrey(204, 204, 204);
const QColor white(255, 255, 255);
const QColor background(40, 60, 80);

/// Drags the overlay with a mouse, on a main display that may stand anywhere.
class OverlayDrag : public OverlayLive
{
protected:
    void start(QSize desktop, const QRect &mainDisplay, double scaleFactor = 1)
    {
        display = mainDisplay;
        startDesktop(desktop);
        if (mainDisplay.size() != desktop)
            placeMonitors(desktop);
        showBackground(background);
        startStage(scaleFactor);
        stage->say("set recordRegion 1");
    }

    /// The main monitor where the test wants it, another one in what is left of it.
    void placeMonitors(QSize desktop)
    {
        const auto geometry = [](const QRect &place) {
            return QStringLiteral("%1/%1x%2/%2+%3+%4")
                .arg(place.width())
                .arg(place.height())
                .arg(place.x())
                .arg(place.y());
        };
        ASSERT_EQ(server->run({ "xrandr",
                                "--setmonitor",
                                "other",
                                geometry({ 0, 0, display.x(), desktop.height() }),
                                "screen" }),
                  0);
        ASSERT_EQ(server->run({ "xrandr", "--setmonitor", "*main", geometry(display), "none" }), 0);
    }

    [[nodiscard]] QPoint onDesktop(QPointF screenPoint) const
    {
        return QPoint(static_cast<int>(screenPoint.x()),
                      display.height() - 1 - static_cast<int>(screenPoint.y()))
            + display.topLeft();
    }
    [[nodiscard]] QRect onDesktop(const QRectF &frame) const
    {
        return QRect(QPoint(static_cast<int>(frame.x()),
                            display.height() - static_cast<int>(frame.y() + frame.height())),
                     frame.size().toSize())
            .translated(display.topLeft());
    }

    void place(const QRectF &frame)
    {
        current = frame;
        const QRectF rect = frame.adjusted(8, 8, -8, -8);
        stage->say(QStringLiteral("rect %1 %2 %3 %4")
                       .arg(rect.x())
                       .arg(rect.y())
                       .arg(rect.width())
                       .arg(rect.height()));
        stage->say("place");
    }

    /// In the middle of what is dragged, from the frame's lower left.
    [[nodiscard]] static QPointF placeOf(DragRegion region, const QSizeF &frame)
    {
        using enum DragRegion;
        const double middle = frame.width() / 2;
        const double right = frame.width() - 4;
        const double centre = frame.height() / 2;
        const double top = frame.height() - 4;
        const std::map<DragRegion, QPointF> places {
            { TopLeft, { 4, top } },   { Top, { middle, top } },      { TopRight, { right, top } },
            { Left, { 4, centre } },   { Right, { right, centre } },  { BottomLeft, { 4, 4 } },
            { Bottom, { middle, 4 } }, { BottomRight, { right, 4 } }, { Centre, { middle, centre } },
            { Elsewhere, { 50, 60 } },
        };
        return places.at(region);
    }

    /// Presses in the middle of a region, goes \a by (y up), and checks what is told and seen.
    void dragAndCheck(DragRegion region, QPoint by, const QRectF &expected)
    {
        SCOPED_TRACE(testing::Message()
                     << "region " << static_cast<int>(region) << " by " << by.x() << ' ' << by.y());
        const QPoint from = onDesktop(current.topLeft() + placeOf(region, current.size()));
        drag(from, from + QPoint(by.x(), -by.y()));
        const QString wanted = QStringLiteral("rect %1 %2 %3 %4")
                                   .arg(expected.x() + 8)
                                   .arg(expected.y() + 8)
                                   .arg(expected.width() - 16)
                                   .arg(expected.height() - 16);
        EXPECT_TRUE(eventually([&] { return lastTold("rect ") == wanted; }))
            << qPrintable(wanted) << ", not " << qPrintable(lastTold("rect "));
        current = expected;
        EXPECT_TRUE(eventually([&] { return isFrameAt(onDesktop(current)); }));
    }
    /// The last line of that kind that the stage has told by now.
    QString lastTold(const QString &begin)
    {
        stage->say("nothing");
        const QStringList lines = stage->told.filter(begin);
        return lines.isEmpty() ? QString() : lines.last();
    }

    /// The bars are there to the pixel, and the desktop beyond them; as far as the desktop reaches.
    [[nodiscard]] bool isFrameAt(const QRect &window) const
    {
        const QImage picture = painter->screen();
        const auto shows = [&](QPoint point, bool isBar) {
            if (!picture.rect().contains(point))
                return true;
            const QColor colour = picture.pixelColor(point);
            return (colour == lightGrey || colour == white) == isBar;
        };
        // Between a corner and the handle in the middle of the edge.
        const int x = window.x() + window.width() / 4;
        const int y = window.y() + window.height() / 4;
        for (const auto &[distance, isBar] :
             { std::pair(1, false), std::pair(2, true), std::pair(5, true), std::pair(6, false) }) {
            if (!shows({ window.left() + distance, y }, isBar)
                || !shows({ window.right() - distance, y }, isBar)
                || !shows({ x, window.top() + distance }, isBar)
                || !shows({ x, window.bottom() - distance }, isBar))
                return false;
        }
        return true;
    }

    /// Each of them in turn, by as much as no limit hinders.
    void dragEverything()
    {
        using enum DragRegion;
        struct Step {
            DragRegion region;
            QRectF grown; ///< what comes on top of x, y, width and height
        };
        place({ 200, 150, 300, 240 });
        for (const auto &[dx, dy] : { std::pair(23, -17), std::pair(-31, 29) }) {
            const double x = dx;
            const double y = dy;
            for (const auto &[region, grown] : { Step { TopLeft, { x, 0, -x, y } },
                                                 Step { Top, { 0, 0, 0, y } },
                                                 Step { TopRight, { 0, 0, x, y } },
                                                 Step { Left, { x, 0, -x, 0 } },
                                                 Step { Right, { 0, 0, x, 0 } },
                                                 Step { BottomLeft, { x, y, -x, -y } },
                                                 Step { Bottom, { 0, y, 0, -y } },
                                                 Step { BottomRight, { 0, y, x, -y } },
                                                 Step { Centre, { x, y, 0, 0 } },
                                                 Step { Elsewhere, { x, y, 0, 0 } } })
                dragAndCheck(region,
                             { dx, dy },
                             { current.topLeft() + grown.topLeft(), current.size() + grown.size() });
        }
    }

    struct FarDrag {
        DragRegion region;
        QPoint by;
        QRectF result;
    };

    /// From (200, 150, 300, 240) as far as the mouse goes on a desktop of 800 x 600, which the display fills:
    /// from 0 to 799 and, y up, from 0 to 599.
    [[nodiscard]] static std::vector<FarDrag> dragsToTheEdgesOfTheDesktop()
    {
        using enum DragRegion;
        // The mouse holds a handle 4 points within the frame, so left and bottom edge come to -4, the right
        // edge to 799 + 4 and the top edge to 599 + 4, without a limit.
        return {
            { TopLeft, { -204, 213 }, { 200 - 204, 150, 300 + 204, 240 + 213 } },
            { BottomRight, { 303, -154 }, { 200, 150 - 154, 300 + 303, 240 + 154 } },
            { Left, { -204, 0 }, { 200 - 204, 150, 300 + 204, 240 } },
            { Right, { 303, 0 }, { 200, 150, 300 + 303, 240 } },
            { Top, { 0, 213 }, { 200, 150, 300, 240 + 213 } },
            { Bottom, { 0, -154 }, { 200, 150 - 154, 300, 240 + 154 } },
            { BottomLeft, { -204, -154 }, { 200 - 204, 150 - 154, 300 + 204, 240 + 154 } },
            { TopRight, { 303, 213 }, { 200, 150, 300 + 303, 240 + 213 } },
            // The limits of a move: 8 points beyond the display.
            { Elsewhere, { 549, 389 }, { 808 - 300, 608 - 240, 300, 240 } },
            { Elsewhere, { -250, -210 }, { -8, -8, 300, 240 } },
            // Inside out: 76 points are left at the edge that stays.
            { TopLeft, { 595, -386 }, { 200 + 300 - 76, 150, 76, 76 } },
            { BottomRight, { -496, 445 }, { 200, 150 + 240 - 76, 76, 76 } },
        };
    }

    /// The same on a display of 800 x 600 with 640 more points of desktop on its left, 40 above and 60 below
    /// it: the limits are reached, but for the right one.
    [[nodiscard]] static std::vector<FarDrag> dragsBeyondTheDisplay()
    {
        using enum DragRegion;
        // Left and bottom edge stop at -8, the top edge at 608; the bottom edge then takes 4 off the top.
        return {
            { TopLeft, { -844, 253 }, { -8, 150, 300 + 200 + 8, 608 - 150 } },
            { BottomRight, { 303, -214 }, { 200, -8, 300 + 303, 240 + 150 + 8 - 4 } },
            { Left, { -844, 0 }, { -8, 150, 300 + 200 + 8, 240 } },
            { Right, { 303, 0 }, { 200, 150, 300 + 303, 240 } },
            { Top, { 0, 253 }, { 200, 150, 300, 608 - 150 } },
            { Bottom, { 0, -214 }, { 200, -8, 300, 240 + 150 + 8 - 4 } },
            { BottomLeft, { -844, -214 }, { -8, -8, 300 + 200 + 8, 240 + 150 + 8 - 4 } },
            { TopRight, { 303, 253 }, { 200, 150, 300 + 303, 608 - 150 } },
            { Elsewhere, { 549, 429 }, { 808 - 300, 608 - 240, 300, 240 } },
            { Elsewhere, { -890, -270 }, { -8, -8, 300, 240 } },
            { TopLeft, { 595, -446 }, { 200 + 300 - 76, 150, 76, 76 } },
            { BottomRight, { -1136, 485 }, { 200, 150 + 240 - 76, 76, 76 } },
        };
    }

    void dragAtTheEdges(const std::vector<FarDrag> &drags)
    {
        ASSERT_EQ(display.size(), QSize(800, 600));
        for (const auto &[region, by, result] : drags) {
            place({ 200, 150, 300, 240 });
            dragAndCheck(region, by, result);
        }
        // The snap at the right edge: 4 points beyond it nothing, one more and it is at its limit.
        place({ 501, 150, 300, 240 });
        dragAndCheck(DragRegion::Elsewhere, { 3, 0 }, { 804 - 300, 150, 300, 240 });
        dragAndCheck(DragRegion::Elsewhere, { 1, 0 }, { 808 - 300, 150, 300, 240 });
        dragAndCheck(DragRegion::Elsewhere, { -40, 0 }, { 808 - 300 - 40, 150, 300, 240 });
        // Eight points beyond every edge at once.
        place({ -8, -8, 816, 616 });
        EXPECT_TRUE(eventually([&] { return isFrameAt(onDesktop(current)); }));
    }

    void dragLogo()
    {
        QImage red(60, 40, QImage::Format_RGB32);
        red.fill(Qt::red);
        const QString file = folder.filePath("logo.png");
        ASSERT_TRUE(red.save(file));
        stage->say("picture " + file);
        stage->say("set logoContext.LogoType 1");
        stage->say("set logoContext.LogoValidate true");
        for (const int region : { 1, 0 }) {
            stage->say(QStringLiteral("set recordRegion %1").arg(region));
            place({ 192, 142, 316, 256 });
            stage->say("set logoContext.logoPositionX 100");
            stage->say("set logoContext.logoPositionY 90");
            const QPointF origin = region == 1 ? current.topLeft() : QPointF(-8, -8);
            const auto isLogoAt = [&](QPointF position) {
                const QRect there = onDesktop(QRectF(origin + position, QSizeF(60, 40)));
                const QImage picture = painter->screen(there.adjusted(-1, -1, 1, 1));
                return picture.pixelColor(1, 1) == QColor(Qt::red)
                    && picture.pixelColor(60, 40) == QColor(Qt::red)
                    && picture.pixelColor(0, 20) != QColor(Qt::red)
                    && picture.pixelColor(61, 20) != QColor(Qt::red)
                    && picture.pixelColor(30, 0) != QColor(Qt::red)
                    && picture.pixelColor(30, 41) != QColor(Qt::red);
            };
            ASSERT_TRUE(eventually([&] { return isLogoAt({ 100, 90 }); })) << region;
            const QPoint from = onDesktop(origin + QPointF(130, 110));
            drag(from, from + QPoint(37, -21));
            EXPECT_TRUE(eventually([&] { return lastTold("logo ") == "logo 137 111 60 40"; }));
            EXPECT_TRUE(eventually([&] { return isLogoAt({ 137, 111 }); })) << region;
        }
    }

    QTemporaryDir folder;
    QRect display;
    QRectF current;
};

TEST_P(OverlayDrag, EachHandleAndTheInside)
{
    start({ 800, 600 }, { 0, 0, 800, 600 });
    dragEverything();
}

TEST_P(OverlayDrag, AtTheEdgesOfTheScreen)
{
    start({ 800, 600 }, { 0, 0, 800, 600 });
    dragAtTheEdges(dragsToTheEdgesOfTheDesktop());
}

TEST_P(OverlayDrag, Logo)
{
    start({ 800, 600 }, { 0, 0, 800, 600 });
    dragLogo();
}

TEST_P(OverlayDrag, OnAMainDisplayOnTheRight)
{
    start({ 1440, 700 }, { 640, 40, 800, 600 });
    dragEverything();
    dragAtTheEdges(dragsBeyondTheDisplay());
    dragLogo();
}

TEST_P(OverlayDrag, AtScaleFactors)
{
    start({ 800, 600 }, { 0, 0, 800, 600 });
    for (const double factor : { 1.25, 1.5, 2.0 }) {
        SCOPED_TRACE(factor);
        stage.reset();
        startStage(factor);
        stage->say("set recordRegion 1");
        dragEverything();
        dragAtTheEdges(dragsToTheEdgesOfTheDesktop());
        dragLogo();
    }
}

TEST_P(OverlayDrag, OnAMainDisplayOnTheRightAtAScaleFactor)
{
    start({ 1440, 700 }, { 640, 40, 800, 600 }, 1.5);
    dragEverything();
    dragAtTheEdges(dragsBeyondTheDisplay());
    dragLogo();
}

INSTANTIATE_TEST_SUITE_P(Desktops, OverlayDrag, testing::Bool(), compositingName);

} // namespace
} // namespace vornic
