#include "overlay/desktop_geometry.h"
#include "overlay_main.h"

namespace vornic {
namespace {

/// A main display that does not stand at the desktop's upper left.
class DisplayOnTheRight final : public DisplayBackend
{
public:
    [[nodiscard]] std::uint32_t mainDisplayId() const override { return 1; }
    [[nodiscard]] QSize mainDisplaySize() const override { return { 1440, 900 }; }
    [[nodiscard]] QPoint mainDisplayOrigin() const override { return { 1280, 60 }; }
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect & /*rectangle*/) override
    {
        return nullptr;
    }
    [[nodiscard]] QPoint pointerPosition() override { return {}; }
    [[nodiscard]] std::shared_ptr<const CursorShape> cursorShape() override { return nullptr; }
};

TEST(DesktopPixels, AreEightAroundTheRecordedOnes)
{
    EXPECT_EQ(desktopPixels({ 312, 142, 816, 616 }), QRect(312, 142, 816, 616));
    EXPECT_EQ(desktopPixels({ -8, -8, 500, 400 }), QRect(-8, 508, 500, 400));
    EXPECT_EQ(desktopPixels({ -8, -8, 1456, 916 }), QRect(-8, -8, 1456, 916));
}

TEST(DesktopPixels, OfAFrameThatIsNotWholeFollowTheGrab)
{
    // Recorded: (320.5, 150.5, 800.5, 600.5), in display coordinates (320.5, 149, 800.5, 600.5), cut off.
    EXPECT_EQ(desktopPixels({ 312.5, 142.5, 816.5, 616.5 }), QRect(312, 141, 816, 616));
}

TEST(DesktopPixels, OfNothingAreTheMarginAlone)
{
    EXPECT_EQ(desktopPixels({ 0, 0, 0, 0 }).size(), QSize(16, 16));
}

TEST(DesktopPixels, CountFromTheDesktopNotTheDisplay)
{
    setMainDisplay(std::make_shared<DisplayOnTheRight>());
    EXPECT_EQ(desktopPixels({ 312, 142, 816, 616 }), QRect(1592, 202, 816, 616));
    EXPECT_EQ(screenPoint({ 1280, 60 }), QPointF(0, 900));
    EXPECT_EQ(screenPoint({ 0.5, 959.5 }), QPointF(-1279.5, 0.5));
    setMainDisplay(std::make_shared<FakeDisplay>(QSize(1440, 900)));
}

class Scales : public testing::TestWithParam<double>
{
};

TEST_P(Scales, WindowsHoldTheirPixelsAndHardlyMore)
{
    const double factor = GetParam();
    for (const QPoint origin : { QPoint(0, 0), QPoint(1280, 60) }) {
        const ToolkitScale scale(origin, factor);
        for (int x = -8; x < 40; ++x) {
            for (int width = 76; width < 90; ++width) {
                const QRect wanted = QRect(x, 7 - x, width, 3 * width).translated(origin);
                const QRect given = scale.pixelsOf(scale.logicalAround(wanted));
                ASSERT_TRUE(given.contains(wanted)) << x << ' ' << width;
                ASSERT_LE(given.width(), wanted.width() + 2 * factor);
                ASSERT_LE(given.height(), wanted.height() + 2 * factor);
                ASSERT_TRUE(factor > 1 || given == wanted);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Factors, Scales, testing::Values(1.0, 1.25, 1.5, 2.0));

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runOverlayTests(argc, argv);
}
