#pragma once

#include <QByteArray>
#include <QGuiApplication>

#include <gtest/gtest.h>

namespace vornic {

/// Runs the tests with fonts, but without a window system unless one is asked for.
inline int runTestsWithFonts(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

} // namespace vornic
