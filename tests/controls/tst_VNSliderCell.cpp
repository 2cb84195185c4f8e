#include "control_pictures.h"
#include "controls/VNSliderCell.h"
#include "controls/skin_colors.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

namespace vornic {
namespace {

const QRectF bar(0, 0, 218, 20);

class SliderCell : public testing::TestWithParam<int>
{
protected:
    SliderCell()
    {
        slider.resize(218, 20);
        slider.setRange(0, 100);
        slider.setValue(25);
    }
    ~SliderCell() override { QTest::mouseRelease(&elsewhere, Qt::LeftButton); }

    VNSliderCell slider;
    QWidget elsewhere;
};

TEST_F(SliderCell, TheFilledPartEndsAtTheKnob)
{
    EXPECT_EQ(slider.getKnobLeftRect(bar), QRectF(0, 0, 50, 20));
    EXPECT_EQ(slider.getKnobRightRect(bar), QRectF(50, 0, 168, 20));
    EXPECT_EQ(slider.getKnobLeftRect({ 10, 5, 218, 7 }), QRectF(10, 5, 50, 7));
    EXPECT_EQ(slider.getKnobRightRect({ 10, 5, 218, 7 }), QRectF(60, 5, 168, 7));
    EXPECT_EQ(sliderKnobRect(bar, 0.25), QRectF(50, 0, 18, 20));
    slider.setValue(0);
    EXPECT_EQ(slider.getKnobLeftRect(bar).width(), 0);
    slider.setValue(100);
    EXPECT_EQ(slider.getKnobLeftRect(bar).width(), 200);
    EXPECT_EQ(slider.getKnobRightRect(bar), QRectF(200, 0, 18, 20));
}

TEST_F(SliderCell, ARangeThatIsEmptyOrBelowZeroIsARange)
{
    slider.setRange(7, 7);
    EXPECT_EQ(slider.getKnobLeftRect(bar).width(), 0);
    slider.setRange(-180, 180);
    slider.setValue(-90);
    EXPECT_EQ(slider.getKnobLeftRect(bar).width(), 50);
}

TEST_P(SliderCell, TheKnobIsOnePointBelowTheMiddle)
{
    const QImage image = painted(slider, GetParam());
    // Its shadow is on the track: what is above and below that is the picture alone.
    EXPECT_TRUE(shows(image, "sliderTick.png", { 50, 2, 18, 18 }, { 50, 2, 18, 5 }));
    EXPECT_TRUE(shows(image, "sliderTick.png", { 50, 2, 18, 18 }, { 50, 14, 18, 6 }));
    EXPECT_EQ(at(image, 59, 1), garish);
}

TEST_P(SliderCell, TheKnobShowsDisabledBeforePressed)
{
    QTest::mousePress(&elsewhere, Qt::LeftButton);
    EXPECT_TRUE(
        shows(painted(slider, GetParam()), "sliderTickDown.png", { 50, 2, 18, 18 }, { 50, 2, 18, 5 }));
    slider.setEnabled(false);
    EXPECT_TRUE(
        shows(painted(slider, GetParam()), "sliderTickDisable.png", { 50, 2, 18, 18 }, { 50, 2, 18, 5 }));
}

TEST_P(SliderCell, TheTrackIsFilledUpToTheKnobOnly)
{
    const QImage image = painted(slider, GetParam());
    const auto isFilled = [&](int x) { return at(image, x, 10).blue() > 150; };
    const auto isTrack = [&](int x) { return at(image, x, 10).lightness() < 60; };
    EXPECT_TRUE(isFilled(3));
    EXPECT_TRUE(isFilled(30));
    EXPECT_TRUE(isFilled(49));
    EXPECT_TRUE(isTrack(69));
    EXPECT_TRUE(isTrack(150));
    EXPECT_TRUE(isTrack(215));
    // Five points high; in the middle as far as there are whole pixels.
    EXPECT_EQ(at(image, 150, 7 - (GetParam() == 2 ? 1 : 0)), garish);
    EXPECT_NE(at(image, 150, 8), garish);
    EXPECT_NE(at(image, 150, 11), garish);
    EXPECT_EQ(at(image, 150, 13), garish);
    // Round ends.
    EXPECT_EQ(at(image, 216, 10).alpha(), 255);
    EXPECT_NE(at(image, 217, GetParam() == 2 ? 7 : 8), at(image, 200, GetParam() == 2 ? 7 : 8));
}

TEST_P(SliderCell, NothingIsFilledAtTheLeastValue)
{
    slider.setValue(0);
    QImage with = painted(slider, GetParam());
    QImage bare = blank({ 218, 20 }, GetParam());
    QPainter painter(&bare);
    paintSliderBar(painter, bar, { .fraction = 0 });
    paintSliderKnob(painter, sliderKnobRect(bar, 0), {});
    painter.end();
    EXPECT_EQ(with, bare);
    for (int x = 20; x < 214; ++x) // up to the round end
        EXPECT_LT(at(with, x, 10).blue(), 60) << x;
}

TEST_P(SliderCell, AFilledPartOfOnePointIsNotDrawn)
{
    const auto drawn = [](double fraction) {
        QImage image = blank({ 218, 20 }, GetParam());
        QPainter painter(&image);
        paintSliderBar(painter, bar, { .fraction = fraction });
        return image;
    };
    EXPECT_EQ(drawn(1.0 / 200), drawn(0));
    EXPECT_NE(drawn(1.5 / 200), drawn(0));
}

TEST_P(SliderCell, ADisabledTrackIsAnother)
{
    const QImage enabled = painted(slider, GetParam());
    slider.setEnabled(false);
    const QImage disabled = painted(slider, GetParam());
    for (const int x : { 2, 30, 150, 215 })
        EXPECT_NE(at(enabled, x, 10), at(disabled, x, 10)) << x;
    EXPECT_LT(at(disabled, 30, 10).hsvSaturation(), 40) << "what cannot be used has no colour";
}

INSTANTIATE_TEST_SUITE_P(Ratios, SliderCell, testing::Values(1, 2));

TEST_F(SliderCell, TheFocusIsAnOutlineOfTheKnob)
{
    QImage image = blank({ 218, 20 }, 2);
    QPainter painter(&image);
    paintSliderKnob(painter, sliderKnobRect(bar, 0.25), { .hasFocus = true });
    painter.end();
    EXPECT_EQ(at(image, 59, 2), skin::focus());
    EXPECT_EQ(at(image, 51, 10), skin::focus());
    EXPECT_NE(at(image, 59, 10), skin::focus());
}

TEST_F(SliderCell, TheMouseDragsTheKnobWithoutAJump)
{
    // Five points beside the middle of the knob.
    QTest::mousePress(&slider, Qt::LeftButton, {}, { 64, 10 });
    EXPECT_EQ(slider.value(), 25);
    QTest::mouseMove(&slider, { 84, 10 });
    EXPECT_EQ(slider.value(), 35);
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, { 84, 10 });
    EXPECT_EQ(slider.value(), 35);
    EXPECT_FALSE(slider.isSliderDown());
}

TEST_F(SliderCell, APressBesideTheKnobBringsItThere)
{
    QTest::mousePress(&slider, Qt::LeftButton, {}, { 159, 10 });
    EXPECT_EQ(slider.value(), 75);
    QTest::mouseMove(&slider, { 139, 10 });
    EXPECT_EQ(slider.value(), 65) << "it is being dragged";
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, { 139, 10 });
    QTest::mouseClick(&slider, Qt::LeftButton, {}, { 1, 10 });
    EXPECT_EQ(slider.value(), 0);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, { 217, 10 });
    EXPECT_EQ(slider.value(), 100);
}

TEST_F(SliderCell, APressBetweenTwoStepsGoesToTheNearer)
{
    slider.setRange(0, 1);
    slider.setValue(0);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, { 80, 10 });
    EXPECT_EQ(slider.value(), 0);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, { 150, 10 });
    EXPECT_EQ(slider.value(), 1);
}

TEST_F(SliderCell, KeyboardAndWheelAreTheToolkits)
{
    QTest::keyClick(&slider, Qt::Key_Right);
    EXPECT_EQ(slider.value(), 26);
    QTest::keyClick(&slider, Qt::Key_PageUp);
    EXPECT_EQ(slider.value(), 36);
    QTest::keyClick(&slider, Qt::Key_Home);
    EXPECT_EQ(slider.value(), 0);
    QTest::keyClick(&slider, Qt::Key_End);
    EXPECT_EQ(slider.value(), 100);
    QWheelEvent wheel(
        { 10, 10 }, { 10, 10 }, {}, { 0, -120 }, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&slider, &wheel);
    EXPECT_LT(slider.value(), 100);
    EXPECT_EQ(slider.focusPolicy() & Qt::TabFocus, Qt::TabFocus);
}

TEST_F(SliderCell, ValuesCanBeInAnotherUnit)
{
    slider.setValueRange(0.1, 5, 0.01);
    EXPECT_DOUBLE_EQ(slider.minValue(), 0.1);
    EXPECT_DOUBLE_EQ(slider.maxValue(), 5);
    QSignalSpy changes(&slider, &VNSliderCell::doubleValueChanged);
    slider.setDoubleValue(1.234);
    EXPECT_DOUBLE_EQ(slider.doubleValue(), 1.23);
    EXPECT_EQ(changes.count(), 1);
    slider.setDoubleValue(1.2301);
    EXPECT_EQ(changes.count(), 1);
    slider.setDoubleValue(1e300);
    EXPECT_DOUBLE_EQ(slider.doubleValue(), 5);
    slider.setDoubleValue(-1e300);
    EXPECT_DOUBLE_EQ(slider.doubleValue(), 0.1);
    slider.setDoubleValue(qQNaN());
    EXPECT_DOUBLE_EQ(slider.doubleValue(), 0.1);
    QTest::keyClick(&slider, Qt::Key_Right);
    EXPECT_DOUBLE_EQ(slider.doubleValue(), 0.11);
}

TEST_F(SliderCell, AssistiveProgramsReadAndSetTheValue)
{
    slider.setAccessibleName(QStringLiteral("Scale"));
    slider.setValueRange(0.1, 5, 0.01);
    slider.setDoubleValue(1.5);
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&slider);
    EXPECT_EQ(access->role(), QAccessible::Slider);
    EXPECT_EQ(access->text(QAccessible::Name), "Scale");
    EXPECT_TRUE(access->state().focusable);
    ASSERT_NE(access->valueInterface(), nullptr);
    EXPECT_DOUBLE_EQ(access->valueInterface()->currentValue().toDouble(), 1.5);
    EXPECT_DOUBLE_EQ(access->valueInterface()->minimumValue().toDouble(), 0.1);
    EXPECT_DOUBLE_EQ(access->valueInterface()->maximumValue().toDouble(), 5);
    EXPECT_DOUBLE_EQ(access->valueInterface()->minimumStepSize().toDouble(), 0.01);
    access->valueInterface()->setCurrentValue(2.5);
    EXPECT_DOUBLE_EQ(slider.doubleValue(), 2.5);
    EXPECT_EQ(access->text(QAccessible::Value), slider.locale().toString(2.5));
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
