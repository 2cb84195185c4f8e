#include "control_pictures.h"
#include "controls/VNTextFieldCell.h"
#include "controls/number_field.h"
#include "controls/skin_colors.h"

#include <QAccessible>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

namespace vornic {
namespace {

TEST(NumberFieldGeometry, TheStepperIsAtTheRight)
{
    EXPECT_EQ(numberTextRect({ 0, 0, 119, 30 }), QRectF(0, 1, 100, 28));
    EXPECT_EQ(numberStepperRect({ 0, 0, 119, 30 }), QRectF(100, 0, 19, 30));
    EXPECT_EQ(numberTextRect({ 5, 10, 119, 40 }), QRectF(5, 16, 100, 28));
}

class NumberFieldTest : public testing::TestWithParam<int>
{
protected:
    NumberFieldTest()
    {
        window.setLocale(QLocale::c());
        window.resize(200, 100);
        other.setGeometry(0, 60, 100, 28);
        number.setDecimals(0);
        number.setRange(10, 4000);
        number.setValue(100);
        number.setGeometry(0, 0, 119, 30);
    }
    void edit()
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        number.setFocus(Qt::TabFocusReason);
    }
    void type(const char *text)
    {
        number.selectAll();
        QTest::keyClick(&number, Qt::Key_Delete);
        QTest::keyClicks(&number, QString::fromLatin1(text));
    }
    void wheel(int angle)
    {
        QWheelEvent event(
            { 10, 10 }, { 10, 10 }, {}, { 0, angle }, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        event.ignore();
        QApplication::sendEvent(&number, &event);
        wheelAccepted = event.isAccepted();
    }

    QWidget window;
    NumberField number { &window };
    VNTextFieldCell other { &window };
    bool wheelAccepted = false;
};

TEST_P(NumberFieldTest, IsATextFieldWithAStepper)
{
    const QImage image = painted(number, GetParam());
    EXPECT_TRUE(shows(image, "editleft.png", { 0, 1, 4, 28 }));
    EXPECT_TRUE(shows(image, "editright.png", { 96, 1, 4, 28 }));
    EXPECT_TRUE(shows(image, "stepUp.png", { 104, 1, 15, 14 }));
    EXPECT_TRUE(shows(image, "stepDown.png", { 104, 15, 15, 15 }));
    number.setEnabled(false);
    const QImage disabled = painted(number, GetParam());
    EXPECT_TRUE(shows(disabled, "editleftdisable.png", { 0, 1, 4, 28 }));
    EXPECT_TRUE(shows(disabled, "editrightdisable.png", { 96, 1, 4, 28 }));
    EXPECT_TRUE(shows(disabled, "stepUpDisable.png", { 104, 1, 15, 14 }));
    EXPECT_TRUE(shows(disabled, "stepDownDisable.png", { 104, 15, 15, 15 }));
}

TEST_P(NumberFieldTest, TheFocusIsAnOutlineOfTheField)
{
    EXPECT_NE(at(painted(number, GetParam()), 50, 1), skin::focus());
    edit();
    EXPECT_EQ(at(painted(number, GetParam()), 50, 1), skin::focus());
    EXPECT_EQ(at(painted(number, GetParam()), 50, 28), skin::focus());
    EXPECT_NE(at(painted(number, GetParam()), 111, 1), skin::focus());
}

INSTANTIATE_TEST_SUITE_P(Ratios, NumberFieldTest, testing::Values(1, 2));

TEST_F(NumberFieldTest, TellsOfChangesOnly)
{
    QSignalSpy changes(&number, &NumberField::valueChanged);
    number.setValue(100);
    EXPECT_EQ(changes.count(), 0);
    number.setValue(101);
    EXPECT_EQ(changes.count(), 1);
    number.setProperty("value", 102.0);
    EXPECT_EQ(changes.count(), 2);
    number.setValue(9999);
    EXPECT_EQ(number.value(), 4000);
    const QMetaObject &meta = *number.metaObject();
    EXPECT_TRUE(meta.property(meta.indexOfProperty("value")).hasNotifySignal());
    for (const char *name : { "minimum", "maximum", "decimals", "singleStep", "suffix" })
        EXPECT_GE(meta.indexOfProperty(name), 0) << name;
}

TEST_F(NumberFieldTest, TheArrowsStep)
{
    QTest::mouseClick(&number, Qt::LeftButton, {}, { 111, 8 });
    EXPECT_EQ(number.value(), 101);
    QTest::mouseClick(&number, Qt::LeftButton, {}, { 111, 22 });
    QTest::mouseClick(&number, Qt::LeftButton, {}, { 111, 15 });
    EXPECT_EQ(number.value(), 99);
    QTest::mouseClick(&number, Qt::LeftButton, {}, { 102, 8 });
    EXPECT_EQ(number.value(), 99) << "between field and arrows";
}

TEST_F(NumberFieldTest, WhatIsTypedCountsOnReturn)
{
    edit();
    QSignalSpy changes(&number, &NumberField::valueChanged);
    type("1920");
    EXPECT_EQ(changes.count(), 0) << "19 was not meant";
    QTest::keyClick(&number, Qt::Key_Return);
    EXPECT_EQ(number.value(), 1920);
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(NumberFieldTest, WhatIsTypedCountsOnLeaving)
{
    edit();
    type("1080");
    QTest::keyClick(&number, Qt::Key_Tab);
    EXPECT_TRUE(other.hasFocus());
    EXPECT_EQ(number.value(), 1080);
}

TEST_F(NumberFieldTest, BadTextGoesBack)
{
    edit();
    QSignalSpy changes(&number, &NumberField::valueChanged);
    for (const char *text : { "", "5", "-", "abc" }) {
        type(text);
        QTest::keyClick(&number, Qt::Key_Return);
        EXPECT_EQ(number.text(), "100") << text;
        type(text);
        other.setFocus();
        EXPECT_EQ(number.text(), "100") << text;
        number.setFocus();
    }
    EXPECT_EQ(number.value(), 100);
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(NumberFieldTest, KeysStepFromWhatIsTyped)
{
    edit();
    type("500");
    QTest::keyClick(&number, Qt::Key_Up);
    EXPECT_EQ(number.value(), 501);
    QTest::keyClick(&number, Qt::Key_Down);
    QTest::keyClick(&number, Qt::Key_PageDown);
    EXPECT_EQ(number.value(), 490);
    QTest::keyClick(&number, Qt::Key_PageUp);
    EXPECT_EQ(number.value(), 500);
    number.setValue(4000);
    QTest::keyClick(&number, Qt::Key_Up);
    EXPECT_EQ(number.value(), 4000);
}

TEST_F(NumberFieldTest, TheWheelStepsOnlyWithTheFocus)
{
    window.show();
    wheel(120);
    EXPECT_EQ(number.value(), 100);
    EXPECT_FALSE(wheelAccepted) << "what is around it may scroll";
    EXPECT_FALSE(number.hasFocus());
    edit();
    wheel(120);
    EXPECT_EQ(number.value(), 101);
    EXPECT_TRUE(wheelAccepted);
}

TEST_F(NumberFieldTest, ShowsDecimalsAndAUnit)
{
    number.setRange(0.01, 100);
    number.setDecimals(2);
    number.setSingleStep(0.1);
    number.setSuffix(QStringLiteral(" %"));
    number.setValue(1.5);
    EXPECT_EQ(number.text(), "1.50 %");
    edit();
    QTest::keyClick(&number, Qt::Key_Up);
    EXPECT_DOUBLE_EQ(number.value(), 1.6);
    type("2.256");
    QTest::keyClick(&number, Qt::Key_Return);
    EXPECT_DOUBLE_EQ(number.value(), 2.25) << "a third decimal cannot be typed";
    number.setLocale(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(number.text(), "2,25 %");
    type("3,5");
    QTest::keyClick(&number, Qt::Key_Return);
    EXPECT_DOUBLE_EQ(number.value(), 3.5);
}

TEST_F(NumberFieldTest, HasRoomForTheLongestNumberAndItsUnit)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    for (const int pixels : { 11, 13, 18 }) {
        font.setPixelSize(pixels);
        number.setFont(font);
        number.setRange(-100000, 100);
        number.setSuffix(QStringLiteral(" px"));
        number.resize(number.minimumSizeHint());
        const QRectF text = textFieldTextRect(numberTextRect(number.rect()));
        EXPECT_GE(text.width(), QFontMetricsF(font).horizontalAdvance(QStringLiteral("-100000 px")));
        EXPECT_EQ(number.height(), 30);
    }
}

TEST_F(NumberFieldTest, ALabelLeadsToIt)
{
    QLabel label(QStringLiteral("&Width"), &window);
    label.setBuddy(&number);
    edit();
    other.setFocus();
    QTest::keyClick(&window, Qt::Key_W, Qt::AltModifier);
    EXPECT_TRUE(number.hasFocus());
}

TEST_F(NumberFieldTest, AssistiveProgramsSeeASpinBox)
{
    number.setAccessibleName(QStringLiteral("Width"));
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&number);
    EXPECT_EQ(access->role(), QAccessible::SpinBox);
    EXPECT_EQ(access->text(QAccessible::Name), "Width");
    EXPECT_EQ(access->text(QAccessible::Value), "100");
    ASSERT_NE(access->valueInterface(), nullptr);
    EXPECT_EQ(access->valueInterface()->currentValue().toDouble(), 100);
    EXPECT_EQ(access->valueInterface()->minimumValue().toDouble(), 10);
    EXPECT_EQ(access->valueInterface()->maximumValue().toDouble(), 4000);
    access->valueInterface()->setCurrentValue(200.0);
    EXPECT_EQ(number.value(), 200);
    EXPECT_TRUE(access->state().focusable);
    number.setEnabled(false);
    EXPECT_TRUE(access->state().disabled);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
