#include "overlay/overlay_geometry.h"
#include "overlay_live_fixture.h"

#include <QTemporaryDir>

#include <array>

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
    [[nodiscard]] QRectF screen() const { return { QPointF(0, 0), QSizeF(display.size()) }; }

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

    /// Presses in the middle of a region, goes \a by (y up), and checks what is told and seen.
    void dragAndCheck(DragRegion region, QPoint by)
    {
        SCOPED_TRACE(testing::Message()
                     << "region " << static_cast<int>(region) << " by " << by.x() << ' ' << by.y());
        const QRectF bounds(QPointF(0, 0), current.size());
        const QPointF inView = region == DragRegion::Elsewhere
            ? QPointF(50, 60)
            : hotRegion(bounds, static_cast<int>(region))->boundingRect().center();
        const QPoint from = onDesktop(current.topLeft() + inView);
        const QRectF expected
            = draggedFrame(current, region, { by.x(), by.y() }, screen()).adjusted(8, 8, -8, -8);
        drag(from, from + QPoint(by.x(), -by.y()));
        const QString wanted = QStringLiteral("rect %1 %2 %3 %4")
                                   .arg(expected.x())
                                   .arg(expected.y())
                                   .arg(expected.width())
                                   .arg(expected.height());
        EXPECT_TRUE(eventually([&] { return lastTold("rect ") == wanted; }))
            << qPrintable(wanted) << ", not " << qPrintable(lastTold("rect "));
        current = expected.adjusted(-8, -8, 8, 8);
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

    void dragEverything()
    {
        using enum DragRegion;
        place({ 200, 150, 300, 240 });
        for (const DragRegion region :
             { TopLeft, Top, TopRight, Left, Right, BottomLeft, Bottom, BottomRight, Centre, Elsewhere })
            dragAndCheck(region, { 23, -17 });
        for (const DragRegion region :
             { TopLeft, Top, TopRight, Left, Right, BottomLeft, Bottom, BottomRight, Centre, Elsewhere })
            dragAndCheck(region, { -31, 29 });
    }

    /// As far as the mouse goes in each direction, and back inside out.
    void dragAtTheEdges()
    {
        using enum DragRegion;
        const std::array rows { std::pair(TopLeft, QPoint(-2000, 2000)),
                                std::pair(BottomRight, QPoint(2000, -2000)),
                                std::pair(Left, QPoint(-2000, 0)),
                                std::pair(Right, QPoint(2000, 0)),
                                std::pair(Top, QPoint(0, 2000)),
                                std::pair(Bottom, QPoint(0, -2000)),
                                std::pair(BottomLeft, QPoint(-2000, -2000)),
                                std::pair(TopRight, QPoint(2000, 2000)),
                                std::pair(Elsewhere, QPoint(2000, 2000)),
                                std::pair(Elsewhere, QPoint(-2000, -2000)),
                                std::pair(TopLeft, QPoint(2000, -2000)),
                                std::pair(BottomRight, QPoint(-2000, 2000)) };
        for (const auto &[region, by] : rows) {
            place({ 200, 150, 300, 240 });
            dragAndCheck(region, reachable(region, by));
        }
        // The snap at the right edge: 4 points beyond it nothing, one more and it is at its limit.
        place({ screen().width() - 299, 150, 300, 240 });
        dragAndCheck(Elsewhere, { 3, 0 });
        dragAndCheck(Elsewhere, { 1, 0 });
        dragAndCheck(Elsewhere, { -40, 0 });
        // Eight points beyond every edge at once.
        place(screen().adjusted(-8, -8, 8, 8));
        EXPECT_TRUE(eventually([&] { return isFrameAt(onDesktop(current)); }));
    }
    /// As far as the mouse can go from the region's middle: it stops at the edges of the desktop.
    [[nodiscard]] QPoint reachable(DragRegion region, QPoint by) const
    {
        const QRectF bounds(QPointF(0, 0), current.size());
        const QPointF inView = region == DragRegion::Elsewhere
            ? QPointF(50, 60)
            : hotRegion(bounds, static_cast<int>(region))->boundingRect().center();
        const QPoint from = onDesktop(current.topLeft() + inView);
        const QRect desktop(QPoint(0, 0), painter->screenSize());
        const QPoint to(qBound(desktop.left(), from.x() + by.x(), desktop.right()),
                        qBound(desktop.top(), from.y() - by.y(), desktop.bottom()));
        return { to.x() - from.x(), from.y() - to.y() };
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
    dragAtTheEdges();
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
    dragAtTheEdges();
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
        dragAtTheEdges();
        dragLogo();
    }
}

TEST_P(OverlayDrag, OnAMainDisplayOnTheRightAtAScaleFactor)
{
    start({ 1440, 700 }, { 640, 40, 800, 600 }, 1.5);
    dragEverything();
    dragAtTheEdges();
    dragLogo();
}

INSTANTIATE_TEST_SUITE_P(Desktops, OverlayDrag, testing::Bool(), compositingName);

} // namespace
} // namespace vornic
