#include "display/band_store.h"
#include "display/bitmap_image.h"
#include "display/changed_bands.h"
#include "display/shared_pixels.h"
#include "support/test_pictures.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <set>
#include <vector>

namespace vornic::test {
namespace {

constexpr QSize size(8, 40); // two bands and a half
using Versions = std::vector<std::uint64_t>;
using Image = std::shared_ptr<const BitmapImage>;

/// A store, and the picture that its bands are fetched from.
class BandStoreTest : public testing::Test
{
protected:
    BandStoreTest()
    {
        m_source.fill(Qt::gray);
        m_store.startAnew(size);
    }

    void paintBand(int band, Qt::GlobalColor color)
    {
        for (int row = band * 16; row < std::min((band + 1) * 16, size.height()); ++row)
            for (int column = 0; column < size.width(); ++column)
                m_source.setPixelColor(column, row, color);
    }

    /// An update of \a bands only; all of them where there are none.
    Image update(const std::vector<int> &bands = {})
    {
        ChangedBands changed(size.height());
        for (const int band : bands)
            changed.addRows(band * 16, 1);
        if (bands.empty())
            changed.addAll();
        const auto fetch = [&](int slot, uchar *pixels) -> std::optional<BandStore::Fetched> {
            m_slots.insert(slot);
            for (const BandRun &run : changed.runs())
                for (int row = run.first * 16; row < std::min((run.first + run.count) * 16, 40); ++row)
                    std::memcpy(pixels + row * 32, m_source.constScanLine(row), 32);
            return BandStore::Fetched { pixels, 32, {} };
        };
        return m_store.update(changed, fetch) ? m_store.image() : nullptr;
    }

    /// An update that spoils the memory that it is to fill.
    bool failToUpdate()
    {
        ChangedBands changed(size.height());
        changed.addAll();
        return m_store.update(changed, [](int, uchar *pixels) -> std::optional<BandStore::Fetched> {
            std::memset(pixels, 1, 64);
            return std::nullopt;
        });
    }

    QImage m_source { size, QImage::Format_RGB32 };
    std::set<int> m_slots; ///< that were written to
    int m_allocations = 0;
    bool m_hasMemory = true;
    BandStore m_store { [this](int /*slot*/, std::size_t bytes) {
        ++m_allocations;
        return m_hasMemory ? SharedPixels::create(bytes) : nullptr;
    } };
};

TEST_F(BandStoreTest, ABandWithTheSamePixelsKeepsItsVersion)
{
    const Versions before = update()->bandVersions();
    ASSERT_EQ(before.size(), 3U);
    paintBand(1, Qt::red);
    const Versions now = update()->bandVersions();
    EXPECT_EQ(now[0], before[0]);
    EXPECT_NE(now[1], before[1]);
    EXPECT_EQ(now[2], before[2]);
}

TEST_F(BandStoreTest, ItKnowsBandsAgainAfterThePictureWasDropped)
{
    const Versions before = update()->bandVersions();
    m_store.dropPicture();
    EXPECT_FALSE(m_store.hasPicture());
    EXPECT_EQ(update()->bandVersions(), before);
    m_store.startAnew(size);
    EXPECT_FALSE(m_store.hasPicture());
    EXPECT_NE(update()->bandVersions(), before);
}

TEST_F(BandStoreTest, AnImageStaysWhenThePictureChanges)
{
    const Image first = update();
    const QImage shown = pixelsOf(*first);
    paintBand(0, Qt::red);
    const Image second = update({ 0 });
    EXPECT_EQ(pixelsOf(*first), shown);
    EXPECT_EQ(pixelsOf(*second), m_source) << "bands that were not fetched come from the picture before";
    EXPECT_EQ(m_slots.size(), 2U);
}

TEST_F(BandStoreTest, MemoryThatNoImageShowsIsUsedAgain)
{
    for (const Qt::GlobalColor color : { Qt::red, Qt::green, Qt::blue, Qt::cyan }) {
        paintBand(2, color);
        EXPECT_EQ(pixelsOf(*update({})), m_source);
    }
    EXPECT_EQ(m_allocations, 1);
}

TEST_F(BandStoreTest, ImagesThatAreHeldGetNewMemoryForThePicturesBehindThem)
{
    std::vector<Image> held;
    std::vector<QImage> shown;
    for (const Qt::GlobalColor color : { Qt::red, Qt::green, Qt::blue, Qt::cyan, Qt::magenta }) {
        paintBand(0, color);
        held.push_back(update(held.empty() ? std::vector<int>() : std::vector { 0 }));
        ASSERT_TRUE(held.back());
        shown.push_back(m_source.copy());
    }
    for (std::size_t i = 0; i < held.size(); ++i)
        EXPECT_EQ(pixelsOf(*held[i]), shown[i]) << i;
}

TEST_F(BandStoreTest, WithoutMemoryThereIsNoPicture)
{
    const Image held = update();
    m_hasMemory = false;
    EXPECT_FALSE(update());
    EXPECT_FALSE(m_store.hasPicture());
    m_hasMemory = true;
    EXPECT_TRUE(update());
}

TEST_F(BandStoreTest, WhatCannotBeFetchedIsNoPicture)
{
    const Versions before = update()->bandVersions();
    EXPECT_FALSE(failToUpdate());
    EXPECT_FALSE(m_store.hasPicture());
    const Image image = update();
    EXPECT_EQ(image->bandVersions(), before);
    EXPECT_EQ(pixelsOf(*image), m_source);
}

TEST_F(BandStoreTest, MemoryThatWasFetchedToInVainIsNotTakenForThePicture)
{
    Image held = update();
    EXPECT_TRUE(update()); // into the second slot
    EXPECT_FALSE(failToUpdate());
    EXPECT_EQ(m_slots.size(), 2U);
    held = nullptr;
    held = update();
    paintBand(2, Qt::red);
    EXPECT_EQ(pixelsOf(*update({ 2 })), m_source);
}

TEST_F(BandStoreTest, PixelsOfAnotherFormatAreConvertedWhereTheBandIsNew)
{
    ChangedBands changed(size.height());
    changed.addAll();
    int converted = 0;
    const auto fetch = [&](int, uchar *) {
        return std::optional(
            BandStore::Fetched { m_source.constBits(), 32, [&](const uchar *from, uchar *to, int rows) {
                                    converted += rows;
                                    std::memcpy(to, from, static_cast<std::size_t>(rows) * 32);
                                } });
    };
    ASSERT_TRUE(m_store.update(changed, fetch));
    EXPECT_EQ(converted, 40);
    paintBand(2, Qt::red);
    ASSERT_TRUE(m_store.update(changed, fetch));
    EXPECT_EQ(converted, 48);
    EXPECT_EQ(pixelsOf(*m_store.image()), m_source);
}

} // namespace
} // namespace vornic::test
