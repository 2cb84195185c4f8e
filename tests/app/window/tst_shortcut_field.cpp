#include "app/window/shortcut_field.h"
#include "window_main.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

namespace vornic {
namespace {

class ShortcutFieldTest : public testing::Test
{
protected:
    ShortcutFieldTest()
    {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(&field);
        layout->addWidget(&button);
        window.show();
        window.activateWindow();
        field.setFocus();
    }

    QWidget window;
    ShortcutField field;
    QPushButton button { "&Record" };
    const QSignalSpy chosen { &field, &ShortcutField::chosen };
    const QSignalSpy refused { &field, &ShortcutField::refused };
};

TEST_F(ShortcutFieldTest, ItTakesTheKeysThatArePressed)
{
    field.setShortcut("Ctrl+Alt+R");
    EXPECT_EQ(field.text(), "Ctrl+Alt+R");
    EXPECT_TRUE(chosen.isEmpty());
    QTest::keyClick(&field, Qt::Key_F9, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(chosen, (QList<QVariantList> { { "Ctrl+Shift+F9" } }));
    EXPECT_EQ(field.shortcut(), "Ctrl+Shift+F9");
    EXPECT_EQ(field.text(), "Ctrl+Shift+F9");
    QTest::keyClick(&field, Qt::Key_Print);
    EXPECT_EQ(field.shortcut(), "Print");
    // Keys on their way to a combination are none.
    for (const Qt::Key key :
         { Qt::Key_Control, Qt::Key_Shift, Qt::Key_Alt, Qt::Key_Super_L, Qt::Key_AltGr }) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::ControlModifier);
        QCoreApplication::sendEvent(&field, &press);
    }
    EXPECT_EQ(field.shortcut(), "Print");
    EXPECT_TRUE(refused.isEmpty());
}

TEST_F(ShortcutFieldTest, BackspaceAndDeleteMeanNone)
{
    for (const Qt::Key key : { Qt::Key_Backspace, Qt::Key_Delete }) {
        field.setShortcut("Ctrl+Alt+R");
        QTest::keyClick(&field, key);
        EXPECT_EQ(field.shortcut(), QString());
        EXPECT_EQ(field.text(), QString());
        EXPECT_EQ(chosen.last(), QVariantList { QString() });
    }
    EXPECT_FALSE(field.placeholderText().isEmpty());
}

TEST_F(ShortcutFieldTest, KeysThatPeopleTypeWithAreRefused)
{
    field.setShortcut("Ctrl+Alt+R");
    QTest::keyClick(&field, Qt::Key_A);
    QTest::keyClick(&field, Qt::Key_A, Qt::ShiftModifier);
    QTest::keyClick(&field, Qt::Key_Return);
    QTest::keyClick(&field, Qt::Key_Space);
    EXPECT_EQ(refused.size(), 4);
    EXPECT_TRUE(chosen.isEmpty());
    EXPECT_EQ(field.text(), "Ctrl+Alt+R");
}

TEST_F(ShortcutFieldTest, MnemonicsAreKeysLikeOthersAndTabLeaves)
{
    const QSignalSpy clicked(&button, &QAbstractButton::clicked);
    QTest::keyClick(&field, Qt::Key_R, Qt::AltModifier);
    EXPECT_EQ(field.shortcut(), "Alt+R");
    EXPECT_TRUE(clicked.isEmpty());
    QTest::keyClick(&field, Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), &button);
    EXPECT_EQ(field.shortcut(), "Alt+R");
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
