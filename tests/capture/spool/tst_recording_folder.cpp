#include "base/log.h"
#include "capture/spool/recording_folder.h"
#include "capture/spool/spool_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <functional>

namespace vornic {
namespace {

using Refusal = RecordingFolder::Refusal;

class RecordingFolderTest : public testing::Test
{
protected:
    RecordingFolderTest()
    {
        setLogSink([](const QString &) {});
    }
    ~RecordingFolderTest() override { setLogSink({}); }

    [[nodiscard]] std::shared_ptr<RecordingFolder> create() const
    {
        return RecordingFolder::create(m_cache.path());
    }
    /// The id of a recording that nobody has open.
    [[nodiscard]] QString left() const { return create()->id(); }
    [[nodiscard]] Refusal refusalOf(const QString &id) const
    {
        Refusal refusal {};
        const auto folder = RecordingFolder::open(m_cache.path(), id, refusal);
        EXPECT_EQ(folder == nullptr, refusal != Refusal::None);
        return refusal;
    }
    [[nodiscard]] QString all() const { return m_cache.filePath("recordings"); }
    [[nodiscard]] QString pathOf(const QString &id, const QString &file = {}) const
    {
        return all() + u'/' + id + (file.isEmpty() ? QString() : u'/' + file);
    }
    [[nodiscard]] static unsigned modeOf(const QString &path)
    {
        struct stat status {
        };
        return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777U : ~0U;
    }
    [[nodiscard]] static QStringList entries(const QString &path)
    {
        return QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    static void link(const QString &target, const QString &path)
    {
        ASSERT_TRUE(QFile::link(target, path)) << path.toStdString();
    }

    QTemporaryDir m_cache;
};

TEST_F(RecordingFolderTest, ANewOneIsItsUsersAlone)
{
    const mode_t before = ::umask(0);
    const auto folder = create();
    ::umask(before);
    ASSERT_TRUE(folder);
    EXPECT_EQ(modeOf(all()), 0700U);
    EXPECT_EQ(modeOf(folder->path()), 0700U);
    EXPECT_EQ(entries(folder->path()), (QStringList { "journal", "vornicaudio.tmp", "vornicvideo.tmp" }));
    for (const QString &name : entries(folder->path()))
        EXPECT_EQ(modeOf(folder->path() + u'/' + name), 0600U);
    EXPECT_EQ(folder->path(), pathOf(folder->id()));
    EXPECT_EQ(entries(all()), QStringList(folder->id()));
    EXPECT_TRUE(folder->sync());
}

TEST_F(RecordingFolderTest, TheFolderOfAllIsMadeBeforeTheFirst)
{
    EXPECT_EQ(RecordingFolder::pathOfAll(m_cache.path()), all());
    for (int turn = 0; turn < 2; ++turn)
        EXPECT_TRUE(RecordingFolder::prepare(m_cache.path()));
    EXPECT_EQ(modeOf(all()), 0700U);
    EXPECT_EQ(entries(all()), QStringList());
}

TEST_F(RecordingFolderTest, TwoAtOnceAreTwo)
{
    const auto first = create();
    const auto second = create();
    ASSERT_TRUE(first && second);
    EXPECT_NE(first->id(), second->id());
    EXPECT_EQ(RecordingFolder::ids(m_cache.path()).size(), 2);
}

TEST_F(RecordingFolderTest, ARunningOneIsRefused)
{
    auto folder = create();
    const QString id = folder->id();
    EXPECT_EQ(refusalOf(id), Refusal::Running);
    folder.reset();
    EXPECT_EQ(refusalOf(id), Refusal::None);
    EXPECT_EQ(RecordingFolder::refusalText(Refusal::Running, "X"),
              "The recording X is in use by another Vornic.");
}

TEST_F(RecordingFolderTest, OnlyAnIdLeadsToOne)
{
    const QString id = left();
    ASSERT_TRUE(QDir(m_cache.path()).mkdir("20200101-000000-abcd"));
    for (const QString &name : { QString(),
                                 QStringLiteral("."),
                                 QStringLiteral("../20200101-000000-abcd"),
                                 QStringLiteral("20200101-000000-abcd"),
                                 id + u'/',
                                 id + u'\n' })
        EXPECT_EQ(refusalOf(name), Refusal::Missing) << name.toStdString();
    EXPECT_EQ(RecordingFolder::refusalText(Refusal::Missing, "X"), "There is no recording X.");
}

TEST_F(RecordingFolderTest, ALinkInItsPlaceIsRefused)
{
    const QString id = left();
    const QString elsewhere = m_cache.filePath("elsewhere");
    ASSERT_TRUE(QDir().rename(pathOf(id), elsewhere));
    link(elsewhere, pathOf(id));
    EXPECT_EQ(refusalOf(id), Refusal::Unusable);
    EXPECT_EQ(entries(elsewhere).size(), 3);
    EXPECT_EQ(RecordingFolder::refusalText(Refusal::Unusable, "X"),
              "The recording X cannot be read: its journal is missing or damaged.");
}

TEST_F(RecordingFolderTest, AFileInItsPlaceIsRefused)
{
    const QString id = left();
    ASSERT_TRUE(QDir(pathOf(id)).removeRecursively());
    QFile file(pathOf(id));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(refusalOf(id), Refusal::Unusable);
    ASSERT_EQ(RecordingFolder::ids(m_cache.path()), QStringList());
}

TEST_F(RecordingFolderTest, OneThatOthersCouldChangeIsClosedToThem)
{
    const QString id = left();
    ASSERT_EQ(::chmod(QFile::encodeName(pathOf(id)).constData(), 0777), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(all()).constData(), 0777), 0);
    EXPECT_EQ(refusalOf(id), Refusal::None);
    EXPECT_EQ(modeOf(pathOf(id)), 0700U);
    EXPECT_TRUE(create());
    EXPECT_EQ(modeOf(all()), 0700U);
}

TEST_F(RecordingFolderTest, AnotherUsersIsRefused)
{
    const QString id = left();
    if (::chown(QFile::encodeName(pathOf(id)).constData(), 65534, 65534) != 0)
        GTEST_SKIP() << "folders can be given away by root only";
    EXPECT_EQ(refusalOf(id), Refusal::Unusable);
    ASSERT_EQ(::chown(QFile::encodeName(all()).constData(), 65534, 65534), 0);
    EXPECT_FALSE(create());
}

TEST_F(RecordingFolderTest, ACacheThatOthersCanReadIsClosedToThem)
{
    const QString id = left();
    const QByteArray cache = QFile::encodeName(m_cache.path());
    // The user's own group is let in by a usual umask, and nobody else is in it.
    for (const mode_t mode : { 0755U, 0775U, 0711U }) {
        ASSERT_EQ(::chmod(cache.constData(), mode), 0);
        EXPECT_TRUE(RecordingFolder::ownsCache(m_cache.path()));
        EXPECT_EQ(modeOf(m_cache.path()), 0700U);
        ASSERT_EQ(::chmod(cache.constData(), mode), 0);
        EXPECT_EQ(refusalOf(id), Refusal::None);
        EXPECT_EQ(modeOf(m_cache.path()), 0700U);
        ASSERT_EQ(::chmod(cache.constData(), mode), 0);
        EXPECT_TRUE(create());
        EXPECT_EQ(modeOf(m_cache.path()), 0700U);
    }
}

TEST_F(RecordingFolderTest, ACacheThatOthersCanWriteToIsRefused)
{
    const QString id = left();
    const QByteArray cache = QFile::encodeName(m_cache.path());
    const auto expectRefused = [&] {
        EXPECT_FALSE(RecordingFolder::ownsCache(m_cache.path()));
        EXPECT_EQ(errno, EPERM);
        EXPECT_FALSE(create());
        EXPECT_EQ(errno, EPERM);
        EXPECT_FALSE(RecordingFolder::prepare(m_cache.path()));
        EXPECT_EQ(refusalOf(id), Refusal::Unusable);
        EXPECT_EQ(entries(all()), QStringList(id));
    };
    for (const mode_t mode : { 0777U, 01777U, 0702U }) {
        ASSERT_EQ(::chmod(cache.constData(), mode), 0);
        expectRefused();
        EXPECT_EQ(modeOf(m_cache.path()), mode);
    }
    ASSERT_EQ(::chmod(cache.constData(), 0770), 0);
    if (::chown(cache.constData(), ::geteuid(), 65534) != 0)
        GTEST_SKIP() << "folders can be given away by root only";
    expectRefused();
    ASSERT_EQ(::chmod(cache.constData(), 0700), 0);
    ASSERT_EQ(::chown(cache.constData(), 65534, ::getegid()), 0);
    expectRefused();
}

TEST_F(RecordingFolderTest, ALinkMayLeadToTheCache)
{
    const QTemporaryDir elsewhere;
    link(m_cache.path(), elsewhere.filePath("cache"));
    const auto folder = RecordingFolder::create(elsewhere.filePath("cache"));
    ASSERT_TRUE(folder);
    EXPECT_EQ(entries(all()), QStringList(folder->id()));
    EXPECT_TRUE(folder->remove());
}

TEST_F(RecordingFolderTest, WhatIsPutInPlaceOfTheFolderOfAllIsNotWrittenTo)
{
    const auto folder = create();
    ASSERT_TRUE(QDir().rename(all(), m_cache.filePath("before")));
    ASSERT_TRUE(QDir().mkpath(pathOf(folder->id())));
    EXPECT_TRUE(folder->remove());
    EXPECT_EQ(entries(m_cache.filePath("before")), QStringList());
    EXPECT_EQ(entries(all()), QStringList(folder->id()));
}

TEST_F(RecordingFolderTest, NoneIsMadeWhereALinkLeads)
{
    ASSERT_TRUE(QDir(m_cache.path()).mkdir("elsewhere"));
    link(m_cache.filePath("elsewhere"), all());
    EXPECT_FALSE(create());
    EXPECT_FALSE(RecordingFolder::prepare(m_cache.path()));
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_EQ(entries(m_cache.filePath("elsewhere")), QStringList());
}

TEST_F(RecordingFolderTest, WhereTheCacheIsGoneNoneIsMade)
{
    ASSERT_TRUE(m_cache.remove());
    EXPECT_FALSE(create());
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(RecordingFolderTest, ASpoolThatIsNoFileIsTakenForMissing)
{
    using Make = std::function<void(const QByteArray &)>;
    const QList<Make> others { [](const QByteArray &path) { ASSERT_EQ(::mkfifo(path.constData(), 0600), 0); },
                               [](const QByteArray &path) { ASSERT_EQ(::mkdir(path.constData(), 0700), 0); },
                               [](const QByteArray &path) {
                                   ASSERT_EQ(::symlink("/etc/passwd", path.constData()), 0);
                               },
                               [](const QByteArray &) {} };
    for (const Make &make : others) {
        const QString id = left();
        const QString video = pathOf(id, RecordingFolder::videoName);
        ASSERT_TRUE(QFile::remove(video));
        make(QFile::encodeName(video));
        Refusal refusal {};
        const auto folder = RecordingFolder::open(m_cache.path(), id, refusal);
        ASSERT_TRUE(folder);
        EXPECT_FALSE(folder->video());
        EXPECT_TRUE(folder->audio());
        EXPECT_TRUE(folder->sync());
    }
}

TEST_F(RecordingFolderTest, AJournalThatIsNoFileIsRefused)
{
    const QString id = left();
    const QString journal = pathOf(id, RecordingFolder::journalName);
    ASSERT_TRUE(QFile::remove(journal));
    link("/etc/passwd", journal);
    EXPECT_EQ(refusalOf(id), Refusal::Unusable);
    ASSERT_TRUE(QFile::remove(journal));
    ASSERT_EQ(::mkfifo(QFile::encodeName(journal).constData(), 0600), 0);
    EXPECT_EQ(refusalOf(id), Refusal::Unusable);
}

TEST_F(RecordingFolderTest, OneWithoutAJournalIsLockedAllTheSame)
{
    const QString id = left();
    ASSERT_TRUE(QFile::remove(pathOf(id, RecordingFolder::journalName)));
    Refusal refusal {};
    const auto folder = RecordingFolder::open(m_cache.path(), id, refusal);
    ASSERT_TRUE(folder);
    EXPECT_EQ(folder->journal()->size(), 0U);
    EXPECT_EQ(refusalOf(id), Refusal::Running);
}

TEST_F(RecordingFolderTest, IsRemovedWithItsFiles)
{
    const auto folder = create();
    EXPECT_TRUE(folder->remove());
    EXPECT_EQ(entries(all()), QStringList());
}

TEST_F(RecordingFolderTest, IsKeptWhereSomethingElseIsInIt)
{
    const auto folder = create();
    QFile file(folder->path() + "/notes");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_FALSE(folder->remove());
    EXPECT_EQ(errno, ENOTEMPTY);
    EXPECT_TRUE(file.exists());
}

TEST_F(RecordingFolderTest, IdsAreSortedAndNothingElse)
{
    ASSERT_TRUE(QDir().mkdir(all()));
    for (const char *name : { "20260102-000000-0000",
                              "20260101-235959-ffff",
                              ".new-20260101-000000-0000",
                              "notes",
                              "20260101-235959-FFFF" })
        ASSERT_TRUE(QDir(all()).mkdir(QLatin1StringView(name)));
    EXPECT_EQ(RecordingFolder::ids(m_cache.path()),
              (QStringList { "20260101-235959-ffff", "20260102-000000-0000" }));
    EXPECT_EQ(RecordingFolder::ids("/nowhere"), QStringList());
}

TEST_F(RecordingFolderTest, WhatIsHalfMadeIsRemovedWhenItIsAMinuteOld)
{
    ASSERT_TRUE(QDir().mkdir(all()));
    for (const QString &name :
         { QStringLiteral(".new-old"), QStringLiteral(".new-young"), QStringLiteral(".other") }) {
        ASSERT_TRUE(QDir(all()).mkdir(name));
        QFile journal(pathOf(name, RecordingFolder::journalName));
        ASSERT_TRUE(journal.open(QIODevice::WriteOnly));
    }
    for (const char *name : { ".new-old", ".other" }) {
        const timeval longAgo[2] = { { ::time(nullptr) - 70, 0 }, { ::time(nullptr) - 70, 0 } };
        ASSERT_EQ(::utimes(QFile::encodeName(pathOf(name)).constData(), longAgo), 0);
    }
    RecordingFolder::removeHalfMade(m_cache.path());
    EXPECT_EQ(entries(all()), (QStringList { ".new-young", ".other" }));
}

} // namespace
} // namespace vornic
