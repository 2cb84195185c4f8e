#pragma once

#include "support/built_program.h"
#include "support/line_program.h"
#include "support/screen_painter.h"
#include "support/test_pictures.h"
#include "support/wait_until.h"
#include "support/xvfb_server.h"

#include <QProcess>
#include <QRectF>
#include <QStringList>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace vornic {

/// The overlay on an X server of the test's own, with a window manager, and with a compositing manager or
/// not.
class OverlayLive : public ::testing::TestWithParam<bool>
{
protected:
    static bool isComposited() { return GetParam(); }

    void startDesktop(QSize size = { 800, 600 }, const QStringList &arguments = {})
    {
        server = test::XvfbServer::start({ size, 24, arguments });
        ASSERT_TRUE(server);
        painter = test::ScreenPainter::connect();
        ASSERT_TRUE(painter);
        openbox = server->startOpenbox();
        ASSERT_TRUE(openbox);
        if (isComposited()) {
            picom = server->startPicom();
            ASSERT_TRUE(picom);
        }
        server->xdotool({ "mousemove", "1", "1" });
    }
    void startStage(double scaleFactor = 1)
    {
        stage = std::make_unique<LineProgram>(
            test::builtProgram("tests/overlay/overlay_stage"), QStringList(), scaleFactor);
        ASSERT_TRUE(stage->waitForLine("ready"));
    }
    /// Another program's window, there and visible when this returns.
    std::unique_ptr<LineProgram> startOther(const QRect &place,
                                            const QColor &colour,
                                            const QString &file = {},
                                            const QString &title = "Other",
                                            bool isToBeSeen = true)
    {
        const QColor before = pixel(place.center());
        auto other = std::make_unique<LineProgram>(test::builtProgram("tests/overlay/drag_source"),
                                                   QStringList { title,
                                                                 QString::number(place.x()),
                                                                 QString::number(place.y()),
                                                                 QString::number(place.width()),
                                                                 QString::number(place.height()),
                                                                 colour.name(),
                                                                 file });
        EXPECT_TRUE(other->waitForLine("ready"));
        // The overlay may lie over it.
        if (isToBeSeen) {
            EXPECT_TRUE(eventually([&] { return pixel(place.center()) != before; }));
        }
        return other;
    }
    /// A window of one colour, which repaints itself, beneath everything.
    void showBackground(const QColor &colour)
    {
        backgroundWindow
            = startOther({ { 0, 0 }, painter->screenSize() }, colour, {}, QStringLiteral("Background"));
        ASSERT_TRUE(eventually([&] { return pixel({ 5, 5 }) == colour; }));
    }

    static bool eventually(const std::function<bool()> &condition) { return test::waitUntil(condition); }
    [[nodiscard]] QColor pixel(QPoint onDesktop) const
    {
        return painter->screen(QRect(onDesktop, QSize(1, 1))).pixelColor(0, 0);
    }

    // Each is one process: starting them takes longer than what they do.
    void press(QPoint onDesktop) const { server->xdotool(moves({ onDesktop }) + press1); }
    void moveTo(QPoint onDesktop) const { server->xdotool(moves({ onDesktop })); }
    void release() const { server->xdotool(release1); }
    void drag(QPoint from, QPoint to) const
    {
        server->xdotool(moves({ from }) + press1 + moves({ (from + to) / 2, to }) + release1);
    }
    void click(QPoint onDesktop) const { server->xdotool(moves({ onDesktop }) + press1 + release1); }

    std::unique_ptr<test::XvfbServer> server;
    std::unique_ptr<test::ScreenPainter> painter;
    std::unique_ptr<test::ChildProcess> openbox;
    std::unique_ptr<test::ChildProcess> picom;
    std::unique_ptr<LineProgram> stage;
    std::unique_ptr<LineProgram> backgroundWindow;

private:
    static QStringList moves(const QList<QPoint> &points)
    {
        QStringList words;
        for (const QPoint point : points)
            words += { "mousemove", QString::number(point.x()), QString::number(point.y()) };
        return words;
    }

    const QStringList press1 { "mousedown", "1" };
    const QStringList release1 { "mouseup", "1" };
};

inline std::string compositingName(const ::testing::TestParamInfo<bool> &info)
{
    return info.param ? "Composited" : "Plain";
}

} // namespace vornic
