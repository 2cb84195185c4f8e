#include "base/PKTimebase.h"
#include "codec/PKMuxerTask.h"
#include "codec/movie_failure.h"
#include "movie_test_support.h"
#include "support/file_size_limit.h"
#include "support/thread_limit.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <stdexcept>

namespace vornic::testing {
namespace {

class MovieFailuresTest : public ::testing::Test
{
protected:
    [[nodiscard]] QStringList files() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }

    /// Frames that do not compress.
    void addNoise(int count)
    {
        std::mt19937 random(1);
        for (int i = 0; i < count; ++i) {
            QImage picture(320, 240, QImage::Format_RGB32);
            for (int y = 0; y < 240; ++y)
                for (int x = 0; x < 320; ++x)
                    picture.setPixel(x, y, static_cast<QRgb>(random()));
            m_source.add(picture, i * PKTimebase / 30, PKTimebase / 30);
        }
    }

    void putFileAtFinalName()
    {
        QFile file(m_movie);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("what was there");
    }
    [[nodiscard]] QByteArray fileAtFinalName() const
    {
        QFile file(m_movie);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Does something when the frame of a number, from 1, is read.
    void atFrame(int number, const std::function<void()> &action)
    {
        m_source.onVideo = [this, number, action] {
            if (++m_calls == number)
                action();
        };
    }
    [[nodiscard]] QString pathOfPart() const
    {
        return m_folder.filePath(files().filter(QStringLiteral(".part")).value(0));
    }

    int m_calls = 0;
    QTemporaryDir m_folder;
    QString m_movie = m_folder.filePath(QStringLiteral("a.mp4"));
    ListSource m_source;
};

const Error noFramesError { ErrorKind::Empty, ErrorSubject::Recording, {}, {} };

Error fileError(ErrorKind kind, const QString &movie, const char *reason)
{
    return { kind, ErrorSubject::File, movie, QLatin1StringView(reason) };
}

void expectFailure(const TaskReport &report, const Error &error)
{
    ASSERT_FALSE(report.actions.isEmpty());
    EXPECT_EQ(report.actions.first(), PKMuxerTaskActionStart);
    EXPECT_EQ(report.actions.last(), PKMuxerTaskActionFailed);
    EXPECT_EQ(report.actions.count(PKMuxerTaskActionFailed), 1);
    EXPECT_TRUE(report.wasOnMainThread);
    const std::optional<Error> told = report.error();
    ASSERT_TRUE(told.has_value());
    EXPECT_EQ(told->kind, error.kind);
    EXPECT_EQ(told->subject, error.subject);
    EXPECT_EQ(told->name, error.name);
    EXPECT_EQ(told->reason, error.reason);
}

TEST_F(MovieFailuresTest, noFrames)
{
    expectFailure(runTask(videoContext(m_movie, { 64, 48 }), m_source), noFramesError);
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(MovieFailuresTest, noFramesButSound)
{
    const std::vector<std::int16_t> silence(4800, 0);
    m_source.audio.push_back(std::make_shared<PKAudioFrame2>(1, 1, 48000, 4800, silence.data()));
    auto context = videoContext(m_movie, { 64, 48 });
    context.setAudioCodecID(PKMuxerContext::audioCodecAac);
    expectFailure(runTask(context, m_source), noFramesError);
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(MovieFailuresTest, aFolderThatDoesNotExist)
{
    m_source.addGreys({ 64, 48 }, 3);
    const QString movie = m_folder.filePath(QStringLiteral("nowhere/a.mp4"));
    expectFailure(runTask(videoContext(movie, { 64, 48 }), m_source),
                  fileError(ErrorKind::FolderMissing, movie, "No such file or directory"));
}

TEST_F(MovieFailuresTest, aFileWhereTheFolderShouldBe)
{
    putFileAtFinalName();
    m_source.addGreys({ 64, 48 }, 3);
    const QString movie = m_movie + QStringLiteral("/b.mp4");
    expectFailure(runTask(videoContext(movie, { 64, 48 }), m_source),
                  fileError(ErrorKind::FolderMissing, movie, "Not a directory"));
    EXPECT_EQ(files(), QStringList { QStringLiteral("a.mp4") });
}

TEST_F(MovieFailuresTest, aFolderThatTakesNoFiles)
{
    m_source.addGreys({ 64, 48 }, 3);
    // a folder in which the kernel lets nobody make files, not even the superuser
    const auto report = runTask(videoContext(QStringLiteral("/proc/self/a.mp4"), { 64, 48 }), m_source);
    EXPECT_EQ(report.actions.last(), PKMuxerTaskActionFailed);
    ASSERT_TRUE(report.error().has_value());
    EXPECT_EQ(report.error()->name, u"/proc/self/a.mp4");
}

TEST_F(MovieFailuresTest, theFinalNameIsAFolder)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("a.mp4")));
    m_source.addGreys({ 64, 48 }, 3);
    expectFailure(runTask(videoContext(m_movie, { 64, 48 }), m_source),
                  fileError(ErrorKind::Failed, m_movie, "Is a directory"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(MovieFailuresTest, theFileCannotGrowWhilePicturesAreWritten)
{
    putFileAtFinalName();
    addNoise(120);
    TaskReport report;
    {
        const test::FileSizeLimit limit(64 * 1024);
        report = runTask(videoContext(m_movie, { 320, 240 }), m_source);
    }
    expectFailure(report, fileError(ErrorKind::FileTooLarge, m_movie, "File too large"));
    EXPECT_EQ(files(), QStringList { QStringLiteral("a.mp4") });
    EXPECT_EQ(fileAtFinalName(), "what was there");
}

TEST_F(MovieFailuresTest, theFileCannotGrowWhileTheIndexIsPutInFront)
{
    // Hardly any picture and many durations: an index as large as all the pictures.
    for (int i = 0; i < 2000; ++i)
        m_source.add(flat({ 16, 16 }, Qt::white), i * 3001 - i % 2, 3000 + i % 2 * 2);
    ListSource again;
    again.video = m_source.video;
    again.length = m_source.length;
    ASSERT_TRUE(runTask(videoContext(m_movie, { 16, 16 }), m_source).isComplete());
    qint64 indexBytes = 0;
    for (const Box &box : boxesOf(m_movie))
        indexBytes += box.name == u"moov" ? box.size : 0;
    const qint64 movieBytes = QFile(m_movie).size();
    ASSERT_GT(indexBytes, 20000);
    ASSERT_TRUE(QFile::remove(m_movie));

    TaskReport report;
    {
        // room for all the pictures and half of the index
        const test::FileSizeLimit limit(static_cast<std::uint64_t>(movieBytes - indexBytes / 2));
        report = runTask(videoContext(m_movie, { 16, 16 }), again);
    }
    expectFailure(report, fileError(ErrorKind::FileTooLarge, m_movie, "File too large"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(MovieFailuresTest, aPartFileThatIsDamagedWhileItIsWritten)
{
    putFileAtFinalName();
    m_source.addGreys({ 64, 48 }, 90);
    atFrame(80, [this] { EXPECT_TRUE(QFile::resize(pathOfPart(), 0)); });
    const auto report = runTask(videoContext(m_movie, { 64, 48 }), m_source);
    EXPECT_EQ(report.actions.last(), PKMuxerTaskActionFailed);
    ASSERT_TRUE(report.error().has_value());
    EXPECT_EQ(report.error()->kind, ErrorKind::Incomplete) << report.reason();
    EXPECT_EQ(report.error()->name, m_movie);
    EXPECT_EQ(files(), QStringList { QStringLiteral("a.mp4") });
    EXPECT_EQ(fileAtFinalName(), "what was there");
}

TEST_F(MovieFailuresTest, aPartFileThatIsRemovedWhileItIsWritten)
{
    m_source.addGreys({ 64, 48 }, 30);
    atFrame(20, [this] { EXPECT_TRUE(QFile::remove(pathOfPart())); });
    expectFailure(runTask(videoContext(m_movie, { 64, 48 }), m_source),
                  fileError(ErrorKind::Incomplete, m_movie, "No such file or directory"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(MovieFailuresTest, aPartFileInWhosePlaceAnotherFileIsPut)
{
    m_source.addGreys({ 64, 48 }, 30);
    atFrame(20, [this] {
        const QString part = pathOfPart();
        putFileAtFinalName();
        EXPECT_TRUE(QFile::remove(part) && QFile::rename(m_movie, part));
    });
    expectFailure(runTask(videoContext(m_movie, { 64, 48 }), m_source),
                  fileError(ErrorKind::Incomplete, m_movie, "No such file or directory"));
    EXPECT_FALSE(QFile::exists(m_movie));
    QFile other(pathOfPart());
    ASSERT_TRUE(other.open(QIODevice::ReadOnly));
    EXPECT_EQ(other.readAll(), "what was there");
}

TEST_F(MovieFailuresTest, aFolderThatIsRemovedWhileTheMovieIsWritten)
{
    m_source.addGreys({ 64, 48 }, 30);
    atFrame(20, [this] { EXPECT_TRUE(QDir(m_folder.path()).removeRecursively()); });
    expectFailure(runTask(videoContext(m_movie, { 64, 48 }), m_source),
                  fileError(ErrorKind::FolderMissing, m_movie, "No such file or directory"));
}

TEST_F(MovieFailuresTest, aFolderThatIsRenamedWhileTheMovieIsWritten)
{
    m_source.addGreys({ 64, 48 }, 30);
    const QTemporaryDir elsewhere;
    const QString renamed = elsewhere.filePath(QStringLiteral("renamed"));
    atFrame(20, [&] {
        EXPECT_TRUE(QDir().rename(m_folder.path(), renamed));
        EXPECT_TRUE(QDir().mkdir(m_folder.path()));
    });
    expectFailure(runTask(videoContext(m_movie, { 64, 48 }), m_source),
                  fileError(ErrorKind::FolderMissing, m_movie, "No such file or directory"));
    EXPECT_EQ(QDir(renamed).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(MovieFailuresTest, aFileThatComesToStandUnderTheNameIsKept)
{
    m_source.addGreys({ 64, 48 }, 30);
    atFrame(20, [this] { putFileAtFinalName(); });
    const TaskReport report = runTask(videoContext(m_movie, { 64, 48 }), m_source);
    ASSERT_TRUE(report.isComplete()) << report.reason();
    EXPECT_EQ(fileAtFinalName(), "what was there");
    const QString other = m_folder.filePath(QStringLiteral("a 2.mp4"));
    EXPECT_EQ(report.statistics().file, other);
    EXPECT_EQ(boxesOf(other).first().name, u"ftyp");
    EXPECT_EQ(files(), (QStringList { QStringLiteral("a 2.mp4"), QStringLiteral("a.mp4") }));
}

TEST_F(MovieFailuresTest, systemErrorsAreToldApartByTheirKind)
{
    const auto kindOf = [](int number) { return writingError(QStringLiteral("/x/o.mp4"), number).kind; };
    EXPECT_EQ(kindOf(-ENOSPC), ErrorKind::DiskFull);
    EXPECT_EQ(kindOf(-EDQUOT), ErrorKind::DiskFull);
    EXPECT_EQ(kindOf(-EACCES), ErrorKind::PermissionDenied);
    EXPECT_EQ(kindOf(-EPERM), ErrorKind::PermissionDenied);
    EXPECT_EQ(kindOf(-EROFS), ErrorKind::ReadOnlyVolume);
    EXPECT_EQ(kindOf(-EIO), ErrorKind::Failed);
    EXPECT_EQ(writingError(QStringLiteral("/x/o.mp4"), -EIO).reason, u"Input/output error");
}

TEST_F(MovieFailuresTest, encodersAndFormatsThatDoNotExist)
{
    const auto unsupported = [](ErrorSubject subject, const char *number) {
        return Error { ErrorKind::Unsupported, subject, QLatin1StringView(number), {} };
    };
    m_source.addGreys({ 64, 48 }, 3);
    auto context = videoContext(m_movie, { 64, 48 });
    context.setVideoCodecID(7);
    expectFailure(runTask(context, m_source), unsupported(ErrorSubject::VideoEncoder, "7"));
    context.setVideoCodecID(PKMuxerContext::videoCodecH264);
    context.setAudioCodecID(101);
    expectFailure(runTask(context, m_source), unsupported(ErrorSubject::AudioEncoder, "101"));
    PKMuxerContext otherFormat(m_movie, 2);
    expectFailure(runTask(otherFormat, m_source), unsupported(ErrorSubject::MovieFormat, "2"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(MovieFailuresTest, aMovieWithoutASize)
{
    m_source.addGreys({ 64, 48 }, 3);
    expectFailure(runTask(videoContext(m_movie, { 0, 48 }), m_source),
                  { ErrorKind::Failed,
                    ErrorSubject::VideoEncoder,
                    QStringLiteral("0 x 48"),
                    QStringLiteral("Invalid argument") });
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(MovieFailuresTest, aSourceThatThrowsEndsTheTask)
{
    m_source.addGreys({ 64, 48 }, 30);
    int calls = 0;
    m_source.onVideo = [&calls] {
        if (++calls == 10)
            throw std::runtime_error("the spool is broken");
    };
    expectFailure(runTask(videoContext(m_movie, { 64, 48 }), m_source),
                  fileError(ErrorKind::Failed, m_movie, "the spool is broken"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(MovieFailuresTest, aSourceWithoutMemoryEndsTheTask)
{
    m_source.onVideo = [] { throw std::bad_alloc(); };
    expectFailure(runTask(videoContext(m_movie, { 64, 48 }), m_source),
                  fileError(ErrorKind::OutOfMemory, m_movie, ""));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(MovieFailuresTest, aSystemWithoutThreadsToGive)
{
    m_source.addGreys({ 64, 48 }, 3);
    for (const int threads : { 0, 1 }) { // the second would read the frames
        const test::ThreadLimit limit(threads);
        expectFailure(runTask(videoContext(m_movie, { 64, 48 }), m_source),
                      fileError(ErrorKind::Failed, m_movie, "Resource temporarily unavailable"));
        EXPECT_TRUE(files().isEmpty());
    }
}

TEST_F(MovieFailuresTest, anEncoderWithoutThreadsWorksOnTheOneThatItIsCalledOn)
{
    m_source.addGreys({ 640, 480 }, 3);
    const test::ThreadLimit limit(2);
    const TaskReport report = runTask(videoContext(m_movie, { 640, 480 }), m_source);
    ASSERT_TRUE(report.isComplete()) << report.reason();
    EXPECT_EQ(report.statistics().framesWritten, 3);
}

TEST_F(MovieFailuresTest, theFinalNameIsUntouchedUntilTheMovieIsComplete)
{
    putFileAtFinalName();
    m_source.addGreys({ 64, 48 }, 30);
    int calls = 0;
    m_source.onVideo = [&] {
        if (++calls == 31) { // the end: everything but the last packets has been handed over
            EXPECT_EQ(fileAtFinalName(), "what was there");
            EXPECT_EQ(files().size(), 2);
            EXPECT_TRUE(files().first().startsWith(u'.'));
        }
    };
    PKMuxerContext context = videoContext(m_movie, { 64, 48 });
    context.setReplacedFile(identityOfFile(m_movie));
    ASSERT_TRUE(runTask(context, m_source).isComplete());
    EXPECT_EQ(files(), QStringList { QStringLiteral("a.mp4") });
    EXPECT_EQ(boxesOf(m_movie).first().name, u"ftyp");
}

} // namespace
} // namespace vornic::testing
