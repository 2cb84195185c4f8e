#include "display/portal/cast_buffer.h"
#include "display/portal/cast_params.h"

#include <gtest/gtest.h>
#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/video/raw.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <limits>
#include <memory>
#include <vector>

namespace vornic::test {
namespace {

constexpr QSize size(8, 4);
constexpr std::uint32_t pictureBytes = 8 * 4 * 4;
constexpr auto most = std::numeric_limits<std::uint32_t>::max();

/// A buffer as a compositor fills it, in memory that sanitizers watch over.
class CastBufferTest : public testing::Test
{
protected:
    CastBufferTest()
    {
        m_data.type = SPA_DATA_MemPtr;
        m_data.data = m_memory.data();
        m_data.maxsize = pictureBytes;
        m_data.chunk = &m_chunk;
        m_chunk = { 0, pictureBytes, 32, SPA_CHUNK_FLAG_NONE };
        m_buffer.n_datas = 1;
        m_buffer.datas = &m_data;
    }

    /// Memory of \a bytes bytes for the metadata \a type.
    void *addMetadata(std::uint32_t type, std::size_t bytes)
    {
        m_metaMemory.push_back(std::make_unique<std::byte[]>(bytes));
        m_metas.push_back({ type, static_cast<std::uint32_t>(bytes), m_metaMemory.back().get() });
        m_buffer.n_metas = static_cast<std::uint32_t>(m_metas.size());
        m_buffer.metas = m_metas.data();
        return m_metaMemory.back().get();
    }
    template<typename T>
    T &addMetadata(std::uint32_t type)
    {
        return *static_cast<T *>(addMetadata(type, sizeof(T)));
    }

    [[nodiscard]] CastFrame read() const
    {
        return readCastBuffer(m_buffer, { size, CastPixels::Order::Rgbx });
    }
    [[nodiscard]] bool hasPixels() const { return read().pixels.has_value(); }

    std::vector<std::byte> m_memory = std::vector<std::byte>(pictureBytes);
    spa_chunk m_chunk {};
    spa_data m_data {};
    spa_buffer m_buffer {};
    std::vector<std::unique_ptr<std::byte[]>> m_metaMemory;
    std::vector<spa_meta> m_metas;
};

TEST_F(CastBufferTest, APictureIsWhereTheChunkSays)
{
    const CastFrame frame = read();
    ASSERT_TRUE(frame.pixels);
    EXPECT_EQ(frame.pixels->firstRow, static_cast<const uchar *>(m_data.data));
    EXPECT_EQ(frame.pixels->bytesPerLine, 32);
    EXPECT_EQ(frame.pixels->size, size);
    EXPECT_EQ(frame.pixels->order, CastPixels::Order::Rgbx);
    EXPECT_EQ(frame.sequence, 0U);
    EXPECT_TRUE(frame.damage.empty());
    EXPECT_FALSE(frame.pointer);
}

TEST_F(CastBufferTest, APictureMayBeginLaterAndHaveLongerRows)
{
    m_memory.resize(1000);
    m_data.data = m_memory.data();
    m_data.maxsize = 1000;
    m_chunk = { 100, 4 * 64, 64, SPA_CHUNK_FLAG_NONE };
    const CastFrame frame = read();
    ASSERT_TRUE(frame.pixels);
    EXPECT_EQ(frame.pixels->firstRow, static_cast<const uchar *>(m_data.data) + 100);
    EXPECT_EQ(frame.pixels->bytesPerLine, 64);
}

TEST_F(CastBufferTest, RowsWithoutALengthFollowEachOther)
{
    m_chunk.stride = 0;
    ASSERT_TRUE(hasPixels());
    EXPECT_EQ(read().pixels->bytesPerLine, 32);
}

TEST_F(CastBufferTest, OneWithoutAPictureIsOfThePointerAlone)
{
    m_chunk.size = 0;
    EXPECT_FALSE(hasPixels());
    m_chunk = { 0, pictureBytes, 32, SPA_CHUNK_FLAG_CORRUPTED };
    EXPECT_FALSE(hasPixels());
}

TEST_F(CastBufferTest, APictureThatDoesNotLieInItsMemoryIsLeftOut)
{
    for (const spa_chunk &chunk : {
             spa_chunk { 1, pictureBytes, 32, 0 },
             spa_chunk { most, pictureBytes, 32, 0 },
             spa_chunk { 0, pictureBytes - 1, 32, 0 },
             spa_chunk { 0, most, 33, 0 },
             spa_chunk { 0, most, 31, 0 },
             spa_chunk { 0, most, -32, 0 },
             spa_chunk { 0, most, std::numeric_limits<int>::max(), 0 },
             spa_chunk { 0, most, std::numeric_limits<int>::min(), 0 },
         }) {
        m_chunk = chunk;
        EXPECT_FALSE(hasPixels()) << chunk.offset << ' ' << chunk.size << ' ' << chunk.stride;
    }
}

TEST_F(CastBufferTest, OneWithoutMemoryHasNoPicture)
{
    m_data.data = nullptr;
    EXPECT_FALSE(hasPixels());
    m_data.data = m_memory.data();
    m_data.chunk = nullptr;
    EXPECT_FALSE(hasPixels());
    m_buffer.n_datas = 0;
    EXPECT_FALSE(hasPixels());
}

TEST_F(CastBufferTest, MemoryOfAnotherKindIsNotRead)
{
    m_data.type = SPA_DATA_DmaBuf;
    EXPECT_FALSE(hasPixels());
}

TEST_F(CastBufferTest, BehindTheEndOfAFileNothingIsRead)
{
    const int file = memfd_create("buffer", MFD_CLOEXEC);
    m_data.type = SPA_DATA_MemFd;
    m_data.fd = file;
    EXPECT_FALSE(hasPixels());
    ASSERT_EQ(ftruncate(file, pictureBytes), 0);
    EXPECT_TRUE(hasPixels());
    m_data.mapoffset = 1;
    EXPECT_FALSE(hasPixels());
    close(file);
    m_data.mapoffset = 0;
    EXPECT_FALSE(hasPixels());
}

TEST_F(CastBufferTest, TheHeaderCountsTheFrames)
{
    addMetadata<spa_meta_header>(SPA_META_Header).seq = 77;
    EXPECT_EQ(read().sequence, 77U);
}

TEST_F(CastBufferTest, MetadataThatIsTooShortIsLeftOut)
{
    addMetadata(SPA_META_Header, sizeof(spa_meta_header) - 1);
    addMetadata(SPA_META_VideoDamage, sizeof(spa_meta_region) - 1);
    addMetadata(SPA_META_Cursor, sizeof(spa_meta_cursor) - 1);
    addMetadata(SPA_META_VideoTransform, sizeof(spa_meta_videotransform) - 1);
    const CastFrame frame = read();
    EXPECT_TRUE(frame.pixels);
    EXPECT_EQ(frame.sequence, 0U);
    EXPECT_TRUE(frame.damage.empty());
    EXPECT_FALSE(frame.pointer);
    m_metas[0].data = nullptr;
    EXPECT_EQ(read().sequence, 0U);
}

TEST_F(CastBufferTest, TheListOfChangesEndsWithItsMemoryOrEarlier)
{
    auto *const regions
        = static_cast<spa_region *>(addMetadata(SPA_META_VideoDamage, 3 * sizeof(spa_meta_region)));
    regions[0] = { { 1, 2 }, { 3, 1 } };
    regions[1] = { { 0, 0 }, { 8, 4 } };
    EXPECT_EQ(read().damage, (std::vector { QRect(1, 2, 3, 1), QRect(0, 0, 8, 4) }));
    regions[2] = { { 7, 3 }, { 1, 1 } };
    EXPECT_EQ(read().damage.size(), 3U);
    regions[1] = { { 0, 0 }, { 8, 0 } };
    EXPECT_EQ(read().damage, (std::vector { QRect(1, 2, 3, 1) }));
}

TEST_F(CastBufferTest, ChangesAreCutToThePicture)
{
    auto *const regions
        = static_cast<spa_region *>(addMetadata(SPA_META_VideoDamage, 5 * sizeof(spa_meta_region)));
    constexpr int least = std::numeric_limits<int>::min();
    regions[0] = { { -5, -5 }, { 10, 6 } };
    regions[1] = { { 6, 3 }, { most, most } };
    regions[2] = { { least, least }, { most, most } };
    regions[3] = { { 8, 0 }, { 1, 1 } };
    regions[4] = { { least, 0 }, { 5, 5 } };
    EXPECT_EQ(read().damage, (std::vector { QRect(0, 0, 5, 1), QRect(6, 3, 2, 1), QRect(0, 0, 8, 4) }));
}

TEST_F(CastBufferTest, HowTheMonitorIsTurnedIsTold)
{
    auto &told = addMetadata<spa_meta_videotransform>(SPA_META_VideoTransform);
    told.transform = SPA_META_TRANSFORMATION_Flipped270;
    EXPECT_EQ(read().pixels->transform, 7);
    told.transform = 8;
    EXPECT_EQ(read().pixels->transform, 0) << "there is no such turn";
}

/// A pointer of two pixels.
class CastPointerTest : public CastBufferTest
{
protected:
    static constexpr std::size_t bitmapAt = sizeof(spa_meta_cursor) + 4;
    static constexpr std::size_t pixelsAt = sizeof(spa_meta_bitmap) + 8;

    CastPointerTest()
    {
        auto *const memory = static_cast<std::byte *>(addMetadata(SPA_META_Cursor, bitmapAt + pixelsAt + 8));
        m_cursor = reinterpret_cast<spa_meta_cursor *>(memory);
        m_bitmap = reinterpret_cast<spa_meta_bitmap *>(memory + bitmapAt);
        *m_cursor = { 1, 0, { 30, -4 }, { 1, 2 }, bitmapAt };
        *m_bitmap = { SPA_VIDEO_FORMAT_RGBA, { 2, 1 }, 8, pixelsAt };
        constexpr unsigned char pixels[8] = { 1, 2, 3, 4, 50, 60, 70, 80 };
        std::memcpy(memory + bitmapAt + pixelsAt, pixels, sizeof pixels);
    }

    /// That was told of; null where none is.
    [[nodiscard]] std::shared_ptr<const CursorShape> shape() const
    {
        const CastFrame frame = read();
        EXPECT_TRUE(frame.pointer && frame.pointer->shape);
        return *frame.pointer->shape;
    }

    spa_meta_cursor *m_cursor;
    spa_meta_bitmap *m_bitmap;
};

TEST_F(CastPointerTest, PlaceAndShapeAreRead)
{
    const CastFrame frame = read();
    ASSERT_TRUE(frame.pointer);
    EXPECT_TRUE(frame.pointer->isVisible);
    EXPECT_EQ(frame.pointer->position, QPoint(30, -4));
    const auto told = shape();
    ASSERT_TRUE(told);
    EXPECT_EQ(told->hotSpot, QPoint(1, 2));
    EXPECT_EQ(told->picture.size(), QSize(2, 1));
    EXPECT_EQ(told->picture.format(), QImage::Format_ARGB32_Premultiplied);
    const auto *const pixels = reinterpret_cast<const QRgb *>(told->picture.constScanLine(0));
    EXPECT_EQ(pixels[0], qRgba(1, 2, 3, 4));
    EXPECT_EQ(pixels[1], qRgba(50, 60, 70, 80));
}

TEST_F(CastPointerTest, ItsColoursMayStandInAnyOrder)
{
    const auto first = [&](spa_video_format format) {
        m_bitmap->format = format;
        const auto told = shape();
        return told ? *reinterpret_cast<const QRgb *>(told->picture.constScanLine(0)) : 0;
    };
    EXPECT_EQ(first(SPA_VIDEO_FORMAT_BGRA), qRgba(3, 2, 1, 4));
    EXPECT_EQ(first(SPA_VIDEO_FORMAT_ARGB), qRgba(2, 3, 4, 1));
    EXPECT_EQ(first(SPA_VIDEO_FORMAT_ABGR), qRgba(4, 3, 2, 1));
}

TEST_F(CastPointerTest, OneWithoutANumberIsNotOnTheMonitor)
{
    m_cursor->id = 0;
    EXPECT_FALSE(read().pointer->isVisible);
}

TEST_F(CastPointerTest, WithoutABitmapTheShapeIsAsBefore)
{
    m_cursor->bitmap_offset = 0;
    EXPECT_FALSE(read().pointer->shape);
}

TEST_F(CastPointerTest, AnEmptyBitmapHidesIt)
{
    m_bitmap->offset = 0;
    EXPECT_FALSE(shape());
    m_bitmap->offset = pixelsAt;
    m_bitmap->size = { 0, 0 };
    EXPECT_FALSE(shape());
}

TEST_F(CastPointerTest, ABitmapThatDoesNotLieInItsMemoryIsNone)
{
    const spa_meta_bitmap right = *m_bitmap;
    for (const spa_meta_bitmap &wrong : {
             spa_meta_bitmap { right.format, { 3, 1 }, 12, right.offset },
             spa_meta_bitmap { right.format, { 2, 2 }, 8, right.offset },
             spa_meta_bitmap { right.format, { 2, 1 }, 4, right.offset },
             spa_meta_bitmap { right.format, { 2, 1 }, -8, right.offset },
             spa_meta_bitmap { right.format, { 2, 1 }, 8, right.offset + 1 },
             spa_meta_bitmap { right.format, { 2, 1 }, 8, most },
             spa_meta_bitmap { right.format, { most, most }, std::numeric_limits<int>::max(), right.offset },
             spa_meta_bitmap { right.format, { 2, 1 }, 8, 4 },
             spa_meta_bitmap { SPA_VIDEO_FORMAT_NV12, { 2, 1 }, 8, right.offset },
         }) {
        *m_bitmap = wrong;
        EXPECT_FALSE(shape()) << wrong.format << ' ' << wrong.size.width << ' ' << wrong.stride << ' '
                              << wrong.offset;
    }
    *m_bitmap = right;
    for (const std::uint32_t offset : { std::uint32_t { bitmapAt + pixelsAt }, most }) {
        m_cursor->bitmap_offset = offset;
        EXPECT_FALSE(shape()) << offset;
    }
}

} // namespace
} // namespace vornic::test
