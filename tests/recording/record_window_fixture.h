#pragma once

#include "recording_fixture.h"

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
                                      QStringLiteral(VORNIC_PROGRAM) }
                            + arguments);
        ASSERT_TRUE(!arguments.isEmpty() || !waitForWindow("^Vornic$").isEmpty());
    }
    void endProgram()
    {
        program->terminate();
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
    /// The bar, called by the pointer at the upper edge of the screen where it has hidden itself.
    static QString callStopBar()
    {
        xdotool({ "mousemove", "640", "0" });
        return waitForWindow("^Stop recording$");
    }
    /// A click on it, as with a mouse.
    static void clickStopBar()
    {
        xdotool({ "mousemove", "--window", callStopBar(), "20", "20", "click", "1" });
    }

    void TearDown() override
    {
        if (program && program->state() != QProcess::NotRunning) {
            program->terminate();
            finish(*program);
        }
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
    /// The window that has the keyboard and is none of \a others, once there is one; empty after 20 s.
    static QString waitForActiveWindowBut(const QStringList &others)
    {
        QString active;
        const bool isThere = test::waitUntil([&] {
            active = xdotool({ "getactivewindow" });
            return !active.isEmpty() && !others.contains(active);
        });
        return isThere ? active : QString();
    }
    /// Something that moves all over the screen.
    std::unique_ptr<QProcess> startScene() const
    {
        return start(QStringLiteral(VORNIC_SHOW_SCENE),
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
        // The hint bears the program's name too.
        const QString hint = waitForActiveWindowBut({ window, panel });
        EXPECT_FALSE(hint.isEmpty());
        key(hint, "Return");
        return waitForWindow("^Stop recording$");
    }

    std::unique_ptr<test::ChildProcess> openbox;
    std::unique_ptr<QProcess> program;
};

} // namespace vornic
