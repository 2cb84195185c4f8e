#include "control_pictures.h"
#include "controls/VNColorWell.h"
#include "controls/color_panel.h"
#include "controls/skin_colors.h"

#include <QAccessible>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

namespace vornic {
namespace {

/// Whom a colour well tells of the user's choices.
class Receiver : public QObject
{
    Q_OBJECT
public slots:
    void changed(vornic::VNColorWell *well) { colors.push_back(well->color()); }

public:
    std::vector<QColor> colors;
};

class ColorWell : public testing::TestWithParam<int>
{
protected:
    ColorWell()
    {
        window.resize(300, 100);
        other.move(0, 40);
        well.setTarget(&receiver);
        well.setSelector("changed");
    }
    ~ColorWell() override { QTest::mouseRelease(&elsewhere, Qt::LeftButton); }

    void show()
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QWidget window;
    VNColorWell well { &window };
    VNColorWell other { &window };
    QWidget elsewhere;
    Receiver receiver;
};

TEST_F(ColorWell, HasOneSizeInAnyFrame)
{
    const VNColorWell made(QRect(3, 4, 10, 300));
    EXPECT_EQ(made.geometry(), QRect(3, 4, 103, 28));
    well.setFrame({ -5, 7, 500, 1 });
    EXPECT_EQ(well.geometry(), QRect(-5, 7, 103, 28));
    EXPECT_EQ(well.sizeHint(), QSize(103, 28));
    EXPECT_EQ(colorWellSwatch(well.rect()), QRectF(6, 6, 91, 16));
}

TEST_F(ColorWell, BeginsBlackAndEnabled)
{
    EXPECT_EQ(well.color(), QColor(Qt::black));
    EXPECT_TRUE(well.isEnabled());
    EXPECT_TRUE(well.acceptsFirstResponder());
}

TEST_P(ColorWell, ShowsItsPictureAndItsColour)
{
    well.setColor(Qt::green);
    const QRect whole(0, 0, 103, 28);
    const QRect above(0, 0, 103, 5);
    const QImage image = painted(well, GetParam());
    EXPECT_TRUE(shows(image, "colorBtn.png", whole, above));
    for (const QPoint inside : { QPoint(6, 6), QPoint(96, 6), QPoint(6, 21), QPoint(96, 21) })
        EXPECT_EQ(at(image, inside.x(), inside.y()), QColor(Qt::green));
    for (const QPoint outside : { QPoint(5, 6), QPoint(97, 6), QPoint(6, 5), QPoint(6, 22) })
        EXPECT_NE(at(image, outside.x(), outside.y()), QColor(Qt::green));
    QTest::mousePress(&elsewhere, Qt::LeftButton);
    EXPECT_TRUE(shows(painted(well, GetParam()), "colorBtnDown.png", whole, above));
}

TEST_P(ColorWell, DisabledShowsTheColourOnly)
{
    well.setColor(Qt::green);
    well.setEnabled(false);
    QTest::mousePress(&elsewhere, Qt::LeftButton);
    const QImage image = painted(well, GetParam());
    QImage expected = blank(well.size(), GetParam());
    QPainter(&expected).fillRect(QRect(6, 6, 91, 16), Qt::green);
    EXPECT_EQ(image, expected);
}

TEST_P(ColorWell, ATranslucentColourLetsWhatIsBehindThrough)
{
    well.setEnabled(false);
    well.setColor(QColor(0, 255, 0, 128));
    const QColor mixed = at(painted(well, GetParam()), 50, 14);
    EXPECT_NEAR(mixed.red(), 127, 2);
    EXPECT_NEAR(mixed.green(), 128, 2);
}

INSTANTIATE_TEST_SUITE_P(Ratios, ColorWell, testing::Values(1, 2));

TEST_F(ColorWell, SettingTheColourSendsNothing)
{
    QSignalSpy changes(&well, &VNColorWell::colorChanged);
    well.setColor(Qt::red);
    well.setColor(Qt::red);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(receiver.colors.empty());
}

TEST_F(ColorWell, ThePressOpensThePanelBesideTheWindow)
{
    show();
    well.setColor(Qt::red);
    QTest::mouseClick(&well, Qt::LeftButton);
    ColorPanel &panel = ColorPanel::shared();
    EXPECT_TRUE(panel.isVisible());
    EXPECT_FALSE(panel.isModal());
    EXPECT_EQ(panel.parentWidget(), &window) << "above the window";
    EXPECT_EQ(panel.target(), &well);
    EXPECT_EQ(panel.currentColor(), QColor(Qt::red));
    EXPECT_TRUE(receiver.colors.empty()) << "nothing is chosen yet";
    panel.setCurrentColor(Qt::blue);
    EXPECT_EQ(well.color(), QColor(Qt::blue));
    EXPECT_THAT(receiver.colors, testing::ElementsAre(QColor(Qt::blue)));
}

TEST_F(ColorWell, ThePanelServesOneWellAtATime)
{
    show();
    other.setColor(Qt::yellow);
    well.popUp();
    other.popUp();
    EXPECT_EQ(well.color(), QColor(Qt::black)) << "showing another colour is no choice";
    ColorPanel::shared().setCurrentColor(Qt::blue);
    EXPECT_EQ(other.color(), QColor(Qt::blue));
    EXPECT_EQ(well.color(), QColor(Qt::black));
    EXPECT_TRUE(receiver.colors.empty());
}

TEST_F(ColorWell, ThePanelIsAboveAWindowThatStaysOnTop)
{
    window.setWindowFlag(Qt::WindowStaysOnTopHint);
    show();
    well.popUp();
    EXPECT_TRUE(ColorPanel::shared().windowFlags().testFlag(Qt::WindowStaysOnTopHint));
}

TEST_F(ColorWell, ThePanelOutlivesNoWindow)
{
    {
        QWidget shortLived;
        VNColorWell inIt(&shortLived);
        shortLived.show();
        inIt.popUp();
        EXPECT_TRUE(ColorPanel::shared().isVisible());
    }
    show();
    well.popUp();
    EXPECT_EQ(ColorPanel::shared().parentWidget(), &window);
}

TEST_F(ColorWell, DisabledIgnoresPressesButTakesThePanelsColour)
{
    show();
    well.popUp();
    ColorPanel &panel = ColorPanel::shared();
    well.setEnabled(false);
    panel.setCurrentColor(Qt::cyan);
    EXPECT_EQ(well.color(), QColor(Qt::cyan));
    EXPECT_EQ(receiver.colors.size(), 1U);
    panel.hide();
    QTest::mouseClick(&well, Qt::LeftButton);
    well.popUp();
    EXPECT_FALSE(panel.isVisible());
}

TEST_F(ColorWell, OnlyThePrimaryButtonPresses)
{
    show();
    ColorPanel::shared().hide();
    QTest::mouseClick(&well, Qt::RightButton);
    EXPECT_FALSE(ColorPanel::shared().isVisible());
}

TEST_F(ColorWell, KeysPressIt)
{
    show();
    for (const Qt::Key key : { Qt::Key_Space, Qt::Key_Select, Qt::Key_Return, Qt::Key_Enter }) {
        ColorPanel::shared().hide();
        QTest::keyClick(&well, key);
        EXPECT_TRUE(ColorPanel::shared().isVisible()) << key;
    }
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&well, &escape);
    EXPECT_FALSE(escape.isAccepted());
}

TEST_F(ColorWell, TabStopsHereAndTheFocusIsVisible)
{
    show();
    well.setFocus();
    PaintCounter left(well);
    PaintCounter reached(other);
    QTest::keyClick(&well, Qt::Key_Tab);
    ASSERT_TRUE(other.hasFocus());
    EXPECT_GT(left.paints(), 0);
    EXPECT_GT(reached.paints(), 0);
    EXPECT_EQ(at(painted(other, 1), 50, 0), skin::focus());
    EXPECT_NE(at(painted(well, 1), 50, 0), skin::focus());
}

TEST_F(ColorWell, OnlyVisibleChangesArePainted)
{
    window.show();
    PaintCounter counter(well);
    well.setColor(Qt::black);
    well.setEnabled(true);
    EXPECT_EQ(counter.paints(), 0);
    well.setColor(Qt::red);
    EXPECT_EQ(counter.paints(), 1);
    well.setEnabled(false);
    EXPECT_EQ(counter.paints(), 1);
}

TEST_F(ColorWell, AssistiveProgramsSeeAButtonWithAColour)
{
    QLabel label(QStringLiteral("&Fill"), &window);
    label.setBuddy(&well);
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&well);
    ASSERT_NE(access, nullptr);
    EXPECT_EQ(access->role(), QAccessible::Button);
    EXPECT_EQ(access->text(QAccessible::Name), "Fill");
    well.setColor(QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(access->text(QAccessible::Value), "#123456");
    well.setColor(QColor(0x12, 0x34, 0x56, 0x80));
    EXPECT_EQ(access->text(QAccessible::Value), "#80123456");
    EXPECT_TRUE(access->state().focusable);
    show();
    access->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(ColorPanel::shared().isVisible());
    well.setEnabled(false);
    EXPECT_TRUE(access->state().disabled);
    EXPECT_FALSE(
        access->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}

#include "tst_VNColorWell.moc"
