#include "support/sway_session.h"
#include "support/wait_until.h"
#include "wayland/transparent_pixel.h"
#include "wayland/wayland_connection.h"
#include "wayland/wayland_output_watch.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

using test::SwaySession;
using test::waitUntil;

WaylandOutput onlyOutput(const WaylandOutputWatch &watch)
{
    const auto outputs = watch.outputs();
    return outputs.size() == 1 ? outputs.front() : WaylandOutput();
}

using State = TransparentPixel::State;

bool isDecided(const TransparentPixel &pixel)
{
    return waitUntil([&] { return pixel.state() != State::Waiting; });
}

class MonitorTest : public ::testing::TestWithParam<double>
{
};

TEST_P(MonitorTest, PixelsAndPlaceAreThoseOfTheCompositor)
{
    const auto desktop = SwaySession::start({ .size = { 1200, 900 }, .scale = GetParam() });
    ASSERT_TRUE(desktop);
    const auto watch = WaylandOutputWatch::start();
    ASSERT_TRUE(watch);
    const WaylandOutput output = onlyOutput(*watch);
    EXPECT_EQ(output.name, "HEADLESS-1");
    EXPECT_EQ(output.pixels(), QSize(1200, 900));
    EXPECT_EQ(output.logical,
              QRect(0, 0, static_cast<int>(1200 / GetParam()), static_cast<int>(900 / GetParam())));
    EXPECT_DOUBLE_EQ(output.factor(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Scales, MonitorTest, testing::Values(1, 1.25, 1.5, 2));

TEST(SwayMonitors, AWatchSeesThemTurnShrinkAndCome)
{
    const auto desktop = SwaySession::start();
    ASSERT_TRUE(desktop);
    const auto watch = WaylandOutputWatch::start();
    ASSERT_TRUE(watch);
    ASSERT_TRUE(desktop->command("output HEADLESS-1 transform 90"));
    EXPECT_TRUE(waitUntil([&] { return onlyOutput(*watch).pixels() == QSize(720, 1280); }));
    EXPECT_EQ(onlyOutput(*watch).mode, QSize(1280, 720));
    ASSERT_TRUE(desktop->command("output HEADLESS-1 transform normal mode 800x600"));
    EXPECT_TRUE(waitUntil([&] { return onlyOutput(*watch).pixels() == QSize(800, 600); }));
    ASSERT_TRUE(desktop->command("create_output"));
    EXPECT_TRUE(waitUntil([&] { return watch->outputs().size() == 2; }));
    EXPECT_EQ(mainOutput(watch->outputs())->name, "HEADLESS-1");
}

TEST(SwayMonitors, NoneIsLeftWhenTheCompositorDies)
{
    const auto desktop = SwaySession::start();
    ASSERT_TRUE(desktop);
    const auto watch = WaylandOutputWatch::start();
    const auto connection = WaylandConnection::open();
    ASSERT_TRUE(watch && connection);
    desktop->kill();
    EXPECT_TRUE(waitUntil([&] { return watch->outputs().empty(); }));
    EXPECT_FALSE(connection->roundTrip());
    EXPECT_FALSE(connection->isAlive());
}

TEST(SwayPixel, NobodySeesItAndItIsInNobodysWay)
{
    const auto desktop = SwaySession::start({ .size = { 320, 200 } });
    ASSERT_TRUE(desktop);
    ASSERT_TRUE(waitUntil([&] { return desktop->screen().pixel(0, 0) == SwaySession::background; }));
    const QImage before = desktop->screen();
    const TransparentPixel pixel(std::chrono::hours(1));
    ASSERT_TRUE(isDecided(pixel));
    ASSERT_EQ(pixel.state(), State::Shown);
    EXPECT_EQ(desktop->screen(), before);
}

TEST(SwayPixel, ItIsThereForItsTimeAtMost)
{
    const auto desktop = SwaySession::start({ .size = { 320, 200 } });
    ASSERT_TRUE(desktop);
    const TransparentPixel pixel(std::chrono::milliseconds(1));
    EXPECT_TRUE(waitUntil([&] { return pixel.state() == State::Over; }));
}

/// A pixel that is asked for while the compositor hangs is shown when it goes on. That is not so where somebody has
/// waited for answers meanwhile, be it for that pixel or for the end of others: without an answer it is given up.
TEST(SwayPixel, ACompositorThatHangsHoldsUpNobody)
{
    const auto desktop = SwaySession::start({ .size = { 320, 200 } });
    ASSERT_TRUE(desktop);
    constexpr int attempts = 5; // on a machine that itself stands still for seconds at times
    State state = State::Over;
    for (int attempt = 0; attempt < attempts && state != State::Shown; ++attempt) {
        desktop->setFrozen(true);
        const TransparentPixel pixel(std::chrono::hours(1));
        for (int other = 0; other < 2; ++other)
            const TransparentPixel ended(std::chrono::hours(1));
        desktop->setFrozen(false);
        ASSERT_TRUE(isDecided(pixel));
        state = pixel.state();
    }
    EXPECT_EQ(state, State::Shown);
}

} // namespace
} // namespace vornic
