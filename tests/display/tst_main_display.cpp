#include "display/fake_display.h"
#include "display/main_display.h"

#include <gtest/gtest.h>

#include <memory>

using namespace vornic;

namespace {

class MainDisplayTest : public testing::Test
{
protected:
    void SetUp() override { setMainDisplay(m_display); }
    void TearDown() override { setMainDisplay(nullptr); }

    std::shared_ptr<FakeDisplay> m_display = std::make_shared<FakeDisplay>(QSize(1440, 900));
};

TEST_F(MainDisplayTest, TheMainDisplayStandsAtTheOrigin)
{
    EXPECT_EQ(mainDisplayFrame(), QRectF(0, 0, 1440, 900));
}

TEST_F(MainDisplayTest, TheFrameIsReadAfresh)
{
    m_display->setReport({ .size = QSize(800, 600) });
    EXPECT_EQ(mainDisplayFrame(), QRectF(0, 0, 800, 600));
    m_display->setReport({ .size = QSize(0, 0) });
    EXPECT_EQ(mainDisplayFrame(), QRectF(0, 0, 0, 0));
}

TEST_F(MainDisplayTest, ThePlacementIsReadAfresh)
{
    EXPECT_EQ(mainDisplayPlacement().size, QSize(1440, 900));
    EXPECT_EQ(mainDisplayPlacement().origin, QPoint(0, 0));
    m_display->setReport({ .size = QSize(800, 600) });
    EXPECT_EQ(mainDisplayPlacement().size, QSize(800, 600));
}

TEST_F(MainDisplayTest, ThePointerCountsFromTheBottom)
{
    m_display->setPointerPosition(QPoint(100, 50));
    EXPECT_EQ(pointerLocation(), QPointF(100.5, 849.5));
    m_display->setPointerPosition(QPoint(-20, 950));
    EXPECT_EQ(pointerLocation(), QPointF(-19.5, -50.5));
}

} // namespace
