#include "base/native_path.h"
#include "codec/movie_failure.h"
#include "codec/movie_file.h"
#include "codec/part_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <optional>
#include <thread>

namespace {

bool renamingKnowsFlags = true;

} // namespace

/// Replaces the system's, which it calls. Some file systems cannot rename without replacing; which ones a machine has
/// differs.
extern "C" int renameat2(int from, const char *name, int to, const char *newName, unsigned flags) noexcept
{
    if (flags != 0 && !renamingKnowsFlags) {
        errno = EINVAL;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_renameat2, from, name, to, newName, flags));
}

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
    [[nodiscard]] QByteArray contentsOf(const QString &name) const
    {
        QFile file(pathOf(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Makes a movie of that path, whose contents are \a contents, and returns where it stands.
    static QString finishMovie(const QString &movie,
                               const std::optional<FileIdentity> &replaced,
                               const QByteArray &contents = "new")
    {
        PartFile part(movie);
        EXPECT_EQ(::write(part.borrowedDescriptor(), contents.constData(), std::size_t(contents.size())),
                  contents.size());
        EXPECT_EQ(part.finish(replaced), 0);
        EXPECT_TRUE(part.isAtItsPath());
        return part.moviePath();
    }
    /// Runs \a test as another user than the superuser, who may do everything; its result.
    static bool holdsForAnotherUser(const std::function<bool()> &test)
    {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(::seteuid(12345) == 0 && test() ? 0 : 1);
        int status = -1;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
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

/// A program that was killed before its journal named the folder left one that no recovery looks for.
TEST_F(PartFileTest, aMovieRemovesWhatAKilledProgramLeftBesideIt)
{
    putFile(deadName);
    const MovieFile movie(m_movie, {});
    EXPECT_EQ(entries().size(), 1);
    EXPECT_FALSE(entries().contains(deadName));
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
        EXPECT_EQ(part.finish(identityOfFile(m_movie)), 0);
        EXPECT_TRUE(part.isAtItsPath());
        EXPECT_EQ(part.moviePath(), m_movie);
    }
    QFile file(m_movie);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "new");
    EXPECT_EQ(entries(), QStringList { QStringLiteral("a.mp4") });
}

TEST_F(PartFileTest, moviesOfOneNameAreNumberedInTheOrderOfTheirEnds)
{
    PartFile first(m_movie);
    EXPECT_EQ(finishMovie(m_movie, {}, "second"), m_movie);
    EXPECT_EQ(first.finish({}), 0);
    EXPECT_EQ(first.moviePath(), pathOf(QStringLiteral("a 2.mp4")));
    EXPECT_EQ(finishMovie(m_movie, {}, "third"), pathOf(QStringLiteral("a 3.mp4")));
    EXPECT_EQ(contentsOf(QStringLiteral("a.mp4")), "second");
    EXPECT_EQ(
        entries(),
        (QStringList { QStringLiteral("a 2.mp4"), QStringLiteral("a 3.mp4"), QStringLiteral("a.mp4") }));
}

TEST_F(PartFileTest, nothingIsReplacedWhereTheFileSystemCannotRefuseTo)
{
    renamingKnowsFlags = false;
    EXPECT_EQ(finishMovie(m_movie, {}, "first"), m_movie);
    EXPECT_EQ(finishMovie(m_movie, {}, "second"), pathOf(QStringLiteral("a 2.mp4")));
    renamingKnowsFlags = true;
    EXPECT_EQ(contentsOf(QStringLiteral("a.mp4")), "first");
    EXPECT_EQ(contentsOf(QStringLiteral("a 2.mp4")), "second");
    EXPECT_EQ(entries(), (QStringList { QStringLiteral("a 2.mp4"), QStringLiteral("a.mp4") }));
}

TEST_F(PartFileTest, onlyTheFileThatWasMeantIsReplaced)
{
    putFile(QStringLiteral("a.mp4"));
    const auto meant = identityOfFile(m_movie);
    // Another of the same size, put there by a rename as another recorder would.
    putFile(QStringLiteral("b.mp4"));
    ASSERT_EQ(::rename(nativePathOf(QStringLiteral("b.mp4")).constData(),
                       nativePathOf(QStringLiteral("a.mp4")).constData()),
              0);
    EXPECT_EQ(finishMovie(m_movie, meant), pathOf(QStringLiteral("a 2.mp4")));
    EXPECT_EQ(contentsOf(QStringLiteral("a.mp4")), "half a movie");
    // The same, with more in it now.
    const auto shorter = identityOfFile(m_movie);
    QFile file(m_movie);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write(" and more");
    file.close();
    EXPECT_EQ(finishMovie(m_movie, shorter), pathOf(QStringLiteral("a 3.mp4")));
    EXPECT_EQ(contentsOf(QStringLiteral("a.mp4")), "half a movie and more");
    EXPECT_EQ(finishMovie(m_movie, identityOfFile(m_movie)), m_movie);
    EXPECT_EQ(contentsOf(QStringLiteral("a.mp4")), "new");
}

TEST_F(PartFileTest, aLinkIsFollowedAndStays)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("disk")));
    const QString target = pathOf(QStringLiteral("disk/target.mp4"));
    ASSERT_EQ(::symlink("disk/middle", nativePathOf(QStringLiteral("a.mp4")).constData()), 0);
    ASSERT_EQ(::symlink("target.mp4", nativePathOf(QStringLiteral("disk/middle")).constData()), 0);
    EXPECT_EQ(finishMovie(m_movie, {}), m_movie); // leads to nothing yet
    EXPECT_EQ(contentsOf(QStringLiteral("disk/target.mp4")), "new");
    EXPECT_EQ(finishMovie(m_movie, identityOfFile(target), "newer"), m_movie);
    EXPECT_EQ(contentsOf(QStringLiteral("disk/target.mp4")), "newer");
    EXPECT_TRUE(QFileInfo(m_movie).isSymLink());
    EXPECT_EQ(finishMovie(m_movie, {}), pathOf(QStringLiteral("disk/target 2.mp4")));
    EXPECT_EQ(contentsOf(QStringLiteral("disk/target.mp4")), "newer");
}

TEST_F(PartFileTest, theFolderOfAMovieIsTheOneThatItIsMadeIn)
{
    EXPECT_EQ(folderOfMovie(m_movie), m_folder.path());
    EXPECT_EQ(folderOfMovie(QStringLiteral("a.mp4")), QDir::currentPath());
    EXPECT_EQ(folderOfMovie(QStringLiteral("b/a.mp4")), QDir::currentPath() + QStringLiteral("/b"));
    ASSERT_EQ(::symlink("/disk/there.mp4", nativePathOf(QStringLiteral("a.mp4")).constData()), 0);
    EXPECT_EQ(folderOfMovie(m_movie), u"/disk");
}

TEST_F(PartFileTest, linksThatLeadNowhereEndAreRefused)
{
    ASSERT_EQ(::symlink("b.mp4", nativePathOf(QStringLiteral("a.mp4")).constData()), 0);
    ASSERT_EQ(::symlink("a.mp4", nativePathOf(QStringLiteral("b.mp4")).constData()), 0);
    const auto error = checkFinalName(m_movie);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->reason, u"Too many levels of symbolic links");
    EXPECT_EQ(error->name, m_movie);
}

TEST_F(PartFileTest, whatIsNoFileIsRefusedAndNotWaitedFor)
{
    const QByteArray name = nativePathOf(QStringLiteral("a.mp4"));
    const QList<std::function<int()>> others {
        [&] { return ::mkfifo(name.constData(), 0600); },
        [&] { return ::mknod(name.constData(), S_IFSOCK | 0600, 0); },
        [&] { return ::geteuid() == 0 ? ::mknod(name.constData(), S_IFCHR | 0600, makedev(1, 3)) : 0; },
    };
    for (const auto &make : others) {
        ASSERT_EQ(make(), 0);
        if (const auto error = checkFinalName(m_movie); QFileInfo::exists(m_movie)) {
            ASSERT_TRUE(error);
            EXPECT_EQ(error->kind, ErrorKind::NotAFile);
            EXPECT_EQ(error->name, m_movie);
        }
        EXPECT_TRUE(::unlink(name.constData()) == 0 || errno == ENOENT);
    }
    ASSERT_EQ(::symlink("/dev/null", name.constData()), 0);
    EXPECT_EQ(checkFinalName(m_movie)->kind, ErrorKind::NotAFile);
}

TEST_F(PartFileTest, aFolderIsRefused)
{
    const auto error = checkFinalName(m_folder.path());
    ASSERT_TRUE(error);
    EXPECT_EQ(error->reason, u"Is a directory");
    EXPECT_TRUE(checkFinalName(m_folder.path() + u'/'));
    EXPECT_EQ(checkFinalName(pathOf(QStringLiteral("none/a.mp4")))->kind, ErrorKind::FolderMissing);
}

TEST_F(PartFileTest, aNameThatIsTooLongIsFoundOutBefore)
{
    const QString longest = QString(251, u'x') + QStringLiteral(".mp4");
    EXPECT_FALSE(checkFinalName(pathOf(longest)));
    const auto error = checkFinalName(pathOf(u'x' + longest));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->reason, u"File name too long");
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(PartFileTest, aNumberedNameIsNoLongerThanANameMayBe)
{
    const QString name = QString(125, QChar(0xF6)) + QStringLiteral("x.mp4"); // 255 bytes
    putFile(name);
    EXPECT_EQ(finishMovie(pathOf(name), {}), pathOf(QString(124, QChar(0xF6)) + QStringLiteral(" 2.mp4")));
    EXPECT_EQ(contentsOf(name), "half a movie");
}

TEST_F(PartFileTest, aNameThatIsNotUtf8KeepsItsBytes)
{
    const QByteArray folder = QFile::encodeName(m_folder.path()) + "/\xFF";
    ASSERT_EQ(::mkdir(folder.constData(), 0700), 0);
    const QByteArray name = folder + "/Gr\366\337e.mp4";
    const QString movie = pathFromNative(name);
    EXPECT_EQ(finishMovie(movie, {}), movie);
    struct stat file {
    };
    ASSERT_EQ(::stat(name.constData(), &file), 0);
    EXPECT_TRUE(identityOfFile(movie));
    EXPECT_EQ(nativePath(finishMovie(movie, {})), folder + "/Gr\366\337e 2.mp4");
    // What a killed program left there goes too.
    const QByteArray stale = folder + '/' + deadName.toLatin1();
    ASSERT_EQ(::link(name.constData(), stale.constData()), 0);
    EXPECT_EQ(removeStalePartFiles(pathFromNative(folder)), 1);
    // The folder of the test cannot remove what it cannot name.
    ASSERT_EQ(::unlink(name.constData()), 0);
    ASSERT_EQ(::unlink((folder + "/Gr\366\337e 2.mp4").constData()), 0);
    ASSERT_EQ(::rmdir(folder.constData()), 0);
}

TEST_F(PartFileTest, anothersFileInAFolderForAllIsFoundOutBefore)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can make a file of another user";
    putFile(QStringLiteral("a.mp4"));
    const QByteArray folder = QFile::encodeName(m_folder.path());
    ASSERT_EQ(::chmod(folder.constData(), 0777), 0);
    EXPECT_TRUE(holdsForAnotherUser([this] { return !checkFinalName(m_movie); }));
    ASSERT_EQ(::chmod(folder.constData(), 01777), 0);
    EXPECT_TRUE(holdsForAnotherUser([this] {
        const auto error = checkFinalName(m_movie);
        return error && error->kind == ErrorKind::OthersFile && error->name == m_movie;
    }));
    EXPECT_TRUE(holdsForAnotherUser([this] { return !checkFinalName(pathOf(QStringLiteral("b.mp4"))); }));
    ASSERT_EQ(::chown(nativePathOf(QStringLiteral("a.mp4")).constData(), 12345, 12345), 0);
    EXPECT_TRUE(holdsForAnotherUser([this] { return !checkFinalName(m_movie); }));
    EXPECT_FALSE(checkFinalName(m_movie)); // the superuser's
}

TEST_F(PartFileTest, anothersLinkInAFolderForAllIsNotFollowed)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can make a link of another user";
    const QByteArray link = nativePathOf(QStringLiteral("a.mp4"));
    const QByteArray folder = QFile::encodeName(m_folder.path());
    ASSERT_EQ(::symlink("diary.txt", link.constData()), 0);
    ASSERT_EQ(::lchown(link.constData(), 23456, 23456), 0);
    ASSERT_EQ(::chmod(folder.constData(), 0777), 0);
    EXPECT_FALSE(checkFinalName(m_movie));
    ASSERT_EQ(::chmod(folder.constData(), 01777), 0);
    const auto error = checkFinalName(m_movie);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, ErrorKind::PermissionDenied);
    ASSERT_EQ(::lchown(link.constData(), ::geteuid(), ::getegid()), 0);
    EXPECT_FALSE(checkFinalName(m_movie));
}

TEST_F(PartFileTest, aFolderThatIsRenamedIsNoticed)
{
    const QString folder = pathOf(QStringLiteral("before"));
    ASSERT_TRUE(QDir().mkdir(folder));
    const PartFile part(folder + QStringLiteral("/a.mp4"));
    EXPECT_TRUE(part.place().folderIsAtItsPath());
    ASSERT_TRUE(QDir().rename(folder, pathOf(QStringLiteral("after"))));
    ASSERT_TRUE(QDir().mkdir(folder));
    EXPECT_FALSE(part.place().folderIsAtItsPath());
    EXPECT_TRUE(part.place().folderIsThere());
    EXPECT_TRUE(part.isAtItsPath());
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
