#include "app/session/recording_room.h"
#include "app/session/room_text.h"
#include "app/window/VNHintWndCtroller.h"
#include "app/window/status_line.h"
#include "app/window/window_front_end.h"
#include "base/free_space.h"
#include "capture/spool/VNBufferMgr.h"
#include "controls/level_meter.h"
#include "main_window_test.h"
#include "support/fake_service.h"
#include "support/wait_until.h"

#include <QAbstractButton>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QToolTip>
#include <QtTest>

namespace vornic {
namespace {

std::unique_ptr<test::PrivateBus> sessionBusOfTest;

/// The main window and the stop bar of a recording.
class WindowProgressTest : public MainWindowTest
{
protected:
    WindowProgressTest()
    {
        faces.setWindow(window.get(), [] {});
    }

    /// Puts the cache folder on the volume of \a folder, for as long as the test runs.
    static QString cacheOn(const QTemporaryDir &folder)
    {
        qputenv("XDG_CACHE_HOME", folder.path().toUtf8());
        return VNBufferMgr::cachePath();
    }
    void startRecording() { showStopItem(QRectF(0, 0, 320, 240)); }
    void showStopItem(const QRectF &recorded)
    {
        progress().showStopItem("00:00:00", recorded);
        faces.windows().whenScreenIsClear([] {});
    }
    static QAbstractButton *stopButton()
    {
        for (QWidget *shown : QApplication::topLevelWidgets()) {
            if (shown->objectName() == "stopBar" && shown->isVisible())
                return shown->findChild<QAbstractButton *>();
        }
        return nullptr;
    }
    WindowProgress &progress() { return faces.progress(); }
    QString status() { return control<StatusLine>("statusLine").text(); }

    WindowFrontEnd faces;
    RecordingRoom room { .spooledBytes = 1'949'000'000, .seconds = 3 * 3600 + 12 * 60, .folder = {} };
};

TEST_F(WindowProgressTest, TheRoomIsToldInTheWindowAndByTheBar)
{
    // Of the folders that tests may write to one lies in memory on most machines, and one does not.
    for (const QString &place : { QDir::currentPath(), QStringLiteral("/dev/shm") }) {
        const QTemporaryDir folder(place + "/vornic-XXXXXX");
        const bool isInMemory = liesInMemory(cacheOn(folder));
        window->showStatus({});
        startRecording();
        progress().showRoom(room);
        EXPECT_EQ(status(),
                  isInMemory ? "In memory: 1.9 GB, room for 3 h 10 min"
                             : "On disk: 1.9 GB, room for 3 h 10 min");
        ASSERT_TRUE(stopButton());
        EXPECT_EQ(stopButton()->toolTip(), "Stop the recording\n1.9 GB, room for 3 h 10 min");
        EXPECT_EQ(stopButton()->accessibleName(), "Stop the recording");
        progress().hideStopItem();
        EXPECT_EQ(status(), QString()) << "it is over";
        progress().showRoom(room);
        EXPECT_EQ(status(), QString()) << "told of a last picture, behind the end";
        window->showStatus("Something else.");
        progress().hideStopItem();
        EXPECT_EQ(status(), "Something else.");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(WindowProgressTest, TheBarPausesAndGoesOn)
{
    int asked = 0;
    progress().setPause([&asked] { ++asked; });
    startRecording();
    ASSERT_TRUE(stopButton());
    progress().setStopItemTitle("00:00:12");
    const QList<QAbstractButton *> buttons = stopButton()->window()->findChildren<QAbstractButton *>();
    ASSERT_EQ(buttons.size(), 2);
    QAbstractButton &pause = *buttons[1];
    EXPECT_EQ(pause.text(), "Pause");
    EXPECT_EQ(pause.accessibleName(), "Pause the recording");
    pause.click();
    EXPECT_EQ(asked, 1);
    progress().showPaused(true);
    EXPECT_EQ(stopButton()->text(), "00:00:12, paused");
    EXPECT_EQ(pause.text(), "Resume");
    EXPECT_EQ(pause.accessibleName(), "Go on with the recording");
    progress().soundIsLost(true);
    EXPECT_EQ(stopButton()->text(), "00:00:12, paused, no sound");
    progress().soundIsLost(false);
    pause.click();
    EXPECT_EQ(asked, 2);
    progress().showPaused(false);
    EXPECT_EQ(stopButton()->text(), "00:00:12");
    EXPECT_EQ(pause.text(), "Pause");
    progress().hideStopItem();
    progress().showPaused(true); // told behind the end
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(WindowProgressTest, TheBarShowsWhatIsLeftOfARecordingThatEndsByItself)
{
    startRecording();
    ASSERT_TRUE(test::waitUntil([] { return stopButton() != nullptr; }));
    progress().showTimeLeft(593);
    progress().setStopItemTitle("00:00:07");
    EXPECT_EQ(stopButton()->text(), "00:09:53 left");
    EXPECT_EQ(stopButton()->accessibleName(), "Stop the recording, 9 minutes left");
    progress().showTimeLeft(53);
    EXPECT_EQ(stopButton()->text(), "00:00:53 left");
    EXPECT_EQ(stopButton()->accessibleName(), "Stop the recording, 53 seconds left");
    progress().showPaused(true);
    EXPECT_EQ(stopButton()->text(), "00:00:53 left, paused");
    progress().hideStopItem();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    startRecording();
    ASSERT_TRUE(test::waitUntil([] { return stopButton() != nullptr; }));
    EXPECT_EQ(stopButton()->accessibleName(), "Stop the recording") << "the next one has no end";
    progress().hideStopItem();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(WindowProgressTest, ABarInTheMovieStaysWhileNoPictureIsKept)
{
    QCursor::setPos(700, 500);
    showStopItem(QRectF(0, 0, 1440, 900));
    progress().showPaused(true);
    window->show();
    window->activateWindow();
    QElapsedTimer shown;
    shown.start();
    ASSERT_TRUE(test::waitUntil([&] { return shown.hasExpired(3500); }));
    EXPECT_TRUE(stopButton()) << "it hides after three seconds otherwise";
    progress().showPaused(false);
    EXPECT_TRUE(test::waitUntil([] { return !stopButton(); }));
    progress().hideStopItem();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(WindowProgressTest, TheBarShowsHowLoudTheSoundIsWhereThereIsSome)
{
    startRecording();
    ASSERT_TRUE(stopButton());
    const QWidget &bar = *stopButton()->window();
    EXPECT_FALSE(bar.findChild<LevelMeter *>());
    const int withoutMeter = bar.width();
    progress().showLevel(0.5);
    auto *meter = bar.findChild<LevelMeter *>();
    ASSERT_TRUE(meter);
    EXPECT_GE(bar.width(), withoutMeter + meter->width());
    for (const auto *button : bar.findChildren<QAbstractButton *>())
        EXPECT_FALSE(meter->geometry().intersects(button->geometry())) << qPrintable(button->text());
    EXPECT_FALSE(meter->accessibleName().isEmpty());
    meter->advance(0.01);
    EXPECT_EQ(meter->level(), -6);
    progress().hideStopItem();
    progress().showLevel(0.5); // behind the end
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(WindowProgressTest, WhoLooksForTheProgramSeesTheBarThatHadHiddenItself)
{
    progress().pointAtStopItem(); // nothing records
    EXPECT_FALSE(stopButton());
    QCursor::setPos(700, 500); // at an edge it would call the bar
    showStopItem(QRectF(0, 0, 1440, 900));
    ASSERT_TRUE(stopButton());
    window->show();
    window->activateWindow();
    ASSERT_TRUE(test::waitUntil([] { return !stopButton(); })) << "it would be in the movie";
    progress().pointAtStopItem();
    EXPECT_TRUE(stopButton());
    window->activateWindow();
    EXPECT_TRUE(test::waitUntil([] { return !stopButton(); }));
}

TEST_F(WindowProgressTest, TheBarShowsItsToolTipThoughItNeverHasTheFocus)
{
    startRecording();
    progress().showRoom(room);
    ASSERT_TRUE(stopButton());
    window->activateWindow();
    ASSERT_TRUE(test::waitUntil([] { return !stopButton()->isActiveWindow(); }));
    QTest::mouseMove(stopButton(), { 5, 5 });
    QTest::mouseMove(stopButton(), { 8, 8 });
    EXPECT_TRUE(test::waitUntil([] { return QToolTip::isVisible(); }));
    EXPECT_EQ(QToolTip::text(), stopButton()->toolTip());
    QToolTip::hideText();
    progress().hideStopItem();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(WindowProgressTest, TheMainWindowIsMinimisedAndComesBackInFrontOfOthers)
{
    faces.windows().minimiseMainWindow();
    EXPECT_TRUE(window->isMinimized());
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(test::waitUntil([&] { return other.isActiveWindow(); }));
    faces.windows().bringMainWindowToFront();
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(test::waitUntil([&] { return window->isActiveWindow(); }));
}

TEST_F(WindowProgressTest, TheMainWindowIsToldToReload)
{
    auto &button = control<QAbstractButton>("recordButton");
    button.setText("Something else");
    faces.windows().reloadData();
    EXPECT_EQ(button.text(), "&Record");
}

TEST_F(WindowProgressTest, LittleRoomIsANotification)
{
    test::FakeService server(*sessionBusOfTest, "org.freedesktop.Notifications");
    server.setAnswer([](const QDBusMessage &call) {
        return call.member() == "Notify" ? call.createReply(7U) : call.createReply(QStringList { "body" });
    });
    room.seconds = 500;
    room.folder = "/home/a/.cache";
    progress().warnOfLittleRoom(room);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !server.calls("Notify").empty(); }, 20'000));
    const QVariantList told = server.calls("Notify").front().arguments();
    EXPECT_EQ(told.value(3), "Little room is left for the recording");
    EXPECT_EQ(told.value(4), littleRoom(room));
}

TEST_F(WindowProgressTest, SoundThatIsLostIsToldByTheBarAndANotification)
{
    test::FakeService server(*sessionBusOfTest, "org.freedesktop.Notifications");
    server.setAnswer([](const QDBusMessage &call) {
        return call.member() == "Notify" ? call.createReply(7U) : call.createReply(QStringList { "body" });
    });
    startRecording();
    ASSERT_TRUE(stopButton());
    EXPECT_EQ(stopButton()->text(), "00:00:00");
    progress().soundIsLost(true);
    EXPECT_EQ(stopButton()->text(), "00:00:00, no sound");
    progress().setStopItemTitle("00:00:01");
    EXPECT_EQ(stopButton()->text(), "00:00:01, no sound");
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.calls("Notify").size() == 1; }, 20'000));
    EXPECT_EQ(server.calls("Notify").front().arguments().value(3), "The audio input is gone");
    progress().soundIsLost(false);
    EXPECT_EQ(stopButton()->text(), "00:00:01");
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.calls("Notify").size() == 2; }, 20'000));
    EXPECT_EQ(server.calls("Notify").back().arguments().value(3), "The audio input is back");
    progress().oneSoundIsLost("Headset", true);
    EXPECT_EQ(stopButton()->text(), "00:00:01") << "there is sound";
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.calls("Notify").size() == 3; }, 20'000));
    EXPECT_EQ(server.calls("Notify").back().arguments().value(3), "“Headset” is gone");
    progress().hideStopItem();
    progress().soundIsLost(true); // behind the end
    progress().oneSoundIsLost("Headset", true);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(WindowProgressTest, TheFinalNotificationTellsWhatIsMissing)
{
    test::FakeService server(*sessionBusOfTest, "org.freedesktop.Notifications");
    server.setAnswer([](const QDBusMessage &call) {
        return call.member() == "Notify" ? call.createReply(7U) : call.createReply(QStringList { "body" });
    });
    faces.frontEnd().desktop.announceMovie("/somewhere/movie.mp4", 61, "No sound came.");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !server.calls("Notify").empty(); }, 20'000));
    const QString body = server.calls("Notify").front().arguments().value(4).toString();
    EXPECT_TRUE(body.startsWith("movie.mp4: 1:01")) << body.toStdString();
    EXPECT_TRUE(body.endsWith("\nNo sound came.")) << body.toStdString();
    EXPECT_TRUE(status().startsWith("No sound came. Saved movie.mp4")) << status().toStdString();
}

TEST_F(WindowProgressTest, TheHintTellsThatTheCacheLiesInMemory)
{
    for (const QString &place : { QDir::currentPath(), QStringLiteral("/dev/shm") }) {
        const QTemporaryDir folder(place + "/vornic-XXXXXX");
        const QString cache = cacheOn(folder);
        VNHintWndCtroller &hint = VNHintWndCtroller::shareHintWndCtroller();
        hint.beginSheetModalForWindow(window.get(), {});
        auto *sheet = window->findChild<QDialog *>();
        ASSERT_TRUE(sheet);
        auto *explanation = sheet->findChild<QLabel *>("explanation");
        EXPECT_EQ(explanation->text().contains(liesInMemoryText(cache)), liesInMemory(cache));
        QCoreApplication::processEvents();
        EXPECT_LE(explanation->heightForWidth(explanation->width()), explanation->height())
            << "all of it is seen";
        hint.cancelAction();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    using vornic::sessionBusOfTest;
    sessionBusOfTest = vornic::test::PrivateBus::start();
    if (!sessionBusOfTest)
        return 1;
    qputenv("DBUS_SESSION_BUS_ADDRESS", sessionBusOfTest->address());
    const int status = vornic::runWindowTests(argc, argv);
    sessionBusOfTest.reset();
    return status;
}
