#include "app/session/audio_device_list.h"
#include "app/session/start_settings.h"
#include "app/window/shortcut_field.h"
#include "app/window/status_line.h"
#include "controls/VNCheckCell.h"
#include "controls/VNComboboxView.h"
#include "main_window_test.h"

#include <QLabel>
#include <QSignalSpy>
#include <QtTest>

// What the main window asks for and tells.

namespace vornic {
namespace {

class WithoutSoundTest : public MainWindowTest
{
protected:
    WithoutSoundTest()
        : MainWindowTest(QStringList())
    {
    }
};

TEST_F(WithoutSoundTest, SoundCannotBeSwitchedOnWithoutAnInput)
{
    auto &sound = control<VNCheckCell>("chkEnableAudio");
    auto &devices = control<VNComboboxView>("mAudioDevicesView");
    EXPECT_FALSE(sound.isEnabled());
    sound.click();
    EXPECT_FALSE(options().enableAudio());
    EXPECT_EQ(devices.shownTitle(), "No audio input found");
    EXPECT_TRUE(devices.toolTip().contains("No audio input found"));
    EXPECT_EQ(devices.numberOfMenuItems(), 0);
    EXPECT_EQ(delegate.audioDevicesView().stringValue(), QString());

    audioControl.names = QStringList { "Microphone" };
    delegate.audioControlInputDeviceChanged(audioControl);
    EXPECT_TRUE(sound.isEnabled());
    EXPECT_EQ(devices.shownTitle(), "Microphone");
    audioControl.names.clear();
    delegate.audioControlInputDeviceChanged(audioControl);
    EXPECT_FALSE(sound.isEnabled());
}

TEST_F(MainWindowTest, TheButtonForTheScreenAsks)
{
    const QSignalSpy asked(window.get(), &MainWindow::selectOnScreenAsked);
    QTest::keyClick(&widget("selectButton"), Qt::Key_Return);
    EXPECT_EQ(asked.size(), 1);
    EXPECT_EQ(options().recordRegion(), VNOption().recordRegion());
}

TEST_F(MainWindowTest, EnterPressesTheButtonWithTheFocus)
{
    frontEnd.path.reset();
    const QSignalSpy refused(&delegate, &VornicAppDelegate::recordingRefused);
    EXPECT_EQ(window->focusWidget(), &widget("recordButton"));
    QTest::keyClick(&widget("recordButton"), Qt::Key_Return);
    QTest::keyClick(&widget("recordButton"), Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(refused.size(), 2);
}

TEST_F(MainWindowTest, TheStatusLineHandsOnWhatIsAskedOfTheMovie)
{
    window->showSaved("/somewhere/movie.mp4", 65);
    EXPECT_TRUE(control<StatusLine>("statusLine").text().startsWith("Saved movie.mp4, 1:05"));
    const QSignalSpy open(window.get(), &MainWindow::openAsked);
    const QSignalSpy reveal(window.get(), &MainWindow::revealAsked);
    QTest::keyClick(&widget("openSavedButton"), Qt::Key_Return);
    QTest::keyClick(&widget("revealSavedButton"), Qt::Key_Return);
    EXPECT_EQ(open, (QList<QVariantList> { { "/somewhere/movie.mp4" } }));
    EXPECT_EQ(reveal, (QList<QVariantList> { { "/somewhere/movie.mp4" } }));
    window->showStatus("No program opens it.");
    EXPECT_EQ(control<StatusLine>("statusLine").text(), "No program opens it.");
}

TEST_F(MainWindowTest, TheCountdownIsStored)
{
    auto &countdown = control<VNComboboxView>("countdownView");
    EXPECT_EQ(countdown.stringValue(), "None");
    QTest::keyClick(&countdown, Qt::Key_Down);
    EXPECT_EQ(countdown.stringValue(), "3 s");
    EXPECT_EQ(start_settings::countdownSeconds(), 3);
    QTest::keyClick(&countdown, Qt::Key_End);
    EXPECT_EQ(start_settings::countdownSeconds(), 10);
    makeWindow();
    EXPECT_EQ(control<VNComboboxView>("countdownView").stringValue(), "10 s");
    start_settings::setCountdownSeconds(0);
}

TEST_F(MainWindowTest, TheKeyIsShownChosenAndItsTroubleTold)
{
    auto &field = control<ShortcutField>("shortcutField");
    auto &problem = control<QLabel>("shortcutProblem");
    EXPECT_EQ(field.shortcut(), "Ctrl+Alt+R");
    window->setShortcut("Ctrl+F7");
    EXPECT_EQ(field.text(), "Ctrl+F7");
    window->setShortcutProblem("Another program has it.");
    EXPECT_EQ(problem.text(), "Another program has it.");
    const QSignalSpy chosen(window.get(), &MainWindow::shortcutChosen);
    QTest::keyClick(&field, Qt::Key_F8, Qt::MetaModifier);
    EXPECT_EQ(chosen, (QList<QVariantList> { { "Meta+F8" } }));
    EXPECT_EQ(problem.text(), QString());
    QTest::keyClick(&field, Qt::Key_B);
    EXPECT_EQ(problem.text(), "Hold Ctrl, Alt or Super with it.");
    EXPECT_EQ(chosen.size(), 1);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
