#include "selection/selection_state.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

using Outcome = SelectionState::Outcome;

/// A choice on a display of 800 x 600 with two windows, of which the first lies above the other.
class Selection : public testing::Test
{
protected:
    Outcome drag(QPoint from, QPoint to)
    {
        state.press(from);
        state.movePointer(to);
        return state.release(to);
    }
    Outcome click(QPoint at)
    {
        state.press(at);
        return state.release(at);
    }
    Outcome key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { return state.pressKey(key, modifiers); }

    static constexpr QRect before { 300, 200, 200, 100 };
    static constexpr QRect upper { 100, 100, 250, 150 };
    static constexpr QRect lower { 50, 50, 400, 300 };
    static constexpr QPoint onNothing { 700, 500 };
    SelectionState state { { 800, 600 }, before, { upper, lower }, 10 };
};

TEST_F(Selection, BeginsWithWhatWasChosenBefore)
{
    EXPECT_EQ(state.rectangle(), before);
    EXPECT_TRUE(state.windowUnderPointer().isEmpty());
    EXPECT_FALSE(state.pointer());
    EXPECT_EQ(key(Qt::Key_Return), Outcome::Taken);
    EXPECT_EQ(state.rectangle(), before);
}

TEST_F(Selection, DragDrawsAndWaits)
{
    EXPECT_EQ(drag({ 500, 400 }, { 700, 550 }), Outcome::GoesOn);
    EXPECT_EQ(state.rectangle(), QRect(500, 400, 201, 151));
    EXPECT_EQ(drag({ 90, 80 }, { 10, 5 }), Outcome::GoesOn);
    EXPECT_EQ(state.rectangle(), QRect(10, 5, 81, 76)) << "drawn anew";
    EXPECT_EQ(key(Qt::Key_Enter), Outcome::Taken);
}

TEST_F(Selection, IsDrawnWhileTheMouseMoves)
{
    state.press({ 500, 400 });
    state.movePointer({ 509, 400 });
    EXPECT_EQ(state.rectangle(), before) << "not yet a drag";
    state.movePointer({ 505, 405 });
    EXPECT_EQ(state.rectangle(), QRect(500, 400, 60, 60));
    state.movePointer({ 500, 400 });
    EXPECT_EQ(state.rectangle(), QRect(500, 400, 60, 60)) << "back where it began";
    EXPECT_EQ(state.release({ 500, 400 }), Outcome::GoesOn) << "still no click";
    EXPECT_EQ(state.rectangle(), QRect(500, 400, 60, 60));
}

TEST_F(Selection, ClickTakesTheDrawnRectangleThatItHits)
{
    EXPECT_EQ(drag({ 500, 400 }, { 700, 550 }), Outcome::GoesOn);
    EXPECT_EQ(click({ 500, 400 }), Outcome::Taken);
    EXPECT_EQ(state.rectangle(), QRect(500, 400, 201, 151));
}

TEST_F(Selection, ClickBesideLetsGoOfTheDrawnRectangle)
{
    EXPECT_EQ(drag({ 500, 400 }, { 700, 550 }), Outcome::GoesOn);
    state.movePointer({ 120, 120 });
    EXPECT_TRUE(state.windowUnderPointer().isEmpty());
    EXPECT_EQ(click({ 120, 120 }), Outcome::GoesOn) << "not the window, which nothing showed";
    EXPECT_EQ(state.rectangle(), before);
    EXPECT_EQ(state.windowUnderPointer(), upper);
    EXPECT_EQ(click({ 120, 120 }), Outcome::Taken);
    EXPECT_EQ(state.rectangle(), upper);
}

TEST_F(Selection, ClickTakesTheTopWindowUnderThePointer)
{
    state.movePointer({ 340, 240 }); // on both, and on the rectangle
    EXPECT_EQ(state.windowUnderPointer(), upper);
    state.movePointer({ 360, 240 });
    EXPECT_EQ(state.windowUnderPointer(), lower);
    state.press({ 360, 240 });
    EXPECT_EQ(state.release({ 364, 245 }), Outcome::Taken) << "a hand is never still";
    EXPECT_EQ(state.rectangle(), lower);
}

TEST_F(Selection, ClickBesideEverythingDoesNothing)
{
    EXPECT_EQ(click(onNothing), Outcome::GoesOn);
    EXPECT_EQ(state.rectangle(), before);
    EXPECT_EQ(click({ 480, 290 }), Outcome::Taken) << "on the rectangle, where no window is";
    EXPECT_EQ(state.rectangle(), before);
}

TEST_F(Selection, ReleaseWithoutAPressIsNone)
{
    EXPECT_EQ(state.release({ 340, 240 }), Outcome::GoesOn) << "of the button that has opened all this";
    EXPECT_EQ(state.rectangle(), before);
}

TEST_F(Selection, SmallWindowsAreMadeLargeEnough)
{
    state = SelectionState({ 800, 600 }, before, { QRect(780, 10, 20, 200) }, 10);
    EXPECT_EQ(click({ 790, 20 }), Outcome::Taken);
    EXPECT_EQ(state.rectangle(), QRect(740, 10, 60, 200));
}

TEST_F(Selection, ArrowKeysMove)
{
    EXPECT_EQ(key(Qt::Key_Left), Outcome::GoesOn);
    key(Qt::Key_Down);
    key(Qt::Key_Down, Qt::KeypadModifier);
    EXPECT_EQ(state.rectangle(), before.translated(-1, 2));
    key(Qt::Key_Right, Qt::ControlModifier);
    key(Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(state.rectangle(), before.translated(9, -8));
}

TEST_F(Selection, ArrowKeysWithShiftResize)
{
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(state.rectangle(), QRect(300, 200, 201, 99));
    key(Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier);
    key(Qt::Key_Down, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(state.rectangle(), QRect(300, 200, 191, 109));
}

TEST_F(Selection, TabGoesThroughTheWindows)
{
    key(Qt::Key_Tab);
    EXPECT_EQ(state.rectangle(), upper);
    key(Qt::Key_Tab);
    EXPECT_EQ(state.rectangle(), lower);
    key(Qt::Key_Tab);
    EXPECT_EQ(state.rectangle(), upper);
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(state.rectangle(), lower);
    key(Qt::Key_Right);
    EXPECT_EQ(key(Qt::Key_Return), Outcome::Taken);
    EXPECT_EQ(state.rectangle(), lower.translated(1, 0));
}

TEST_F(Selection, TabWithoutWindowsDoesNothing)
{
    state = SelectionState({ 800, 600 }, before, {}, 10);
    EXPECT_EQ(key(Qt::Key_Tab), Outcome::GoesOn);
    EXPECT_EQ(state.rectangle(), before);
}

TEST_F(Selection, HomeChoosesTheWholeDisplay)
{
    key(Qt::Key_Home);
    EXPECT_EQ(state.rectangle(), QRect(0, 0, 800, 600));
    key(Qt::Key_Tab);
    key(Qt::Key_F);
    EXPECT_EQ(state.rectangle(), QRect(0, 0, 800, 600));
}

TEST_F(Selection, KeysDoNotDisturbADrag)
{
    state.press({ 500, 400 });
    state.movePointer({ 600, 500 });
    for (const Qt::Key other : { Qt::Key_Left, Qt::Key_Return, Qt::Key_Tab, Qt::Key_Home, Qt::Key_Q })
        EXPECT_EQ(key(other), Outcome::GoesOn);
    EXPECT_EQ(state.rectangle(), QRect(500, 400, 101, 101));
    EXPECT_EQ(key(Qt::Key_Escape), Outcome::Cancelled);
}

TEST_F(Selection, WindowsAreNotHighlightedOnceSomethingIsChosen)
{
    state.movePointer({ 120, 120 });
    EXPECT_EQ(state.windowUnderPointer(), upper);
    key(Qt::Key_Left);
    EXPECT_TRUE(state.windowUnderPointer().isEmpty());
}

TEST_F(Selection, PointerIsKnownFromTheDisplayOn)
{
    state.movePointer({ 900, 100 });
    EXPECT_FALSE(state.pointer()) << "on another display";
    state.movePointer({ 799, 100 });
    EXPECT_EQ(state.pointer(), QPoint(799, 100));
    state.movePointer({ 900, -5 });
    EXPECT_EQ(state.pointer(), QPoint(799, 0)) << "the last pixel towards it";
    EXPECT_TRUE(state.windowUnderPointer().isEmpty());
}

} // namespace
} // namespace vornic
