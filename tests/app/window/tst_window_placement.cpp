#include "app/window/window_placement.h"
#include "options/VNOption.h"
#include "window_main.h"

namespace vornic {
namespace {

constexpr QRect screen(0, 30, 1440, 870);
constexpr QSize size(500, 400);

QRect at(int x, int y)
{
    return { QPoint(x, y), size };
}

TEST(PlaceOffTest, AWindowThatCoversNothingStaysWhereItIs)
{
    EXPECT_EQ(placeOff(at(100, 100), screen, {}), QPoint(100, 100));
    EXPECT_EQ(placeOff(at(100, 100), screen, { { 600, 100, 300, 300 } }), QPoint(100, 100));
    // Side by side is not covered.
    EXPECT_EQ(placeOff(at(100, 100), screen, { { 600, 0, 840, 900 } }), QPoint(100, 100));
}

TEST(PlaceOffTest, ItGoesToTheSideWithTheMostRoomAndNoFurtherThanItMust)
{
    EXPECT_EQ(placeOff(at(650, 200), screen, { { 600, 100, 800, 700 } }), QPoint(100, 200)); // left
    EXPECT_EQ(placeOff(at(200, 200), screen, { { 100, 100, 600, 700 } }), QPoint(700, 200)); // right
    EXPECT_EQ(placeOff(at(300, 450), screen, { { 0, 480, 1440, 420 } }), QPoint(300, 80));   // above
    EXPECT_EQ(placeOff(at(300, 100), screen, { { 0, 0, 1440, 420 } }), QPoint(300, 420));    // below
    // There is room at the left, too, and it is nearer, but at the right there is more.
    EXPECT_EQ(placeOff(at(400, 100), screen, { { 510, 30, 400, 870 } }), QPoint(910, 100));
}

TEST(PlaceOffTest, OneAreaDoesNotDriveItOntoTheOther)
{
    const QList<QRect> areas { { 0, 30, 400, 870 }, { 400, 30, 500, 200 } };
    EXPECT_EQ(placeOff(at(300, 100), screen, areas), QPoint(900, 100));
    // Around all of them together there is no room, but in the corner that they leave.
    const QList<QRect> corner { { 0, 30, 700, 870 }, { 700, 30, 740, 300 } };
    EXPECT_EQ(placeOff(at(300, 100), screen, corner), QPoint(700, 330));
}

TEST(PlaceOffTest, WithoutRoomThereIsNoPlace)
{
    EXPECT_EQ(placeOff(at(300, 100), screen, { { 400, 300, 640, 300 } }), std::nullopt);
    EXPECT_EQ(placeOff(at(300, 100), screen, { screen }), std::nullopt);
    EXPECT_EQ(placeOff({ 0, 30, 1500, 100 }, screen, {}), std::nullopt);
    // A column of 499 is one too narrow.
    EXPECT_EQ(placeOff(at(0, 100), screen, { { 499, 30, 941, 870 } }), std::nullopt);
    EXPECT_EQ(placeOff(at(0, 100), screen, { { 500, 30, 940, 870 } }), QPoint(0, 100));
}

TEST(PlaceOffTest, ItStaysOnTheScreen)
{
    EXPECT_EQ(placeOff(at(1200, 800), screen, {}), QPoint(940, 500));
    EXPECT_EQ(placeOff(at(-90, 0), screen, { { 600, 100, 800, 700 } }), QPoint(0, 30));
    EXPECT_EQ(placeWithin({ 10, 10, 2000, 100 }, screen), QPoint(0, 30));
}

class RecordedAreasTest : public testing::Test
{
protected:
    VNOption options; // on a display of 1440 x 900
};

TEST_F(RecordedAreasTest, TheRectangleCountsWithItsFrame)
{
    options.setRecordRegion(0);
    EXPECT_TRUE(recordedAreas(options).isEmpty());
    options.setRecordRegion(1);
    options.setSelectedRect({ 100, 50, 640, 480 }); // y up
    EXPECT_EQ(recordedAreas(options), (QList<QRect> { { 92, 900 - 50 - 480 - 8, 656, 496 } }));
    // What is off the display needs no room.
    options.setSelectedRect({ 0, 0, 640, 480 });
    EXPECT_EQ(recordedAreas(options), (QList<QRect> { { 0, 412, 648, 488 } }));
    options.setSelectedRect({ -1e9, -1e9, 1e12, 1e12 });
    EXPECT_EQ(recordedAreas(options), (QList<QRect> { { 0, 0, 1440, 900 } }));
    options.setSelectedRect({ 5000, 5000, 640, 480 });
    EXPECT_TRUE(recordedAreas(options).isEmpty());
}

TEST_F(RecordedAreasTest, TheLogoCountsWhereItStandsWhileItIsOn)
{
    QImage picture(100, 60, QImage::Format_RGB32);
    picture.fill(Qt::red);
    VNLogoContext &logo = *options.logoContext();
    logo.setNSImage(picture);
    logo.setLogoType(1);
    logo.setLogoScale(1);
    logo.setLogoRotation(0);
    logo.setLogoPosition({ 58, 38 }); // 50 and 30 from the display's corner
    options.setRecordRegion(0);
    logo.setLogoValidate(false);
    EXPECT_TRUE(recordedAreas(options).isEmpty());
    logo.setLogoValidate(true);
    EXPECT_EQ(recordedAreas(options), (QList<QRect> { { 50, 900 - 30 - 60, 100, 60 } }));
    options.setRecordRegion(1);
    options.setSelectedRect({ 200, 100, 640, 480 });
    EXPECT_EQ(recordedAreas(options),
              (QList<QRect> { { 192, 312, 656, 496 }, { 250, 900 - 130 - 60, 100, 60 } }));
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
