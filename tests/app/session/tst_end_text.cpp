#include "app/session/end_text.h"
#include "display/display_backend.h"
#include "display/fake_display.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

namespace vornic {
namespace {

class WhyNoPictureTest : public ::testing::Test
{
protected:
    WhyNoPictureTest() { setMainDisplay(display); }
    ~WhyNoPictureTest() override { setMainDisplay(nullptr); }

    std::shared_ptr<FakeDisplay> display = std::make_shared<FakeDisplay>(QSize(320, 200));
};

TEST_F(WhyNoPictureTest, ADisplayThatIsGoneIsToldSo)
{
    display->setReport({ .size = QSize() });
    for (const QRectF rectangle : { QRectF(), QRectF(10, 10, 50, 50) })
        EXPECT_EQ(whyNoPicture(rectangle), "The display is gone: the recording ends with what it holds.");
}

TEST_F(WhyNoPictureTest, ARectangleThatTheDisplayHasLeftIsToldSo)
{
    EXPECT_EQ(
        whyNoPicture({ 400, 10, 50, 50 }),
        "The display has 320x200 pixels now, and the recorded rectangle lies off it: the recording ends with "
        "what it holds.");
}

TEST_F(WhyNoPictureTest, ADisplayThatRefusesIsNotBlamedOnTheRectangle)
{
    for (const QRectF rectangle : { QRectF(), QRectF(10, 10, 50, 50) })
        EXPECT_EQ(whyNoPicture(rectangle),
                  "The display gives no picture any more: the recording ends with what it holds.");
}

TEST(WhySpoolingFailedTest, OnlyWhatIsNotTheSpaceIsTold)
{
    for (const int space : { 0, ENOSPC, EDQUOT })
        EXPECT_EQ(whySpoolingFailed(space), "");
    EXPECT_EQ(whySpoolingFailed(EFBIG),
              "There is a limit on the size of files, and the recording has reached it");
    EXPECT_EQ(whySpoolingFailed(EIO), "The recording could not be written to the disk: Input/output error");
}

} // namespace
} // namespace vornic
