#include "base/log.h"
#include "capture/spool/spool_file.h"
#include "support/file_size_limit.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vornic {
namespace {

class SpoolFileTest : public testing::Test
{
protected:
    SpoolFileTest()
    {
        setLogSink([this](const QString &line) { m_logged += line; });
    }
    ~SpoolFileTest() override
    {
        setLogSink({});
        ::close(m_descriptor);
    }

    [[nodiscard]] std::shared_ptr<SpoolFile> create(const char *name = "spool") const
    {
        return SpoolFile::create(m_descriptor, name);
    }
    [[nodiscard]] std::shared_ptr<SpoolFile> open(const char *name = "spool") const
    {
        return SpoolFile::open(m_descriptor, name);
    }
    [[nodiscard]] QByteArray path(const char *name) const
    {
        return QFile::encodeName(m_folder.filePath(name));
    }
    [[nodiscard]] QByteArray bytesOf(const char *name) const
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    void makeFile(const char *name) const
    {
        QFile file(m_folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("theirs");
    }

    QTemporaryDir m_folder;
    int m_descriptor = ::open(QFile::encodeName(m_folder.path()).constData(), O_RDONLY | O_DIRECTORY);
    QStringList m_logged;
};

TEST_F(SpoolFileTest, IsItsUsersAlone)
{
    const mode_t before = ::umask(0);
    EXPECT_TRUE(create());
    ::umask(before);
    struct stat status {
    };
    ASSERT_EQ(::stat(path("spool").constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(SpoolFileTest, IsMadeOnlyWhereNothingIs)
{
    makeFile("spool");
    EXPECT_FALSE(create());
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(bytesOf("spool"), "theirs");
}

TEST_F(SpoolFileTest, IsNotMadeWhereALinkLeads)
{
    ASSERT_EQ(::symlink("elsewhere", path("spool").constData()), 0);
    EXPECT_FALSE(create());
    EXPECT_FALSE(QFile::exists(m_folder.filePath("elsewhere")));
}

TEST_F(SpoolFileTest, IsNotOpenedThroughALink)
{
    makeFile("elsewhere");
    ASSERT_EQ(::symlink("elsewhere", path("spool").constData()), 0);
    EXPECT_TRUE(open("elsewhere"));
    EXPECT_FALSE(open());
    EXPECT_EQ(errno, ELOOP);
}

TEST_F(SpoolFileTest, ANamedPipeIsNoneAndIsNotWaitedFor)
{
    ASSERT_EQ(::mkfifo(path("spool").constData(), 0600), 0);
    EXPECT_FALSE(open());
    EXPECT_EQ(errno, EPERM);
}

TEST_F(SpoolFileTest, AFolderIsNone)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("spool"));
    EXPECT_FALSE(open());
    EXPECT_EQ(errno, EISDIR);
}

TEST_F(SpoolFileTest, AnotherUsersFileIsNotOpened)
{
    makeFile("spool");
    ASSERT_TRUE(open());
    if (::chown(path("spool").constData(), 65534, 65534) != 0)
        GTEST_SKIP() << "files can be given away by root only";
    EXPECT_FALSE(open());
    EXPECT_EQ(errno, EPERM);
}

TEST_F(SpoolFileTest, AMissingOneIsNotMade)
{
    EXPECT_FALSE(open());
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(QFile::exists(m_folder.filePath("spool")));
}

TEST_F(SpoolFileTest, GivesBackWhatWasWrittenAndNoByteMore)
{
    const auto file = create();
    ASSERT_TRUE(file->write(0, "0123456789"));
    ASSERT_TRUE(file->write(10, "abc"));
    EXPECT_EQ(file->size(), 13U);
    EXPECT_EQ(file->read(8, 5), "89abc");
    EXPECT_EQ(file->read(8, 6), QByteArray());
    EXPECT_EQ(file->read(14, 0), QByteArray());
    EXPECT_EQ(file->read(~0ULL, 1), QByteArray());
    EXPECT_EQ(file->read(1, ~0ULL), QByteArray());
    EXPECT_TRUE(file->sync());
    EXPECT_EQ(bytesOf("spool"), "0123456789abc");
}

TEST_F(SpoolFileTest, StaysTheFileThatItWasWhateverTheNameLeadsTo)
{
    const auto file = create();
    ASSERT_TRUE(file->write(0, "mine"));
    ASSERT_TRUE(QFile::remove(m_folder.filePath("spool")));
    makeFile("spool");
    EXPECT_TRUE(file->write(4, ", still"));
    EXPECT_EQ(file->read(0, 11), "mine, still");
    EXPECT_EQ(bytesOf("spool"), "theirs");
}

TEST_F(SpoolFileTest, AWriteThatFailsLeavesNothingBehindWhatWasThere)
{
    const auto file = create();
    ASSERT_TRUE(file->write(0, "0123456789"));
    {
        const test::FileSizeLimit limit(15);
        EXPECT_FALSE(file->write(10, "0123456789"));
    }
    EXPECT_EQ(bytesOf("spool"), "0123456789");
    EXPECT_EQ(m_logged.size(), 1);
    EXPECT_TRUE(file->write(10, "0123456789"));
    EXPECT_EQ(file->size(), 20U);
}

TEST_F(SpoolFileTest, OneObjectLocksItAtATime)
{
    auto first = create();
    const auto second = open();
    EXPECT_TRUE(first->lock());
    EXPECT_FALSE(second->lock());
    first.reset();
    EXPECT_TRUE(second->lock());
}

} // namespace
} // namespace vornic
