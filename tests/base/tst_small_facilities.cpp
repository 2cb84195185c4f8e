#include "base/assertion.h"
#include "base/clock.h"
#include "base/free_space.h"
#include "base/log.h"
#include "base/user_defaults.h"
#include "support/named_pipe.h"
#include "support/wait_until.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <time.h>

#include <cstring>
#include <initializer_list>

namespace {

constexpr const char *inventedVolume = "/an/invented/volume";
long inventedType = EXT4_SUPER_MAGIC;

} // namespace

/// Replaces the system's, to which it passes all other paths. On most file systems blocks and fragments are
/// of one size, and a user may take as many blocks as the administrator, so that a test on them does not
/// show which fields are read. In the invented volume all of them differ.
extern "C" int statvfs(const char *path, struct statvfs *volume) noexcept
{
    if (std::strcmp(path, inventedVolume) != 0) {
        using Function = int (*)(const char *, struct statvfs *);
        static const auto systems = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "statvfs"));
        return systems(path, volume);
    }
    *volume = {};
    volume->f_bsize = 65'536;
    volume->f_frsize = 1'024;
    volume->f_blocks = 13'000'000'000;
    volume->f_bfree = 12'000'000'000;
    volume->f_bavail = 11'000'000'000;
    return 0;
}

/// The same for what kind of volume it is: which ones a machine has, and may mount, differs.
extern "C" int statfs(const char *path, struct statfs *volume) noexcept
{
    if (std::strcmp(path, inventedVolume) != 0) {
        using Function = int (*)(const char *, struct statfs *);
        static const auto systems = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "statfs"));
        return systems(path, volume);
    }
    *volume = {};
    volume->f_type = inventedType;
    return 0;
}

namespace vornic {
namespace {

TEST(AssertionTest, TheStandardHandlerLogsAndGoesOn)
{
    QStringList lines;
    setLogSink([&](const QString &line) { lines += line; });
    reportAssertionFailure({ "init", "VNCGDisplay", 24, "Failed to find main display." });
    setLogSink({});
    EXPECT_EQ(lines,
              QStringList { "Assertion failure in init, VNCGDisplay:24: Failed to find main display." });
}

double monotonicSeconds()
{
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

TEST(ClockTest, ItIsTheSystemsMonotonicClock)
{
    constexpr double rounding = 1e-6;
    double last = 0.0;
    for (int i = 0; i < 1000; ++i) {
        const double before = monotonicSeconds();
        const double now = absoluteTimeSeconds();
        const double after = monotonicSeconds();
        EXPECT_GE(now, before - rounding);
        EXPECT_LE(now, after + rounding);
        EXPECT_GE(now, last);
        last = now;
    }
    EXPECT_GT(last, 0.0);
    EXPECT_TRUE(test::waitUntil([last] { return absoluteTimeSeconds() > last; }));
}

TEST(FreeSpaceTest, ItIsWhatTheFileSystemTellsAUser)
{
    const QTemporaryDir folder;
    struct statvfs volume {
    };
    ASSERT_EQ(::statvfs(folder.path().toUtf8().constData(), &volume), 0);
    const double expected = static_cast<double>(volume.f_bavail) * static_cast<double>(volume.f_frsize);
    // Others write to the same volume meanwhile.
    EXPECT_NEAR(static_cast<double>(freeSpaceBytes(folder.path())), expected, 2e9);
    EXPECT_EQ(freeSpaceBytes("/none/such"), 0U);
    EXPECT_FALSE(freeSpace("/none/such")) << "which is not the same as a full one";
    EXPECT_TRUE(freeSpace(folder.path()));
}

TEST(FreeSpaceTest, ItCountsFragmentsThatAUserMayTake)
{
    EXPECT_EQ(freeSpaceBytes(inventedVolume), 11'000'000'000U * 1'024);
}

TEST(VolumeTest, FoldersOfOneFileSystemShareIt)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir("inside"));
    EXPECT_TRUE(areOnOneVolume(folder.path(), folder.filePath("inside")));
    EXPECT_FALSE(areOnOneVolume(folder.path(), "/proc"));
    EXPECT_FALSE(areOnOneVolume(folder.path(), "/none/such"));
    EXPECT_FALSE(areOnOneVolume("/none/such", "/none/such"));
}

TEST(VolumeTest, SomeKindsLieInMemory)
{
    for (const long type : std::initializer_list<long> { TMPFS_MAGIC, RAMFS_MAGIC }) {
        inventedType = type;
        EXPECT_TRUE(liesInMemory(inventedVolume)) << type;
    }
    for (const long type : std::initializer_list<long> { EXT4_SUPER_MAGIC, NFS_SUPER_MAGIC }) {
        inventedType = type;
        EXPECT_FALSE(liesInMemory(inventedVolume)) << type;
    }
    EXPECT_FALSE(liesInMemory("/none/such"));
    EXPECT_FALSE(liesInMemory("/proc"));
}

TEST(UserDefaultsTest, ValuesReachTheFileOfTheProgram)
{
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    EXPECT_FALSE(user_defaults::value("absent").isValid());
    user_defaults::setValue("number", 7);
    user_defaults::setValue("bytes", QByteArray("\0\xFF", 2));
    EXPECT_TRUE(user_defaults::synchronize());
    EXPECT_EQ(user_defaults::value("number").toInt(), 7);
    EXPECT_EQ(user_defaults::value("bytes").toByteArray(), QByteArray("\0\xFF", 2));
    EXPECT_TRUE(QFile::exists(home.filePath("kavlor/Vornic.conf")));
    user_defaults::remove("number");
    EXPECT_FALSE(user_defaults::value("number").isValid());

    const QString stored = home.filePath("kavlor/Vornic.conf");
    for (const QString &file : { stored, stored + ".lock", home.filePath("kavlor.conf") }) {
        QFile::remove(stored);
        {
            test::NamedPipe pipe(file);
            ASSERT_TRUE(pipe.isMade());
            EXPECT_FALSE(user_defaults::value("bytes").isValid());
            user_defaults::setValue("number", 8);
            user_defaults::remove("bytes");
            EXPECT_FALSE(user_defaults::synchronize());
            EXPECT_FALSE(pipe.wasOpened()) << file.toStdString();
        }
        EXPECT_TRUE(QFile::remove(file));
    }
}

} // namespace
} // namespace vornic
