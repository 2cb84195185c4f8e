#pragma once

#include "display/fake_display.h"

#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace vornic {

/// Runs the tests with widgets, but without a window system unless one is asked for, with settings of their
/// own and a main display of 1440 x 900 that no server shows.
inline int runWindowTests(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.filePath("config").toUtf8());
    qputenv("XDG_CACHE_HOME", home.filePath("cache").toUtf8());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    setMainDisplay(std::make_shared<FakeDisplay>(QSize(1440, 900)));
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

} // namespace vornic
