#include "display/fake_display.h"
#include "selection/region_selection.h"
#include "support/wait_until.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace vornic {
namespace {

QWidget *shownWindow()
{
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible())
            return window;
    return nullptr;
}

/// A choice on a display of 800 x 600 that no server shows, without windows to click.
class Choice : public testing::Test
{
protected:
    Choice() { setMainDisplay(display); }

    void begin()
    {
        selection->begin();
        ASSERT_TRUE(test::waitUntil([] { return shownWindow() != nullptr; }));
    }
    bool isOver() const
    {
        return test::waitUntil([&] { return taken.size() + cancelled.size() + notShown.size() > 0; });
    }

    std::shared_ptr<FakeDisplay> display = std::make_shared<FakeDisplay>(QSize(800, 600));
    std::unique_ptr<RegionSelection> selection
        = std::make_unique<RegionSelection>(QRectF(300, 200, 200, 100));
    QSignalSpy taken { selection.get(), &RegionSelection::taken };
    QSignalSpy cancelled { selection.get(), &RegionSelection::cancelled };
    QSignalSpy notShown { selection.get(), &RegionSelection::displayNotShown };
};

TEST_F(Choice, IsTakenOnceAndOffTheScreen)
{
    begin();
    QTest::keyClick(shownWindow(), Qt::Key_Right);
    QTest::keyClick(shownWindow(), Qt::Key_Return);
    QTest::keyClick(shownWindow(), Qt::Key_Escape);
    ASSERT_TRUE(isOver());
    EXPECT_EQ(shownWindow(), nullptr);
    QCoreApplication::processEvents();
    ASSERT_EQ(taken.size(), 1);
    EXPECT_EQ(taken[0][0].toRectF(), QRectF(301, 200, 200, 100));
    EXPECT_EQ(cancelled.size(), 0);
}

TEST_F(Choice, IsDrawnWithTheToolkitsMouseWhereThereIsNoOther)
{
    begin();
    QTest::mousePress(shownWindow(), Qt::LeftButton, {}, { 100, 150 });
    QTest::mouseMove(shownWindow(), { 250, 250 });
    QTest::mouseRelease(shownWindow(), Qt::LeftButton, {}, { 399, 349 });
    QTest::keyClick(shownWindow(), Qt::Key_Enter);
    ASSERT_TRUE(isOver());
    ASSERT_EQ(taken.size(), 1);
    EXPECT_EQ(taken[0][0].toRectF(), QRectF(100, 250, 300, 200)) << "600 - 150 - 200 from the bottom";
}

TEST_F(Choice, HasAName)
{
    begin();
    EXPECT_EQ(shownWindow()->accessibleName(), "Select on screen");
    const QString before = shownWindow()->accessibleDescription();
    EXPECT_TRUE(before.contains("200 × 100 pixels, 300 from the left and 200 from the bottom"))
        << qPrintable(before);
    QTest::keyClick(shownWindow(), Qt::Key_Up);
    EXPECT_TRUE(test::waitUntil([&] { return shownWindow()->accessibleDescription() != before; }));
}

TEST_F(Choice, IsNotTakenByTheHeldKeyThatHasOpenedIt)
{
    begin();
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, {}, {}, true);
    QCoreApplication::sendEvent(shownWindow(), &repeated);
    QTest::keyClick(shownWindow(), Qt::Key_Escape);
    ASSERT_TRUE(isOver());
    EXPECT_EQ(cancelled.size(), 1);
    EXPECT_EQ(taken.size(), 0);
}

TEST_F(Choice, WaitsForAStillDisplay)
{
    selection->begin();
    QImage picture(800, 600, QImage::Format_RGB32);
    // Each grab finds another picture, until the last of them.
    int shown = 0;
    EXPECT_TRUE(test::waitUntil([&] {
        if (const int grabs = display->grabCount(); grabs == shown && shown < 2) {
            picture.fill(QColor(10 * ++shown, 0, 0));
            display->setPicture(picture);
        }
        return shownWindow() != nullptr;
    }));
    EXPECT_GE(display->grabCount(), 3);
    const QColor middle = shownWindow()->grab().toImage().pixelColor(400, 350);
    EXPECT_EQ(middle, QColor(20, 0, 0)) << "the rectangle shows the last";
}

TEST_F(Choice, DoesNotWaitForever)
{
    selection->begin();
    QImage picture(800, 600, QImage::Format_RGB32);
    int shown = 0;
    EXPECT_TRUE(test::waitUntil([&] {
        picture.fill(QColor(++shown % 256, 0, 0));
        display->setPicture(picture);
        return shownWindow() != nullptr;
    }));
}

TEST_F(Choice, DisplayThatCannotBeGrabbedIsToldOf)
{
    display->setRefusesGrabs(true);
    selection->begin();
    ASSERT_TRUE(isOver());
    EXPECT_EQ(notShown.size(), 1);
    EXPECT_EQ(cancelled.size(), 0);
}

TEST_F(Choice, DisplayOfAnotherSizeIsNotTaken)
{
    begin();
    display->setReport({ .size = QSize(640, 480) });
    QTest::keyClick(shownWindow(), Qt::Key_Return);
    ASSERT_TRUE(isOver());
    EXPECT_EQ(cancelled.size(), 1);
    EXPECT_EQ(taken.size(), 0);
}

TEST_F(Choice, ClosedWindowCancels)
{
    begin();
    shownWindow()->close();
    ASSERT_TRUE(isOver());
    EXPECT_EQ(cancelled.size(), 1);
    EXPECT_EQ(shownWindow(), nullptr);
}

TEST_F(Choice, DeletedIsOffTheScreenWithoutASignal)
{
    begin();
    selection.reset();
    EXPECT_EQ(shownWindow(), nullptr);
    QCoreApplication::processEvents();
    EXPECT_EQ(taken.size() + cancelled.size(), 0);
}

TEST_F(Choice, MayBeDeletedByWhoeverIsTold)
{
    begin();
    bool isTold = false;
    QObject::connect(selection.get(), &RegionSelection::taken, [&] {
        selection.reset();
        isTold = true;
    });
    QTest::keyClick(shownWindow(), Qt::Key_Return);
    EXPECT_TRUE(test::waitUntil([&] { return isTold; }));
    EXPECT_EQ(shownWindow(), nullptr);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
