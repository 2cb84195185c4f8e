#include "platform/display/fake_display.h"
#include "platform/screen_geometry.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

using namespace vornic;

namespace {

class ScreenGeometryTest : public testing::Test
{
protected:
    void SetUp() override { setMainDisplay(m_display); }
    void TearDown() override { setMainDisplay(nullptr); }

    std::shared_ptr<FakeDisplay> m_display = std::make_shared<FakeDisplay>(QSize(1440, 900));
};

TEST_F(ScreenGeometryTest, TheMainDisplayStandsAtTheOrigin)
{
    EXPECT_EQ(mainDisplayFrame(), QRectF(0, 0, 1440, 900));
}

TEST_F(ScreenGeometryTest, TheFrameIsReadAfresh)
{
    m_display->setReportedSize(QSize(800, 600));
    EXPECT_EQ(mainDisplayFrame(), QRectF(0, 0, 800, 600));
    m_display->setReportedSize(QSize(0, 0));
    EXPECT_EQ(mainDisplayFrame(), QRectF(0, 0, 0, 0));
}

TEST_F(ScreenGeometryTest, ThePointerCountsFromTheBottom)
{
    m_display->setPointerPosition(QPoint(100, 50));
    EXPECT_EQ(pointerLocation(), QPointF(100.5, 849.5));
    m_display->setPointerPosition(QPoint(-20, 950));
    EXPECT_EQ(pointerLocation(), QPointF(-19.5, -50.5));
}

TEST(TruncatedRectTest, DropsFractionsTowardZero)
{
    EXPECT_EQ(truncatedRect(QRectF(10.9, 20.1, 30.99, 40.5)), QRect(10, 20, 30, 40));
    EXPECT_EQ(truncatedRect(QRectF(-10.9, -0.5, 3.5, 4)), QRect(-10, 0, 3, 4));
}

TEST(TruncatedRectTest, TakesNumbersThatNoIntHolds)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(truncatedRect(QRectF(none, 1, 2, 3)), QRect(0, 1, 2, 3));
    const QRect huge = truncatedRect(QRectF(-1e300, 1e300, 1e300, 5));
    EXPECT_LT(huge.x(), -100000);
    EXPECT_GT(huge.y(), 100000);
    EXPECT_GT(huge.width(), 100000);
    EXPECT_EQ(huge.height(), 5);
}

} // namespace
