#include "app/session/unix_signals.h"
#include "app/window/VNHintWndCtroller.h"
#include "app/window/alert_box.h"
#include "app/window/window_program.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/stored_recordings.h"
#include "controls/VNDragDropImageView.h"
#include "desktop/single_instance.h"
#include "support/scoped_environment.h"
#include "window_main.h"

#include <QAbstractButton>
#include <QDir>
#include <QDirIterator>
#include <QLabel>
#include <QPointer>
#include <QSessionManager>
#include <QTimer>

#include <array>
#include <cstddef>
#include <functional>
#include <stdexcept>

namespace vornic {
namespace {

/// The whole program with its window, without a window system.
class WindowProgramTest : public testing::Test
{
protected:
    ~WindowProgramTest() override
    {
        EXPECT_TRUE(storedRecordings(VNBufferMgr::cachePath()).isEmpty());
        QCoreApplication::processEvents(); // an end that was asked for once more
    }

    /// From the program's start on, in its loop, looks again and again whether \a holds, and does \a next once it does.
    void once(const std::function<bool()> &holds, const std::function<void()> &next)
    {
        auto *timer = new QTimer(&timers);
        QObject::connect(timer, &QTimer::timeout, timer, [timer, holds, next] {
            if (!holds())
                return;
            timer->stop();
            next();
        });
        timer->start(20);
    }
    static bool isSpooled()
    {
        QDirIterator files(
            VNBufferMgr::cachePath(), { "vornicvideo.tmp" }, QDir::Files, QDirIterator::Subdirectories);
        return files.hasNext() && QFileInfo(files.next()).size() > 0;
    }
    static AlertBox *question() { return qobject_cast<AlertBox *>(QApplication::activeModalWidget()); }
    static VNDragDropImageView &logoView()
    {
        for (const QWidget *window : QApplication::topLevelWidgets()) {
            if (auto *view = window->findChild<VNDragDropImageView *>("logoImageView"))
                return *view;
        }
        throw std::logic_error("there is no main window");
    }
    /// As the session manager does when the session ends.
    static void endSession()
    {
        QEvent quit(QEvent::Quit);
        QCoreApplication::sendEvent(qApp, &quit);
    }

    QTemporaryDir folder;
    QString movie = folder.filePath("movie.mp4");
    UnixSignals signalled;
    SingleInstance instance;
    QObject timers;
    WindowProgram program { *qobject_cast<QApplication *>(qApp), signalled, instance };
};

TEST_F(WindowProgramTest, TheEndOfTheSessionEndsARecordingWithoutAQuestion)
{
    bool isAsked = false;
    once(isSpooled, endSession);
    once([] { return question() != nullptr; },
         [&isAsked] {
             isAsked = true;
             question()->reject();
             QCoreApplication::exit(1);
         });
    EXPECT_EQ(program.run(WindowProgram::recordFullAction, movie), 0);
    EXPECT_FALSE(isAsked);
    EXPECT_TRUE(QFile::exists(movie));
}

TEST_F(WindowProgramTest, WhatStandsWhenTheSessionPreparesItsEndIsDismissed)
{
    once(isSpooled, [] {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (qobject_cast<MainWindow *>(window))
                window->close(); // asks, in a loop of its own
        }
    });
    once([] { return question() != nullptr; },
         [] {
             const QPointer<AlertBox> box = question();
             // Only the toolkit can make a session manager; who hears the signal does not use it.
             alignas(QSessionManager) static std::array<std::byte, sizeof(QSessionManager)> memory;
             emit qApp->commitDataRequest(reinterpret_cast<QSessionManager &>(memory));
             EXPECT_FALSE(box && box->isVisible());
             endSession();
         });
    EXPECT_EQ(program.run(WindowProgram::recordFullAction, movie), 0);
    EXPECT_TRUE(QFile::exists(movie));
}

TEST_F(WindowProgramTest, ToggledItRecordsUntilItIsToggledAgain)
{
    test::ScopedEnvironment environment;
    environment.set("HOME", folder.path());
    const auto movies = [this] { return QDir(folder.path()).entryList({ "*.mp4" }); };
    const QString toggle = WindowProgram::toggleAction;
    once(isSpooled, [&] {
        EXPECT_TRUE(movies().isEmpty());
        EXPECT_TRUE(instance.mayAct(toggle));
        emit instance.actionAsked(toggle, {}, {});
    });
    once([&] { return !movies().isEmpty() && instance.mayAct(WindowProgram::recordFullAction); }, endSession);
    EXPECT_EQ(program.run(toggle, {}), 0);
    EXPECT_EQ(movies().size(), 1);
}

TEST_F(WindowProgramTest, WhileAQuestionStandsNoRecordingIsBegun)
{
    once([] { return QApplication::activeModalWidget() != nullptr; },
         [&] {
             for (const char *action : { WindowProgram::toggleAction,
                                         WindowProgram::recordFullAction,
                                         WindowProgram::recordRectangleAction }) {
                 EXPECT_FALSE(instance.mayAct(action)) << action;
                 emit instance.actionAsked(action, movie, {});
             }
             EXPECT_FALSE(instance.mayAct(WindowProgram::stopAction)) << "nothing records";
             EXPECT_TRUE(QApplication::activeModalWidget());
             QCoreApplication::exit(7);
         });
    EXPECT_EQ(program.run(WindowProgram::recordFullAction, {}), 7); // asks for the movie's name
}

TEST_F(WindowProgramTest, WhatOnlyTellsSomethingIsPutAsideForARecording)
{
    bool isTold = false;
    once([] { return QGuiApplication::focusWindow() != nullptr; },
         [] { emit logoView().fileUnreadable({}, {}); });
    once([] { return question() != nullptr; },
         [&] {
             isTold = true;
             EXPECT_TRUE(instance.mayAct(WindowProgram::recordRectangleAction));
             emit instance.actionAsked(WindowProgram::recordFullAction, movie, {});
         });
    once(isSpooled, [] {
        EXPECT_FALSE(question()) << "it is in the movie";
        endSession();
    });
    EXPECT_EQ(program.run({}, {}), 0);
    EXPECT_TRUE(isTold);
    EXPECT_TRUE(QFile::exists(movie));
}

TEST_F(WindowProgramTest, WhereProgramsHaveNoKeysTheWindowTellsOfTheDesktopsOwn)
{
    QString told;
    QString hint;
    once([] { return QGuiApplication::focusWindow() != nullptr; },
         [&] {
             for (const QWidget *window : QApplication::topLevelWidgets()) {
                 if (const auto *label = window->findChild<QLabel *>("shortcutProblem"))
                     told = label->text();
             }
             VNHintWndCtroller::shareHintWndCtroller().beginSheetModalForWindow(nullptr, {});
             hint = QApplication::activeModalWidget()->findChild<QLabel *>("explanation")->text();
             VNHintWndCtroller::shareHintWndCtroller().cancelAction();
             endSession();
         });
    EXPECT_EQ(program.run({}, {}), 0);
    EXPECT_EQ(told, "Bind a desktop key to “vornic --toggle”.");
    EXPECT_TRUE(hint.contains("bar with the clock"));
    EXPECT_FALSE(hint.contains("Ctrl+Alt+R"));
}

/// As a Wayland desktop does, which shows its screen to no program before a recording.
TEST_F(WindowProgramTest, AChoiceOnAScreenThatIsNotShownIsToldToBeImpossible)
{
    const auto display = std::dynamic_pointer_cast<FakeDisplay>(mainDisplay());
    display->setRefusesGrabs(true);
    const auto part = [](const char *name) {
        for (const QWidget *window : QApplication::topLevelWidgets()) {
            if (auto *found = window->findChild<QWidget *>(name))
                return found;
        }
        return static_cast<QWidget *>(nullptr);
    };
    QString told;
    once([&] { return part("selectButton") && part("selectButton")->isVisible(); },
         [&] {
             qobject_cast<QAbstractButton *>(part("selectButton"))->click();
             EXPECT_FALSE(part("selectButton")->isVisible()) << "the window is out of the way";
             once([&] { return part("selectButton")->isVisible(); },
                  [&] {
                      for (const QLabel *label : part("statusLine")->findChildren<QLabel *>())
                          told += label->text();
                      endSession();
                  });
         });
    EXPECT_EQ(program.run({}, {}), 0);
    display->setRefusesGrabs(false);
    EXPECT_TRUE(told.contains("The desktop does not show its screen for that")) << qPrintable(told);
}

/// What would show the movie's folder when a test is over already: it fails where there is no file browser, and the
/// alert comes in the next test.
void putSilentLauncher(const QTemporaryDir &folder)
{
    QFile launcher(folder.filePath("xdg-open"));
    ASSERT_TRUE(launcher.open(QFile::WriteOnly));
    launcher.write("#!/bin/sh\n");
    launcher.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", folder.path().toLocal8Bit() + ':' + qgetenv("PATH"));
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    const QTemporaryDir launchers;
    vornic::putSilentLauncher(launchers);
    qputenv("VORNIC_AUDIO", "none");
    for (const char *desktop : { "DISPLAY", "WAYLAND_DISPLAY", "XDG_SESSION_TYPE" })
        qunsetenv(desktop);
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    return vornic::runWindowTests(argc, argv);
}
