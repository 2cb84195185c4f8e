#include "base/keyed_archive.h"
#include "capture/capture_fixture.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/cursor_table.h"
#include "codec/PKVideoFrame2.h"
#include "support/test_pictures.h"

#include <QCborMap>
#include <QCborValue>
#include <QDir>
#include <QFile>
#include <QUuid>

#include <sys/stat.h>

namespace vornic {
namespace {

using test::noisePicture;

class BufferDiscrTest : public CaptureTest
{
protected:
    std::unique_ptr<VNBufferDiscr> record(const QImage &picture = noisePicture({ 320, 200 }, 1))
    {
        return VNBufferDiscr::createWithScreenImage(grabOf(picture));
    }

    /// Null where \a archive is none.
    static std::unique_ptr<VNBufferDiscr> recordFrom(const QByteArray &archive)
    {
        const auto unarchiver = KeyedUnarchiver::create(archive);
        return unarchiver ? VNBufferDiscr::createWithCoder(*unarchiver) : nullptr;
    }

    static CursorShape shape(QRgb colour, QPoint hotSpot)
    {
        QImage picture(16, 16, QImage::Format_ARGB32_Premultiplied);
        picture.fill(colour);
        return { picture, hotSpot };
    }
};

TEST_F(BufferDiscrTest, WithoutAnImageThereIsNoRecord)
{
    EXPECT_EQ(VNBufferDiscr::createWithScreenImage(nullptr), nullptr);
    EXPECT_EQ(logged(), QStringList { "use initWithScreenImage:" });
}

TEST_F(BufferDiscrTest, ANewRecordHoldsThePointerOfTheMoment)
{
    m_display->setPointerPosition(QPoint(100, 30));
    m_display->setCursorShape(shape(0xff112233, { 3, 4 }));
    const auto made = record();
    ASSERT_TRUE(made);
    EXPECT_EQ(made->mouseLocation(), QPointF(100.5, 200 - 30.5));
    const auto cursor = VNBufferDiscr::cusorAtIndex(made->cursorIndex());
    ASSERT_TRUE(cursor);
    EXPECT_EQ(cursor->hotSpot, QPoint(3, 4));
    EXPECT_EQ(made->timestamp(), 0U);
    EXPECT_EQ(made->duration(), 0U);
    EXPECT_TRUE(made->recordImage());
}

TEST_F(BufferDiscrTest, EqualCursorsShareOneEntry)
{
    m_display->setCursorShape(shape(0xff445566, { 1, 1 }));
    const auto first = record();
    ASSERT_TRUE(first);
    const std::uint64_t count = CursorTable::shared().count();
    m_display->setCursorShape(shape(0xff445566, { 1, 1 }));
    const auto second = record();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->cursorIndex(), first->cursorIndex());
    EXPECT_EQ(CursorTable::shared().count(), count);
    m_display->setCursorShape(shape(0xff445566, { 2, 1 }));
    const auto third = record();
    ASSERT_TRUE(third);
    EXPECT_EQ(third->cursorIndex(), count);
}

TEST_F(BufferDiscrTest, NoCursorStandsBehindTheLastOne)
{
    static_cast<void>(
        VNBufferDiscr::indexOfCursor(std::make_shared<CursorShape>(shape(0xff010203, { 0, 0 }))));
    const std::uint64_t count = CursorTable::shared().count();
    EXPECT_TRUE(VNBufferDiscr::cusorAtIndex(count - 1));
    EXPECT_FALSE(VNBufferDiscr::cusorAtIndex(count));
}

std::shared_ptr<const CursorShape> coloured(QRgb colour, int side = 4)
{
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(colour);
    return std::make_shared<CursorShape>(CursorShape { picture, QPoint() });
}

TEST(CursorTable, ForgetsWhatHasNotBeenSeenForLongest)
{
    constexpr std::uint64_t shapes = 1000;
    CursorTable table;
    for (std::uint64_t i = 0; i < shapes; ++i) {
        EXPECT_EQ(table.indexOf(coloured(static_cast<QRgb>(i) | 0xFF000000)), i);
        EXPECT_EQ(table.indexOf(coloured(0xFF000000)), 0U) << "this one is seen all the time";
    }
    EXPECT_EQ(table.count(), shapes);
    EXPECT_TRUE(table.at(0));
    EXPECT_FALSE(table.at(1));
    EXPECT_FALSE(table.at(shapes - CursorTable::maxShapes));
    for (std::uint64_t i = shapes - CursorTable::maxShapes + 1; i < shapes; ++i) {
        const auto kept = table.at(i);
        ASSERT_TRUE(kept) << i;
        EXPECT_EQ(*kept, *coloured(static_cast<QRgb>(i) | 0xFF000000));
    }
    EXPECT_EQ(table.indexOf(coloured(0xFF000001)), shapes) << "no index is given twice";
}

TEST(CursorTable, LargeShapesAreForgottenSooner)
{
    constexpr int side = 1024;
    CursorTable table;
    for (QRgb i = 0; i < 10; ++i)
        static_cast<void>(table.indexOf(coloured(i | 0xFF000000, side)));
    for (std::uint64_t i = 0; i < 10; ++i)
        EXPECT_EQ(table.at(i) != nullptr, i >= 6) << i;
    const std::uint64_t huge = table.indexOf(coloured(0xFFFFFFFF, 4096));
    EXPECT_TRUE(table.at(huge));
    EXPECT_FALSE(table.at(9));
}

TEST_F(BufferDiscrTest, ANewRecordKeepsAShapeThatTheTableForgets)
{
    m_display->setCursorShape(shape(0xffabcdef, { 3, 4 }));
    const auto made = record();
    ASSERT_TRUE(made);
    for (QRgb i = 0; i < CursorTable::maxShapes; ++i)
        static_cast<void>(VNBufferDiscr::indexOfCursor(coloured(i)));
    EXPECT_FALSE(VNBufferDiscr::cusorAtIndex(made->cursorIndex()));
    ASSERT_TRUE(made->cursorShape());
    EXPECT_EQ(made->cursorShape()->hotSpot, QPoint(3, 4));
}

TEST_F(BufferDiscrTest, AHiddenPointerHasNoCursor)
{
    EXPECT_FALSE(VNBufferDiscr::cusorAtIndex(VNBufferDiscr::indexOfCursor(nullptr)));
}

TEST_F(BufferDiscrTest, TheArchiveKeepsEverything)
{
    m_display->setPointerPosition(QPoint(7, 8));
    const QImage picture = boxPicture({ 320, 200 }, qRgb(10, 200, 30), { 0, 0, 8, 8 }, 0);
    const auto made = record(picture);
    ASSERT_TRUE(made);
    made->setBufferTimestamp(123'456'789'012);
    made->setDuration(3000);
    const auto back = recordFrom(archivedData(*made));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->timestamp(), 123'456'789'012U);
    EXPECT_EQ(back->duration(), 3000U);
    EXPECT_EQ(back->mouseLocation(), made->mouseLocation());
    EXPECT_EQ(back->cursorIndex(), made->cursorIndex());
    ASSERT_TRUE(back->recordImage());
    EXPECT_LE(
        largestDifference(back->recordImage()->view().copy(32, 32, 200, 100), picture.copy(32, 32, 200, 100)),
        2);
}

TEST_F(BufferDiscrTest, TheKeysAreTheDocumentedOnes)
{
    const auto made = record();
    ASSERT_TRUE(made);
    const QCborMap map = QCborValue::fromCbor(archivedData(*made)).toMap();
    EXPECT_EQ(map.size(), 5);
    EXPECT_TRUE(map.value("mMouseLocation").isArray());
    EXPECT_TRUE(map.value("_duration").isInteger());
    EXPECT_TRUE(map.value("mTimestamp").isInteger());
    EXPECT_TRUE(map.value("_cursorIndex").isInteger());
    EXPECT_TRUE(map.value("cgimage.jpegrep").toByteArray().startsWith("\xFF\xD8"));
}

TEST_F(BufferDiscrTest, WithoutImageAndFrameOnlyTheScalarsAreWritten)
{
    KeyedArchiver scalars;
    scalars.encodeInt64(QLatin1StringView("mTimestamp"), 42);
    const auto bare = recordFrom(scalars.bytes());
    ASSERT_TRUE(bare);
    EXPECT_EQ(bare->timestamp(), 42U);
    EXPECT_FALSE(bare->recordImage());
    const QCborMap map = QCborValue::fromCbor(archivedData(*bare)).toMap();
    EXPECT_EQ(map.size(), 4);
    EXPECT_FALSE(map.contains(QLatin1StringView("cgimage.jpegrep")));
    const auto back = recordFrom(archivedData(*bare));
    ASSERT_TRUE(back);
    EXPECT_FALSE(back->recordImage());
}

TEST_F(BufferDiscrTest, ADamagedPictureIsNone)
{
    const auto made = record();
    ASSERT_TRUE(made);
    QCborMap map = QCborValue::fromCbor(archivedData(*made)).toMap();
    QByteArray jpeg = map.value("cgimage.jpegrep").toByteArray();
    jpeg.truncate(jpeg.size() / 3);
    map[QStringLiteral("cgimage.jpegrep")] = jpeg;
    const auto back = recordFrom(map.toCborValue().toCbor());
    ASSERT_TRUE(back);
    EXPECT_FALSE(back->recordImage());
}

TEST_F(BufferDiscrTest, AComposedFrameIsArchivedWithIt)
{
    const auto made = record();
    ASSERT_TRUE(made);
    made->setBufferTimestamp(9);
    const auto frame = made->getVideoFrameWithLogoContext(nullptr, QRectF());
    ASSERT_TRUE(frame);
    const auto back = recordFrom(archivedData(*made));
    ASSERT_TRUE(back);
    const auto restored = back->getVideoFrameWithLogoContext(nullptr, QRectF(5, 5, 1, 1));
    ASSERT_TRUE(restored);
    EXPECT_EQ(restored->timeStamp(), 9);
    EXPECT_EQ(restored->codeWidth(), frame->codeWidth());
    EXPECT_EQ(std::memcmp(restored->planeData(0), frame->planeData(0), 320), 0);
}

TEST_F(BufferDiscrTest, EncodeSizes)
{
    using Size = std::pair<double, double>;
    EXPECT_EQ(VNBufferDiscr::calcMaxFitSize(1920, 1080), Size(1920, 1080));
    EXPECT_EQ(VNBufferDiscr::calcMaxFitSize(1920, 1081), Size(1918, 1080));
    EXPECT_EQ(VNBufferDiscr::calcMaxFitSize(2560, 1440), Size(1920, 1080));
    EXPECT_EQ(VNBufferDiscr::calcMaxFitSize(2880, 1800), Size(1728, 1080));
    EXPECT_EQ(VNBufferDiscr::calcMaxFitSize(3000, 1000), Size(1920, 640));
    EXPECT_EQ(VNBufferDiscr::calcMaxFitSize(1921, 500), Size(1920, 499));
    EXPECT_EQ(VNBufferDiscr::calcMaxFitSize(641, 361), Size(641, 361));
    EXPECT_EQ(VNBufferDiscr::calcMaxFitSize(0, 0), Size(0, 0));
}

TEST_F(BufferDiscrTest, TheCachePathIsMadeWhereItIsMissing)
{
    const QString path = VNBufferDiscr::cachePath();
    EXPECT_EQ(path, m_cacheHome.filePath("com.kavlor.vornic"));
    EXPECT_TRUE(QDir(path).exists());
    EXPECT_EQ(VNBufferDiscr::cachePath(), path);
    EXPECT_TRUE(logged().isEmpty());
}

TEST_F(BufferDiscrTest, TheCacheIsItsUsersAloneWhateverTheUmaskSays)
{
    qputenv("XDG_CACHE_HOME", m_cacheHome.filePath("caches").toUtf8());
    const mode_t before = ::umask(0);
    const QString path = VNBufferDiscr::cachePath();
    ::umask(before);
    struct stat folder {
    };
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &folder), 0);
    EXPECT_EQ(folder.st_mode & 07777U, 0700U);
}

TEST_F(BufferDiscrTest, ThePictureForDevelopersIsInTheCache)
{
    const QImage picture = noisePicture({ 320, 200 }, 1);
    VNBufferDiscr::saveCGImageForDebug(grabOf(picture));
    EXPECT_EQ(largestDifference(QImage(VNBufferDiscr::cachePath() + "/vornic-debug.png"), picture), 0);
}

TEST_F(BufferDiscrTest, ACachePathThatCannotBeMadeIsLoggedAndGivenAllTheSame)
{
    qputenv("XDG_CACHE_HOME", "/proc/none");
    EXPECT_EQ(VNBufferDiscr::cachePath(), "/proc/none/com.kavlor.vornic");
    ASSERT_EQ(logged().size(), 1);
    EXPECT_TRUE(logged().first().startsWith(
        "Failed to create cache path(/proc/none/com.kavlor.vornic), with error description:"));
}

TEST_F(BufferDiscrTest, SmallUtilities)
{
    EXPECT_EQ(VNBufferDiscr::tempExtension(), "png");
    const QString name = VNBufferDiscr::uniqueFilename();
    EXPECT_FALSE(QUuid(name).isNull());
    EXPECT_EQ(name.size(), 36);
    EXPECT_NE(VNBufferDiscr::uniqueFilename(), name);
}

TEST_F(BufferDiscrTest, ImagesAreSavedAsPng)
{
    const QImage picture = noisePicture({ 40, 30 }, 5);
    const QString file = m_cacheHome.filePath("picture.png");
    EXPECT_TRUE(VNBufferDiscr::saveCGImage(grabOf(picture), QUrl::fromLocalFile(file)));
    EXPECT_EQ(largestDifference(QImage(file), picture), 0);
    EXPECT_FALSE(VNBufferDiscr::saveCGImage(nullptr, QUrl::fromLocalFile(file)));
    EXPECT_FALSE(VNBufferDiscr::saveCGImage(grabOf(picture), QUrl::fromLocalFile("/proc/none/picture.png")));
}

} // namespace
} // namespace vornic
