#include "control_pictures.h"
#include "controls/VNCheckCell.h"
#include "controls/VNRadioCell.h"
#include "controls/skin_colors.h"
#include "controls/toggle_painting.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

namespace vornic {
namespace {

constexpr QRectF frame(0, 0, 120, 20);

TEST(CheckCell, HasItsPictureAtTheLeftEdgeAndItsTitleBesideIt)
{
    EXPECT_EQ(VNCheckCell::calcImagePosition(frame), QRectF(0, 3, 14, 14));
    EXPECT_EQ(VNCheckCell::calcTextPosition(frame), QRectF(18, 2.5, 102, 15));
    EXPECT_EQ(VNCheckCell::calcImagePosition({ 10, 20, 120, 31 }), QRectF(10, 28.5, 14, 14));
    EXPECT_EQ(VNCheckCell::calcTextPosition({ 10, 20, 120, 31 }), QRectF(28, 28, 102, 15));
}

TEST(RadioCell, HasItsPictureAtTheLeftEdgeAndItsTitleBesideIt)
{
    EXPECT_EQ(VNRadioCell::calcImagePosition(frame), QRectF(0, 2, 16, 16));
    EXPECT_EQ(VNRadioCell::calcTextPosition(frame), QRectF(20, 2.5, 100, 15));
}

TEST(TogglePicture, DisabledComesBeforePressed)
{
    EXPECT_EQ(togglePicture("check", true, true, false), "checkOn.png");
    EXPECT_EQ(togglePicture("check", true, true, true), "checkOnDown.png");
    EXPECT_EQ(togglePicture("check", true, false, false), "checkOnDisable.png");
    EXPECT_EQ(togglePicture("check", true, false, true), "checkOnDisable.png");
    EXPECT_EQ(togglePicture("radio", false, true, false), "radioOff.png");
    EXPECT_EQ(togglePicture("radio", false, true, true), "radioOffDown.png");
    EXPECT_EQ(togglePicture("radio", false, false, true), "radioOffDisable.png");
}

class ToggleCells : public testing::TestWithParam<int>
{
protected:
    ToggleCells()
    {
        check.resize(120, 20);
        radio.resize(120, 20);
        check.setText({});
        radio.setText({});
    }
    ~ToggleCells() override { QTest::mouseRelease(&elsewhere, Qt::LeftButton); }

    [[nodiscard]] testing::AssertionResult checkShows(const char *name)
    {
        return shows(painted(check, GetParam()), name, { 0, 3, 14, 14 });
    }
    [[nodiscard]] testing::AssertionResult radioShows(const char *name)
    {
        return shows(painted(radio, GetParam()), name, { 0, 2, 16, 16 });
    }

    VNCheckCell check;
    VNRadioCell radio;
    QWidget elsewhere;
};

TEST_P(ToggleCells, ShowTheirState)
{
    EXPECT_TRUE(checkShows("checkOff.png"));
    EXPECT_TRUE(radioShows("radioOff.png"));
    check.setChecked(true);
    radio.setChecked(true);
    EXPECT_TRUE(checkShows("checkOn.png"));
    EXPECT_TRUE(radioShows("radioOn.png"));
}

TEST_P(ToggleCells, AMixedStateLooksOff)
{
    check.setCheckState(Qt::PartiallyChecked);
    EXPECT_TRUE(checkShows("checkOff.png"));
}

TEST_P(ToggleCells, LookPressedWhileTheMouseButtonIsDownAnywhere)
{
    check.setChecked(true);
    QTest::mousePress(&elsewhere, Qt::LeftButton);
    EXPECT_TRUE(checkShows("checkOnDown.png"));
    EXPECT_TRUE(radioShows("radioOffDown.png"));
    QTest::mouseRelease(&elsewhere, Qt::LeftButton);
    EXPECT_TRUE(checkShows("checkOn.png"));
    QTest::mousePress(&elsewhere, Qt::RightButton);
    EXPECT_TRUE(checkShows("checkOn.png")) << "only the primary button counts";
    QTest::mouseRelease(&elsewhere, Qt::RightButton);
}

TEST_P(ToggleCells, DisabledStayDisabledWhileTheMouseButtonIsDown)
{
    check.setChecked(true);
    check.setEnabled(false);
    radio.setEnabled(false);
    QTest::mousePress(&elsewhere, Qt::LeftButton);
    EXPECT_TRUE(checkShows("checkOnDisable.png"));
    EXPECT_TRUE(radioShows("radioOffDisable.png"));
}

TEST_P(ToggleCells, TheTitleIsGreyWithABlackShadowOnePointBelow)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(13);
    check.setFont(font);
    check.setText(QStringLiteral("Logo"));
    const QImage image = painted(check, GetParam());

    QImage expected = blank(check.size(), GetParam());
    QPainter painter(&expected);
    drawSkinPicture(painter, QStringLiteral("checkOff.png"), { 0, 3, 14, 14 });
    painter.setFont(font);
    const double height = QFontMetricsF(font).height();
    const double y = std::round((2.5 + (15 - height) / 2) * GetParam()) / GetParam();
    painter.setPen(Qt::black);
    painter.drawText(QRectF(18, y + 1, 102, height), Qt::AlignLeft | Qt::AlignTop, check.text());
    painter.setPen(QColor(158, 158, 158));
    painter.drawText(QRectF(18, y, 102, height), Qt::AlignLeft | Qt::AlignTop, check.text());
    painter.end();
    EXPECT_EQ(image, expected);
}

TEST_P(ToggleCells, TheTitleBeginsFourPointsAfterThePicture)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(12);
    for (QAbstractButton *button :
         { static_cast<QAbstractButton *>(&check), static_cast<QAbstractButton *>(&radio) }) {
        const int side = button == &check ? 14 : 16;
        button->setFont(font);
        button->setText(QStringLiteral("HHHH"));
        const QImage image = painted(*button, GetParam());
        const auto isEmpty = [&](int x) {
            for (int y = 0; y < 20; ++y)
                if (at(image, x, y) != garish)
                    return false;
            return true;
        };
        for (int x = side; x < side + 4; ++x)
            EXPECT_TRUE(isEmpty(x)) << x;
        EXPECT_FALSE(isEmpty(side + 4) && isEmpty(side + 5));
    }
}

/// In a wider cell nothing of the title is seen where the cell that it asks for has ended.
TEST_P(ToggleCells, ATitleIsWholeInTheSizeThatItAsksFor)
{
    for (int pixelSize = 9; pixelSize < 24; ++pixelSize) {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPixelSize(pixelSize);
        check.setFont(font);
        for (const char *title :
             { "A&VATAR", "&AVATAR", "&Te", "So&und", "Show the movie in its fol&der", "T&of" }) {
            check.setText(QString::fromLatin1(title));
            const int width = check.sizeHint().width();
            check.resize(width + 10, 30);
            const QImage image = painted(check, GetParam());
            for (int x = width; x < width + 10; ++x)
                for (int y = 0; y < 30; ++y)
                    ASSERT_EQ(at(image, x, y), garish) << title << " of " << pixelSize << " at " << x;
        }
    }
}

TEST_P(ToggleCells, ATitleThatIsTooLongEndsWithinTheCell)
{
    auto *holder = new QWidget;
    auto *cell = new VNCheckCell(QString(60, QLatin1Char('M')), holder);
    holder->resize(200, 20);
    cell->setGeometry(0, 0, 120, 20);
    const QImage image = painted(*holder, GetParam());
    for (int x = 120; x < 200; ++x)
        for (int y = 0; y < 20; ++y)
            EXPECT_EQ(at(image, x, y), garish);
    delete holder;
}

INSTANTIATE_TEST_SUITE_P(Ratios, ToggleCells, testing::Values(1, 2));

TEST(ToggleFocus, ShowsInTheOutlineAndMovesNothing)
{
    const auto look = [](bool focus) {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPixelSize(13);
        QImage image = blank({ 120, 20 }, 1);
        QPainter painter(&image);
        paintToggle(painter,
                    { .imagePosition = VNCheckCell::calcImagePosition(frame),
                      .textPosition = VNCheckCell::calcTextPosition(frame),
                      .picture = QStringLiteral("checkOff.png"),
                      .title = { .text = QStringLiteral("HHHH"), .font = font, .color = skin::title() },
                      .hasFocus = focus,
                      .focusRadius = 3.5 });
        return image;
    };
    const QImage without = look(false);
    const QImage with = look(true);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 120; ++x) {
            EXPECT_EQ(at(without, x, y) == garish, at(with, x, y) == garish) << x << ", " << y;
            if (x >= 18) {
                EXPECT_EQ(at(without, x, y), at(with, x, y))
                    << "the title keeps its grey, at " << x << ", " << y;
            }
        }
    EXPECT_EQ(at(with, 7, 3), skin::focus());
    EXPECT_EQ(at(with, 0, 10), skin::focus());
    EXPECT_EQ(at(with, 13, 10), skin::focus());
    EXPECT_EQ(at(with, 7, 16), skin::focus());
    EXPECT_EQ(at(with, 7, 10), at(without, 7, 10));
}

TEST(ToggleInput, KeyboardAndMouseWorkAsInTheToolkit)
{
    VNCheckCell check(QStringLiteral("Logo"));
    check.resize(200, 20);
    QSignalSpy clicks(&check, &QCheckBox::clicked);
    QTest::keyClick(&check, Qt::Key_Space);
    EXPECT_TRUE(check.isChecked());
    QTest::mouseClick(&check, Qt::LeftButton, {}, { 2, 10 });
    EXPECT_FALSE(check.isChecked());
    QTest::mouseClick(&check, Qt::LeftButton, {}, { 25, 10 });
    EXPECT_TRUE(check.isChecked());
    QTest::mouseClick(&check, Qt::LeftButton, {}, { 190, 10 });
    EXPECT_TRUE(check.isChecked()) << "there is neither picture nor title";
    check.setEnabled(false);
    QTest::mouseClick(&check, Qt::LeftButton, {}, { 2, 10 });
    EXPECT_TRUE(check.isChecked());
    EXPECT_EQ(clicks.count(), 3);
}

TEST(ToggleInput, ArrowKeysGoThroughAGroupOfRadioButtons)
{
    QWidget window;
    VNRadioCell full(QStringLiteral("Full"), &window);
    VNRadioCell part(QStringLiteral("Part"), &window);
    part.move(0, 30);
    window.show();
    full.setChecked(true);
    full.setFocus();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&full, Qt::Key_Down);
    EXPECT_TRUE(part.isChecked());
    EXPECT_FALSE(full.isChecked());
    QTest::mouseClick(&full, Qt::LeftButton, {}, { 8, full.height() / 2 });
    EXPECT_TRUE(full.isChecked());
    EXPECT_FALSE(part.isChecked());
}

TEST(ToggleInput, MnemonicsAreKeptAndNotPartOfTheTitle)
{
    VNCheckCell plain(QStringLiteral("Text logo"));
    VNCheckCell marked(QStringLiteral("&Text logo"));
    const VNCheckCell shown(QStringLiteral("&&Text logo"));
    EXPECT_LT(marked.sizeHint().width(), shown.sizeHint().width()) << "the mark is not seen";
    EXPECT_FALSE(marked.shortcut().isEmpty());
    EXPECT_EQ(plain.sizeHint(), plain.minimumSizeHint());
    EXPECT_GE(plain.sizeHint().height(), 20);
}

TEST(ToggleAccess, RoleNameAndStateAreTheToolkits)
{
    VNCheckCell check(QStringLiteral("&Logo"));
    VNRadioCell radio(QStringLiteral("Full display"));
    check.setChecked(true);
    radio.setEnabled(false);
    QAccessibleInterface *checkAccess = QAccessible::queryAccessibleInterface(&check);
    QAccessibleInterface *radioAccess = QAccessible::queryAccessibleInterface(&radio);
    EXPECT_EQ(checkAccess->role(), QAccessible::CheckBox);
    EXPECT_EQ(checkAccess->text(QAccessible::Name), "Logo");
    EXPECT_TRUE(checkAccess->state().checked);
    EXPECT_TRUE(checkAccess->state().focusable);
    EXPECT_EQ(radioAccess->role(), QAccessible::RadioButton);
    EXPECT_EQ(radioAccess->text(QAccessible::Name), "Full display");
    EXPECT_FALSE(radioAccess->state().checked);
    EXPECT_TRUE(radioAccess->state().disabled);
    checkAccess->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(check.isChecked());
}

TEST(TogglePaints, OnlyWhatChangesIsPaintedAgain)
{
    VNCheckCell check(QStringLiteral("Logo"));
    PaintCounter counter(check);
    check.setChecked(false);
    check.setEnabled(true);
    EXPECT_EQ(counter.paints(), 0);
    check.setChecked(true);
    EXPECT_EQ(counter.paints(), 1);
}

TEST(TogglePaints, WhatWasPaintedPressedIsPaintedAgainAfterTheRelease)
{
    VNCheckCell check(QStringLiteral("Logo"));
    QWidget elsewhere;
    PaintCounter counter(check);
    QTest::mousePress(&elsewhere, Qt::LeftButton);
    check.update();
    EXPECT_EQ(counter.paints(), 1);
    QTest::mouseRelease(&elsewhere, Qt::LeftButton);
    EXPECT_EQ(counter.paints(), 1);
    QTest::mouseClick(&elsewhere, Qt::LeftButton);
    EXPECT_EQ(counter.paints(), 0) << "nothing was painted while the button was down";
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
