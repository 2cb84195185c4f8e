#include "app/session/front_end.h"
#include "app/window/VNAlertFreeSpace.h"
#include "app/window/VNEncoderProgress.h"
#include "app/window/VNHintWndCtroller.h"
#include "app/window/stop_bar.h"
#include "app/window/stop_item.h"
#include "base/user_defaults.h"
#include "support/wait_until.h"
#include "window_main.h"

#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QSignalSpy>
#include <QtTest>

namespace vornic {
namespace {

class SheetTest : public testing::Test
{
protected:
    SheetTest() { window.show(); }
    ~SheetTest() override { user_defaults::remove("VNShowHintWndAgain"); }

    QDialog *sheet() const { return window.findChild<QDialog *>(); }
    template<typename Control>
    Control *control(const char *name) const
    {
        return sheet()->findChild<Control *>(QLatin1StringView(name));
    }
    static void endDeleted() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    QWidget window;
};

using HintTest = SheetTest;

TEST_F(HintTest, WithoutAStoredAnswerItIsShown)
{
    VNHintWndCtroller &hint = VNHintWndCtroller::shareHintWndCtroller();
    EXPECT_EQ(&hint, &VNHintWndCtroller::shareHintWndCtroller());
    EXPECT_TRUE(hint.showAgain());
    hint.setShowAgain(false);
    EXPECT_FALSE(hint.showAgain());
    EXPECT_EQ(user_defaults::value("VNShowHintWndAgain").toBool(), false);
    hint.setShowAgain(true);
    EXPECT_TRUE(hint.showAgain());
}

TEST_F(HintTest, ItsButtonsAnswerOnce)
{
    VNHintWndCtroller &hint = VNHintWndCtroller::shareHintWndCtroller();
    QList<int> answers;
    const auto note = [&answers](int response) { answers += response; };
    hint.beginSheetModalForWindow(&window, note);
    ASSERT_TRUE(sheet());
    EXPECT_EQ(hint.parentWindow(), &window);
    EXPECT_EQ(sheet()->windowModality(), Qt::WindowModal);
    control<QAbstractButton>("startButton")->click();
    EXPECT_EQ(answers, QList<int> { -1002 });
    EXPECT_EQ(hint.parentWindow(), nullptr);
    endDeleted();

    hint.beginSheetModalForWindow(&window, note);
    control<QAbstractButton>("cancelButton")->click();
    EXPECT_EQ(answers, (QList<int> { -1002, -1000 }));
    endDeleted();

    hint.beginSheetModalForWindow(&window, note);
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_EQ(answers, (QList<int> { -1002, -1000, -1000 }));
    endDeleted();

    hint.beginSheetModalForWindow(&window, note);
    QTest::keyClick(sheet(), Qt::Key_Return);
    EXPECT_EQ(answers, (QList<int> { -1002, -1000, -1000, -1002 }));
    endDeleted();

    hint.beginSheetModalForWindow(&window, {});
    hint.cancelAction();
    hint.cancelAction();
    EXPECT_EQ(answers.size(), 4);
    endDeleted();
}

TEST_F(HintTest, TheCheckBoxIsTheStoredAnswer)
{
    VNHintWndCtroller &hint = VNHintWndCtroller::shareHintWndCtroller();
    hint.beginSheetModalForWindow(&window, {});
    EXPECT_TRUE(control<QAbstractButton>("chkShowAgain")->isChecked());
    control<QAbstractButton>("chkShowAgain")->click();
    EXPECT_FALSE(hint.showAgain());
    hint.cancelAction();
    endDeleted();
}

using FreeSpaceTest = SheetTest;

TEST_F(FreeSpaceTest, ItsButtonsAnswerOnce)
{
    VNAlertFreeSpace &alert = VNAlertFreeSpace::shareAlertFreeSpace();
    QList<bool> answers;
    const auto note = [&answers](bool goesOn) { answers += goesOn; };
    alert.beginSheetForWindow(&window, note);
    ASSERT_TRUE(sheet());
    EXPECT_EQ(sheet()->windowModality(), Qt::ApplicationModal);
    EXPECT_FALSE(control<QLabel>("explanation")->text().contains("%1"));
    control<QAbstractButton>("continueButton")->click();
    EXPECT_EQ(answers, QList<bool> { true });
    endDeleted();

    alert.beginSheetForWindow(&window, note);
    control<QAbstractButton>("cancelButton")->click();
    EXPECT_EQ(answers, (QList<bool> { true, false }));
    endDeleted();

    alert.beginSheetForWindow(&window, note);
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_EQ(answers, (QList<bool> { true, false, false }));
    endDeleted();
    alert.endWithContinue(true);
    EXPECT_EQ(answers.size(), 3);
}

using ProgressTest = SheetTest;

TEST_F(ProgressTest, ItShowsHowFarHowFastAndHowLong)
{
    VNEncoderProgress &progress = VNEncoderProgress::shareEncoderProgress();
    progress.beginSheet(&window, 300);
    ASSERT_TRUE(sheet());
    EXPECT_EQ(control<QLabel>("percentLabel")->text(), "0 %");
    // Speed and time left are shown once there is something to reckon them from.
    ASSERT_TRUE(test::waitUntil([&] {
        progress.setPercent(50);
        return !control<QLabel>("speedLabel")->text().isEmpty();
    }));
    EXPECT_EQ(progress.percent(), 50);
    EXPECT_EQ(control<QProgressBar>("percentBar")->value(), 50);
    EXPECT_EQ(control<QLabel>("percentLabel")->text(), "50 %");
    EXPECT_EQ(control<QLabel>("timeLeftLabel")->text(), "0:00 left");
    const double speed = control<QLabel>("speedLabel")->text().section(u' ', 0, 0).toDouble();
    EXPECT_GT(speed, 0);
    EXPECT_LE(speed, 150 / 0.3);
    progress.endSheet();
    EXPECT_FALSE(sheet());
}

TEST_F(ProgressTest, NeitherEscapeNorClosingEndsIt)
{
    VNEncoderProgress &progress = VNEncoderProgress::shareEncoderProgress();
    progress.beginSheet(&window, 600);
    QTest::keyClick(sheet(), Qt::Key_Escape);
    sheet()->close();
    EXPECT_TRUE(sheet()->isVisible());
    progress.setPercent(100);
    EXPECT_TRUE(sheet()->isVisible());
    progress.endSheet();
    progress.endSheet();
    EXPECT_FALSE(sheet());
}

TEST(StopBarTest, ItStandsOutsideOfWhatIsRecordedWhereThereIsRoom)
{
    constexpr QSize bar(120, 40);
    constexpr QRect screen(100, 50, 1000, 600);
    constexpr QPoint topRight(100 + 1000 - 16 - 120, 66);
    constexpr QPoint topLeft(116, 66);
    constexpr QPoint bottomRight(100 + 1000 - 16 - 120, 50 + 600 - 16 - 40);
    EXPECT_EQ(stopBarPosition(bar, screen, {}), topRight);
    EXPECT_EQ(stopBarPosition(bar, screen, { 300, 200, 400, 300 }), topRight);
    EXPECT_EQ(stopBarPosition(bar, screen, { 900, 50, 200, 200 }), topLeft);
    EXPECT_EQ(stopBarPosition(bar, screen, { 100, 50, 1000, 300 }), bottomRight);
    EXPECT_EQ(stopBarPosition(bar, screen, { 500, 50, 600, 600 }), topLeft);
    EXPECT_EQ(stopBarPosition(bar, screen, screen), topRight);
}

TEST(StopItemTest, WithoutATrayTheBarShowsTheClockAndStops)
{
    StopItem item("00:00:00", {});
    item.allowBar();
    QWidget *bar = nullptr;
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "stopBar")
            bar = window;
    }
    ASSERT_TRUE(bar);
    EXPECT_TRUE(bar->isVisible());
    EXPECT_TRUE(bar->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    auto *button = bar->findChild<QAbstractButton *>();
    EXPECT_EQ(button->text(), "00:00:00");
    EXPECT_FALSE(button->icon().isNull());
    item.setTitle("00:00:07");
    EXPECT_EQ(button->text(), "00:00:07");
    const QSignalSpy asked(&item, &StopItem::stopAsked);
    button->click();
    EXPECT_EQ(asked.size(), 1);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
