#include "control_pictures.h"
#include "controls/VNComboboxView.h"
#include "controls/skin_colors.h"

#include <QAccessible>
#include <QCursor>
#include <QHelpEvent>
#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>

#include <limits>

namespace vornic {
namespace {

/// Whom a list tells of the user's choices.
class Receiver : public QObject
{
    Q_OBJECT
public slots:
    void changed(vornic::VNComboboxView *view)
    {
        sender = view;
        ++calls;
    }

public:
    VNComboboxView *sender = nullptr;
    int calls = 0;
};

class ComboboxView : public testing::TestWithParam<int>
{
protected:
    ComboboxView()
    {
        window.resize(300, 100);
        view.setFrame({ 10, 10, 200, 28 });
        for (const char *title : { "High", "Medium", "Low & small", "Lossless" })
            view.addMenuItem(QString::fromLatin1(title));
        view.setTarget(&receiver);
        view.setSelector("changed");
        QCursor::setPos(0, 0);
    }
    ~ComboboxView() override { QTest::mouseRelease(&elsewhere, Qt::LeftButton); }

    void show()
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void wheel(int angle)
    {
        QWheelEvent event(
            { 10, 10 }, { 10, 10 }, {}, { 0, angle }, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &event);
    }

    QWidget window;
    VNComboboxView view { &window };
    QWidget elsewhere;
    Receiver receiver;
};

TEST_F(ComboboxView, AHintStandsWhereThereIsNoItemAndIsNone)
{
    view.setIndexOfSelected(1);
    view.setPlaceholderText("Nothing to choose");
    EXPECT_EQ(view.shownTitle(), "Medium");
    view.removeAllItems();
    EXPECT_EQ(view.shownTitle(), "Nothing to choose");
    EXPECT_EQ(view.stringValue(), QString());
    EXPECT_EQ(view.numberOfMenuItems(), 0);
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&view);
    ASSERT_TRUE(access);
    EXPECT_EQ(access->text(QAccessible::Value), "Nothing to choose") << "who hears the screen hears it, too";
    const QImage hinted = view.grab().toImage();
    view.setPlaceholderText({});
    EXPECT_NE(view.grab().toImage(), hinted);
    const int withoutHint = view.sizeHint().width();
    view.setPlaceholderText("A hint that is much longer than this");
    EXPECT_GT(view.sizeHint().width(), withoutHint);
}

TEST_F(ComboboxView, IsAlways28HighWithItsButtonAtTheRight)
{
    view.setFrame({ 10, 10, 200, 40 });
    EXPECT_EQ(view.geometry(), QRect(10, 10, 200, 28));
    EXPECT_EQ(VNComboboxView::getSettingPos(view.rect()), QRectF(172, 0, 28, 28));
    EXPECT_EQ(VNComboboxView::getSettingPos({ 5, 7, 100, 38 }), QRectF(77, 12, 28, 28));
    view.setGeometry(0, 0, 100, 60);
    EXPECT_EQ(view.height(), 28);
    const VNComboboxView made(QRect(1, 2, 50, 90));
    EXPECT_EQ(made.geometry(), QRect(1, 2, 50, 28));
}

TEST_F(ComboboxView, NewFramesAddTrackingRectanglesAndRemoveNone)
{
    VNComboboxView other({ 0, 0, 100, 28 });
    EXPECT_THAT(other.trackingRects(), testing::ElementsAre(QRect(72, 0, 28, 28)));
    other.setFrame({ 0, 0, 150, 28 });
    EXPECT_THAT(other.trackingRects(), testing::ElementsAre(QRect(72, 0, 28, 28), QRect(122, 0, 28, 28)));
}

TEST_F(ComboboxView, ItsTitleIsDrawnThirteenPixelsHigh)
{
    EXPECT_EQ(view.font().pixelSize(), 13);
    const QString title = QStringLiteral("MMMMMMMM");
    view.addMenuItem(title);
    const QImage without = painted(view, 1);
    view.setIndexOfSelected(4);
    const QImage with = painted(view, 1);
    QRect ink;
    for (int y = 0; y < with.height(); ++y)
        for (int x = 0; x < with.width(); ++x)
            if (with.pixel(x, y) != without.pixel(x, y))
                ink |= QRect(x, y, 1, 1);
    QFont thirteen = view.font();
    thirteen.setPixelSize(13);
    const QRectF expected = QFontMetricsF(thirteen).tightBoundingRect(title);
    // Eight letters: a pixel more of size makes the title some 7 pixels wider.
    EXPECT_NEAR(ink.width(), expected.width(), 2);
    EXPECT_NEAR(ink.height(), expected.height(), 1);
}

TEST_F(ComboboxView, BeginsWithoutASelection)
{
    const VNComboboxView fresh;
    EXPECT_EQ(fresh.indexOfSelected(), -1);
    EXPECT_EQ(fresh.numberOfMenuItems(), 0);
    EXPECT_TRUE(fresh.stringValue().isEmpty());
    EXPECT_TRUE(fresh.isEnabled());
}

TEST_F(ComboboxView, HasNoTitleForAnIndexOutOfRange)
{
    for (const qint64 index : { qint64(-1), qint64(-7), qint64(4), std::numeric_limits<qint64>::max() }) {
        view.setIndexOfSelected(index);
        EXPECT_EQ(view.indexOfSelected(), index);
        EXPECT_TRUE(view.stringValue().isEmpty());
    }
    view.setIndexOfSelected(2);
    EXPECT_EQ(view.stringValue(), "Low & small");
    view.removeAllItems();
    EXPECT_EQ(view.numberOfMenuItems(), 0);
    EXPECT_EQ(view.indexOfSelected(), 2);
    EXPECT_TRUE(view.stringValue().isEmpty());
}

TEST_F(ComboboxView, ChoosingAnItemSendsTheActionOnce)
{
    view.menu().actions().at(2)->trigger();
    EXPECT_EQ(view.indexOfSelected(), 2);
    EXPECT_EQ(receiver.calls, 1);
    EXPECT_EQ(receiver.sender, &view);
    view.menu().actions().at(2)->trigger();
    EXPECT_EQ(receiver.calls, 2) << "the same item once more is a choice, too";
}

TEST_F(ComboboxView, SettingTheIndexSendsNothing)
{
    QSignalSpy changes(&view, &VNComboboxView::indexOfSelectedChanged);
    view.setIndexOfSelected(2);
    EXPECT_EQ(view.indexOfSelected(), 2);
    EXPECT_EQ(receiver.calls, 0);
    EXPECT_EQ(changes.count(), 1);
    view.setIndexOfSelected(2);
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(ComboboxView, WithoutAReceiverNothingIsSent)
{
    view.setSelector("noSuchFunction");
    view.menu().actions().at(1)->trigger();
    EXPECT_EQ(receiver.calls, 0);
    {
        Receiver shortLived;
        view.setTarget(&shortLived);
        view.setSelector("changed");
    }
    view.menu().actions().at(2)->trigger();
    view.setTarget(nullptr);
    view.menu().actions().at(0)->trigger();
    EXPECT_EQ(view.indexOfSelected(), 0);
}

TEST_F(ComboboxView, ChoosingClosesTheMenu)
{
    show();
    view.popUp();
    ASSERT_TRUE(view.menu().isVisible());
    view.onMenuItemChanged(view.menu().actions().at(1));
    EXPECT_FALSE(view.menu().isVisible());
    EXPECT_EQ(view.indexOfSelected(), 1);
}

TEST_P(ComboboxView, IsDrawnFromItsPieces)
{
    view.setIndexOfSelected(-1);
    const QImage image = painted(view, GetParam());
    EXPECT_TRUE(shows(image, "editleft.png", { 0, 0, 4, 28 }));
    EXPECT_TRUE(shows(image, "editcenter.png", { 4, 0, 4, 28 }));
    EXPECT_TRUE(shows(image, "editcenter.png", { 168, 0, 4, 28 }));
    EXPECT_TRUE(shows(image, "popupBtn.png", { 172, 0, 28, 28 }));
    view.setEnabled(false);
    const QImage disabled = painted(view, GetParam());
    EXPECT_TRUE(shows(disabled, "editleftdisable.png", { 0, 0, 4, 28 }));
    EXPECT_TRUE(shows(disabled, "editcenterdisable.png", { 100, 0, 4, 28 }));
    EXPECT_TRUE(shows(disabled, "popupBtnDisable.png", { 172, 0, 28, 28 }));
}

TEST_P(ComboboxView, TheButtonShowsTheMouse)
{
    show();
    view.clearFocus();
    const QPoint overButton = view.mapToGlobal(QPoint(186, 14));
    const QPoint overTitle = view.mapToGlobal(QPoint(171, 14));
    const QRect button(172, 0, 28, 28);
    QCursor::setPos(overTitle);
    EXPECT_TRUE(shows(painted(view, GetParam()), "popupBtn.png", button));
    QCursor::setPos(overButton);
    EXPECT_TRUE(shows(painted(view, GetParam()), "popupBtnOver.png", button));
    QTest::mousePress(&elsewhere, Qt::LeftButton);
    QCursor::setPos(overButton);
    EXPECT_TRUE(shows(painted(view, GetParam()), "popupBtnDown.png", button));
    view.setEnabled(false);
    EXPECT_TRUE(shows(painted(view, GetParam()), "popupBtnDisable.png", button));
    view.setEnabled(true);
    QCursor::setPos(overTitle);
    EXPECT_TRUE(shows(painted(view, GetParam()), "popupBtn.png", button));
}

TEST_P(ComboboxView, TheTitleIsWhiteOrGrey)
{
    view.setIndexOfSelected(0);
    const auto has = [&](const QColor &colour) {
        const QImage image = painted(view, GetParam());
        for (int y = 4; y < image.height() - 4; ++y)
            for (int x = 6; x < 160 * GetParam(); ++x)
                if (image.pixelColor(x, y) == colour)
                    return true;
        return false;
    };
    EXPECT_TRUE(has(Qt::white));
    view.setEnabled(false);
    EXPECT_FALSE(has(Qt::white));
    EXPECT_TRUE(has({ 158, 158, 158 }));
    view.setIndexOfSelected(-1);
    EXPECT_FALSE(has({ 158, 158, 158 }));
}

TEST_P(ComboboxView, ALongTitleEndsBeforeTheButton)
{
    const QImage without = painted(view, GetParam());
    view.addMenuItem(QString(100, QLatin1Char('M')));
    view.setIndexOfSelected(4);
    const QImage with = painted(view, GetParam());
    EXPECT_NE(with, without);
    for (int x = 169; x < 200; ++x)
        for (int y = 0; y < 28; ++y)
            EXPECT_EQ(at(with, x, y), at(without, x, y)) << x;
}

INSTANTIATE_TEST_SUITE_P(Ratios, ComboboxView, testing::Values(1, 2));

TEST_F(ComboboxView, AsksForTheRoomOfItsTitlesWithinReason)
{
    const int least = view.minimumSizeHint().width();
    VNComboboxView list;
    EXPECT_EQ(list.sizeHint(), QSize(least, 28));
    list.addMenuItem(QString(12, QLatin1Char('M')));
    const int some = list.sizeHint().width();
    EXPECT_GE(some, 8 + QFontMetrics(list.font()).horizontalAdvance(QString(12, QLatin1Char('M'))) + 28);
    list.addMenuItem(QString(200, QLatin1Char('M')));
    EXPECT_GT(list.sizeHint().width(), some);
    EXPECT_LT(list.sizeHint().width(), 400);
    EXPECT_EQ(list.minimumSizeHint().width(), least);
}

TEST_F(ComboboxView, ThePressOpensTheMenuBelowTheView)
{
    show();
    view.setIndexOfSelected(1);
    QTest::mousePress(&view, Qt::LeftButton, {}, { 20, 14 });
    ASSERT_TRUE(view.menu().isVisible());
    QAction *first = view.menu().actions().constFirst();
    const QPoint item = view.menu().mapToGlobal(view.menu().actionGeometry(first).topLeft());
    EXPECT_EQ(item.y(), view.mapToGlobal(QPoint(0, 28)).y());
    EXPECT_GE(view.menu().width(), 200);
    EXPECT_EQ(view.menu().activeAction(), view.menu().actions().at(1));
    QTest::mouseRelease(&view, Qt::LeftButton, {}, { 20, 14 });
    QTest::mouseClick(
        &view.menu(), Qt::LeftButton, {}, view.menu().actionGeometry(view.menu().actions().at(2)).center());
    EXPECT_EQ(view.indexOfSelected(), 2);
    EXPECT_EQ(receiver.calls, 1);
    EXPECT_FALSE(view.menu().isVisible());
}

TEST_F(ComboboxView, TheOpenMenuMarksTheSelectedItem)
{
    show();
    const auto marked = [this] {
        QList<qint64> indexes;
        for (qint64 index = 0; index < view.numberOfMenuItems(); ++index) {
            if (view.menu().actions().at(index)->isChecked())
                indexes += index;
        }
        return indexes;
    };
    /// The colours left of the title of the item at \a index.
    const auto leftOfTitle = [this](qint64 index) {
        view.menu().setActiveAction(view.menu().actions().at(0)); // that one is highlighted
        const QRect item = view.menu().actionGeometry(view.menu().actions().at(index));
        return view.menu().grab(QRect(item.topLeft(), QSize(16, item.height() - 2))).toImage();
    };
    view.setIndexOfSelected(1);
    view.popUp();
    EXPECT_EQ(marked(), QList<qint64> { 1 });
    EXPECT_TRUE(leftOfTitle(3) == leftOfTitle(2));
    EXPECT_FALSE(leftOfTitle(1) == leftOfTitle(2));
    view.menu().actions().at(1)->trigger();
    view.popUp();
    EXPECT_EQ(marked(), QList<qint64> { 1 }) << "choosing what is chosen takes no mark away";
    view.menu().close();
    view.setIndexOfSelected(2);
    view.popUp();
    EXPECT_EQ(marked(), QList<qint64> { 2 });
    view.menu().close();
}

TEST_F(ComboboxView, OfALongTitleTheMiddleIsLeftOutAndTheToolTipTellsIt)
{
    const QString device = QStringLiteral("Monitor of a sound card with a very long name, front");
    const auto toolTip = [this] {
        QHelpEvent event(QEvent::ToolTip, { 5, 5 }, view.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&view, &event);
        return QToolTip::text();
    };
    show();
    view.addMenuItem(device);
    view.addMenuItem(device.chopped(5) + QStringLiteral("back"));
    view.setIndexOfSelected(4);
    EXPECT_EQ(toolTip(), device);
    const QImage front = painted(view, 1);
    view.setIndexOfSelected(5);
    EXPECT_NE(painted(view, 1), front) << "the ends of the titles are shown";
    view.setToolTip(QStringLiteral("What is recorded"));
    view.setIndexOfSelected(4);
    EXPECT_EQ(toolTip(), device + QStringLiteral("\nWhat is recorded"));
    view.setIndexOfSelected(0);
    EXPECT_EQ(toolTip(), QStringLiteral("What is recorded"));
}

TEST_F(ComboboxView, TitlesKeepTheirAmpersands)
{
    EXPECT_EQ(view.titleOfItem(2), "Low & small");
    EXPECT_EQ(view.menu().actions().at(2)->text(), "Low && small");
}

TEST_F(ComboboxView, AMenuWithoutItemsAndADisabledViewOpenNothing)
{
    show();
    view.setEnabled(false);
    QTest::mousePress(&view, Qt::LeftButton, {}, { 20, 14 });
    view.popUp();
    EXPECT_FALSE(view.menu().isVisible());
    view.setEnabled(true);
    QTest::mousePress(&view, Qt::RightButton, {}, { 20, 14 });
    EXPECT_FALSE(view.menu().isVisible());
    view.removeAllItems();
    view.popUp();
    EXPECT_FALSE(view.menu().isVisible());
}

TEST_F(ComboboxView, KeysChooseAtOnce)
{
    show();
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(view.indexOfSelected(), 0) << "from nothing to the first";
    QTest::keyClick(&view, Qt::Key_Down);
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_EQ(view.indexOfSelected(), 2);
    QTest::keyClick(&view, Qt::Key_Up);
    QTest::keyClick(&view, Qt::Key_Left);
    EXPECT_EQ(view.indexOfSelected(), 0);
    EXPECT_EQ(receiver.calls, 5);
    QTest::keyClick(&view, Qt::Key_Up);
    EXPECT_EQ(view.indexOfSelected(), 0);
    EXPECT_EQ(receiver.calls, 5) << "nothing has changed";
    QTest::keyClick(&view, Qt::Key_End);
    EXPECT_EQ(view.indexOfSelected(), 3);
    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(view.indexOfSelected(), 3);
    QTest::keyClick(&view, Qt::Key_Home);
    EXPECT_EQ(view.indexOfSelected(), 0);
    view.removeAllItems();
    for (const Qt::Key key : { Qt::Key_Down, Qt::Key_End, Qt::Key_Home, Qt::Key_X })
        QTest::keyClick(&view, key);
    EXPECT_EQ(view.indexOfSelected(), 0);
}

TEST_F(ComboboxView, TypingFindsATitle)
{
    const int standardInterval = QApplication::keyboardInputInterval();
    const auto typeAfterAPause = [&](const QString &text) {
        QApplication::setKeyboardInputInterval(0);
        QTest::qWait(5);
        QTest::keyClicks(&view, text.left(1));
        QApplication::setKeyboardInputInterval(std::numeric_limits<int>::max());
        QTest::keyClicks(&view, text.mid(1));
    };
    typeAfterAPause(QStringLiteral("med"));
    EXPECT_EQ(view.stringValue(), "Medium");
    typeAfterAPause(QStringLiteral("l"));
    EXPECT_EQ(view.stringValue(), "Low & small");
    typeAfterAPause(QStringLiteral("l"));
    EXPECT_EQ(view.stringValue(), "Lossless");
    typeAfterAPause(QStringLiteral("low & s"));
    EXPECT_EQ(view.stringValue(), "Low & small");
    EXPECT_FALSE(view.menu().isVisible()) << "a space in the middle of typing is part of the title";
    typeAfterAPause(QStringLiteral("x"));
    EXPECT_EQ(view.stringValue(), "Low & small");
    QApplication::setKeyboardInputInterval(standardInterval);
}

TEST_F(ComboboxView, KeysOpenTheMenu)
{
    show();
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_TRUE(view.menu().isVisible());
    QTest::keyClick(&view.menu(), Qt::Key_Escape);
    EXPECT_FALSE(view.menu().isVisible());
    QTest::keyClick(&view, Qt::Key_F4);
    EXPECT_TRUE(view.menu().isVisible());
    view.menu().close();
    QTest::keyClick(&view, Qt::Key_Down, Qt::AltModifier);
    EXPECT_TRUE(view.menu().isVisible());
    QTest::keyClick(&view.menu(), Qt::Key_Down);
    QTest::keyClick(&view.menu(), Qt::Key_Return);
    EXPECT_EQ(receiver.calls, 1);
}

TEST_F(ComboboxView, ShortcutsPassThrough)
{
    for (const auto &[key, modifier] : { std::pair(Qt::Key_S, Qt::ControlModifier),
                                         std::pair(Qt::Key_Return, Qt::NoModifier),
                                         std::pair(Qt::Key_Escape, Qt::NoModifier) }) {
        QKeyEvent event(QEvent::KeyPress, key, modifier, modifier ? QStringLiteral("\x13") : QString());
        QApplication::sendEvent(&view, &event);
        EXPECT_FALSE(event.isAccepted()) << key;
    }
    EXPECT_EQ(view.indexOfSelected(), -1);
}

TEST_F(ComboboxView, TheWheelGoesThroughTheTitles)
{
    view.setIndexOfSelected(0);
    wheel(-120);
    EXPECT_EQ(view.indexOfSelected(), 1);
    wheel(-60);
    EXPECT_EQ(view.indexOfSelected(), 1);
    wheel(-60);
    EXPECT_EQ(view.indexOfSelected(), 2);
    wheel(120 * 9);
    EXPECT_EQ(view.indexOfSelected(), 0);
    EXPECT_EQ(receiver.calls, 3);
}

TEST_F(ComboboxView, TabStopsHereAndTheFocusIsVisible)
{
    VNComboboxView next(&window);
    next.setFrame({ 10, 50, 200, 28 });
    show();
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_TRUE(next.hasFocus());
    QTest::keyClick(&next, Qt::Key_Backtab);
    ASSERT_TRUE(view.hasFocus());
    EXPECT_EQ(at(painted(view, 1), 100, 0), skin::focus());
    EXPECT_NE(at(painted(next, 1), 100, 0), skin::focus());
}

TEST_F(ComboboxView, OnlyVisibleChangesArePainted)
{
    window.show();
    PaintCounter counter(view);
    static_cast<void>(counter.paints());
    view.setIndexOfSelected(-1);
    view.setIndexOfSelected(-2);
    view.setEnabled(true);
    view.addMenuItem(QStringLiteral("More"));
    EXPECT_EQ(counter.paints(), 0);
    view.setIndexOfSelected(1);
    EXPECT_EQ(counter.paints(), 1);
    view.setEnabled(false);
    EXPECT_EQ(counter.paints(), 1);
}

TEST_F(ComboboxView, EnteringAndLeavingTheButtonPaintsIt)
{
    show();
    PaintCounter counter(view);
    QTest::mouseMove(&view, { 20, 14 });
    static_cast<void>(counter.paints());
    QTest::mouseMove(&view, { 30, 14 });
    EXPECT_EQ(counter.paints(), 0);
    QTest::mouseMove(&view, { 186, 14 });
    EXPECT_EQ(counter.paints(), 1);
    QTest::mouseMove(&view, { 190, 14 });
    EXPECT_EQ(counter.paints(), 0);
    QTest::mouseMove(&view, { 20, 14 });
    EXPECT_EQ(counter.paints(), 1);
}

TEST_F(ComboboxView, AssistiveProgramsSeeAList)
{
    QLabel label(QStringLiteral("&Quality"), &window);
    label.setBuddy(&view);
    view.setIndexOfSelected(1);
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(access, nullptr);
    EXPECT_EQ(access->role(), QAccessible::ComboBox);
    EXPECT_EQ(access->text(QAccessible::Name), "Quality");
    EXPECT_EQ(access->text(QAccessible::Value), "Medium");
    EXPECT_TRUE(access->state().focusable);
    EXPECT_TRUE(access->state().hasPopup);
    EXPECT_TRUE(access->state().collapsed);
    view.setAccessibleName(QStringLiteral("Video quality"));
    EXPECT_EQ(access->text(QAccessible::Name), "Video quality");
    ASSERT_NE(access->textInterface(), nullptr);
    EXPECT_EQ(access->textInterface()->text(0, 3), "Med");
    show();
    ASSERT_NE(access->actionInterface(), nullptr);
    access->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_TRUE(view.menu().isVisible());
    EXPECT_TRUE(access->state().expanded);
    view.menu().close();
    view.setEnabled(false);
    EXPECT_TRUE(access->state().disabled);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}

#include "tst_VNComboboxView.moc"
