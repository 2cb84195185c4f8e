#include "app/session/audio_device_list.h"
#include "app/session/level_watch.h"
#include "app/session/start_settings.h"
#include "app/window/shortcut_field.h"
#include "app/window/status_line.h"
#include "controls/VNCheckCell.h"
#include "controls/VNComboboxView.h"
#include "controls/VNRadioCell.h"
#include "controls/level_meter.h"
#include "controls/record_button.h"
#include "main_window_test.h"
#include "support/wait_until.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

// The main window among other windows, and while it records.

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

class LevelTest : public MainWindowTest
{
protected:
    LevelTest() { window->setLevelWatch(&watch); }
    ~LevelTest() override
    {
        frontEnd.window = nullptr;
        window.reset();
    }
    LevelMeter &meter() { return control<LevelMeter>("levelMeter"); }

    LevelWatch watch { &audioControl };
};

TEST_F(LevelTest, TheInputIsListenedToWhileItsLevelMayBeSeen)
{
    EXPECT_EQ(watch.device(), QString()) << "sound is off";
    EXPECT_FALSE(meter().isListening());
    control<VNCheckCell>("chkEnableAudio").click();
    EXPECT_EQ(watch.device(), "Microphone");
    EXPECT_TRUE(meter().isListening());
    QTest::keyClick(&widget("mAudioDevicesView"), Qt::Key_Down);
    EXPECT_EQ(watch.device(), "Monitor of Speakers");
    window->hide();
    EXPECT_EQ(watch.device(), QString());
    EXPECT_FALSE(meter().isListening());
    window->show();
    EXPECT_EQ(watch.device(), "Monitor of Speakers");
    window->setWindowState(Qt::WindowMinimized);
    EXPECT_EQ(watch.device(), QString());
    window->setWindowState(Qt::WindowNoState);
    EXPECT_EQ(watch.device(), "Monitor of Speakers");
    audioControl.names.clear();
    delegate.audioControlInputDeviceChanged(audioControl);
    EXPECT_EQ(watch.device(), QString());
}

TEST_F(LevelTest, WhileSomethingIsRecordedTheInputIsOpenForThatAlone)
{
    const QTemporaryDir folder;
    frontEnd.path = folder.filePath("movie.mp4");
    control<VNCheckCell>("chkEnableAudio").click();
    EXPECT_EQ(watch.device(), "Microphone");
    delegate.recorded();
    ASSERT_TRUE(test::waitUntil([this] { return delegate.session().isCapturing(); }));
    EXPECT_EQ(watch.device(), QString());
    delegate.stopRecord();
    ASSERT_TRUE(test::waitUntil([this] { return !delegate.isRecording(); }));
    EXPECT_EQ(watch.device(), "Microphone");
}

TEST_F(LevelTest, TheMeterShowsWhatIsHeardAndTheWindowThatNothingIs)
{
    control<VNCheckCell>("chkEnableAudio").click();
    emit watch.heard(0.5);
    meter().advance(0.01);
    EXPECT_EQ(meter().level(), -6);
    emit watch.nothingHeard("Microphone");
    EXPECT_EQ(control<StatusLine>("statusLine").text(), "Nothing is heard from Microphone.");
}

class PlacementTest : public MainWindowTest
{
protected:
    PlacementTest()
    {
        options().setRecordRegion(0);
        options().setSelectedRect({ 0, 250, 600, 600 });
        // Its upper left corner is a pixel's width from the rectangle's; the screen has 1440 x 900.
        window->move(100, 100);
        QCoreApplication::processEvents();
    }

    QRect frame() const { return window->frameGeometry(); }
    QString status() { return control<StatusLine>("statusLine").text(); }

    const QRect rectangle { 0, 42, 608, 616 }; // with the overlay's frame, y down
};

TEST_F(PlacementTest, TheWindowMakesRoomForTheRectangle)
{
    ASSERT_TRUE(frame().intersects(rectangle));
    control<VNRadioCell>("chkPartScreen").click();
    EXPECT_FALSE(frame().intersects(rectangle)) << frame().x();
    EXPECT_EQ(frame().topLeft(), QPoint(608, 100));
    EXPECT_EQ(status(), QString());
    // Dragging the rectangle beneath the window does not chase it.
    const QRect before = frame();
    options().setSelectedRect({ 700, 250, 600, 600 });
    EXPECT_EQ(frame(), before);
    window->keepOffRecorded();
    EXPECT_FALSE(frame().intersects(QRect(692, 42, 616, 616)) && status().isEmpty());
}

TEST_F(PlacementTest, AWindowThatHidesNothingStays)
{
    window->move(620, 70);
    const QRect before = frame();
    control<VNRadioCell>("chkPartScreen").click();
    EXPECT_EQ(frame(), before);
}

TEST_F(PlacementTest, TheWindowMakesRoomForTheLogo)
{
    QImage picture(200, 100, QImage::Format_RGB32);
    picture.fill(Qt::red);
    logo().setNSImage(picture);
    logo().setLogoType(1);
    logo().setLogoScale(1);
    logo().setLogoPosition({ 158, 508 }); // 150 from the left, 300 to 400 from the top
    const QRect shown(150, 300, 200, 100);
    ASSERT_TRUE(frame().intersects(shown));
    control<VNCheckCell>("chkLogo").click();
    EXPECT_FALSE(frame().intersects(shown));
    EXPECT_EQ(frame().topLeft(), QPoint(350, 100));
    EXPECT_EQ(status(), QString());
}

TEST_F(PlacementTest, WithoutRoomItStaysAndSaysSo)
{
    options().setSelectedRect({ 100, 100, 1240, 700 });
    control<VNRadioCell>("chkPartScreen").click();
    EXPECT_EQ(frame().topLeft(), QPoint(100, 100));
    EXPECT_EQ(status(), "This window covers part of the rectangle; minimise it to see all of it.");
    control<VNRadioCell>("chkFullScreen").click();
    EXPECT_EQ(status(), QString());
    // Another sentence is not taken back.
    window->showStatus("Something else.");
    control<VNCheckCell>("chkLogo").click();
    control<VNCheckCell>("chkLogo").click();
    EXPECT_EQ(status(), "Something else.");
}

TEST_F(PlacementTest, AFrameThatMayBeAPixelOffIsToldOf)
{
    bool isExact = false;
    window->setFrameIsExact([&] { return isExact; });
    control<VNRadioCell>("chkPartScreen").click();
    EXPECT_EQ(status(), "At this scale of the screen the frame may be a pixel off what is recorded.");
    control<VNRadioCell>("chkFullScreen").click();
    EXPECT_EQ(status(), QString()) << "there is no frame";
    isExact = true;
    control<VNRadioCell>("chkPartScreen").click();
    EXPECT_EQ(status(), QString());
}

TEST_F(PlacementTest, AUsualSizeMakesRoomToo)
{
    options().setRecordRegion(1);
    options().setSelectedRect({ 0, 700, 200, 200 });
    window->move(700, 100);
    QTest::keyClick(&widget("sizeView"), Qt::Key_Down);
    EXPECT_EQ(status(), "This window covers part of the rectangle; minimise it to see all of it.");
}

TEST_F(PlacementTest, ItMakesRoomAtTheStartOfTheProgram)
{
    options().setRecordRegion(1);
    window->hide();
    makeWindow();
    window->move(100, 100);
    ASSERT_TRUE(frame().intersects(rectangle));
    EXPECT_TRUE(test::waitUntil([this] { return !frame().intersects(rectangle); }));
}

TEST_F(PlacementTest, UnfoldingKeepsTheWindowOnTheScreen)
{
    options().setSelectedRect({ 0, 250, 600, 600 });
    const int folded = frame().height();
    window->move(640, 900 - folded);
    control<VNRadioCell>("chkPartScreen").click();
    control<VNCheckCell>("chkLogo").click();
    EXPECT_GT(frame().height(), folded);
    EXPECT_LE(frame().bottom(), 899);
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
    const QSignalSpy refused(&delegate.session(), &RecordingSession::recordingRefused);
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

TEST_F(MainWindowTest, WhereThereAreSeveralMonitorsItTellsWhichIsRecorded)
{
    auto &line = control<QLabel>("monitorLine");
    EXPECT_FALSE(line.isVisible());
    const int height = window->height();
    const auto display = std::make_shared<FakeDisplay>(QSize(1440, 900));
    setMainDisplay(display);
    display->setReport({ .origin = { 1440, 0 }, .name = "DP-2" });
    window->reloadData(); // as when a recording begins
    EXPECT_TRUE(line.isVisible());
    EXPECT_EQ(line.text(), "Recorded monitor: DP-2");
    EXPECT_GT(window->height(), height);
    display->setReport({ .name = "DP-1" });
    emit qGuiApp->screenAdded(QGuiApplication::primaryScreen());
    EXPECT_EQ(line.text(), "Recorded monitor: DP-1");
    display->setReport({});
    window->reloadData();
    EXPECT_FALSE(line.isVisible());
    EXPECT_EQ(window->height(), height);
}

TEST_F(MainWindowTest, TheKeyThatPausesIsShownAndChosen)
{
    auto &field = control<ShortcutField>("pauseShortcutField");
    EXPECT_EQ(field.shortcut(), "Ctrl+Alt+P");
    const QSignalSpy chosen(window.get(), &MainWindow::pauseShortcutChosen);
    const QSignalSpy other(window.get(), &MainWindow::shortcutChosen);
    QTest::keyClick(&field, Qt::Key_F8, Qt::MetaModifier);
    EXPECT_EQ(chosen, (QList<QVariantList> { { "Meta+F8" } }));
    QTest::keyClick(&field, Qt::Key_B);
    EXPECT_EQ(control<QLabel>("shortcutProblem").text(), "Hold Ctrl, Alt or Super with it.");
    EXPECT_TRUE(other.isEmpty());
}

class RecordingWindowTest : public MainWindowTest
{
protected:
    RecordingWindowTest()
    {
        setMainDisplay(std::make_shared<FakeDisplay>(QSize(320, 240)));
        options().setRecordRegion(0);
        frontEnd.path = folder.filePath("movie.mp4");
    }
    ~RecordingWindowTest() override { setMainDisplay(std::make_shared<FakeDisplay>(QSize(1440, 900))); }

    QPushButton &recordButton() { return control<QPushButton>("recordButton"); }
    bool isStop()
    {
        EXPECT_EQ(control<RecordButton>("recordButton").stops(), recordButton().text().startsWith("Sto&p"));
        return recordButton().text().startsWith("Sto&p");
    }

    const QTemporaryDir folder;
};

TEST_F(RecordingWindowTest, TheClockStandsWhileTheRecordingIsPaused)
{
    recordButton().click();
    ASSERT_TRUE(test::waitUntil([this] { return delegate.session().mayPause(); }));
    const QSize size = window->size();
    delegate.session().pauseOrResume();
    EXPECT_TRUE(recordButton().text().endsWith(", paused")) << recordButton().text().toStdString();
    EXPECT_TRUE(isStop());
    EXPECT_EQ(delegate.state(), 1);
    EXPECT_EQ(window->size(), size);
    delegate.session().pauseOrResume();
    EXPECT_FALSE(recordButton().text().endsWith(", paused"));
    delegate.session().pauseOrResume();
    QTest::keyClick(&recordButton(), Qt::Key_Return);
    ASSERT_TRUE(test::waitUntil([this] { return !delegate.isRecording(); }));
    EXPECT_EQ(recordButton().text(), "&Record");
}

TEST_F(RecordingWindowTest, TheButtonStopsWhileTheScreenIsTaken)
{
    window->showStatus("Of the recording before.");
    recordButton().click();
    ASSERT_TRUE(test::waitUntil([this] { return delegate.session().isCapturing(); }));
    EXPECT_TRUE(isStop());
    EXPECT_TRUE(recordButton().isEnabled());
    EXPECT_FALSE(recordButton().accessibleName().isEmpty());
    EXPECT_EQ(control<StatusLine>("statusLine").text(), QString());
    EXPECT_FALSE(widget("selectButton").isEnabled());
    EXPECT_TRUE(test::waitUntil([this] { return recordButton().text().endsWith("00:00:01"); }));

    int timesTold = 0;
    frontEnd.onProgress = [&] {
        if (!delegate.isRecording())
            return; // the last word comes when all is over
        ++timesTold;
        EXPECT_FALSE(recordButton().isEnabled());
        EXPECT_FALSE(isStop());
    };
    widget("chkFullScreen").setFocus();
    QTest::keyClick(&recordButton(), Qt::Key_Return);
    ASSERT_TRUE(test::waitUntil([this] { return !delegate.isRecording(); }));
    EXPECT_TRUE(QFile::exists(*frontEnd.path));
    EXPECT_GT(timesTold, 0);
    EXPECT_EQ(recordButton().text(), "&Record");
    EXPECT_TRUE(recordButton().isEnabled());
    EXPECT_TRUE(recordButton().accessibleName().isEmpty());
    EXPECT_EQ(window->focusWidget(), &recordButton());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
