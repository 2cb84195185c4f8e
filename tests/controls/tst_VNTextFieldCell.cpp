#include "control_pictures.h"
#include "controls/VNTextFieldCell.h"
#include "controls/skin_colors.h"

#include <QAccessible>
#include <QIntValidator>
#include <QTest>

namespace vornic {
namespace {

class TextFieldCell : public testing::TestWithParam<int>
{
protected:
    TextFieldCell()
    {
        QLocale::setDefault(QLocale::c());
        window.setLocale(QLocale::c());
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPixelSize(13);
        field.setFont(font);
        field.setGeometry(0, 0, 100, 28);
        other.setGeometry(0, 40, 100, 28);
        window.resize(100, 80);
    }

    void edit()
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        field.setFocus();
    }

    QWidget window;
    VNTextFieldCell field { &window };
    VNTextFieldCell other { &window };
};

TEST_P(TextFieldCell, IsDrawnFromThreePieces)
{
    const QImage image = painted(field, GetParam());
    EXPECT_TRUE(shows(image, "editleft.png", { 0, 0, 4, 28 }));
    EXPECT_TRUE(shows(image, "editright.png", { 96, 0, 4, 28 }));
    EXPECT_TRUE(shows(image, "editcenter.png", { 4, 0, 4, 28 }));
    EXPECT_TRUE(shows(image, "editcenter.png", { 92, 0, 4, 28 }));
    EXPECT_TRUE(shows(image, "editcenter.png", { 50, 0, 4, 28 }));
}

TEST_P(TextFieldCell, EachPieceHasADisabledVariant)
{
    field.setEnabled(false);
    const QImage image = painted(field, GetParam());
    EXPECT_TRUE(shows(image, "editleftdisable.png", { 0, 0, 4, 28 }));
    EXPECT_TRUE(shows(image, "editrightdisable.png", { 96, 0, 4, 28 }));
    EXPECT_TRUE(shows(image, "editcenterdisable.png", { 50, 0, 4, 28 }));
}

TEST_P(TextFieldCell, TheTextIsWhiteOrGreyWithABlackShadow)
{
    field.setText(QStringLiteral("1920"));
    for (const bool enabled : { true, false }) {
        field.setEnabled(enabled);
        field.setText({});
        QImage expected = painted(field, GetParam());
        field.setText(QStringLiteral("1920"));
        QPainter painter(&expected);
        painter.setFont(field.font());
        const int height = QFontMetrics(field.font()).height();
        const int y = (28 - height + 1) / 2;
        painter.setPen(Qt::black);
        painter.drawText(QRectF(8, y + 1, 84, height), Qt::AlignLeft | Qt::AlignTop, field.text());
        painter.setPen(enabled ? QColor(Qt::white) : QColor(158, 158, 158));
        painter.drawText(QRectF(8, y, 84, height), Qt::AlignLeft | Qt::AlignTop, field.text());
        painter.end();
        EXPECT_EQ(painted(field, GetParam()), expected) << enabled;
    }
}

TEST_P(TextFieldCell, WhileItIsEditedTheEditorHasTheText)
{
    field.setText(QStringLiteral("1920"));
    edit();
    field.setCursorPosition(4);
    const QImage edited = painted(field, GetParam());
    EXPECT_EQ(at(edited, 50, 0), skin::focus()) << "the focus is visible";
    int white = 0;
    int black = 0;
    for (int y = 3; y < 25; ++y)
        for (int x = 6; x < 60; ++x) {
            white += at(edited, x, y) == QColor(Qt::white) ? 1 : 0;
            black += at(edited, x, y) == QColor(Qt::black) ? 1 : 0;
        }
    EXPECT_GT(white, 0);
    EXPECT_EQ(black, 0) << "no second copy of the text with a shadow";
}

TEST_P(TextFieldCell, TheTextStaysWhereItIsWhenEditingBegins)
{
    field.setText(QStringLiteral("llll"));
    const auto firstWhite = [&] {
        const QImage image = painted(field, GetParam());
        for (int x = 6 * GetParam(); x < image.width(); ++x)
            for (int y = 4 * GetParam(); y < 24 * GetParam(); ++y)
                if (image.pixelColor(x, y).lightness() > 200)
                    return QPoint(x, y);
        return QPoint();
    };
    const QPoint before = firstWhite();
    edit();
    field.deselect();
    field.end(false);
    EXPECT_EQ(firstWhite(), before);
}

INSTANTIATE_TEST_SUITE_P(Ratios, TextFieldCell, testing::Values(1, 2));

TEST_F(TextFieldCell, TheInsertionPointIsWhite)
{
    edit();
    EXPECT_EQ(field.palette().color(QPalette::Text), QColor(Qt::white));
    // The toolkit paints it over the dark field by turning what is there into its opposite.
    const QImage image = painted(field, 1);
    const QRect insertionPoint(8, 4, 1, 20);
    int light = 0;
    for (int y = insertionPoint.top(); y <= insertionPoint.bottom(); ++y)
        light += at(image, insertionPoint.x(), y).lightness() > 220 ? 1 : 0;
    EXPECT_GT(light, 10);
}

TEST_F(TextFieldCell, AnEmptyFieldShowsItsHint)
{
    const QImage empty = painted(field, 1);
    field.setPlaceholderText(QStringLiteral("Text of the logo"));
    EXPECT_NE(painted(field, 1), empty);
}

TEST_P(TextFieldCell, TheInsertionPointCoversNoLetterOfTheHint)
{
    field.setPlaceholderText(QStringLiteral("HHH"));
    const QImage before = painted(field, GetParam());
    edit();
    const QImage edited = painted(field, GetParam());
    int lit = 0;
    for (int y = 5; y < 23; ++y) {
        EXPECT_LT(at(before, 8, y).red(), 60) << "room for the insertion point, at " << y;
        EXPECT_LT(at(before, 9, y).red(), 60) << "room for the insertion point, at " << y;
        for (int x = 10; x < 60; ++x) {
            EXPECT_EQ(at(edited, x, y), at(before, x, y)) << x << ", " << y;
            lit += at(before, x, y).red() > 100 ? 1 : 0;
        }
    }
    EXPECT_GT(lit, 10) << "the hint is there";
}

TEST_F(TextFieldCell, ALongTextEndsBeforeTheEdge)
{
    const QImage empty = painted(field, 1);
    field.setText(QString(100, QLatin1Char('M')));
    const QImage image = painted(field, 1);
    EXPECT_EQ(image.copy(92, 0, 8, 28), empty.copy(92, 0, 8, 28));
    EXPECT_EQ(image.copy(0, 0, 8, 28), empty.copy(0, 0, 8, 28));
}

TEST_F(TextFieldCell, TheOtherDrawingsDrawNothing)
{
    QImage image = blank({ 100, 28 }, 1);
    QPainter painter(&image);
    field.setText(QStringLiteral("1920"));
    field.drawInteriorWithFrame({ 0, 0, 100, 28 }, painter);
    field.drawFocusRingMaskWithFrame({ 0, 0, 100, 28 }, painter);
    painter.end();
    EXPECT_EQ(image, blank({ 100, 28 }, 1));
}

TEST_F(TextFieldCell, IsAlwaysAsHighAsItsPictures)
{
    field.setGeometry(0, 0, 100, 60);
    EXPECT_EQ(field.height(), 28);
    EXPECT_EQ(field.sizeHint().height(), 28);
}

TEST_F(TextFieldCell, TypingAndSelectingAreTheToolkits)
{
    edit();
    QTest::keyClicks(&field, QStringLiteral("Logo"));
    EXPECT_EQ(field.text(), "Logo");
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(field.selectedText(), "Logo");
    QTest::keyClicks(&field, QStringLiteral("x"));
    EXPECT_EQ(field.text(), "x");
    QTest::keyClick(&field, Qt::Key_Tab);
    EXPECT_TRUE(other.hasFocus());
}

TEST_F(TextFieldCell, ANumberIsWhatTheToolkitsValidatorAccepts)
{
    field.setValidator(new QIntValidator(0, 4000, &field));
    edit();
    QTest::keyClicks(&field, QStringLiteral("19x20"));
    EXPECT_EQ(field.text(), "1920");
}

TEST_F(TextFieldCell, HasRoomForItsHint)
{
    EXPECT_GE(field.minimumSizeHint().width(), 44);
    const QString hint(40, QLatin1Char('M'));
    field.setPlaceholderText(hint);
    const double needed = textFieldTextRect({ 0, 0, 1000, 28 }).width();
    EXPECT_GE(field.minimumSizeHint().width() - (1000 - needed),
              QFontMetricsF(field.font()).horizontalAdvance(hint) - 1);
    EXPECT_GE(field.sizeHint().width(), field.minimumSizeHint().width());
}

TEST_F(TextFieldCell, RoleNameAndValueAreTheToolkits)
{
    field.setAccessibleName(QStringLiteral("Width"));
    field.setText(QStringLiteral("1920"));
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&field);
    EXPECT_EQ(access->role(), QAccessible::EditableText);
    EXPECT_EQ(access->text(QAccessible::Name), "Width");
    EXPECT_EQ(access->text(QAccessible::Value), "1920");
    EXPECT_TRUE(access->state().editable);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
