#include "control_pictures.h"
#include "controls/VNComboBoxCell.h"
#include "controls/skin_colors.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QHelpEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

namespace vornic {
namespace {

class ComboBoxCell : public testing::TestWithParam<int>
{
protected:
    ComboBoxCell()
    {
        cell.resize(160, 28);
        cell.addItems({ QStringLiteral("High"), QStringLiteral("Medium"), QStringLiteral("Small") });
    }

    VNComboBoxCell cell;
};

TEST_P(ComboBoxCell, IsDrawnFromThreePieces)
{
    for (const bool editable : { false, true }) {
        cell.setEditable(editable);
        const QImage image = painted(cell, GetParam());
        EXPECT_TRUE(shows(image, "editleft.png", { 0, 0, 4, 28 }));
        EXPECT_TRUE(shows(image, "editcenter.png", { 4, 0, 4, 28 }));
        EXPECT_TRUE(shows(image, "editcenter.png", { 110, 0, 4, 28 })) << editable;
        EXPECT_TRUE(shows(image, "popupBtn.png", { 132, 0, 28, 28 }));
    }
}

TEST_P(ComboBoxCell, ShowsTheCurrentTextInWhiteOrGrey)
{
    const auto has = [&](const QColor &colour) {
        const QImage image = painted(cell, GetParam());
        for (int y = 0; y < image.height(); ++y)
            for (int x = 8 * GetParam(); x < 100 * GetParam(); ++x)
                if (image.pixelColor(x, y) == colour)
                    return true;
        return false;
    };
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(13);
    cell.setFont(font);
    EXPECT_TRUE(has(Qt::white));
    cell.setEnabled(false);
    EXPECT_FALSE(has(Qt::white));
    EXPECT_TRUE(has({ 158, 158, 158 }));
    cell.setCurrentIndex(-1);
    EXPECT_FALSE(has({ 158, 158, 158 }));
}

INSTANTIATE_TEST_SUITE_P(Ratios, ComboBoxCell, testing::Values(1, 2));

TEST_F(ComboBoxCell, ChoosingIsTheToolkits)
{
    QSignalSpy chosen(&cell, &QComboBox::activated);
    QTest::keyClick(&cell, Qt::Key_Down);
    EXPECT_EQ(cell.currentText(), "Medium");
    QTest::keyClicks(&cell, QStringLiteral("s"));
    EXPECT_EQ(cell.currentText(), "Small");
    EXPECT_EQ(chosen.count(), 2);
    cell.show();
    QTest::mouseClick(&cell, Qt::LeftButton, {}, { 146, 14 });
    EXPECT_TRUE(cell.view()->isVisible());
    cell.hidePopup();
}

TEST_F(ComboBoxCell, OnlyTheButtonOpensAnEditableList)
{
    cell.setEditable(true);
    cell.show();
    EXPECT_EQ(cell.lineEdit()->geometry().left() + 2, 8) << "its text is where the list's was";
    EXPECT_LE(cell.lineEdit()->geometry().right(), 160 - 28);
    QTest::mouseClick(&cell, Qt::LeftButton, {}, { 4, 1 });
    EXPECT_FALSE(cell.view()->isVisible());
    QTest::mouseClick(&cell, Qt::LeftButton, {}, { 146, 14 });
    EXPECT_TRUE(cell.view()->isVisible());
    cell.hidePopup();
    cell.lineEdit()->selectAll();
    QTest::keyClicks(cell.lineEdit(), QStringLiteral("Own"));
    EXPECT_EQ(cell.currentText(), "Own");
}

TEST_F(ComboBoxCell, TheFocusIsVisible)
{
    cell.show();
    cell.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&cell));
    cell.setFocus();
    EXPECT_EQ(at(painted(cell, 1), 80, 0), skin::focus());
    cell.setEditable(true);
    cell.lineEdit()->setFocus();
    const QImage image = painted(cell, 1);
    EXPECT_EQ(at(image, 80, 0), skin::focus());
    EXPECT_EQ(at(image, 80, 1), skin::focus());
    EXPECT_EQ(at(image, 80, 26), skin::focus());
}

TEST_F(ComboBoxCell, HasRoomForItsWidestItem)
{
    const int before = cell.sizeHint().width();
    cell.addItem(QString(40, QLatin1Char('M')));
    EXPECT_GT(cell.sizeHint().width(), before);
    EXPECT_EQ(cell.sizeHint().height(), 28);
    EXPECT_EQ(cell.height(), 28);
    EXPECT_LT(cell.minimumSizeHint().width(), before);
}

TEST_F(ComboBoxCell, TheOpenListMarksTheChosenItem)
{
    cell.addItem(QStringLiteral("Tiny"));
    const auto leftOfText = [this](int row) {
        const QAbstractItemView &list = *cell.view();
        const QRect item = list.visualRect(list.model()->index(row, 0));
        return cell.view()->viewport()->grab(QRect(item.topLeft(), QSize(16, item.height()))).toImage();
    };
    cell.setCurrentIndex(1);
    cell.show();
    cell.showPopup();
    cell.view()->setCurrentIndex(cell.view()->model()->index(0, 0)); // that one is highlighted
    EXPECT_TRUE(leftOfText(2) == leftOfText(3));
    EXPECT_FALSE(leftOfText(1) == leftOfText(2));
    cell.hidePopup();
    EXPECT_EQ(cell.currentIndex(), 1);
}

TEST_F(ComboBoxCell, OfALongTextTheMiddleIsLeftOutAndTheToolTipTellsIt)
{
    const QString name(QStringLiteral("A text that is much too long for this box, first"));
    cell.addItems({ name, name.chopped(5) + QStringLiteral("second") });
    cell.resize(160, 28);
    const auto toolTip = [this] {
        QHelpEvent event(QEvent::ToolTip, { 5, 5 }, cell.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&cell, &event);
        return QToolTip::text();
    };
    cell.show();
    cell.setCurrentText(name);
    const QImage first = painted(cell, 1);
    EXPECT_EQ(toolTip(), name);
    cell.setCurrentIndex(cell.currentIndex() + 1);
    EXPECT_NE(painted(cell, 1), first) << "the ends of the texts are shown";
}

TEST_F(ComboBoxCell, RoleNameAndValueAreTheToolkits)
{
    QComboBox plain;
    plain.addItems({ QStringLiteral("High"), QStringLiteral("Medium") });
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&cell);
    QAccessibleInterface *plainAccess = QAccessible::queryAccessibleInterface(&plain);
    for (QComboBox *box : { static_cast<QComboBox *>(&cell), &plain })
        box->setAccessibleName(QStringLiteral("Quality"));
    EXPECT_EQ(access->role(), QAccessible::ComboBox);
    EXPECT_EQ(access->text(QAccessible::Name), plainAccess->text(QAccessible::Name));
    EXPECT_EQ(access->text(QAccessible::Value), "High");
    EXPECT_EQ(access->actionInterface()->actionNames(), plainAccess->actionInterface()->actionNames());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
