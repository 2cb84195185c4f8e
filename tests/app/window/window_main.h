#pragma once

#include "display/fake_display.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace vornic {

/// The settings of a toolkit without a window system, as a file: one screen of \a size, with windows that have frames.
inline void writeScreenSettings(const QString &path, QSize size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("No screen can be described.");
    file.write(QStringLiteral(R"({ "synchronousWindowSystemEvents": false, "windowFrameMargins": true,
        "screens": [{ "name": "main", "x": 0, "y": 0, "width": %1, "height": %2,
                      "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1 }] })")
                   .arg(size.width())
                   .arg(size.height())
                   .toUtf8());
}

/// Runs the tests with widgets, but without a window system unless one is asked for, with settings of their
/// own and a main display of 1440 x 900 that no server shows; the toolkit's screen has the same size.
inline int runWindowTests(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.filePath("config").toUtf8());
    qputenv("XDG_CACHE_HOME", home.filePath("cache").toUtf8());
    constexpr QSize screen(1440, 900);
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform.isEmpty() || platform == "offscreen") {
        writeScreenSettings(home.filePath("screen.json"), screen);
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + home.filePath("screen.json").toUtf8());
    }
    setMainDisplay(std::make_shared<FakeDisplay>(screen));
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

} // namespace vornic
