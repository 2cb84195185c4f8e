#include "support/wait_until.h"
#include "x11_display_fixture.h"

#include <QFile>
#include <QTemporaryDir>

#include <functional>
#include <random>
#include <utility>
#include <vector>

using namespace vornic;
using namespace vornic::test;

namespace {

constexpr QSize screenSize { 800, 500 };

/// Everything that changes what is seen, each followed by a comparison with what the server shows.
class X11DamageTest : public X11DisplayTest
{
protected:
    void startWith(const QStringList &arguments = {})
    {
        startServer({ .size = screenSize, .arguments = arguments });
        m_painter->setRootBackground(noisePicture(QSize(90, 70), 1));
        ASSERT_TRUE(isUpToDate());
    }

    /// Where something composites, the screen follows a change a little later. A grab between two equal
    /// readings of the screen must equal them, whenever it is made; true once the screen holds still.
    [[nodiscard]] bool isFollowed() const
    {
        int timesStill = 0;
        bool isRight = true;
        QImage before = m_painter->screen();
        const auto holdsStill = [&] {
            const QImage picture = grabbed(wholeDisplay());
            QImage after = m_painter->screen();
            const bool isStill = after == before;
            isRight = !isStill || picture == before;
            timesStill = isStill ? timesStill + 1 : 0;
            before = std::move(after);
            return !isRight || timesStill == 8;
        };
        return waitUntil(holdsStill) && isRight;
    }

    /// The same, after waiting until \a rectangle of the screen shows \a picture.
    [[nodiscard]] bool isFollowedTo(const QRect &rectangle, const QImage &picture) const
    {
        return waitUntil([&] { return m_painter->screen(rectangle) == picture; })
            && grabbed(rectangle) == picture && isFollowed();
    }

    void changeEverything(const std::function<bool()> &isRight)
    {
        m_painter->drawOnRoot(noisePicture(QSize(50, 40), 2), QPoint(600, 300));
        EXPECT_TRUE(isRight()) << "drawn on the root";
        const auto lower = m_painter->showWindow(noisePicture(QSize(200, 150), 3), QPoint(50, 60));
        EXPECT_TRUE(isRight()) << "a window shown";
        const auto child = m_painter->showWindow(noisePicture(QSize(60, 50), 4), QPoint(20, 30), lower);
        EXPECT_TRUE(isRight()) << "a window inside a window shown";
        m_painter->drawInWindow(child, noisePicture(QSize(20, 20), 5), QPoint(10, 10));
        EXPECT_TRUE(isRight()) << "drawn in a window inside a window";
        m_painter->moveWindow(child, QPoint(100, 70));
        EXPECT_TRUE(isRight()) << "a window moved inside a window";
        const auto upper = m_painter->showWindow(noisePicture(QSize(200, 150), 6), QPoint(150, 120));
        EXPECT_TRUE(isRight()) << "a window over another";
        m_painter->drawInWindow(lower, noisePicture(QSize(200, 150), 7), QPoint(0, 0));
        EXPECT_TRUE(isRight()) << "drawn in a window that is partly covered";
        m_painter->raiseWindow(lower);
        EXPECT_TRUE(isRight()) << "raised";
        m_painter->lowerWindow(lower);
        EXPECT_TRUE(isRight()) << "lowered";
        m_painter->moveWindow(upper, QPoint(400, 200));
        EXPECT_TRUE(isRight()) << "moved";
        m_painter->moveWindow(upper, QPoint(403, 199));
        EXPECT_TRUE(isRight()) << "moved onto itself";
        m_painter->moveWindow(upper, QPoint(700, 450));
        EXPECT_TRUE(isRight()) << "moved partly off the screen";
        m_painter->scrollWindow(lower, 9);
        EXPECT_TRUE(isRight()) << "scrolled";
        m_painter->shapeWindow(upper, QRegion(0, 0, 30, 30) + QRegion(40, 10, 40, 60));
        EXPECT_TRUE(isRight()) << "shaped";
        m_painter->shapeWindow(upper, QRegion(10, 0, 30, 30));
        EXPECT_TRUE(isRight()) << "shaped anew";
        m_painter->hideWindow(lower);
        EXPECT_TRUE(isRight()) << "hidden";
        m_painter->showAgain(lower);
        EXPECT_TRUE(isRight()) << "shown again";
        m_painter->destroyWindow(upper);
        EXPECT_TRUE(isRight()) << "destroyed";
        m_painter->setRootBackground(noisePicture(QSize(70, 90), 8));
        EXPECT_TRUE(isRight()) << "another background";
        m_painter->destroyWindow(lower);
        EXPECT_TRUE(isRight()) << "destroyed with what is inside";
    }

    /// Changes at random, with \a isRight asked after each.
    void changeAtRandom(int times, const std::function<bool()> &isRight)
    {
        std::mt19937 random(11);
        const auto below
            = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
        std::vector<ScreenPainter::Window> windows;
        for (std::uint32_t i = 0; i < 5; ++i)
            windows.push_back(
                m_painter->showWindow(noisePicture(QSize(180, 120), i), QPoint(below(700), below(400))));
        const std::vector<std::function<void(ScreenPainter::Window)>> changes {
            [&](auto window) { m_painter->moveWindow(window, QPoint(below(800) - 60, below(500) - 40)); },
            [&](auto window) { m_painter->raiseWindow(window); },
            [&](auto window) { m_painter->lowerWindow(window); },
            [&](auto window) { m_painter->hideWindow(window); },
            [&](auto window) { m_painter->showAgain(window); },
            [&](auto window) { m_painter->scrollWindow(window, 1 + below(30)); },
            [&](auto window) {
                const auto seed = static_cast<std::uint32_t>(below(1000));
                m_painter->drawInWindow(
                    window, noisePicture(QSize(30, 20), seed), QPoint(below(150), below(100)));
            },
            [&](auto window) { m_painter->shapeWindow(window, QRegion(below(60), below(60), 80, 60)); },
        };
        for (int i = 0; i < times; ++i) {
            const int change = below(static_cast<int>(changes.size()));
            changes[static_cast<std::size_t>(change)](windows[static_cast<std::size_t>(below(5))]);
            ASSERT_TRUE(isRight()) << "step " << i << ", change " << change;
        }
    }

    const std::function<bool()> m_isUpToDate = [this] { return isUpToDate(); };
    const std::function<bool()> m_isFollowed = [this] { return isFollowed(); };
};

TEST_F(X11DamageTest, EveryChangeIsInTheNextPicture)
{
    startWith();
    changeEverything(m_isUpToDate);
}

TEST_F(X11DamageTest, RandomChangesAreInTheNextPicture)
{
    startWith();
    changeAtRandom(150, m_isUpToDate);
}

TEST_F(X11DamageTest, PartsOfTheScreenFollowToo)
{
    startWith();
    const QRect part(101, 83, 333, 251);
    changeAtRandom(100, [&] { return grabbed(part) == m_painter->screen(part); });
}

TEST_F(X11DamageTest, WithoutReportsEveryChangeIsInTheNextPicture)
{
    startWith({ "-extension", "DAMAGE" });
    changeEverything(m_isUpToDate);
}

TEST_F(X11DamageTest, WithoutReportsTheSamePictureKeepsItsVersions)
{
    startWith({ "-extension", "DAMAGE" });
    const auto before = m_display->grab(wholeDisplay());
    EXPECT_TRUE(m_display->grab(wholeDisplay())->isSamePicture(*before));
    m_painter->drawOnRoot(noisePicture(QSize(10, 10), 2), QPoint(50, 170));
    const auto after = m_display->grab(wholeDisplay());
    for (std::size_t band = 0; band < after->bandVersions().size(); ++band)
        EXPECT_EQ(after->bandVersions()[band] == before->bandVersions()[band], band != 10 && band != 11)
            << band;
}

TEST_F(X11DamageTest, AWindowManagerAndATerminalAreFollowed)
{
    startWith();
    const auto manager = m_server->startOpenbox();
    ASSERT_TRUE(manager);
    EXPECT_TRUE(isFollowed());
    const QTemporaryDir folder;
    const QString end = folder.filePath("end");
    const auto terminal = m_server->startXterm("seq 1 3000; touch '" + end + "'; sleep 100");
    ASSERT_TRUE(terminal);
    while (!QFile::exists(end))
        ASSERT_TRUE(isFollowed()) << "while it scrolls";
    EXPECT_TRUE(isFollowed()) << "once it has scrolled";
    ASSERT_EQ(m_server->xdotool({ "search", "--onlyvisible", "--class", "xterm", "windowmove", "300", "90" }),
              0);
    EXPECT_TRUE(isFollowed());
    ASSERT_EQ(m_server->xdotool({ "search", "--onlyvisible", "--class", "xterm", "windowminimize" }), 0);
    EXPECT_TRUE(isFollowed());
}

TEST_F(X11DamageTest, ACompositedScreenIsFollowed)
{
    startWith();
    const auto compositor = m_server->startPicom();
    ASSERT_TRUE(compositor);
    changeEverything(m_isFollowed);
    const QImage last = noisePicture(QSize(200, 150), 99);
    m_painter->showWindow(last, QPoint(70, 80));
    EXPECT_TRUE(isFollowedTo(QRect(70, 80, 200, 150), last));
}

TEST_F(X11DamageTest, RandomChangesOfACompositedScreenAreFollowed)
{
    startWith();
    const auto compositor = m_server->startPicom();
    ASSERT_TRUE(compositor);
    changeAtRandom(40, m_isFollowed);
}

TEST_F(X11DamageTest, ACompositorMayComeAndGo)
{
    startWith();
    const QRect place(100, 100, 200, 150);
    const auto window = m_painter->showWindow(noisePicture(place.size(), 1), place.topLeft());
    ASSERT_TRUE(isUpToDate());
    for (std::uint32_t round = 0; round < 2; ++round) {
        auto compositor = m_server->startPicom();
        ASSERT_TRUE(compositor);
        EXPECT_TRUE(isFollowed());
        const QImage during = noisePicture(place.size(), 10 + round);
        m_painter->drawInWindow(window, during, QPoint(0, 0));
        EXPECT_TRUE(isFollowedTo(place, during)) << round;
        compositor.reset();
        EXPECT_TRUE(isFollowed());
        const QImage after = noisePicture(place.size(), 20 + round);
        m_painter->drawInWindow(window, after, QPoint(0, 0));
        EXPECT_TRUE(isFollowedTo(place, after)) << round;
        EXPECT_TRUE(isUpToDate());
    }
}

} // namespace
