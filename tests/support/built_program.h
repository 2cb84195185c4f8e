#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

namespace vornic::test {

/// The absolute path of a program of the build that this test is part of; \a path is the one below its build folder.
///
/// The build folder is looked for from the test's own program upwards, and is no macro: where each preset compiled the
/// test with another one, the compiler cache would find nothing.
inline QString builtProgram(const QString &path)
{
    QDir build = QFileInfo(QFile::symLinkTarget("/proc/self/exe")).dir();
    while (!build.exists("CMakeCache.txt") && build.cdUp()) { }
    return build.filePath(path);
}

/// The program that is installed.
inline QString vornicProgram()
{
    return builtProgram("src/app/vornic");
}

} // namespace vornic::test
