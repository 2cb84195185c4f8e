#include "codec/movie_failure.h"
#include "codec/part_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <optional>
#include <thread>

namespace vornic::testing {
namespace {

const QString deadName = QStringLiteral(".vornic-01234567-89ab-cdef-0123-456789abcdef.part");

class PartFileTest : public ::testing::Test
{
protected:
    [[nodiscard]] QStringList entries() const
    {
        return QDir(m_folder.path())
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    }
    [[nodiscard]] QString pathOf(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] QByteArray nativePathOf(const QString &name) const
    {
        return QFile::encodeName(pathOf(name));
    }

    void putFile(const QString &name) const
    {
        QFile file(pathOf(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("half a movie");
    }
    [[nodiscard]] int removeStale() const { return removeStalePartFiles(m_folder.path()); }

    QTemporaryDir m_folder;
    QString m_movie = pathOf(QStringLiteral("a.mp4"));
};

TEST_F(PartFileTest, whatAKilledProgramLeftIsRemoved)
{
    putFile(deadName);
    EXPECT_EQ(removeStale(), 1);
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(PartFileTest, whatAWriterThatNeverDestroyedItLeftIsRemoved)
{
    QString path;
    {
        const PartFile part(m_movie);
        path = part.path();
        ASSERT_EQ(::link(QFile::encodeName(path).constData(), nativePathOf(deadName).constData()), 0);
        EXPECT_EQ(removeStale(), 0); // the same file under another name, and locked
    }
    EXPECT_EQ(entries(), QStringList { deadName });
    EXPECT_EQ(removeStale(), 1);
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(PartFileTest, whatALivingWriterWritesIsKept)
{
    std::optional<PartFile> part(m_movie);
    putFile(deadName);
    EXPECT_EQ(removeStale(), 1);
    EXPECT_TRUE(part->isAtItsPath());
    EXPECT_EQ(entries().size(), 1);
    part.reset();
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(PartFileTest, whatNoPartFileMadeIsKept)
{
    const QStringList foreign { QStringLiteral("a.mp4"),
                                QStringLiteral(".vornic-.part"),
                                QStringLiteral(".vornic-holiday.part"),
                                deadName + QStringLiteral(".mp4"),
                                deadName + QStringLiteral("\n"),
                                deadName.mid(1),
                                QStringLiteral("x") + deadName,
                                deadName.toUpper(),
                                QStringLiteral(".other-01234567-89ab-cdef-0123-456789abcdef.part") };
    for (const QString &name : foreign)
        putFile(name);
    EXPECT_EQ(removeStale(), 0);
    EXPECT_EQ(entries().size(), foreign.size());
}

TEST_F(PartFileTest, aLinkOfThatNameIsKeptAndNotFollowed)
{
    putFile(QStringLiteral("diary.txt"));
    ASSERT_EQ(
        ::symlink(nativePathOf(QStringLiteral("diary.txt")).constData(), nativePathOf(deadName).constData()),
        0);
    EXPECT_EQ(removeStale(), 0);
    EXPECT_EQ(entries().size(), 2);
}

TEST_F(PartFileTest, aFolderOfThatNameIsKept)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(deadName));
    EXPECT_EQ(removeStale(), 0);
    EXPECT_EQ(entries(), QStringList { deadName });
}

TEST_F(PartFileTest, aPipeOfThatNameIsKeptAndNotWaitedFor)
{
    ASSERT_EQ(::mkfifo(nativePathOf(deadName).constData(), 0600), 0);
    EXPECT_EQ(removeStale(), 0);
    EXPECT_EQ(entries(), QStringList { deadName });
}

TEST_F(PartFileTest, aFileOfAnotherUserIsKept)
{
    putFile(deadName);
    if (::chown(nativePathOf(deadName).constData(), 12345, 12345) != 0)
        GTEST_SKIP() << "only the superuser can give a file away";
    EXPECT_EQ(removeStale(), 0);
    EXPECT_EQ(entries(), QStringList { deadName });
}

TEST_F(PartFileTest, aFolderThatIsGoneHasNothingToRemove)
{
    EXPECT_EQ(removeStalePartFiles(pathOf(QStringLiteral("nowhere"))), 0);
}

TEST_F(PartFileTest, aRenamedFileStaysUnderItsNewName)
{
    putFile(QStringLiteral("a.mp4"));
    {
        PartFile part(m_movie);
        ASSERT_EQ(::write(part.borrowedDescriptor(), "new", 3), 3);
        EXPECT_EQ(part.sync(), 0);
        EXPECT_EQ(part.renameTo(m_movie), 0);
        EXPECT_FALSE(part.isAtItsPath());
    }
    QFile file(m_movie);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "new");
    EXPECT_EQ(entries(), QStringList { QStringLiteral("a.mp4") });
}

TEST_F(PartFileTest, anotherFileAtItsPathIsNoticed)
{
    const PartFile part(m_movie);
    EXPECT_TRUE(part.isAtItsPath());
    ASSERT_TRUE(QFile::remove(part.path()));
    EXPECT_FALSE(part.isAtItsPath());
    putFile(QFileInfo(part.path()).fileName());
    EXPECT_FALSE(part.isAtItsPath());
}

TEST_F(PartFileTest, anotherFileAtItsPathIsNotRemoved)
{
    QString path;
    {
        const PartFile part(m_movie);
        path = part.path();
        ASSERT_TRUE(QFile::remove(path));
        putFile(QFileInfo(path).fileName());
    }
    EXPECT_TRUE(QFile::exists(path));
}

/// Between creating a file and locking it a cleaner of another program may take it for a dead one's.
TEST_F(PartFileTest, aCleanerThatIsQuickerThanTheLockTakesNothingAway)
{
    std::atomic<bool> isStopping = false;
    std::atomic<int> removed = 0;
    std::thread cleaner([&] {
        while (!isStopping)
            removed += removeStale();
    });
    int missing = 0;
    // Until it was, which takes some hundred tries, and at least a thousand.
    for (int i = 0; i < 1000 || (removed == 0 && i < 30000); ++i) {
        const PartFile part(m_movie);
        missing += part.isAtItsPath() ? 0 : 1;
        std::this_thread::yield();
        missing += part.isAtItsPath() ? 0 : 1;
    }
    isStopping = true;
    cleaner.join();
    EXPECT_EQ(missing, 0);
    EXPECT_TRUE(entries().isEmpty());
}

} // namespace
} // namespace vornic::testing
