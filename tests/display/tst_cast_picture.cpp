#include "display/bitmap_image.h"
#include "display/portal/cast_grabber.h"
#include "display/portal/cast_picture.h"
#include "support/test_pictures.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace vornic::test {
namespace {

constexpr QSize size(40, 72); // four bands and a half
using Versions = std::vector<std::uint64_t>;

/// What the compositor has, what it tells of, and what is grabbed.
class CastPictureTest : public testing::Test
{
protected:
    CastPictureTest() { m_desktop.fill(Qt::gray); }

    void paint(const QRect &rectangle, Qt::GlobalColor color)
    {
        for (int y = rectangle.top(); y <= rectangle.bottom(); ++y)
            for (int x = rectangle.left(); x <= rectangle.right(); ++x)
                m_desktop.setPixelColor(x, y, color);
    }

    [[nodiscard]] CastPixels pixels(int transform = 0) const
    {
        return { m_desktop.constBits(),
                 m_desktop.bytesPerLine(),
                 m_desktop.size(),
                 m_desktop.format() == QImage::Format_RGBX8888 ? CastPixels::Order::Rgbx
                                                               : CastPixels::Order::Bgrx,
                 transform };
    }

    /// A frame of the desktop as it is, of which \a damage is told.
    [[nodiscard]] CastFrame frame(std::uint64_t sequence, const std::vector<QRect> &damage) const
    {
        CastFrame made;
        made.sequence = sequence;
        made.damage = damage;
        made.pixels = pixels();
        return made;
    }

    void send(std::uint64_t sequence, const std::vector<QRect> &damage)
    {
        const CastFrame sent = frame(sequence, damage);
        m_picture.note(sent);
        m_picture.show(*sent.pixels);
    }

    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &rectangle = { { 0, 0 }, size })
    {
        return m_grabber.grab(rectangle);
    }
    [[nodiscard]] QImage grabbed(const QRect &rectangle = { { 0, 0 }, size })
    {
        const auto image = grab(rectangle);
        return image ? pixelsOf(*image) : QImage();
    }
    [[nodiscard]] bool isUpToDate() { return grabbed() == m_desktop.convertToFormat(QImage::Format_RGB32); }

    QImage m_desktop { size, QImage::Format_RGB32 };
    double m_now = 1000; ///< seconds
    CastPicture m_picture { [this] { return m_now; } };
    CastGrabber m_grabber { m_picture };
};

TEST_F(CastPictureTest, OfTheFirstFrameAllIsShownWhateverItSaysHasChanged)
{
    EXPECT_FALSE(grab());
    EXPECT_FALSE(m_picture.isThere());
    send(1, { QRect(0, 0, 1, 1) });
    EXPECT_TRUE(m_picture.isThere());
    EXPECT_EQ(m_picture.size(), size);
    EXPECT_TRUE(isUpToDate());
}

TEST_F(CastPictureTest, OnlyWhatHasChangedIsLookedAt)
{
    send(1, {});
    const Versions before = grab()->bandVersions();
    paint({ 0, 0, 1, 1 }, Qt::green); // which nobody tells of
    paint({ 0, 20, 5, 1 }, Qt::red);
    send(2, { QRect(0, 20, 5, 1) });
    const auto image = grab();
    const Versions now = image->bandVersions();
    EXPECT_EQ(now[0], before[0]);
    EXPECT_NE(now[1], before[1]);
    EXPECT_EQ(now[2], before[2]);
    EXPECT_NE(pixelsOf(*image).pixelColor(0, 0), QColor(Qt::green));
    EXPECT_EQ(pixelsOf(*image).pixelColor(4, 20), QColor(Qt::red));
    paint({ 0, 20, 5, 1 }, Qt::blue); // which nobody tells of any more
    send(3, { QRect(0, 40, 5, 1) });
    EXPECT_EQ(grab()->bandVersions(), now);
}

TEST_F(CastPictureTest, ASilentScreenKeepsItsPictureAndItsVersions)
{
    send(1, {});
    const auto first = grab();
    const auto second = grab();
    EXPECT_TRUE(first->isSamePicture(*second));
    EXPECT_EQ(first->bits(), second->bits()) << "nothing is copied";
}

TEST_F(CastPictureTest, WhatFramesThatAreLeftOutHaveChangedIsShownToo)
{
    send(1, {});
    EXPECT_TRUE(isUpToDate());
    paint({ 0, 0, 5, 1 }, Qt::red);
    m_picture.note(frame(2, { QRect(0, 0, 5, 1) }));
    paint({ 0, 70, 5, 1 }, Qt::blue);
    send(3, { QRect(0, 70, 5, 1) });
    EXPECT_TRUE(isUpToDate());
}

TEST_F(CastPictureTest, WhatSeveralPicturesHaveChangedSinceTheLastGrabIsInTheNext)
{
    send(1, {});
    EXPECT_TRUE(isUpToDate());
    paint({ 0, 0, 5, 1 }, Qt::red);
    send(2, { QRect(0, 0, 5, 1) });
    paint({ 0, 70, 5, 1 }, Qt::blue);
    send(3, { QRect(0, 70, 5, 1) });
    EXPECT_TRUE(isUpToDate());
}

TEST_F(CastPictureTest, BehindALostFrameAllMayHaveChanged)
{
    send(1, {});
    EXPECT_TRUE(isUpToDate());
    paint({ 0, 0, 5, 1 }, Qt::red); // in a frame that was lost
    send(3, { QRect(0, 70, 5, 1) });
    EXPECT_TRUE(isUpToDate());
}

TEST_F(CastPictureTest, FramesThatAreNotCountedAreNotTakenForLost)
{
    send(0, {});
    const Versions before = grab()->bandVersions();
    paint({ 0, 0, 5, 1 }, Qt::red); // which nobody tells of
    send(0, { QRect(0, 70, 5, 1) });
    EXPECT_EQ(grab()->bandVersions(), before);
}

TEST_F(CastPictureTest, EveryTwoSecondsAllIsLookedAt)
{
    send(1, {});
    EXPECT_TRUE(isUpToDate());
    paint({ 0, 0, 5, 1 }, Qt::red); // which nobody tells of
    m_now += 1.9;
    send(2, { QRect(0, 70, 5, 1) });
    EXPECT_FALSE(isUpToDate());
    m_now += 0.2;
    send(3, { QRect(0, 70, 5, 1) });
    EXPECT_TRUE(isUpToDate());
}

TEST_F(CastPictureTest, WhereNoChangesAreToldAllMayHaveChanged)
{
    send(1, {});
    EXPECT_TRUE(isUpToDate());
    paint({ 0, 0, 5, 1 }, Qt::red);
    send(2, {});
    EXPECT_TRUE(isUpToDate());
}

TEST_F(CastPictureTest, APointerThatMovesChangesNoPixels)
{
    send(1, {});
    const Versions before = grab()->bandVersions();
    CastFrame moved;
    moved.sequence = 2;
    moved.pointer = CastPointer { true, QPoint(7, 8), std::nullopt };
    m_picture.note(moved);
    EXPECT_EQ(grab()->bandVersions(), before);
    EXPECT_EQ(m_picture.pointerPosition(), QPoint(7, 8));
    paint({ 0, 0, 5, 1 }, Qt::red); // which nobody tells of
    send(3, { QRect(0, 70, 5, 1) });
    EXPECT_EQ(grab()->bandVersions(), before) << "it counts as a frame that came";
}

TEST_F(CastPictureTest, AShapeStaysUntilTheNext)
{
    const auto shape = std::make_shared<const CursorShape>();
    CastFrame moved;
    moved.pointer = CastPointer { true, QPoint(1, 1), shape };
    m_picture.note(moved);
    EXPECT_EQ(m_picture.cursorShape(), shape);
    moved.pointer = CastPointer { true, QPoint(2, 1), std::nullopt };
    m_picture.note(moved);
    EXPECT_EQ(m_picture.cursorShape(), shape);
    moved.pointer = CastPointer { false, QPoint(0, 0), std::nullopt };
    m_picture.note(moved);
    EXPECT_EQ(m_picture.cursorShape(), nullptr) << "off the monitor";
    EXPECT_EQ(m_picture.pointerPosition(), QPoint(2, 1));
    moved.pointer = CastPointer { true, QPoint(3, 1), std::nullopt };
    m_picture.note(moved);
    EXPECT_EQ(m_picture.cursorShape(), shape);
    moved.pointer = CastPointer { true, QPoint(3, 1), std::shared_ptr<const CursorShape>() };
    m_picture.note(moved);
    EXPECT_EQ(m_picture.cursorShape(), nullptr) << "hidden by a program";
}

TEST_F(CastPictureTest, AGrabIsThePartThatLiesOnThePicture)
{
    m_desktop = noisePicture(size, 1);
    send(1, {});
    for (const QRect &part :
         { QRect(3, 5, 20, 33), QRect(4, 5, 20, 33), QRect(30, 60, 100, 100), QRect(-5, -5, 10, 10) }) {
        EXPECT_EQ(grabbed(part), m_desktop.copy(part & QRect({ 0, 0 }, size)));
    }
}

TEST_F(CastPictureTest, AGrabThatFindsNothingMissesNothing)
{
    send(1, {});
    EXPECT_TRUE(isUpToDate());
    paint({ 0, 0, 5, 1 }, Qt::red);
    send(2, { QRect(0, 0, 5, 1) });
    EXPECT_FALSE(grab({ 40, 0, 10, 10 }));
    EXPECT_TRUE(isUpToDate());
}

TEST_F(CastPictureTest, APartsBandsAreItsOwn)
{
    const QRect part(3, 5, 20, 40); // bands from the rows 5, 21 and 37 on
    send(1, {});
    const Versions before = grab(part)->bandVersions();
    paint({ 4, 20, 1, 1 }, Qt::red);
    send(2, { QRect(4, 20, 1, 1) });
    const Versions now = grab(part)->bandVersions();
    EXPECT_NE(now[0], before[0]);
    EXPECT_EQ(now[1], before[1]) << "looked at, but it has not changed";
    EXPECT_EQ(now[2], before[2]);
    EXPECT_EQ(grabbed(part), m_desktop.copy(part));
}

TEST_F(CastPictureTest, WhatChangesBesideAPartDoesNotChangeIt)
{
    const QRect part(0, 0, 10, 72);
    send(1, {});
    const Versions before = grab(part)->bandVersions();
    paint({ 20, 0, 10, 72 }, Qt::red);
    send(2, { QRect(20, 0, 10, 72) });
    EXPECT_EQ(grab(part)->bandVersions(), before);
}

TEST_F(CastPictureTest, AMonitorMayBecomeLargerAndSmaller)
{
    send(1, {});
    EXPECT_TRUE(isUpToDate());
    const QRect all(0, 0, 1000, 1000);
    for (const QSize &other : { QSize(80, 72), QSize(80, 30), QSize(40, 72) }) {
        m_desktop = noisePicture(other, 2);
        send(2, { QRect(0, 0, 1, 1) });
        EXPECT_EQ(m_picture.size(), other);
        EXPECT_EQ(grabbed(all), m_desktop);
    }
}

TEST_F(CastPictureTest, RedAndBlueMayComeTheOtherWayRound)
{
    const QImage noise = noisePicture(size, 3);
    m_desktop = noise.convertToFormat(QImage::Format_RGBX8888);
    send(1, {});
    EXPECT_EQ(grabbed(), noise);
}

TEST_F(CastPictureTest, WhatWasTurnedIsTurnedRight)
{
    for (int transform = 1; transform < 8; ++transform) {
        const QImage upright = noisePicture(size, static_cast<std::uint32_t>(transform));
        const QImage mirrored = upright.mirrored(transform >= 4, false);
        m_desktop = mirrored.transformed(QTransform().rotate(-90.0 * (transform % 4)));
        m_picture.show(pixels(transform));
        EXPECT_EQ(m_picture.size(), size);
        EXPECT_EQ(grabbed(), upright) << transform;
    }
}

TEST_F(CastPictureTest, ARowEndsWhereItsPixelsDo)
{
    const QImage wide = noisePicture({ 60, 72 }, 5);
    m_picture.show({ wide.constBits(), wide.bytesPerLine(), size, CastPixels::Order::Bgrx, 0 });
    EXPECT_EQ(grabbed(), wide.copy({ { 0, 0 }, size }));
}

TEST_F(CastPictureTest, BehindTheEndThereIsNothing)
{
    send(1, {});
    EXPECT_TRUE(grab());
    m_picture.end();
    send(2, {});
    EXPECT_FALSE(grab());
    EXPECT_FALSE(m_picture.isThere());
    EXPECT_TRUE(m_picture.hasEnded());
    EXPECT_TRUE(m_picture.size().isEmpty());
}

} // namespace
} // namespace vornic::test
