#include "selection/selection_geometry.h"

#include <gtest/gtest.h>

#include <limits>

namespace vornic {
namespace {

constexpr QSize display(800, 600);

TEST(FittedSelection, StaysWhereItIsWhenItFits)
{
    EXPECT_EQ(fittedSelection({ 0, 0, 800, 600 }, display), QRect(0, 0, 800, 600));
    EXPECT_EQ(fittedSelection({ 740, 540, 60, 60 }, display), QRect(740, 540, 60, 60));
}

TEST(FittedSelection, IsCutToTheDisplayAndLargeEnough)
{
    EXPECT_EQ(fittedSelection({ -50, 500, 200, 200 }, display), QRect(0, 500, 150, 100));
    EXPECT_EQ(fittedSelection({ 100, 100, 10, 59 }, display), QRect(100, 100, 60, 60));
    EXPECT_EQ(fittedSelection({ 790, -30, 400, 40 }, display), QRect(740, 0, 60, 60))
        << "10 x 10 of it are on the display: 60 wide, that ends at 800";
    EXPECT_EQ(fittedSelection({ 0, 0, 30, 30 }, QSize(40, 600)), QRect(0, 0, 40, 60))
        << "a display may be narrower than the shortest side";
}

TEST(DrawnSelection, HoldsBothPixels)
{
    const QRect expected(100, 200, 201, 101); // 300 - 100 + 1, 300 - 200 + 1
    EXPECT_EQ(drawnSelection({ 100, 200 }, { 300, 300 }, display), expected);
    EXPECT_EQ(drawnSelection({ 300, 300 }, { 100, 200 }, display), expected);
    EXPECT_EQ(drawnSelection({ 100, 300 }, { 300, 200 }, display), expected);
    EXPECT_EQ(drawnSelection({ 0, 0 }, { 799, 599 }, display), QRect(QPoint(), display));
}

TEST(DrawnSelection, EndsAtTheDisplay)
{
    EXPECT_EQ(drawnSelection({ 700, 500 }, { 5000, 5000 }, display), QRect(700, 500, 100, 100));
    EXPECT_EQ(drawnSelection({ 99, 99 }, { -5000, -5000 }, display), QRect(0, 0, 100, 100));
}

TEST(DrawnSelection, GrowsInTheDirectionOfTheMouse)
{
    EXPECT_EQ(drawnSelection({ 400, 300 }, { 410, 310 }, display), QRect(400, 300, 60, 60));
    EXPECT_EQ(drawnSelection({ 400, 300 }, { 390, 290 }, display), QRect(341, 241, 60, 60))
        << "up to and with pixel 400, 300";
    EXPECT_EQ(drawnSelection({ 799, 599 }, { 799, 599 }, display), QRect(740, 540, 60, 60));
    EXPECT_EQ(drawnSelection({ 10, 10 }, { 0, 0 }, display), QRect(0, 0, 60, 60));
}

TEST(MovedSelection, StopsAtTheEdges)
{
    const QRect start(10, 530, 100, 60);
    EXPECT_EQ(movedSelection(start, { 1, 0 }, display), QRect(11, 530, 100, 60));
    EXPECT_EQ(movedSelection(start, { -11, 11 }, display), QRect(0, 540, 100, 60));
    EXPECT_EQ(movedSelection(start, { 5000, -5000 }, display), QRect(700, 0, 100, 60));
}

TEST(ResizedSelection, MovesRightAndBottomBetweenMinimumAndEdge)
{
    const QRect start(600, 500, 100, 70);
    EXPECT_EQ(resizedSelection(start, { 1, -1 }, display), QRect(600, 500, 101, 69));
    EXPECT_EQ(resizedSelection(start, { -41, -11 }, display), QRect(600, 500, 60, 60));
    EXPECT_EQ(resizedSelection(start, { 101, 31 }, display), QRect(600, 500, 200, 100));
}

TEST(SelectionFromScreen, FlipsAndComesBack)
{
    // y down: 600 - 50 - 200.
    EXPECT_EQ(selectionFromScreen({ 100, 50, 300, 200 }, display), QRect(100, 350, 300, 200));
    EXPECT_EQ(selectionOnScreen({ 100, 350, 300, 200 }, display), QRectF(100, 50, 300, 200));
    EXPECT_EQ(selectionOnScreen({ 0, 0, 60, 60 }, display), QRectF(0, 540, 60, 60));
}

TEST(SelectionFromScreen, IsAlwaysOnTheDisplay)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    const QRect middle(200, 150, 400, 300);
    EXPECT_EQ(selectionFromScreen({}, display), middle);
    EXPECT_EQ(selectionFromScreen({ 900, 0, 100, 100 }, display), middle);
    EXPECT_EQ(selectionFromScreen({ none, none, none, none }, display), middle);
    EXPECT_EQ(selectionFromScreen({ -100, -100, 1e6, 1e6 }, display), QRect(0, 0, 800, 600));
}

TEST(VisibleFrames, AreCutAndNotCovered)
{
    const DisplayPlacement onTheRight { display, { 640, 40 } };
    const std::vector<QRect> fromAbove {
        { 740, 140, 200, 100 }, // whole
        { 600, 0, 100, 100 },   // 60 x 60 of it on the display
        { 0, 0, 600, 600 },     // on the other display
        { 760, 150, 100, 50 },  // beneath the first
        { 740, 140, 201, 100 }, // a column of it beside the first
    };
    const std::vector<QRect> expected { { 100, 100, 200, 100 }, { 0, 0, 60, 60 }, { 100, 100, 201, 100 } };
    EXPECT_EQ(visibleFrames(fromAbove, onTheRight), expected);
}

TEST(FrameAround, LiesOutsideWhereThereIsRoom)
{
    const QRegion free = frameAround({ 100, 100, 200, 150 }, 2, display);
    EXPECT_EQ(free.boundingRect(), QRect(98, 98, 204, 154));
    EXPECT_FALSE(free.intersects(QRect(100, 100, 200, 150)));
    const QRegion whole = frameAround({ 0, 0, 800, 600 }, 2, display);
    EXPECT_EQ(whole, QRegion(0, 0, 800, 600) - QRegion(2, 2, 796, 596));
}

TEST(LeastCovering, PrefersTheFirstThatIsFree)
{
    const QRect chosen(100, 100, 200, 200);
    const QRect above(100, 60, 50, 30);
    const QRect below(100, 310, 50, 30);
    EXPECT_EQ(leastCovering({ above, below }, { chosen }, display), above);
    EXPECT_EQ(leastCovering({ above, below }, { chosen, above }, display), below);
    EXPECT_EQ(leastCovering({ QRect(110, 110, 50, 30), below }, { chosen, below }, display), below)
        << "what comes first counts more";
}

TEST(LeastCovering, NeverLeavesTheDisplay)
{
    EXPECT_EQ(leastCovering({ QRect(0, -36, 50, 30) }, { QRect(QPoint(), display) }, display),
              QRect(0, 0, 50, 30));
    EXPECT_EQ(leastCovering({ QRect(790, 590, 50, 30) }, {}, display), QRect(750, 570, 50, 30));
}

} // namespace
} // namespace vornic
