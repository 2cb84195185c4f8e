#include "control_pictures.h"
#include "controls/button_painting.h"
#include "controls/push_button.h"
#include "controls/record_button.h"
#include "controls/skin_colors.h"
#include "controls/skin_painting.h"

#include <QAccessible>
#include <QDialog>
#include <QSignalSpy>
#include <QTest>

namespace vornic {
namespace {

constexpr ButtonMetrics metrics { .height = 28, .minWidth = 72, .margin = 14, .gap = 6, .radius = 4 };

TEST(ButtonContents, PictureAndTextAreInTheMiddleTogether)
{
    const ButtonContents both = buttonContents({ 0, 0, 200, 28 }, metrics, 18, 76);
    EXPECT_EQ(both.picture, QRectF(50, 5, 18, 18));
    EXPECT_EQ(both.text, QRectF(74, 0, 76, 28));
    EXPECT_EQ(buttonContents({ 10, 10, 200, 28 }, metrics, 0, 100).text, QRectF(60, 10, 100, 28));
    EXPECT_EQ(buttonContents({ 0, 0, 200, 28 }, metrics, 18, 0).picture, QRectF(91, 5, 18, 18));
}

TEST(ButtonContents, StayWithinTheMargins)
{
    const ButtonContents narrow = buttonContents({ 0, 0, 100, 28 }, metrics, 18, 300);
    EXPECT_EQ(narrow.picture.x(), 14);
    EXPECT_EQ(narrow.text.right(), 86);
    EXPECT_EQ(buttonContents({ 0, 0, 10, 28 }, metrics, 18, 300).text.width(), 0);
}

class Buttons : public testing::TestWithParam<int>
{
protected:
    Buttons()
    {
        dialog.resize(400, 200);
        push.setGeometry(0, 0, 120, 28);
        push.setAutoDefault(false);
        record.setGeometry(0, 50, 300, 44);
    }
    void show()
    {
        dialog.show();
        dialog.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
        elsewhere.setFocus();
    }
    /// The face beside the text, just below its upper edge.
    [[nodiscard]] static QColor faceOf(QWidget &button) { return at(painted(button, GetParam()), 12, 2); }
    [[nodiscard]] static testing::AssertionResult isNear(const QColor &is, const QColor &expected)
    {
        const int off = std::max({ std::abs(is.red() - expected.red()),
                                   std::abs(is.green() - expected.green()),
                                   std::abs(is.blue() - expected.blue()) });
        if (off <= 4)
            return testing::AssertionSuccess();
        return testing::AssertionFailure()
            << is.name().toStdString() << " is not " << expected.name().toStdString();
    }

    QDialog dialog;
    PushButton push { QStringLiteral("Choose"), &dialog };
    RecordButton record { QStringLiteral("&Record"), &dialog };
    QWidget elsewhere { &dialog };
};

TEST_P(Buttons, ThePushButtonShowsItsState)
{
    show();
    EXPECT_TRUE(isNear(faceOf(push), skin::face().top));
    push.setAttribute(Qt::WA_UnderMouse);
    EXPECT_TRUE(isNear(faceOf(push), skin::faceOver().top));
    push.setDown(true);
    EXPECT_TRUE(isNear(faceOf(push), skin::faceDown().top));
    push.setEnabled(false);
    EXPECT_TRUE(isNear(faceOf(push), skin::disabledFace().top));
}

TEST_P(Buttons, TheDefaultButtonIsBlue)
{
    show();
    push.setDefault(true);
    EXPECT_TRUE(isNear(faceOf(push), skin::defaultFace().top));
    push.setAttribute(Qt::WA_UnderMouse);
    EXPECT_TRUE(isNear(faceOf(push), skin::defaultFaceOver().top));
    push.setDown(true);
    EXPECT_TRUE(isNear(faceOf(push), skin::defaultFaceDown().top));
    push.setEnabled(false);
    EXPECT_TRUE(isNear(faceOf(push), skin::disabledFace().top));
}

TEST_P(Buttons, TheRecordButtonIsRedWithAWhiteDisc)
{
    show();
    EXPECT_TRUE(isNear(faceOf(record), skin::recordFace().top));
    const QImage image = painted(record, GetParam());
    int white = 0;
    for (int x = 60; x < 240; ++x)
        white = std::max(white, at(image, x, 22) == QColor(Qt::white) ? white + 1 : 0);
    EXPECT_GE(white, 12) << "the disc is as wide as no letter's stroke";
    record.setAttribute(Qt::WA_UnderMouse);
    EXPECT_TRUE(isNear(faceOf(record), skin::recordFaceOver().top));
    record.setDown(true);
    EXPECT_TRUE(isNear(faceOf(record), skin::recordFaceDown().top));
    record.setEnabled(false);
    EXPECT_TRUE(isNear(faceOf(record), skin::disabledFace().top));
    const QColor middle = at(painted(record, GetParam()), 12, 22);
    EXPECT_LT(middle.hsvSaturation(), 20) << "what cannot be used has no colour";
}

TEST_P(Buttons, TheRecordButtonHasASquareWhereItStops)
{
    record.setText({});
    // A disc is much narrower 6 points above its middle than there, a square is not.
    const auto isSquare = [this] {
        const QImage picture = painted(record, GetParam());
        const auto whiteAt = [&](int y) {
            int white = 0;
            for (int x = 0; x < record.width(); ++x)
                white += at(picture, x, y).green() > 150; // the face has little
            return white;
        };
        const int middle = record.height() / 2;
        EXPECT_GE(whiteAt(middle), 10);
        return whiteAt(middle) - whiteAt(middle - 6) <= 3;
    };
    EXPECT_FALSE(isSquare());
    record.setStops(true);
    EXPECT_TRUE(isSquare());
    record.setStops(false);
    EXPECT_FALSE(isSquare());
}

TEST_P(Buttons, HaveRoundCornersAndACrispEdge)
{
    show();
    for (QPushButton *button : { static_cast<QPushButton *>(&push), static_cast<QPushButton *>(&record) }) {
        const QImage image = painted(*button, GetParam());
        const int right = button->width() - 1;
        const int bottom = button->height() - 1;
        for (const QPoint corner :
             { QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom) }) {
            const int ratio = GetParam();
            EXPECT_GT(
                image.pixelColor(corner.x() ? image.width() - 1 : 0, corner.y() ? image.height() - 1 : 0)
                    .blue(),
                200)
                << ratio;
        }
        const QColor edge = button == &push ? skin::face().edge : skin::recordFace().edge;
        EXPECT_TRUE(isNear(at(image, 50, 0), edge));
        EXPECT_TRUE(isNear(at(image, 50, bottom), edge));
        EXPECT_TRUE(isNear(at(image, 0, 15), edge));
    }
}

TEST_P(Buttons, TheFocusIsVisible)
{
    show();
    for (QPushButton *button : { static_cast<QPushButton *>(&push), static_cast<QPushButton *>(&record) }) {
        EXPECT_NE(at(painted(*button, GetParam()), 50, 0), skin::focus());
        button->setFocus();
        EXPECT_EQ(at(painted(*button, GetParam()), 50, 0), skin::focus());
        EXPECT_EQ(at(painted(*button, GetParam()), 50, 1), skin::focus());
        EXPECT_NE(at(painted(*button, GetParam()), 50, 3), skin::focus());
    }
}

TEST_P(Buttons, ADisabledPictureIsFaint)
{
    show();
    QPixmap red(18, 18);
    red.fill(QColor(255, 0, 0));
    push.setIcon(red);
    push.setIconSize({ 18, 18 });
    push.setText({});
    EXPECT_TRUE(isNear(at(painted(push, GetParam()), 60, 14), QColor(255, 0, 0)));
    push.setEnabled(false);
    EXPECT_LT(at(painted(push, GetParam()), 60, 14).red(), 160);
}

INSTANTIATE_TEST_SUITE_P(Ratios, Buttons, testing::Values(1, 2));

TEST_F(Buttons, HaveRoomForTheirTextInAnyFont)
{
    EXPECT_EQ(push.sizeHint().height(), 28);
    EXPECT_EQ(record.sizeHint().height(), 44);
    for (const int pixels : { 10, 13, 20, 40 }) {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPixelSize(pixels);
        for (const QString &text : { QStringLiteral("OK"), QStringLiteral("Bildschirmaufnahme starten") }) {
            for (QPushButton *button :
                 { static_cast<QPushButton *>(&push), static_cast<QPushButton *>(&record) }) {
                button->setFont(font);
                button->setText(text);
                EXPECT_GE(button->minimumSizeHint().width(), QFontMetrics(font).horizontalAdvance(text) + 28);
                EXPECT_GE(button->minimumSizeHint().height(), QFontMetrics(font).height() + 4);
            }
            record.resize(record.minimumSizeHint());
            QImage image = painted(record, 1);
            for (int y = 4; y < record.height() - 4; ++y)
                for (int x = 2; x < 20; ++x)
                    EXPECT_NE(at(image, x, y), QColor(Qt::white)) << "text in the margin";
        }
    }
    push.setText({});
    EXPECT_EQ(push.sizeHint().width(), 72);
}

TEST_F(Buttons, AMnemonicTakesNoRoomAndPresses)
{
    PushButton plain(QStringLiteral("Record"));
    PushButton marked(QStringLiteral("&Record"));
    EXPECT_EQ(plain.sizeHint(), marked.sizeHint());
    EXPECT_FALSE(marked.shortcut().isEmpty());
}

TEST_F(Buttons, MouseAndKeyboardAreTheToolkits)
{
    show();
    QSignalSpy pushes(&push, &QPushButton::clicked);
    QSignalSpy records(&record, &QPushButton::clicked);
    QTest::mouseClick(&push, Qt::LeftButton);
    QTest::keyClick(&push, Qt::Key_Space);
    EXPECT_EQ(pushes.count(), 2);
    QTest::mouseClick(&record, Qt::LeftButton);
    QTest::keyClick(&record, Qt::Key_Space);
    EXPECT_EQ(records.count(), 2);
    record.setEnabled(false);
    QTest::mouseClick(&record, Qt::LeftButton);
    EXPECT_EQ(records.count(), 2);
    push.setDefault(true);
    QTest::keyClick(&dialog, Qt::Key_Return);
    EXPECT_EQ(pushes.count(), 3);
}

TEST_F(Buttons, AssistiveProgramsSeeButtons)
{
    for (QPushButton *button : { static_cast<QPushButton *>(&push), static_cast<QPushButton *>(&record) }) {
        QAccessibleInterface *access = QAccessible::queryAccessibleInterface(button);
        EXPECT_EQ(access->role(), QAccessible::Button);
        EXPECT_TRUE(access->state().focusable);
        button->setEnabled(false);
        EXPECT_TRUE(access->state().disabled);
    }
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&record)->text(QAccessible::Name), "Record");
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
