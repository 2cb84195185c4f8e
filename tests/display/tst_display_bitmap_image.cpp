#include "display/bitmap_image.h"
#include "display/changed_bands.h"
#include "support/test_pictures.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>

using namespace vornic;
using namespace vornic::test;

namespace {

TEST(BitmapImageTest, BandsCoverAllRows)
{
    EXPECT_EQ(bandCount(0), 0);
    EXPECT_EQ(bandCount(1), 1);
    EXPECT_EQ(bandCount(16), 1);
    EXPECT_EQ(bandCount(17), 2);
    EXPECT_EQ(bandCount(1080), 68);
}

TEST(BitmapImageTest, OwnsItsPixels)
{
    QImage picture = noisePicture(QSize(33, 21), 1);
    const auto image = bitmapImageFrom(picture);
    picture.fill(Qt::black);
    EXPECT_EQ(pixelsOf(*image), noisePicture(QSize(33, 21), 1));
    EXPECT_EQ(image->view(), noisePicture(QSize(33, 21), 1));
}

TEST(BitmapImageTest, ConvertsOtherFormats)
{
    const auto image = bitmapImageFrom(noisePicture(QSize(33, 21), 1).convertToFormat(QImage::Format_RGB888));
    EXPECT_EQ(pixelsOf(*image), noisePicture(QSize(33, 21), 1));
}

TEST(BitmapImageTest, EveryBandGetsAVersionOfItsOwn)
{
    const auto one = bitmapImageFrom(noisePicture(QSize(8, 100), 1));
    const auto other = bitmapImageFrom(noisePicture(QSize(8, 100), 1));
    std::set<std::uint64_t> versions(one->bandVersions().begin(), one->bandVersions().end());
    versions.insert(other->bandVersions().begin(), other->bandVersions().end());
    EXPECT_EQ(versions.size(), 14U);
    EXPECT_FALSE(versions.contains(0));
    EXPECT_FALSE(one->isSamePicture(*other));
    EXPECT_TRUE(one->isSamePicture(*one));
}

TEST(BitmapImageTest, KeepsGivenVersions)
{
    const auto image = bitmapImageFrom(noisePicture(QSize(8, 20), 1), { 7, 9 });
    EXPECT_EQ(image->bandVersions(), (std::vector<std::uint64_t> { 7, 9 }));
}

std::vector<std::pair<int, int>> runsOf(const ChangedBands &bands)
{
    std::vector<std::pair<int, int>> runs;
    for (const BandRun &run : bands.runs())
        runs.emplace_back(run.first, run.count);
    return runs;
}

using Runs = std::vector<std::pair<int, int>>;

TEST(ChangedBandsTest, RowsTouchTheirBands)
{
    ChangedBands bands(100);
    EXPECT_EQ(runsOf(bands), Runs());
    bands.addRows(15, 1);
    EXPECT_EQ(runsOf(bands), Runs({ { 0, 1 } }));
    bands.addRows(47, 2);
    EXPECT_EQ(runsOf(bands), Runs({ { 0, 1 }, { 2, 2 } }));
    bands.addRows(16, 16);
    EXPECT_EQ(runsOf(bands), Runs({ { 0, 4 } }));
}

TEST(ChangedBandsTest, RowsOffThePictureAreLeftOut)
{
    ChangedBands bands(100);
    bands.addRows(-20, 20);
    bands.addRows(112, 5);
    bands.addRows(50, 0);
    EXPECT_EQ(runsOf(bands), Runs());
    bands.addRows(-5, 6);
    bands.addRows(99, 5000);
    EXPECT_EQ(runsOf(bands), Runs({ { 0, 1 }, { 6, 1 } }));
    bands.addAll();
    EXPECT_EQ(runsOf(bands), Runs({ { 0, 7 } }));
}

} // namespace
