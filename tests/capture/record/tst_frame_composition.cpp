#include "base/PKTimebase.h"
#include "base/keyed_archive.h"
#include "capture/capture_fixture.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/frame_composer.h"
#include "capture/record/picture_keys.h"
#include "capture/record/picture_spooler.h"
#include "capture/record/picture_unspooler.h"
#include "codec/PKVideoFrame2.h"
#include "options/VNLogoContext.h"
#include "support/fuzz_run.h"
#include "support/test_pictures.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>

#include <cmath>

namespace vornic {
namespace {

using test::noisePicture;

constexpr QRgb grey = qRgb(128, 128, 128);

/// The luma of white, and of the grey above, in BT.709 limited range.
constexpr int whiteLuma = 235;
constexpr int greyLuma = 126;

class FrameCompositionTest : public CaptureTest
{
protected:
    /// Null where \a archive is none.
    static std::unique_ptr<VNBufferDiscr> recordFrom(const QByteArray &archive)
    {
        const auto unarchiver = KeyedUnarchiver::create(archive);
        return unarchiver ? VNBufferDiscr::createWithCoder(*unarchiver) : nullptr;
    }

    /// A record of a grey display whose pointer is a white square.
    std::unique_ptr<VNBufferDiscr> recordAt(QPointF mouse, QSize display, QSize cursor, QPoint hotSpot)
    {
        QImage shape(cursor, QImage::Format_ARGB32_Premultiplied);
        shape.fill(Qt::white);
        m_display->setCursorShape({ shape, hotSpot });
        QImage picture(display, QImage::Format_RGB32);
        picture.fill(grey);
        const auto record = VNBufferDiscr::createWithScreenImage(grabOf(picture));
        if (!record)
            return nullptr;
        QCborMap map = QCborValue::fromCbor(archivedData(*record)).toMap();
        map[QStringLiteral("mMouseLocation")] = QCborArray { mouse.x(), mouse.y() };
        return recordFrom(map.toCborValue().toCbor());
    }

    static int lumaAt(const PKVideoFrame2 &frame, int x, int y)
    {
        return frame.planeData(0)[y * frame.planeStride(0) + x];
    }

    /// The smallest rectangle, y down, that holds all bright pixels; null when there are none.
    static QRect brightPixels(const PKVideoFrame2 &frame)
    {
        QRect found;
        for (int y = 0; y < frame.displayHeight(); ++y)
            for (int x = 0; x < frame.displayWidth(); ++x)
                if (lumaAt(frame, x, y) > (whiteLuma + greyLuma) / 2)
                    found |= QRect(x, y, 1, 1);
        return found;
    }

    /// The pointer's rectangle with the origin at its lower left, y up, as drawn into the composed frame.
    static QRect drawnCursor(const std::unique_ptr<VNBufferDiscr> &record, const QRectF &region)
    {
        const auto frame = record ? record->getVideoFrameWithLogoContext(nullptr, region) : nullptr;
        EXPECT_TRUE(frame);
        const QRect pixels = frame ? brightPixels(*frame) : QRect();
        if (pixels.isNull())
            return {};
        return {
            pixels.x(), frame->displayHeight() - pixels.y() - pixels.height(), pixels.width(), pixels.height()
        };
    }
};

TEST_F(FrameCompositionTest, AFullDisplayCursorStandsAtItsHotSpot)
{
    const auto record = recordAt({ 500, 400 }, { 800, 600 }, { 32, 32 }, { 4, 4 });
    EXPECT_EQ(drawnCursor(record, QRectF(0, 0, 800, 600)), QRect(496, 372, 32, 32));
}

TEST_F(FrameCompositionTest, ARegionsOriginIsTruncated)
{
    const auto record = recordAt({ 300, 300 }, { 640, 480 }, { 16, 16 }, { 0, 0 });
    EXPECT_EQ(drawnCursor(record, QRectF(100.7, 200.2, 640, 480)), QRect(200, 84, 16, 16));
}

TEST_F(FrameCompositionTest, AMouseOutsideTheRegionIsNotDrawn)
{
    EXPECT_TRUE(
        drawnCursor(recordAt({ 50, 300 }, { 640, 480 }, { 16, 16 }, { 0, 0 }), QRectF(100, 200, 640, 480))
            .isNull());
    EXPECT_TRUE(
        drawnCursor(recordAt({ 300, 199 }, { 640, 480 }, { 16, 16 }, { 0, 0 }), QRectF(100, 200, 640, 480))
            .isNull());
}

TEST_F(FrameCompositionTest, LeftAndBottomEdgesBelongToTheRegionRightAndTopDoNot)
{
    const QRectF region(100, 200, 640, 480);
    const auto drawn = [&](QPointF mouse) {
        return !drawnCursor(recordAt(mouse, { 640, 480 }, { 16, 16 }, { 8, 8 }), region).isNull();
    };
    EXPECT_TRUE(drawn({ 100, 300 }));
    EXPECT_FALSE(drawn({ 740, 300 }));
    EXPECT_TRUE(drawn({ 300, 200 }));
    EXPECT_FALSE(drawn({ 300, 680 }));
    EXPECT_TRUE(drawn({ 739.5, 679.5 }));
}

TEST_F(FrameCompositionTest, AnEmptyRegionAlwaysDrawsWithoutOffset)
{
    const auto record = recordAt({ 30, 40 }, { 640, 480 }, { 16, 16 }, { 0, 0 });
    EXPECT_EQ(drawnCursor(record, QRectF()), QRect(30, 24, 16, 16));
}

TEST_F(FrameCompositionTest, AnEmptyRegionWithAnOriginDrawsWithoutOffset)
{
    // The pointer at (30, 40) lies in none of them.
    for (const QRectF &region :
         { QRectF(100.7, 200.2, 0, 0), QRectF(100, 200, 640, 0), QRectF(100, 200, 0, 480) }) {
        const auto record = recordAt({ 30, 40 }, { 640, 480 }, { 16, 16 }, { 0, 0 });
        EXPECT_EQ(drawnCursor(record, region), QRect(30, 40 - 16, 16, 16));
    }
}

TEST_F(FrameCompositionTest, ANegativeOriginIsTruncatedTowardsZero)
{
    const auto record = recordAt({ 30, 40 }, { 640, 480 }, { 16, 16 }, { 0, 0 });
    EXPECT_EQ(drawnCursor(record, QRectF(-10.7, -20.2, 640, 480)), QRect(30 + 10, 40 + 20 - 16, 16, 16));
}

/// It stands on the screen, and so in the picture already.
TEST_F(FrameCompositionTest, ALogoIsNotDrawnOnceMore)
{
    QImage red(60, 40, QImage::Format_RGB32);
    red.fill(Qt::red);
    VNLogoContext logo;
    logo.setLogoType(1);
    logo.setNSImage(red);
    logo.setLogoPosition({ 100, 100 });
    const QRectF region(0, 0, 640, 480);
    for (const bool isOn : { false, true }) {
        logo.setLogoValidate(isOn);
        const auto record = recordAt({ 300, 300 }, { 640, 480 }, { 16, 16 }, { 0, 0 });
        ASSERT_TRUE(record);
        const auto frame = record->getVideoFrameWithLogoContext(&logo, region);
        ASSERT_TRUE(frame);
        // White where the pointer is, the grey of the desktop everywhere else.
        const QRect pointer(300, 480 - 300, 16, 16);
        EXPECT_EQ(brightPixels(*frame), pointer);
        int others = 0;
        for (int y = 0; y < 480; ++y)
            for (int x = 0; x < 640; ++x)
                if (!pointer.contains(x, y) && std::abs(lumaAt(*frame, x, y) - greyLuma) > 2)
                    ++others;
        EXPECT_EQ(others, 0) << isOn;
    }
}

TEST_F(FrameCompositionTest, APointerPixelIsHitExactly)
{
    // As a grab stores it: the middle of the pixel at (10, 3) from the top left of a display 480 high.
    const auto record = recordAt({ 10.5, 480 - 3.5 }, { 640, 480 }, { 16, 16 }, { 2, 1 });
    ASSERT_TRUE(record);
    const auto frame = record->getVideoFrameWithLogoContext(nullptr, QRectF(0, 0, 640, 480));
    ASSERT_TRUE(frame);
    EXPECT_EQ(brightPixels(*frame), QRect(8, 2, 16, 16));
}

TEST_F(FrameCompositionTest, ACursorReachesOverTheEdge)
{
    const auto record = recordAt({ 0.5, 479.5 }, { 640, 480 }, { 16, 16 }, { 8, 8 });
    ASSERT_TRUE(record);
    const auto frame = record->getVideoFrameWithLogoContext(nullptr, QRectF(0, 0, 640, 480));
    ASSERT_TRUE(frame);
    EXPECT_EQ(brightPixels(*frame), QRect(0, 0, 8, 8));
}

TEST_F(FrameCompositionTest, TheSecondCallGivesTheVeryFrame)
{
    const auto record = recordAt({ 300, 300 }, { 640, 480 }, { 16, 16 }, { 0, 0 });
    ASSERT_TRUE(record);
    record->setBufferTimestamp(1234);
    record->setDuration(3000);
    const auto frame = record->getVideoFrameWithLogoContext(nullptr, QRectF());
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->timeStamp(), 1234);
    EXPECT_EQ(frame->duration(), 3000);
    record->setDuration(7);
    EXPECT_EQ(record->getVideoFrameWithLogoContext(nullptr, QRectF(0, 0, 1, 1)), frame);
    EXPECT_EQ(frame->duration(), 3000);
}

TEST_F(FrameCompositionTest, ACursorOfAnotherProcessIsLeftOut)
{
    const auto record = recordAt({ 300, 300 }, { 640, 480 }, { 16, 16 }, { 0, 0 });
    ASSERT_TRUE(record);
    QCborMap map = QCborValue::fromCbor(archivedData(*record)).toMap();
    map[QStringLiteral("_cursorIndex")] = 1'000'000;
    const auto foreign = recordFrom(map.toCborValue().toCbor());
    EXPECT_TRUE(drawnCursor(foreign, QRectF()).isNull());
}

TEST_F(FrameCompositionTest, AShapeThatWasReadBackIsDrawnWhateverTheTableHas)
{
    QImage small(8, 8, QImage::Format_ARGB32_Premultiplied);
    small.fill(Qt::white);
    const auto record = recordAt({ 300, 300 }, { 640, 480 }, { 16, 16 }, { 0, 0 });
    ASSERT_TRUE(record);
    record->setCursorShape(std::make_shared<CursorShape>(CursorShape { small, QPoint() }));
    EXPECT_EQ(drawnCursor(record, QRectF()), QRect(300, 292, 8, 8));
    const auto hidden = recordAt({ 300, 300 }, { 640, 480 }, { 16, 16 }, { 0, 0 });
    ASSERT_TRUE(hidden);
    hidden->setCursorShape(nullptr);
    EXPECT_TRUE(drawnCursor(hidden, QRectF()).isNull());
}

TEST_F(FrameCompositionTest, HostileMouseLocationsAreSurvived)
{
    for (const double value : { 1e300, -1e300, std::nan(""), std::numeric_limits<double>::infinity() }) {
        const auto record = recordAt({ value, value }, { 64, 48 }, { 16, 16 }, { 0, 0 });
        ASSERT_TRUE(record);
        EXPECT_TRUE(record->getVideoFrameWithLogoContext(nullptr, QRectF()));
    }
}

TEST_F(FrameCompositionTest, LargePicturesAreFittedAndOddOnesPadded)
{
    const auto frameOf = [this](QSize display) {
        const auto record = recordAt({ 0, 0 }, display, { 1, 1 }, { 0, 0 });
        return record ? record->getVideoFrameWithLogoContext(nullptr, QRectF(1, 1, 1, 1)) : nullptr;
    };
    const auto large = frameOf({ 2560, 1440 });
    ASSERT_TRUE(large);
    EXPECT_EQ(QSize(large->displayWidth(), large->displayHeight()), QSize(1920, 1080));
    const auto odd = frameOf({ 641, 361 });
    ASSERT_TRUE(odd);
    EXPECT_EQ(QSize(odd->displayWidth(), odd->displayHeight()), QSize(641, 361));
    EXPECT_EQ(QSize(odd->codeWidth(), odd->codeHeight()), QSize(642, 362));
    EXPECT_EQ(lumaAt(*odd, 641, 361), greyLuma);
}

TEST_F(FrameCompositionTest, ARecordWithoutPictureHasNoFrame)
{
    KeyedArchiver nothing;
    const auto bare = recordFrom(nothing.bytes());
    ASSERT_TRUE(bare);
    EXPECT_FALSE(bare->getVideoFrameWithLogoContext(nullptr, QRectF()));
}

/// Records through a spool: the composer that is told what changed must give what composing from nothing
/// does.
class ComposerTest : public FrameCompositionTest
{
protected:
    std::unique_ptr<VNBufferDiscr> spooled(const QImage &picture, QPoint pointer)
    {
        m_display->setPointerPosition(pointer);
        const auto record = VNBufferDiscr::createWithScreenImage(grabOf(picture));
        if (!record)
            return nullptr;
        record->setBufferTimestamp(m_time += 3000);
        KeyedArchiver archiver;
        record->encodeWithCoder(archiver, m_pictures);
        const auto unarchiver = KeyedUnarchiver::create(archiver.bytes());
        return unarchiver ? VNBufferDiscr::createWithCoder(*unarchiver, m_picturesBack) : nullptr;
    }

    static QByteArray planes(const PKVideoFrame2 &frame)
    {
        QByteArray bytes;
        for (int plane = 0; plane < 3; ++plane)
            for (int y = 0; y < frame.codeHeight() / (plane ? 2 : 1); ++y)
                bytes.append(
                    reinterpret_cast<const char *>(frame.planeData(plane) + y * frame.planeStride(plane)),
                    frame.codeWidth() / (plane ? 2 : 1));
        return bytes;
    }

    /// Composes \a record with the running composer, and compares with a composer that knows nothing.
    std::shared_ptr<PKVideoFrame2> composeAndCompare(const std::unique_ptr<VNBufferDiscr> &record,
                                                     const QRectF &region = {})
    {
        EXPECT_TRUE(record);
        if (!record)
            return nullptr;
        auto frame = m_composer.compose(*record, region);
        const auto afresh = FrameComposer().compose(*record, region);
        EXPECT_TRUE(frame && afresh);
        if (frame && afresh) {
            EXPECT_EQ(planes(*frame), planes(*afresh));
        }
        return frame;
    }

    PictureSpooler m_pictures;
    PictureUnspooler m_picturesBack;
    FrameComposer m_composer;
    std::uint64_t m_time = 0;
};

TEST_F(ComposerTest, WhatIsEqualIsShared)
{
    m_display->setCursorShape(
        { noisePicture({ 16, 16 }, 9).convertToFormat(QImage::Format_ARGB32_Premultiplied), {} });
    const QImage picture = noisePicture({ 333, 211 }, 1);
    const auto first = composeAndCompare(spooled(picture, { 50, 60 }));
    ASSERT_TRUE(first);
    const auto second = composeAndCompare(spooled(picture, { 50, 60 }));
    ASSERT_TRUE(second);
    EXPECT_TRUE(second->sharesPixelsWith(*first));
    EXPECT_NE(second, first);
    const auto moved = composeAndCompare(spooled(picture, { 51, 60 }));
    ASSERT_TRUE(moved);
    EXPECT_FALSE(moved->sharesPixelsWith(*first));
}

TEST_F(ComposerTest, AWanderingPointerOverAChangingPictureLeavesNoTrace)
{
    m_display->setCursorShape(
        { noisePicture({ 24, 24 }, 9).convertToFormat(QImage::Format_ARGB32_Premultiplied), { 3, 3 } });
    QImage picture = noisePicture({ 333, 211 }, 1);
    for (int step = 0; step < 40; ++step) {
        if (step % 3 == 0)
            picture.setPixel(step * 7 % 333, step * 31 % 211, qRgb(step, 255 - step, 77));
        const QPoint pointer(step * 37 % 400 - 20, step * 53 % 260 - 20);
        composeAndCompare(spooled(picture, pointer), QRectF(0, 0, 333, 211));
    }
}

TEST_F(ComposerTest, OnlyBandsThatChangedAreDecodedAndConverted)
{
    QImage picture = noisePicture({ 333, 211 }, 1);
    const auto composed = [&](std::uint64_t ticksLater) {
        m_time += ticksLater;
        return composeAndCompare(spooled(picture, {}));
    };
    const int all = bandCount(211);
    const auto expectDone = [&](int decoded, int converted) {
        EXPECT_EQ(m_composer.decodedBandCount(), decoded);
        EXPECT_EQ(m_composer.convertedBandCount(), converted);
    };
    ASSERT_TRUE(composed(0));
    expectDone(all, all);
    const auto same = composed(0);
    expectDone(0, 0);

    // A whole picture is due, which is the same again.
    const auto due = composed(2 * std::uint64_t { PKTimebase });
    expectDone(0, 0);
    ASSERT_TRUE(same && due);
    EXPECT_TRUE(due->sharesPixelsWith(*same));

    for (const std::uint64_t later : { std::uint64_t { 0 }, 2 * std::uint64_t { PKTimebase } }) {
        picture.setPixel(5, 100, ~picture.pixel(5, 100));
        picture.setPixel(5, 210, ~picture.pixel(5, 210));
        ASSERT_TRUE(composed(later));
        expectDone(2, 2);
    }
}

TEST_F(ComposerTest, AMovingPointerDecodesNothingAgain)
{
    m_display->setCursorShape(
        { noisePicture({ 16, 16 }, 9).convertToFormat(QImage::Format_ARGB32_Premultiplied), {} });
    const QImage picture = noisePicture({ 333, 211 }, 1);
    composeAndCompare(spooled(picture, { 50, 0 }));
    composeAndCompare(spooled(picture, { 50, 64 }));
    EXPECT_EQ(m_composer.decodedBandCount(), 0);
    EXPECT_EQ(m_composer.convertedBandCount(), 2);
    composeAndCompare(spooled(picture, { 50, 64 }));
    EXPECT_EQ(m_composer.convertedBandCount(), 0);
}

TEST_F(ComposerTest, AfterANewSizeAnEqualPictureIsStillKnown)
{
    composeAndCompare(spooled(noisePicture({ 100, 60 }, 1), {}));
    const QImage other = noisePicture({ 120, 60 }, 2);
    const auto first = composeAndCompare(spooled(other, {}));
    const auto second = composeAndCompare(spooled(other, {}));
    ASSERT_TRUE(first && second);
    EXPECT_EQ(m_composer.decodedBandCount(), 0);
    EXPECT_TRUE(second->sharesPixelsWith(*first));
}

/// Over thousands of records, some of which are lost: what is composed is what the whole picture gives.
TEST_F(ComposerTest, LossesAndChangesLeaveNoTrace)
{
    test::FuzzRandom random(3);
    QImage picture = noisePicture({ 40, 90 }, 1);
    int composed = 0;
    for (int step = 0; step < 3000; ++step) {
        for (int changes = random.below(4); changes > 0; --changes)
            picture.setPixel(random.below(40), random.below(90), random.next());
        const auto record = spooled(picture, { random.below(50) - 5, random.below(100) - 5 });
        ASSERT_TRUE(record);
        if (random.below(40) == 0) {
            m_picturesBack.forgetPicture();
            continue;
        }
        if (!record->recordPicture()) {
            EXPECT_FALSE(m_composer.compose(*record, {}));
            continue;
        }
        composeAndCompare(record);
        ++composed;
        if (HasFailure())
            FAIL() << "at step " << step;
    }
    EXPECT_GT(composed, 200);
}

TEST_F(ComposerTest, ADamagedPictureInTheMiddleHurtsNoOther)
{
    const QImage first = noisePicture({ 100, 60 }, 1);
    composeAndCompare(spooled(first, {}));
    KeyedArchiver damaged;
    damaged.encodeData(pictureKey, "damaged");
    EXPECT_FALSE(m_composer.compose(*recordFrom(damaged.bytes()), {}));
    composeAndCompare(spooled(noisePicture({ 100, 60 }, 2), {}));
}

TEST_F(ComposerTest, ARecordWithoutPictureInTheMiddleLeavesNoPointer)
{
    m_display->setCursorShape(
        { noisePicture({ 16, 16 }, 9).convertToFormat(QImage::Format_ARGB32_Premultiplied), {} });
    const QImage picture = noisePicture({ 100, 60 }, 1);
    const QRectF region(0, 0, 100, 60);
    const auto withPointer = composeAndCompare(spooled(picture, { 50, 30 }), region);
    ASSERT_TRUE(withPointer);
    KeyedArchiver nothing;
    EXPECT_FALSE(m_composer.compose(*recordFrom(nothing.bytes()), region));
    const auto pointerOutside = composeAndCompare(spooled(picture, { 250, 30 }), region);
    ASSERT_TRUE(pointerOutside);
    EXPECT_NE(planes(*pointerOutside), planes(*withPointer));
}

TEST_F(ComposerTest, ARecordThatWasNotSpooledIsForgottenWithItsPicture)
{
    const auto first = spooled(noisePicture({ 100, 60 }, 1), {});
    const auto notSpooled = VNBufferDiscr::createWithScreenImage(grabOf(noisePicture({ 100, 60 }, 2)));
    composeAndCompare(first);
    composeAndCompare(notSpooled);
    composeAndCompare(first);
}

TEST_F(ComposerTest, SizesMayChangeAndScaledFramesFollow)
{
    composeAndCompare(spooled(noisePicture({ 100, 60 }, 1), {}));
    composeAndCompare(spooled(noisePicture({ 2000, 1200 }, 2), { 50, 50 }));
    composeAndCompare(spooled(noisePicture({ 2000, 1200 }, 2), { 60, 50 }));
    composeAndCompare(spooled(noisePicture({ 120, 60 }, 1), {}));
}

} // namespace
} // namespace vornic
