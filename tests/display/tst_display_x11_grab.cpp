#include "support/wait_until.h"
#include "x11_display_fixture.h"

#include <atomic>
#include <limits>
#include <map>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

using namespace vornic;
using namespace vornic::test;

namespace {

constexpr QSize screenSize { 1000, 603 };

class X11GrabTest : public X11DisplayTest
{
protected:
    void SetUp() override { startServer({ .size = screenSize }); }
};

TEST_F(X11GrabTest, TheWholeDisplayIsExact)
{
    const QImage picture = noisePicture(screenSize, 1);
    m_painter->showWindow(picture, QPoint(0, 0));
    EXPECT_EQ(grabbed(wholeDisplay()), picture);
}

TEST_F(X11GrabTest, AnyRectangleIsExact)
{
    const QImage picture = noisePicture(screenSize, 1);
    m_painter->showWindow(picture, QPoint(0, 0));
    std::mt19937 random(7);
    const auto below
        = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    for (int i = 0; i < 60; ++i) {
        const QPoint from(below(screenSize.width()), below(screenSize.height()));
        const QRect rectangle(
            from, QSize(1 + below(screenSize.width() - from.x()), 1 + below(screenSize.height() - from.y())));
        ASSERT_EQ(grabbed(rectangle), picture.copy(rectangle))
            << rectangle.x() << ' ' << rectangle.y() << ' ' << rectangle.width() << ' ' << rectangle.height();
    }
}

TEST_F(X11GrabTest, OnlyThePartOnTheDisplayIsGrabbed)
{
    const QImage picture = noisePicture(screenSize, 1);
    m_painter->showWindow(picture, QPoint(0, 0));
    EXPECT_EQ(grabbed(QRect(-50, -20, 100, 100)), picture.copy(0, 0, 50, 80));
    EXPECT_EQ(grabbed(QRect(950, 580, 100, 100)), picture.copy(950, 580, 50, 23));
    constexpr int farthest = std::numeric_limits<int>::max();
    EXPECT_EQ(grabbed(QRect(QPoint(-farthest, -farthest), QPoint(farthest, farthest))), picture);
}

TEST_F(X11GrabTest, OffTheDisplayThereIsNoImage)
{
    EXPECT_FALSE(m_display->grab(QRect(1000, 0, 10, 10)));
    EXPECT_FALSE(m_display->grab(QRect(0, 603, 10, 10)));
    EXPECT_FALSE(m_display->grab(QRect(-10, 0, 10, 10)));
    EXPECT_FALSE(m_display->grab(QRect(10, 10, 0, 0)));
    EXPECT_FALSE(m_display->grab(QRect(10, 10, -5, 20)));
}

TEST_F(X11GrabTest, TheSamePictureKeepsItsVersions)
{
    m_painter->showWindow(noisePicture(screenSize, 1), QPoint(0, 0));
    const auto first = m_display->grab(wholeDisplay());
    ASSERT_EQ(static_cast<int>(first->bandVersions().size()), bandCount(screenSize.height()));
    EXPECT_TRUE(m_display->grab(wholeDisplay())->isSamePicture(*first));
}

TEST_F(X11GrabTest, DrawingTheSamePixelsAgainKeepsTheVersions)
{
    const QImage picture = noisePicture(screenSize, 1);
    const auto window = m_painter->showWindow(picture, QPoint(0, 0));
    const auto before = m_display->grab(wholeDisplay());
    m_painter->drawInWindow(window, picture, QPoint(0, 0));
    EXPECT_TRUE(m_display->grab(wholeDisplay())->isSamePicture(*before));
}

TEST_F(X11GrabTest, OnlyChangedBandsGetNewVersions)
{
    const auto window = m_painter->showWindow(noisePicture(screenSize, 1), QPoint(0, 0));
    const auto before = m_display->grab(wholeDisplay());
    m_painter->drawInWindow(window, noisePicture(QSize(3, 2), 2), QPoint(500, 47)); // the last row of one
    const auto after = m_display->grab(wholeDisplay());
    for (std::size_t band = 0; band < after->bandVersions().size(); ++band) {
        const bool isKept = before->bandVersions()[band] == after->bandVersions()[band];
        EXPECT_EQ(isKept, band != 2 && band != 3) << band;
    }
    EXPECT_EQ(pixelsOf(*after), m_painter->screen());
}

TEST_F(X11GrabTest, ChangesBesideTheRectangleChangeNothing)
{
    const auto window = m_painter->showWindow(noisePicture(screenSize, 1), QPoint(0, 0));
    const QRect left(0, 0, 300, 603);
    const auto before = m_display->grab(left);
    m_painter->drawInWindow(window, noisePicture(QSize(50, 50), 2), QPoint(300, 100));
    EXPECT_TRUE(m_display->grab(left)->isSamePicture(*before));
}

TEST_F(X11GrabTest, AHeldImageStaysAsItWas)
{
    const auto window = m_painter->showWindow(noisePicture(screenSize, 0), QPoint(0, 0));
    std::vector<std::shared_ptr<const BitmapImage>> held;
    // More of them than a grabber keeps memory for.
    for (std::uint32_t i = 0; i < 7; ++i) {
        m_painter->drawInWindow(window, noisePicture(screenSize, i), QPoint(0, 0));
        held.push_back(m_display->grab(wholeDisplay()));
    }
    for (std::uint32_t i = 0; i < 7; ++i)
        EXPECT_EQ(pixelsOf(*held[i]), noisePicture(screenSize, i)) << i;
}

TEST_F(X11GrabTest, PartialChangesAreRightInEveryOrderOfLettingGo)
{
    QImage picture = noisePicture(screenSize, 1);
    const auto window = m_painter->showWindow(picture, QPoint(0, 0));
    struct Held {
        std::shared_ptr<const BitmapImage> image;
        QImage expected;
    };
    std::vector<Held> held;
    std::mt19937 random(3);
    for (int i = 0; i < 60; ++i) {
        const QPoint where(static_cast<int>(random() % 900), static_cast<int>(random() % 580));
        const QImage patch = noisePicture(QSize(40, 20), static_cast<std::uint32_t>(random()));
        m_painter->drawInWindow(window, patch, where);
        auto image = m_display->grab(wholeDisplay());
        held.push_back({ image, m_painter->screen() });
        ASSERT_EQ(pixelsOf(*image), held.back().expected) << i;
        image.reset();
        while (held.size() > random() % 4) {
            const auto gone = held.begin() + static_cast<std::ptrdiff_t>(random() % held.size());
            ASSERT_EQ(pixelsOf(*gone->image), gone->expected) << i;
            held.erase(gone);
        }
    }
}

TEST_F(X11GrabTest, EqualVersionsMeanEqualPixelsAcrossManyGrabs)
{
    const auto window = m_painter->showWindow(noisePicture(screenSize, 1), QPoint(0, 0));
    const QImage one = noisePicture(QSize(30, 100), 1);
    const QImage other = noisePicture(QSize(30, 100), 2);
    std::map<std::pair<std::size_t, std::uint64_t>, QImage> seen;
    for (int i = 0; i < 12; ++i) {
        m_painter->drawInWindow(window, i % 3 == 0 ? one : other, QPoint(10, 50 * (i % 2)));
        const auto image = m_display->grab(wholeDisplay());
        const QImage pixels = pixelsOf(*image);
        for (std::size_t band = 0; band < image->bandVersions().size(); ++band) {
            const QImage rows = pixels.copy(0, static_cast<int>(band) * 16, pixels.width(), 16);
            const auto [place, isNew] = seen.try_emplace({ band, image->bandVersions()[band] }, rows);
            ASSERT_EQ(place->second, rows) << i << ' ' << band;
        }
    }
}

TEST_F(X11GrabTest, AnImageOutlivesItsDisplay)
{
    const QImage picture = noisePicture(screenSize, 1);
    m_painter->showWindow(picture, QPoint(0, 0));
    const auto image = m_display->grab(wholeDisplay());
    m_display.reset();
    EXPECT_EQ(pixelsOf(*image), picture);
}

TEST_F(X11GrabTest, WithoutAServerThereIsNoDisplay)
{
    m_painter->showWindow(noisePicture(screenSize, 1), QPoint(0, 0));
    const auto before = m_display->grab(wholeDisplay());
    const QPoint pointer = m_display->pointerPosition();
    m_server->kill();
    EXPECT_FALSE(m_display->grab(QRect(QPoint(0, 0), screenSize)));
    EXPECT_EQ(m_display->mainDisplayId(), 0U);
    EXPECT_TRUE(m_display->mainDisplaySize().isEmpty());
    EXPECT_EQ(m_display->pointerPosition() + QPoint(0, 0), pointer);
    (void)m_display->cursorShape();
    EXPECT_EQ(pixelsOf(*before), noisePicture(screenSize, 1));
}

TEST_F(X11GrabTest, TheServerMayEndInTheMiddle)
{
    std::atomic<bool> isStopping { false };
    std::atomic<int> grabs { 0 };
    std::thread grabber([&] {
        QRect rectangle(0, 0, 900, 600);
        while (!isStopping) {
            rectangle.setWidth(rectangle.width() == 900 ? 901
                                                        : 900); // another one every time: always a fetch
            grabs += m_display->grab(rectangle) ? 1 : 0;
        }
    });
    EXPECT_TRUE(waitUntil([&grabs] { return grabs >= 20; }));
    m_server->kill();
    isStopping = true;
    grabber.join();
    EXPECT_FALSE(m_display->grab(QRect(0, 0, 900, 600)));
}

TEST_F(X11GrabTest, AFrozenServerCountsAsGoneUntilItAnswersAgain)
{
    std::mutex mutex;
    QStringList logged;
    setLogSink([&](const QString &line) {
        const std::lock_guard lock(mutex);
        logged += line;
    });
    ASSERT_FALSE(grabbed(wholeDisplay()).isNull());
    m_server->setFrozen(true);
    EXPECT_FALSE(m_display->grab({ 0, 0, 64, 64 })) << "another rectangle must be fetched";
    EXPECT_EQ(m_display->mainDisplayId(), 0U);
    EXPECT_TRUE(m_display->mainDisplaySize().isEmpty());
    EXPECT_FALSE(m_display->grab({ 0, 0, 64, 64 }));
    m_display->pointerPosition(); // as the one before, at once
    m_server->setFrozen(false);
    ASSERT_TRUE(waitUntil([this] { return m_display->mainDisplayId() != 0; }));
    EXPECT_TRUE(isUpToDate());
    const std::lock_guard lock(mutex);
    EXPECT_EQ(logged, QStringList("The X server has not answered for two seconds."));
}

TEST_F(X11GrabTest, ManyThreadsMayAskAtOnce)
{
    const QImage picture = noisePicture(screenSize, 1);
    const auto window = m_painter->showWindow(picture, QPoint(0, 0));
    std::atomic<bool> isStopping { false };
    std::atomic<int> wrong { 0 };
    std::atomic<int> grabs { 0 };
    const auto work = [&](const QRect &rectangle) {
        while (!isStopping) {
            const auto image = m_display->grab(rectangle);
            // The upper half never changes; the image may be let go on this thread while another one grabs.
            const QRect still(0, 0, rectangle.width(), 200);
            if (!image || pixelsOf(*image).copy(still) != picture.copy(still))
                ++wrong;
            (void)m_display->pointerPosition();
            (void)m_display->cursorShape();
            (void)m_display->mainDisplaySize();
            ++grabs;
        }
    };
    std::thread one(work, wholeDisplay());
    std::thread two(work, wholeDisplay());
    std::thread three(work, QRect(0, 0, 500, 400));
    for (std::uint32_t i = 0; grabs < 60; ++i) {
        m_painter->drawInWindow(window, noisePicture(QSize(100, 100), i), QPoint(100, 300));
        m_painter->movePointer(QPoint(static_cast<int>(i % 500), 5));
    }
    isStopping = true;
    one.join();
    two.join();
    three.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(isUpToDate());
}

TEST_F(X11GrabTest, AMonitorOffTheOriginIsTheDisplay)
{
    const QImage picture = noisePicture(screenSize, 1);
    m_painter->showWindow(picture, QPoint(0, 0));
    ASSERT_EQ(m_server->run({ "xrandr", "--setmonitor", "*right", "400/100x300/80+320+130", "screen" }), 0);
    EXPECT_EQ(m_display->mainDisplaySize(), QSize(400, 300));
    EXPECT_NE(m_display->mainDisplayId(), 0U);
    const QRect onRoot(320, 130, 400, 300);
    EXPECT_EQ(grabbed(wholeDisplay()), picture.copy(onRoot));
    EXPECT_EQ(grabbed(QRect(10, 20, 30, 40)), picture.copy(330, 150, 30, 40));
    // There is a picture left of it and above it, but it is not on the display.
    EXPECT_EQ(grabbed(QRect(-100, -100, 150, 150)), picture.copy(320, 130, 50, 50));
    m_painter->movePointer(QPoint(321, 129));
    EXPECT_EQ(m_display->pointerPosition(), QPoint(1, -1));
}

TEST_F(X11GrabTest, ThePrimaryMonitorIsTheDisplay)
{
    ASSERT_EQ(m_server->run({ "xrandr", "--setmonitor", "left", "300/80x200/50+0+0", "screen" }), 0);
    EXPECT_EQ(m_display->mainDisplaySize(), QSize(300, 200));
    ASSERT_EQ(m_server->run({ "xrandr", "--setmonitor", "*best", "400/100x250/60+300+0", "none" }), 0);
    EXPECT_EQ(m_display->mainDisplaySize(), QSize(400, 250));
    ASSERT_EQ(m_server->run({ "xrandr", "--delmonitor", "best" }), 0);
    EXPECT_EQ(m_display->mainDisplaySize(), QSize(300, 200));
}

TEST_F(X11GrabTest, AMonitorThatReachesOffTheRootIsCutOff)
{
    ASSERT_EQ(m_server->run({ "xrandr", "--setmonitor", "*over", "600/100x500/80+700+300", "screen" }), 0);
    EXPECT_EQ(m_display->mainDisplaySize(), QSize(300, 303));
    EXPECT_EQ(grabbed(QRect(0, 0, 600, 500)), m_painter->screen(QRect(700, 300, 300, 303)));
}

TEST_F(X11GrabTest, ASmallerScreenIsFollowed)
{
    m_painter->setRootBackground(noisePicture(QSize(100, 100), 1));
    ASSERT_TRUE(isUpToDate());
    const QStringList mode { "small", "40", "800", "840", "968", "1056", "600", "601", "605", "628" };
    ASSERT_EQ(m_server->run(QStringList { "xrandr", "--newmode" } + mode), 0);
    ASSERT_EQ(m_server->run({ "xrandr", "--addmode", "screen", "small" }), 0);
    ASSERT_EQ(m_server->run({ "xrandr", "--output", "screen", "--mode", "small" }), 0);
    EXPECT_EQ(m_display->mainDisplaySize(), QSize(800, 600));
    const auto image = m_display->grab(QRect(QPoint(0, 0), screenSize));
    ASSERT_TRUE(image);
    EXPECT_EQ(pixelsOf(*image), m_painter->screen());
    EXPECT_EQ(image->width(), 800);
    ASSERT_EQ(m_server->run({ "xrandr", "--output", "screen", "--mode", "1000x603" }), 0);
    EXPECT_EQ(m_display->mainDisplaySize(), screenSize);
    EXPECT_TRUE(isUpToDate());
}

TEST_F(X11GrabTest, ADisplayThatKeepsChangingSizeIsNeverRefused)
{
    const QStringList mode { "small", "40", "800", "840", "968", "1056", "600", "601", "605", "628" };
    ASSERT_EQ(m_server->run(QStringList { "xrandr", "--newmode" } + mode), 0);
    ASSERT_EQ(m_server->run({ "xrandr", "--addmode", "screen", "small" }), 0);
    std::atomic<bool> isStopping { false };
    std::atomic<int> grabs { 0 };
    std::atomic<int> refused { 0 };
    std::thread grabber([&] {
        int width = 2000;
        while (!isStopping) {
            // Another rectangle every time, so that there is always a fetch.
            width = width == 2000 ? 500 : 2000;
            if (!m_display->grab(QRect(0, 0, width, 2000)))
                ++refused;
            ++grabs;
        }
    });
    for (int i = 0; i < 30; ++i) {
        const int before = grabs;
        EXPECT_EQ(
            m_server->run({ "xrandr", "--output", "screen", "--mode", i % 2 == 0 ? "small" : "1000x603" }),
            0);
        while (grabs == before)
            std::this_thread::yield();
    }
    isStopping = true;
    grabber.join();
    EXPECT_EQ(refused, 0);
}

TEST_F(X11GrabTest, WithAllMonitorsOffTheRootIsTheDisplay)
{
    ASSERT_EQ(m_server->run({ "xrandr", "--fb", "1000x603", "--output", "screen", "--off" }), 0);
    EXPECT_NE(m_display->mainDisplayId(), 0U);
    EXPECT_EQ(m_display->mainDisplaySize(), m_painter->screenSize());
    EXPECT_TRUE(isUpToDate());
}

class X11DepthTest : public X11DisplayTest, public testing::WithParamInterface<int>
{
};

TEST_P(X11DepthTest, IsConverted)
{
    // An odd width: rows of 16-bit pixels are padded there.
    startServer({ .size = QSize(501, 333), .depth = GetParam() });
    const auto window = m_painter->showWindow(noisePicture(QSize(501, 333), 1), QPoint(0, 0));
    const auto before = m_display->grab(wholeDisplay());
    ASSERT_TRUE(before);
    EXPECT_EQ(pixelsOf(*before), m_painter->screen());
    EXPECT_EQ(grabbed(QRect(3, 5, 77, 91)), m_painter->screen(QRect(3, 5, 77, 91)));

    const auto whole = m_display->grab(wholeDisplay());
    EXPECT_TRUE(m_display->grab(wholeDisplay())->isSamePicture(*whole));
    m_painter->drawInWindow(window, noisePicture(QSize(20, 20), 2), QPoint(100, 100));
    const auto after = m_display->grab(wholeDisplay());
    EXPECT_EQ(pixelsOf(*after), m_painter->screen());
    EXPECT_EQ(after->bandVersions()[0], whole->bandVersions()[0]);
    EXPECT_NE(after->bandVersions()[6], whole->bandVersions()[6]);
}

INSTANTIATE_TEST_SUITE_P(Depths, X11DepthTest, testing::Values(16, 24, 30));

} // namespace
