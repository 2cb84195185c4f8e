#include "app/window/options_view_model.h"
#include "options/VNOption.h"
#include "window_main.h"

#include <QSignalSpy>

namespace vornic {
namespace {

class OptionsViewModelTest : public testing::Test
{
protected:
    VNOption options; // on a display of 1440 x 900
    OptionsViewModel model { options };
    const QSignalSpy rectangleChanged { &model, &OptionsViewModel::rectangleChanged };
};

TEST_F(OptionsViewModelTest, TheTopCountsFromTheTopOfTheDisplay)
{
    options.setSelectedRect({ 100, 50, 640, 480 });
    EXPECT_EQ(model.top(), 900 - 50 - 480);
    EXPECT_GT(rectangleChanged.size(), 0);
    model.setTop(0);
    EXPECT_EQ(options.selectedRect(), QRectF(100, 420, 640, 480));
    // As the bottom does, it stays within the display.
    model.setTop(-20);
    EXPECT_EQ(model.top(), 0);
    model.setTop(5000);
    EXPECT_EQ(options.offsetY(), 0);
}

TEST_F(OptionsViewModelTest, AUsualSizeKeepsTheMiddleAndStaysOnTheDisplay)
{
    EXPECT_EQ(OptionsViewModel::sizePresetTitles(),
              (QStringList { "Other", "1280 × 720", "1920 × 1080", "Whole display" }));
    options.setSelectedRect({ 400, 300, 640, 300 });
    EXPECT_EQ(model.sizePreset(), 0);
    const QSignalSpy chosen(&model, &OptionsViewModel::sizePresetChosen);
    model.setSizePreset(1);
    EXPECT_EQ(options.selectedRect(), QRectF(80, 90, 1280, 720));
    EXPECT_EQ(model.sizePreset(), 1);
    EXPECT_EQ(chosen.size(), 1);
    // From a corner it is pushed in.
    options.setSelectedRect({ 1200, 0, 200, 200 });
    model.setSizePreset(1);
    EXPECT_EQ(options.selectedRect(), QRectF(160, 0, 1280, 720));
    // An odd middle gives whole numbers.
    options.setSelectedRect({ 400, 300, 641, 301 });
    model.setSizePreset(1);
    EXPECT_EQ(options.selectedRect(), QRectF(80, 90, 1280, 720));
    // Larger than the display is the display.
    model.setSizePreset(2);
    EXPECT_EQ(options.selectedRect(), QRectF(0, 0, 1440, 900));
    EXPECT_EQ(model.sizePreset(), 3);
    options.setSelectedRect({ 10, 10, 300, 300 });
    model.setSizePreset(3);
    EXPECT_EQ(options.selectedRect(), QRectF(0, 0, 1440, 900));
}

TEST_F(OptionsViewModelTest, OtherSizesAreShownButCannotBeChosen)
{
    options.setSelectedRect({ 100, 50, 640, 480 });
    for (const qint64 index : { -1, 0, 4 })
        model.setSizePreset(index);
    EXPECT_EQ(options.selectedRect(), QRectF(100, 50, 640, 480));
    EXPECT_EQ(model.sizePreset(), 0);
}

TEST_F(OptionsViewModelTest, OpacityIsShownInPercent)
{
    VNLogoContext &logo = *options.logoContext();
    const QSignalSpy changed(&model, &OptionsViewModel::logoOpacityChanged);
    logo.setLogoTransparency(255);
    EXPECT_EQ(model.logoOpacity(), 100);
    logo.setLogoTransparency(0);
    EXPECT_EQ(model.logoOpacity(), 0);
    EXPECT_GT(changed.size(), 0);
    for (int percent = 0; percent <= 100; ++percent) {
        model.setLogoOpacity(percent);
        EXPECT_EQ(model.logoOpacity(), percent);
    }
    model.setLogoOpacity(50);
    EXPECT_EQ(logo.LogoTransparency(), 128);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
