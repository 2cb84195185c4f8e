#include "app/window/dialog_placement.h"
#include "window_main.h"

#include <QColorDialog>
#include <QMessageBox>
#include <QScreen>

namespace vornic {
namespace {

class DialogPlacementTest : public testing::Test
{
protected:
    DialogPlacementTest()
    {
        parent.setGeometry(60, 60, 200, 200);
        parent.show();
    }

    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry(); // 1440 x 900
    QWidget parent;
    QList<QRect> areas;
    DialogPlacement placement { [this] { return areas; }, nullptr };
};

TEST_F(DialogPlacementTest, ADialogThatCoversNothingStaysWhereTheToolkitPutsIt)
{
    QMessageBox box(QMessageBox::Warning, "Title", "A question?", QMessageBox::Ok, &parent);
    box.show();
    const QPoint natural = box.pos();
    box.hide();
    areas += QRect(1200, 600, 200, 200);
    QMessageBox again(QMessageBox::Warning, "Title", "A question?", QMessageBox::Ok, &parent);
    again.show();
    EXPECT_EQ(again.pos(), natural);
    EXPECT_FALSE(again.testAttribute(Qt::WA_Moved)); // which would keep the window manager from placing it
}

TEST_F(DialogPlacementTest, EveryDialogIsMovedOffWhatIsRecorded)
{
    areas += QRect(0, 0, 1440, 450);
    QMessageBox box(QMessageBox::Warning, "Title", "A question?", QMessageBox::Ok, &parent);
    box.show();
    EXPECT_GE(box.frameGeometry().top(), 450);
    EXPECT_TRUE(screen.contains(box.frameGeometry()));
    QDialog sheet(&parent);
    sheet.setWindowModality(Qt::WindowModal);
    sheet.resize(300, 200);
    sheet.show();
    EXPECT_GE(sheet.frameGeometry().top(), 450);
    QDialog alone;
    alone.resize(300, 300);
    areas = { QRect(340, 340, 1100, 560) };
    alone.show();
    EXPECT_FALSE(alone.frameGeometry().intersects(areas.first()));
}

TEST_F(DialogPlacementTest, AMessageOfManyLinesIsMeasuredAsItIsShown)
{
    parent.move(60, 360);
    areas += QRect(0, 500, 1440, 400);
    QMessageBox box(QMessageBox::Warning, "Title", "A question?", QMessageBox::Ok, &parent);
    box.setInformativeText(QStringLiteral("Many words that fill several lines. ").repeated(20));
    box.show();
    EXPECT_LE(box.frameGeometry().bottom(), 499);
}

TEST_F(DialogPlacementTest, WithoutRoomItStaysWhereTheToolkitPutsIt)
{
    QColorDialog panel(&parent);
    panel.setOption(QColorDialog::DontUseNativeDialog);
    panel.show();
    const QPoint natural = panel.pos();
    panel.hide();
    areas += screen;
    QColorDialog again(&parent);
    again.setOption(QColorDialog::DontUseNativeDialog);
    again.show();
    EXPECT_EQ(again.pos(), natural);
}

TEST_F(DialogPlacementTest, OtherWindowsAreLeftAlone)
{
    areas += QRect(0, 0, 1440, 450);
    QWidget window;
    window.setGeometry(50, 70, 200, 200);
    window.show();
    EXPECT_EQ(window.geometry().topLeft(), QPoint(50, 70));
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
