#include "display/bitmap_image.h"
#include "display/portal/cast_grabber.h"
#include "display/portal/cast_picture.h"
#include "display/portal/cast_stream.h"
#include "support/cast_source.h"
#include "support/pipewire_server.h"
#include "support/test_pictures.h"
#include "support/wait_until.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

namespace vornic::test {
namespace {

constexpr QSize size(64, 48);

/// A stream of pictures through a PipeWire of the test's own.
class CastStreamTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_server = PipeWireServer::start();
        ASSERT_TRUE(m_server);
        m_source = CastSource::start(m_server->connect(), size);
        ASSERT_TRUE(m_source);
        m_stream = CastStream::open(m_server->connect(),
                                    m_source->node(),
                                    m_picture,
                                    { [this] { ++m_firstPictures; }, [this] { ++m_ends; } });
        ASSERT_TRUE(m_stream);
        ASSERT_TRUE(waitUntil([&] { return m_source->isStreaming(); }));
    }

    /// Sends \a picture, of which \a damage is told, until it is shown.
    [[nodiscard]] bool show(const QImage &picture, const std::vector<QRect> &damage = {})
    {
        return m_source->sendUntil({ picture, damage }, [&] { return grabbed() == picture; });
    }
    [[nodiscard]] QImage grabbed()
    {
        const auto image = m_grabber.grab({ 0, 0, 1000, 1000 });
        return image ? pixelsOf(*image) : QImage();
    }

    int argc = 1;
    char name[5] = "test";
    char *argv[2] = { name, nullptr };
    QCoreApplication application { argc, argv };
    /// By a clock that stands: what it would look at every two seconds only is never shown.
    std::shared_ptr<CastPicture> m_picture = std::make_shared<CastPicture>([] { return 0.0; });
    CastGrabber m_grabber { *m_picture };
    std::atomic<int> m_firstPictures = 0;
    std::atomic<int> m_ends = 0;
    std::unique_ptr<PipeWireServer> m_server;
    std::unique_ptr<CastSource> m_source;
    std::unique_ptr<CastStream> m_stream;
};

TEST_F(CastStreamTest, PicturesComeAsTheyWereSent)
{
    for (std::uint32_t seed = 0; seed < 10; ++seed)
        ASSERT_TRUE(show(noisePicture(size, seed))) << seed;
    EXPECT_EQ(m_firstPictures, 1);
    EXPECT_EQ(m_ends, 0);
}

TEST_F(CastStreamTest, WhatIsToldToHaveChangedIsShown)
{
    QImage picture = noisePicture(size, 1);
    ASSERT_TRUE(show(picture));
    const auto before = m_grabber.grab({ { 0, 0 }, size })->bandVersions();
    picture.setPixelColor(5, 20, Qt::red);
    ASSERT_TRUE(show(picture, { QRect(5, 20, 1, 1) }));
    const auto now = m_grabber.grab({ { 0, 0 }, size })->bandVersions();
    EXPECT_EQ(now[0], before[0]);
    EXPECT_NE(now[1], before[1]);
}

TEST_F(CastStreamTest, WhereNoChangesAreToldAllIsShown)
{
    m_source->stopCounting(); // a frame that PipeWire drops would have all looked at
    QImage picture = noisePicture(size, 1);
    ASSERT_TRUE(show(picture, { QRect({ 0, 0 }, size) }));
    picture.setPixelColor(5, 20, Qt::red);
    EXPECT_TRUE(show(picture));
}

TEST_F(CastStreamTest, ThePointerMovesWithoutPictures)
{
    const QImage picture = noisePicture(size, 1);
    ASSERT_TRUE(show(picture));
    const auto before = m_grabber.grab({ { 0, 0 }, size });
    QImage arrow(3, 5, QImage::Format_ARGB32_Premultiplied);
    arrow.fill(qRgba(10, 20, 30, 40));
    SourceFrame moved;
    moved.pointer = QPoint(11, 12);
    moved.pointerPicture = arrow;
    moved.hotSpot = QPoint(1, 2);
    ASSERT_TRUE(m_source->sendUntil(moved, [&] { return m_picture->pointerPosition() == QPoint(11, 12); }));
    ASSERT_TRUE(m_picture->cursorShape());
    EXPECT_EQ(*m_picture->cursorShape(), (CursorShape { arrow, QPoint(1, 2) }));
    moved.pointer = QPoint(13, 14);
    moved.pointerPicture = {};
    ASSERT_TRUE(m_source->sendUntil(moved, [&] { return m_picture->pointerPosition() == QPoint(13, 14); }));
    EXPECT_TRUE(m_picture->cursorShape()) << "the shape is as before";
    EXPECT_TRUE(m_grabber.grab({ { 0, 0 }, size })->isSamePicture(*before));
}

TEST_F(CastStreamTest, AMonitorThatChangesItsSizeIsShownInItsNewOne)
{
    ASSERT_TRUE(show(noisePicture(size, 1)));
    for (const QSize &other : { QSize(128, 96), QSize(32, 200) }) {
        m_source->resize(other);
        ASSERT_TRUE(show(noisePicture(other, 2)));
        EXPECT_EQ(m_picture->size(), other);
    }
    EXPECT_EQ(m_ends, 0);
}

TEST_F(CastStreamTest, AMonitorThatIsTurnedIsShownUpright)
{
    const QImage upright = noisePicture(size.transposed(), 1);
    SourceFrame turned { upright.transformed(QTransform().rotate(-90)) };
    turned.transform = 1;
    EXPECT_TRUE(m_source->sendUntil(turned, [&] { return grabbed() == upright; }));
}

/// Compositors tell its place on the screen, not in the memory that they write, and its picture is upright.
TEST_F(CastStreamTest, ThePointerOfATurnedMonitorIsWhereItIsSeen)
{
    QImage arrow(3, 5, QImage::Format_ARGB32_Premultiplied);
    arrow.fill(qRgba(10, 20, 30, 40));
    for (int transform = 1; transform < 8; ++transform) {
        const QSize seen = transform % 2 == 0 ? size : size.transposed();
        const QImage upright = noisePicture(seen, static_cast<std::uint32_t>(transform));
        const QPoint place(transform, 40);
        SourceFrame turned {
            upright.mirrored(transform >= 4, false).transformed(QTransform().rotate(-90.0 * (transform % 4)))
        };
        turned.transform = transform;
        turned.pointer = place;
        turned.pointerPicture = arrow;
        turned.hotSpot = QPoint(1, 2);
        ASSERT_TRUE(m_source->sendUntil(turned, [&] { return grabbed() == upright; })) << transform;
        EXPECT_EQ(m_picture->pointerPosition(), place) << transform;
        ASSERT_TRUE(m_picture->cursorShape());
        EXPECT_EQ(*m_picture->cursorShape(), (CursorShape { arrow, QPoint(1, 2) })) << transform;
        SourceFrame moved;
        moved.transform = transform;
        moved.pointer = place + QPoint(0, 1);
        EXPECT_TRUE(m_source->sendUntil(moved, [&] {
            return m_picture->pointerPosition() == *moved.pointer;
        })) << transform;
    }
}

TEST_F(CastStreamTest, OneThatIsSlowToGrabHoldsUpNothing)
{
    ASSERT_TRUE(show(noisePicture(size, 0)));
    const auto held = m_grabber.grab({ { 0, 0 }, size });
    const QImage shown = pixelsOf(*held);
    // Many times as many as there are buffers, while nobody grabs.
    for (std::uint32_t seed = 1; seed <= 40; ++seed)
        ASSERT_TRUE(waitUntil([&] { return m_source->send({ noisePicture(size, seed) }); })) << seed;
    EXPECT_TRUE(show(noisePicture(size, 40)));
    EXPECT_EQ(pixelsOf(*held), shown);
}

TEST_F(CastStreamTest, WhatLostFramesHaveChangedIsShown)
{
    QImage picture = noisePicture(size, 1);
    ASSERT_TRUE(show(picture));
    picture.setPixelColor(5, 0, Qt::red); // in a frame that was lost
    m_source->loseFrame();
    EXPECT_TRUE(show(picture, { QRect(0, 40, 1, 1) }));
}

TEST_F(CastStreamTest, TheEndOfTheStreamIsTheEndOfThePicture)
{
    ASSERT_TRUE(show(noisePicture(size, 1)));
    m_source.reset();
    EXPECT_TRUE(waitUntil([&] { return m_picture->hasEnded(); }));
    EXPECT_TRUE(waitUntil([&] { return m_ends == 1; }));
    EXPECT_FALSE(m_grabber.grab({ { 0, 0 }, size }));
}

TEST_F(CastStreamTest, TheEndOfPipeWireIsToo)
{
    ASSERT_TRUE(show(noisePicture(size, 1)));
    m_server->killPipeWire();
    EXPECT_TRUE(waitUntil([&] { return m_ends == 1; }));
    EXPECT_TRUE(m_picture->hasEnded());
}

TEST_F(CastStreamTest, AndThatOfWhatConnectsStreams)
{
    ASSERT_TRUE(show(noisePicture(size, 1)));
    m_server->killWirePlumber();
    EXPECT_TRUE(waitUntil([&] { return m_ends == 1; }));
    EXPECT_TRUE(m_picture->hasEnded());
}

TEST_F(CastStreamTest, NobodyIsToldOfAnEndThatWasWanted)
{
    ASSERT_TRUE(show(noisePicture(size, 1)));
    m_stream.reset();
    EXPECT_EQ(m_ends, 0);
    EXPECT_FALSE(m_picture->hasEnded());
}

TEST_F(CastStreamTest, AStreamThatIsNotThereEnds)
{
    constexpr std::uint32_t nobody = 4711;
    std::atomic<int> ends = 0;
    const auto picture = std::make_shared<CastPicture>();
    const auto stream = CastStream::open(m_server->connect(), nobody, picture, { [] {}, [&] { ++ends; } });
    EXPECT_TRUE(!stream || waitUntil([&] { return ends == 1; }));
}

TEST_F(CastStreamTest, WithoutPipeWireThereIsNone)
{
    EXPECT_FALSE(CastStream::open(-1, 1, m_picture, { [] {}, [] {} }));
}

} // namespace
} // namespace vornic::test

int main(int argc, char **argv)
{
    if (!vornic::test::PipeWireServer::isInstalled())
        return 77;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
