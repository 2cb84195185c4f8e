#include "control_pictures.h"
#include "controls/VNStepperCell.h"
#include "controls/skin_colors.h"

#include <QAccessible>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

namespace vornic {
namespace {

TEST(StepperGeometry, TheArrowUpIsTheUpperWithYUp)
{
    EXPECT_EQ(stepUpPosition({ 0, 0, 23, 30 }), QRectF(4, 15, 15, 14));
    EXPECT_EQ(stepDownPosition({ 0, 0, 23, 30 }), QRectF(4, 0, 15, 15));
    EXPECT_EQ(stepUpPosition({ 10, 100, 40, 40 }), QRectF(14, 120, 15, 14));
    EXPECT_EQ(stepDownPosition({ 10, 100, 40, 40 }), QRectF(14, 105, 15, 15));
}

TEST(StepperGeometry, WithYDownTheyMeetInTheMiddleToo)
{
    EXPECT_EQ(stepUpRect({ 0, 0, 23, 30 }), QRectF(4, 1, 15, 14));
    EXPECT_EQ(stepDownRect({ 0, 0, 23, 30 }), QRectF(4, 15, 15, 15));
    EXPECT_EQ(stepUpRect({ 10, 100, 40, 40 }), QRectF(14, 106, 15, 14));
    EXPECT_EQ(stepDownRect({ 10, 100, 40, 40 }), QRectF(14, 120, 15, 15));
}

class StepperCell : public testing::TestWithParam<int>
{
protected:
    StepperCell()
    {
        stepper.resize(stepper.sizeHint());
        stepper.setRange(0, 100);
        stepper.setValue(10);
    }

    VNStepperCell stepper;
    const QPoint up { 11, 8 };
    const QPoint down { 11, 22 };
};

TEST_P(StepperCell, ShowsItsPicturesInFull)
{
    const QImage image = painted(stepper, GetParam());
    EXPECT_EQ(stepper.size(), QSize(23, 30));
    EXPECT_TRUE(shows(image, "stepUp.png", { 4, 1, 15, 14 }));
    EXPECT_TRUE(shows(image, "stepDown.png", { 4, 15, 15, 15 }));
    for (int y = 0; y < 30; ++y) {
        EXPECT_EQ(at(image, 3, y), garish);
        EXPECT_EQ(at(image, 19, y), garish);
    }
}

TEST_P(StepperCell, HasNoPressedLook)
{
    QTest::mousePress(&stepper, Qt::LeftButton, {}, up);
    EXPECT_TRUE(shows(painted(stepper, GetParam()), "stepUp.png", { 4, 1, 15, 14 }));
    QTest::mouseRelease(&stepper, Qt::LeftButton, {}, up);
    stepper.setEnabled(false);
    EXPECT_TRUE(shows(painted(stepper, GetParam()), "stepUpDisable.png", { 4, 1, 15, 14 }));
    EXPECT_TRUE(shows(painted(stepper, GetParam()), "stepDownDisable.png", { 4, 15, 15, 15 }));
}

INSTANTIATE_TEST_SUITE_P(Ratios, StepperCell, testing::Values(1, 2));

TEST_F(StepperCell, TheArrowsStep)
{
    QTest::mouseClick(&stepper, Qt::LeftButton, {}, up);
    EXPECT_EQ(stepper.value(), 11);
    QTest::mouseClick(&stepper, Qt::LeftButton, {}, down);
    QTest::mouseClick(&stepper, Qt::LeftButton, {}, down);
    EXPECT_EQ(stepper.value(), 9);
    for (const QPoint beside : { QPoint(2, 8), QPoint(20, 22), QPoint(11, 0) })
        QTest::mouseClick(&stepper, Qt::LeftButton, {}, beside);
    EXPECT_EQ(stepper.value(), 9) << "there is no arrow";
    QTest::mouseClick(&stepper, Qt::LeftButton, {}, { 11, 14 });
    EXPECT_EQ(stepper.value(), 10) << "the last row of the upper picture";
    QTest::mouseClick(&stepper, Qt::LeftButton, {}, { 11, 15 });
    EXPECT_EQ(stepper.value(), 9) << "the first row of the lower picture";
}

TEST_F(StepperCell, AHeldArrowRepeats)
{
    stepper.show();
    QSignalSpy steps(&stepper, &VNStepperCell::valueChanged);
    QTest::mousePress(&stepper, Qt::LeftButton, {}, up);
    while (steps.count() < 3)
        ASSERT_TRUE(steps.wait());
    QTest::mouseRelease(&stepper, Qt::LeftButton, {}, up);
    EXPECT_GE(stepper.value(), 13);
}

TEST_F(StepperCell, StopsAtTheEndsOfItsRange)
{
    stepper.setValue(100);
    QTest::mouseClick(&stepper, Qt::LeftButton, {}, up);
    EXPECT_EQ(stepper.value(), 100);
    stepper.setValue(0);
    QTest::mouseClick(&stepper, Qt::LeftButton, {}, down);
    EXPECT_EQ(stepper.value(), 0);
}

TEST_F(StepperCell, KeyboardAndWheelStep)
{
    stepper.setSingleStep(0.5);
    QTest::keyClick(&stepper, Qt::Key_Up);
    EXPECT_EQ(stepper.value(), 10.5);
    QTest::keyClick(&stepper, Qt::Key_Down);
    QTest::keyClick(&stepper, Qt::Key_Down);
    EXPECT_EQ(stepper.value(), 9.5);
    QTest::keyClick(&stepper, Qt::Key_PageUp);
    EXPECT_EQ(stepper.value(), 14.5);
    QWheelEvent wheel(
        { 10, 10 }, { 10, 10 }, {}, { 0, 120 }, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&stepper, &wheel);
    EXPECT_EQ(stepper.value(), 15);
    EXPECT_EQ(stepper.focusPolicy() & Qt::TabFocus, Qt::TabFocus);
}

TEST_F(StepperCell, NothingCanBeTypedUnseen)
{
    QTest::keyClicks(&stepper, QStringLiteral("42"));
    QTest::keyClick(&stepper, Qt::Key_Backspace);
    QTest::keyClick(&stepper, Qt::Key_Enter);
    EXPECT_EQ(stepper.value(), 10);
    stepper.show();
    EXPECT_FALSE(stepper.findChild<QLineEdit *>()->isVisible());
}

TEST_F(StepperCell, AssistiveProgramsReadAndSetTheValue)
{
    stepper.setAccessibleName(QStringLiteral("Width"));
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&stepper);
    EXPECT_EQ(access->role(), QAccessible::SpinBox);
    EXPECT_EQ(access->text(QAccessible::Name), "Width");
    ASSERT_NE(access->valueInterface(), nullptr);
    EXPECT_EQ(access->valueInterface()->currentValue().toDouble(), 10);
    access->valueInterface()->setCurrentValue(20.0);
    EXPECT_EQ(stepper.value(), 20);
}

TEST_F(StepperCell, TheFocusIsVisible)
{
    stepper.show();
    stepper.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&stepper));
    stepper.setFocus();
    const QImage image = painted(stepper, 1);
    EXPECT_EQ(at(image, 11, 1), skin::focus());
    EXPECT_EQ(at(image, 4, 15), skin::focus());
    EXPECT_EQ(at(image, 11, 29), skin::focus());
    EXPECT_EQ(at(image, 3, 15), garish);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
