#pragma once

#include "recording_fixture.h"
#include "support/built_program.h"

#include <QDir>

namespace vornic {

/// The window under a window manager, with a person's keys and mouse.
class RecordWindowTest : public RecordingTest
{
protected:
    void SetUp() override
    {
        startServer();
        openbox = server->startOpenbox();
        ASSERT_TRUE(openbox);
        startProgram();
    }

    /// Where a program stands that would open the movie's folder with whatever this machine has for it.
    QString silentLauncher()
    {
        QDir(folder.path()).mkdir(QStringLiteral("bin"));
        QFile launcher(folder.filePath(QStringLiteral("bin/xdg-open")));
        if (launcher.open(QIODevice::WriteOnly))
            launcher.write("#!/bin/sh\n");
        launcher.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return QFileInfo(launcher).path();
    }

    void startProgram(const QStringList &arguments = {})
    {
        program = start(QStringLiteral("env"),
                        QStringList { "QT_QPA_PLATFORM=xcb",
                                      "PULSE_SERVER=unix:/nonexistent",
                                      "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent",
                                      "LC_ALL=C.UTF-8",
                                      "HOME=" + folder.path(),
                                      "PATH=" + silentLauncher() + ":" + qEnvironmentVariable("PATH"),
                                      test::vornicProgram() }
                            + arguments);
        ASSERT_TRUE(!arguments.isEmpty() || !waitForWindow("^Vornic$").isEmpty());
    }
    /// Closes the main window, as a person does, once no movie is written any more: that ends the program.
    void endProgram()
    {
        EXPECT_FALSE(program->waitForFinished(1)) << "nobody has asked it to end";
        // While it writes there is a sheet too, and the percentage stands in the title of the window.
        QString window;
        EXPECT_TRUE(test::waitUntil([&] {
            window = xdotool({ "search", "--onlyvisible", "--name", "Vornic$" });
            if (window.isEmpty() || window.contains('\n') || xdotool({ "getwindowname", window }) != "Vornic")
                return false;
            xdotool({ "windowactivate", window });
            return xdotool({ "getactivewindow" }) == window;
        })) << qPrintable(window);
        xdotool({ "key", "--clearmodifiers", "alt+F4" });
        EXPECT_EQ(finish(*program).status, 0);
    }
    /// What the program finds stored at its next start.
    void store(const QByteArray &key, const QByteArray &value) const
    {
        QDir(folder.path()).mkpath("config/kavlor");
        QFile settings(folder.filePath("config/kavlor/Vornic.conf"));
        ASSERT_TRUE(settings.open(QIODevice::Append));
        if (settings.size() == 0)
            settings.write("[General]\n");
        settings.write(key + '=' + value + '\n');
    }
    /// The movie in the home folder that is complete, once there is one.
    [[nodiscard]] QString waitForMovie() const
    {
        QStringList movies;
        test::waitUntil([&] { return !(movies = QDir(folder.path()).entryList({ "*.mp4" })).isEmpty(); },
                        std::chrono::seconds(30));
        return movies.isEmpty() ? QString() : movie(movies.first());
    }
    /// The bar, called by the pointer at the upper edge of the screen where it has hidden itself. The pointer rests there
    /// also where the bar is still seen: it may be about to hide itself, before it can be clicked.
    static QString callStopBar()
    {
        xdotool({ "mousemove", "640", "0" });
        letPass(std::chrono::milliseconds(600));
        return waitForWindow("^Stop recording$");
    }
    /// A click on it, as with a mouse.
    static void clickStopBar()
    {
        xdotool({ "mousemove", "--window", callStopBar(), "20", "20", "click", "1" });
    }

    void TearDown() override
    {
        if (!program || program->waitForFinished(1) || program->state() == QProcess::NotRunning)
            return;
        EXPECT_TRUE(HasFailure()) << "the test has left its program running";
        program->kill();
        program->waitForFinished();
    }

    static QString xdotool(const QStringList &arguments)
    {
        QProcess process;
        process.start("xdotool", arguments);
        process.waitForFinished();
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }
    /// The id of a visible window with such a title, once there is one; empty after 20 s.
    static QString waitForWindow(const QString &title)
    {
        return xdotoolUntil({ "search", "--onlyvisible", "--name", title });
    }
    static QString xdotoolUntil(const QStringList &arguments)
    {
        QString found;
        test::waitUntil([&] { return !(found = xdotool(arguments)).isEmpty(); });
        return found.split('\n').last();
    }
    void key(const QString &window, const QString &keys) const
    {
        xdotool({ "windowfocus", "--sync", window });
        xdotool({ "key", "--clearmodifiers", keys });
    }
    /// A second visible window with the title of \a window, once there is one; empty after 20 s.
    static QString waitForNamesake(const QString &window)
    {
        const QString name = xdotool({ "getwindowname", window });
        QStringList found;
        test::waitUntil([&] {
            found = xdotool({ "search", "--onlyvisible", "--name", '^' + name + '$' }).split('\n');
            found.removeAll(window);
            found.removeAll(QString());
            return !found.isEmpty();
        });
        return found.value(0);
    }
    /// The window that has the keyboard and is none of \a others, once there is one; empty after \a timeout.
    static QString waitForActiveWindowBut(const QStringList &others,
                                          std::chrono::milliseconds timeout = std::chrono::seconds(20))
    {
        QString active;
        const bool isThere = test::waitUntil(
            [&] {
                active = xdotool({ "getactivewindow" });
                return !active.isEmpty() && !others.contains(active);
            },
            timeout);
        return isThere ? active : QString();
    }
    /// Activates \a window.
    static void activate(const QString &window)
    {
        EXPECT_TRUE(test::waitUntil([&] {
            xdotool({ "windowactivate", window });
            return xdotool({ "getactivewindow" }) == window;
        }));
    }
    /// Presses the window manager's key for closing in \a window and gives the question that comes. The manager may
    /// not act on a key that comes just when it has brought a window back, so that it is pressed again.
    static QString closeUntilAsked(const QString &window)
    {
        QString question;
        for (int presses = 0; presses < 4 && question.isEmpty(); ++presses) {
            activate(window);
            xdotool({ "key", "--clearmodifiers", "alt+F4" });
            question = waitForActiveWindowBut({ window }, std::chrono::seconds(5));
        }
        return question;
    }
    /// Something that moves all over the screen.
    std::unique_ptr<QProcess> startScene() const
    {
        return start(test::builtProgram("tests/support/vornic_show_scene"),
                     { "video", "--below", "--fps", "30", "--seconds", "1000" });
    }
    static bool waitForFile(const QString &path)
    {
        return test::waitUntil([&] { return QFile::exists(path); }, std::chrono::seconds(30));
    }
    /// From the main window through the save panel and the hint to a running recording.
    QString startRecording()
    {
        const QString window = waitForWindow("^Vornic$");
        key(window, "alt+r");
        const QString panel = waitForWindow("^Save the recording as$");
        EXPECT_FALSE(panel.isEmpty());
        xdotool({ "windowfocus", "--sync", panel });
        xdotool({ "key", "--clearmodifiers", "ctrl+a" });
        xdotool({ "type", "--clearmodifiers", folder.filePath("window.mp4") });
        xdotool({ "key", "--clearmodifiers", "Return" });
        const QString hint = waitForNamesake(window);
        if (hint.isEmpty()) {
            ADD_FAILURE() << "no hint has come";
            return {};
        }
        key(hint, "Return");
        return waitForWindow("^Stop recording$");
    }

    std::unique_ptr<test::ChildProcess> openbox;
    std::unique_ptr<QProcess> program;
};

} // namespace vornic
