#include "app/session/front_end.h"
#include "app/window/VNAlertFreeSpace.h"
#include "app/window/VNEncoderProgress.h"
#include "app/window/VNHintWndCtroller.h"
#include "app/window/alert_box.h"
#include "app/window/countdown.h"
#include "app/window/main_window_link.h"
#include "app/window/stop_bar.h"
#include "app/window/stop_item.h"
#include "app/window/window_movie_progress.h"
#include "base/user_defaults.h"
#include "capture/spool/VNBufferMgr.h"
#include "support/wait_until.h"
#include "window_main.h"

#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QSignalSpy>
#include <QSystemTrayIcon>
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
    EXPECT_EQ(user_defaults::value("VNShowHintWndAgain").toString(), "0") << "a number";
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

TEST_F(HintTest, TellsWhatThisDesktopWillShow)
{
    VNHintWndCtroller &hint = VNHintWndCtroller::shareHintWndCtroller();
    const auto shown = [&] {
        hint.beginSheetModalForWindow(&window, {});
        const QString text = control<QLabel>("explanation")->text();
        hint.cancelAction();
        endDeleted();
        return text;
    };
    hint.setKey("Ctrl+Alt+R");
    EXPECT_FALSE(QSystemTrayIcon::isSystemTrayAvailable());
    EXPECT_TRUE(shown().contains("bar"));
    EXPECT_FALSE(shown().contains("icon"));
    EXPECT_TRUE(shown().contains("press Ctrl+Alt+R"));
    hint.setKey({});
    EXPECT_TRUE(shown().contains("bar"));
    EXPECT_FALSE(shown().contains("press")) << "there is no key that is heard";

    EXPECT_TRUE(howToStop(true, "Ctrl+Alt+R").contains("icon"));
    EXPECT_FALSE(howToStop(true, "Ctrl+Alt+R").contains("bar"));
    EXPECT_TRUE(howToStop(true, "Ctrl+Alt+R").contains("press Ctrl+Alt+R"));
    EXPECT_FALSE(howToStop(true, {}).contains("press"));
}

/// The brightest colour of \a label.
int brightest(QLabel &label)
{
    const QImage image = label.grab().toImage();
    int most = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            most = std::max(most, qGray(image.pixel(x, y)));
    return most;
}

TEST_F(HintTest, TheHeadingIsBrighterThanTheRest)
{
    VNHintWndCtroller::shareHintWndCtroller().beginSheetModalForWindow(&window, {});
    EXPECT_GT(brightest(*control<QLabel>("title")), brightest(*control<QLabel>("explanation")) + 20);
    VNHintWndCtroller::shareHintWndCtroller().cancelAction();
    endDeleted();
}

using FreeSpaceTest = SheetTest;

TEST_F(FreeSpaceTest, TellsWhatIsFreeWhereAndHowLongThatLasts)
{
    // 25 MB a second on a display of 1920 x 1080; the last GiB is kept free.
    constexpr std::uint64_t kept = 1'073'741'824;
    const QString text = spaceText({ .freeBytes = kept + 3'000'000'000,
                                     .folder = "/home/somebody/.cache/kavlor",
                                     .pixels = 1920 * 1080 });
    EXPECT_TRUE(text.contains(QLocale().formattedDataSize(qint64(kept + 3'000'000'000))))
        << text.toStdString();
    EXPECT_TRUE(text.contains("/home/somebody/.cache/kavlor"));
    EXPECT_TRUE(text.contains("2:00 min")) << text.toStdString();
    EXPECT_TRUE(spaceText({ .freeBytes = kept + 3'000'000'000, .folder = "/", .pixels = 3840 * 2160 })
                    .contains("0:30 min"));
    EXPECT_TRUE(spaceText({ .freeBytes = kept, .folder = "/", .pixels = 1 }).contains("at once"));

    VNAlertFreeSpace::shareAlertFreeSpace().beginSheetForWindow(&window, {});
    EXPECT_TRUE(control<QLabel>("space")->text().contains(VNBufferMgr::cachePath()));
    VNAlertFreeSpace::shareAlertFreeSpace().cancelAction();
    endDeleted();
}

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

TEST_F(ProgressTest, TheMovieIsPutOffByItsButtonAlone)
{
    VNEncoderProgress &progress = VNEncoderProgress::shareEncoderProgress();
    int puttingsOff = 0;
    progress.beginSheet(&window, 600, [&puttingsOff] { ++puttingsOff; });
    auto *later = control<QAbstractButton>("laterButton");
    ASSERT_TRUE(later->isVisible());
    EXPECT_FALSE(later->toolTip().isEmpty());
    for (const Qt::Key key : { Qt::Key_Escape, Qt::Key_Return, Qt::Key_Space })
        QTest::keyClick(sheet(), key);
    EXPECT_EQ(puttingsOff, 0) << "keys are meant for something else";
    QTest::keyClick(later, Qt::Key_Space);
    EXPECT_EQ(puttingsOff, 1);
    EXPECT_FALSE(later->isEnabled());
    EXPECT_TRUE(sheet()->isVisible()) << "until the writing has ended";
    progress.beginSheet(&window, 600, [&puttingsOff] { ++puttingsOff; });
    EXPECT_TRUE(control<QAbstractButton>("laterButton")->isEnabled());
    progress.beginSheet(&window, 600);
    EXPECT_FALSE(control<QAbstractButton>("laterButton")->isVisible());
    progress.endSheet();
}

TEST_F(ProgressTest, TheWindowsFrontEndPutsOffAndTellsWhatIsKept)
{
    const MainWindowLink noWindow;
    WindowMovieProgress progress(noWindow);
    QStringList told;
    progress.recordingKept("20261122-140512-3fa9"); // to nobody
    progress.setLater([&told] { told += "later"; });
    progress.setKept([&told] { told += "kept"; });
    progress.beginProgress(600);
    QAbstractButton *later = nullptr;
    for (QWidget *top : QApplication::topLevelWidgets()) {
        if (auto *found = top->findChild<QAbstractButton *>("laterButton"); found && found->isVisible())
            later = found;
    }
    ASSERT_TRUE(later);
    later->click();
    progress.endProgress();
    progress.recordingKept("20261122-140512-3fa9");
    EXPECT_EQ(told, (QStringList { "later", "kept" }));
}

TEST_F(ProgressTest, ItIsMinimisedAndBroughtBackTogetherWithItsWindow)
{
    VNEncoderProgress &progress = VNEncoderProgress::shareEncoderProgress();
    progress.beginSheet(&window, 600);
    EXPECT_TRUE(sheet()->windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
    EXPECT_NE(sheet()->focusWidget(), control<QAbstractButton>("minimiseButton"))
        << "keys are meant for something else";
    control<QAbstractButton>("minimiseButton")->click();
    EXPECT_TRUE(window.isMinimized());
    EXPECT_TRUE(sheet()->isMinimized());
    window.showNormal();
    EXPECT_FALSE(sheet()->isMinimized());
    EXPECT_TRUE(sheet()->isVisible());
    sheet()->setWindowState(Qt::WindowMinimized);
    EXPECT_TRUE(window.isMinimized());
    sheet()->setWindowState(Qt::WindowNoState);
    EXPECT_FALSE(window.isMinimized());
    progress.endSheet();
    window.showMinimized();
    EXPECT_TRUE(window.isMinimized());
    window.showNormal();
}

TEST_F(ProgressTest, TheTitleOfTheWindowTellsThePercent)
{
    VNEncoderProgress &progress = VNEncoderProgress::shareEncoderProgress();
    window.setWindowTitle("Vornic");
    progress.setPercent(17);
    EXPECT_EQ(window.windowTitle(), "Vornic");
    progress.beginSheet(&window, 600);
    EXPECT_EQ(window.windowTitle(), "0 % – Vornic");
    progress.setPercent(42.9);
    EXPECT_EQ(window.windowTitle(), "42 % – Vornic");
    progress.beginSheet(&window, 600);
    EXPECT_EQ(window.windowTitle(), "0 % – Vornic");
    progress.endSheet();
    EXPECT_EQ(window.windowTitle(), "Vornic");
    progress.setPercent(43);
    EXPECT_EQ(window.windowTitle(), "Vornic");
}

/// Whether everything in \a dialog has the room that it wants, and nothing overlaps.
void expectNothingCutOff(const QWidget &dialog)
{
    QList<QWidget *> controls;
    for (QWidget *child : dialog.findChildren<QWidget *>()) {
        if (child->isVisible() && (qobject_cast<QLabel *>(child) || qobject_cast<QAbstractButton *>(child)))
            controls += child;
    }
    EXPECT_GT(controls.size(), 2);
    for (const QWidget *control : controls) {
        const auto name = control->objectName().toStdString();
        EXPECT_GE(control->width(), control->minimumSizeHint().width()) << name;
        const int height = control->hasHeightForWidth() ? control->heightForWidth(control->width())
                                                        : control->minimumSizeHint().height();
        EXPECT_GE(control->height(), height) << name;
        const QRect place(control->mapTo(&dialog, QPoint()), control->size());
        EXPECT_TRUE(dialog.rect().contains(place)) << name;
        for (const QWidget *other : controls) {
            if (other != control) {
                EXPECT_FALSE(place.intersects(QRect(other->mapTo(&dialog, QPoint()), other->size()))) << name;
            }
        }
    }
}

TEST_F(SheetTest, NothingIsCutOffOrOverlaps)
{
    VNHintWndCtroller::shareHintWndCtroller().beginSheetModalForWindow(&window, {});
    expectNothingCutOff(*sheet());
    VNHintWndCtroller::shareHintWndCtroller().cancelAction();
    endDeleted();
    VNAlertFreeSpace::shareAlertFreeSpace().beginSheetForWindow(&window, {});
    expectNothingCutOff(*sheet());
    VNAlertFreeSpace::shareAlertFreeSpace().cancelAction();
    endDeleted();
    VNEncoderProgress &progress = VNEncoderProgress::shareEncoderProgress();
    progress.beginSheet(&window, 60000);
    ASSERT_TRUE(test::waitUntil([&] {
        progress.setPercent(99.9);
        return !control<QLabel>("speedLabel")->text().isEmpty();
    }));
    QCoreApplication::processEvents();
    expectNothingCutOff(*sheet());
    progress.endSheet();
    for (const auto kind : { AlertBox::Kind::Question, AlertBox::Kind::Failure }) {
        AlertBox box(
            &window, kind, "Error", QString("The movie could not be written to /a/b.mp4. ").repeated(5));
        box.addButton("Save elsewhere, in another folder", 0);
        box.addButton("Give up", 1);
        box.show();
        expectNothingCutOff(box);
    }
}

TEST(CountdownTest, ItsEdgeIsOnePointWideOnAllSidesAtEveryScale)
{
    Countdown countdown(10, [](bool) {});
    for (const int ratio : { 1, 2 }) {
        QImage image(countdown.size() * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        countdown.render(&image);
        const QRgb edge = countdown.palette().color(QPalette::BrightText).rgb();
        const QPoint middle(image.width() / 2, ratio + 1);
        for (const QTransform &side :
             { QTransform(), QTransform().rotate(90), QTransform().rotate(180), QTransform().rotate(270) }) {
            const QImage turned = image.transformed(side);
            for (int y = 0; y <= middle.y(); ++y)
                EXPECT_EQ(turned.pixel(middle.x(), y) == edge, y < ratio) << y << " at " << ratio;
        }
    }
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

TEST(StopItemTest, OffersToGoOnWithoutSoundUntilItIsTakenOrWithdrawn)
{
    StopItem item("no sound", {});
    item.allowBar();
    const auto offered = [] {
        for (QWidget *widget : QApplication::allWidgets()) {
            auto *button = qobject_cast<QAbstractButton *>(widget);
            if (button && button->isVisible() && button->text() == "Go on without sound")
                return button;
        }
        return static_cast<QAbstractButton *>(nullptr);
    };
    EXPECT_FALSE(offered());
    int taken = 0;
    item.offerToGoOnWithoutSound([&taken] { ++taken; });
    ASSERT_TRUE(offered());
    item.withdrawOffer();
    EXPECT_FALSE(offered()) << "the sound has come";
    item.offerToGoOnWithoutSound([&taken] { ++taken; });
    ASSERT_TRUE(offered());
    offered()->click();
    EXPECT_EQ(taken, 1);
    EXPECT_FALSE(offered());
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
