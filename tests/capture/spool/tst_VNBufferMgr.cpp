#include "audio/PKAudioRecorderData.h"
#include "base/PKTimebase.h"
#include "base/keyed_archive.h"
#include "capture/capture_fixture.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/cursor_table.h"
#include "capture/record/picture_spooler.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/spool_file.h"
#include "codec/PKMuxerContext.h"
#include "codec/PKVideoFrame2.h"
#include "support/test_pictures.h"
#include "support/wait_until.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <ctime>
#include <thread>

namespace {

/// The sleeps that a thread has begun.
struct Sleeps {
    std::atomic<int> count = 0;
    std::atomic<std::chrono::nanoseconds> shortest = std::chrono::nanoseconds::max();
    std::atomic<std::chrono::nanoseconds> longest = std::chrono::nanoseconds::min();
};

/// Null on threads whose sleeps nobody counts.
thread_local Sleeps *sleepsOfThisThread = nullptr;

} // namespace

/// Stands before the system's, so that a test can count how often a thread waited, and see for how long,
/// without measuring time.
extern "C" int nanosleep(const timespec *duration, timespec *remaining)
{
    if (sleepsOfThisThread) {
        const std::chrono::nanoseconds length
            = std::chrono::seconds(duration->tv_sec) + std::chrono::nanoseconds(duration->tv_nsec);
        sleepsOfThisThread->shortest = std::min(sleepsOfThisThread->shortest.load(), length);
        sleepsOfThisThread->longest = std::max(sleepsOfThisThread->longest.load(), length);
        ++sleepsOfThisThread->count;
    }
    using Function = int (*)(const timespec *, timespec *);
    static const auto systems = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "nanosleep"));
    return systems(duration, remaining);
}

namespace vornic {
namespace {

using test::noisePicture;
using test::pixelsOf;
using test::waitUntil;

class BufferMgrTest : public CaptureTest
{
protected:
    BufferMgrTest() { m_manager.readyToRecord(); }

    void push(const QImage &picture, std::uint64_t timestamp)
    {
        const auto record = VNBufferDiscr::createWithScreenImage(grabOf(picture));
        record->setBufferTimestamp(timestamp);
        m_manager.pushRecordBuffer(*record);
    }

    static PKAudioRecorderData chunkOf(const QByteArray &samples)
    {
        return PKAudioRecorderData(samples, defaultAudioStreamBasicDescription());
    }

    /// Nothing where there is no chunk, so that a missing one fails its test instead of ending it.
    static std::optional<QByteArray> samplesOf(const std::optional<PKAudioRecorderData> &chunk)
    {
        return chunk ? std::optional(chunk->data()) : std::nullopt;
    }
    static std::optional<std::uint64_t> timestampOf(const std::unique_ptr<VNBufferDiscr> &record)
    {
        return record ? std::optional(record->timestamp()) : std::nullopt;
    }

    static QByteArray fileOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    VNBufferMgr m_manager { 4 };
};

QByteArray randomBytes(qsizetype size, quint32 seed)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(seed);
    for (char &byte : bytes)
        byte = static_cast<char>(generator.generate());
    return bytes;
}

/// A thread that runs one pop, with the sleeps that it asked for.
class Consumer
{
public:
    explicit Consumer(std::function<void()> pop)
        : m_thread([this, pop = std::move(pop)] {
            sleepsOfThisThread = &m_sleeps;
            pop();
        })
    {
    }
    ~Consumer() { m_thread.join(); }
    Consumer(const Consumer &) = delete;
    Consumer &operator=(const Consumer &) = delete;

    [[nodiscard]] const Sleeps &sleeps() const { return m_sleeps; }
    /// It has found the spool empty and is waiting for the second time.
    [[nodiscard]] bool hasWaitedTwice() const { return m_sleeps.count > 1; }

private:
    Sleeps m_sleeps;
    std::thread m_thread; ///< last: it uses the other
};

TEST_F(BufferMgrTest, SizesTellAPictureThatIsNewFromOneThatStays)
{
    const QImage picture = boxPicture({ 320, 200 }, qRgb(200, 100, 50), {}, 0);
    push(picture, 1);
    push(picture, 2000);
    push(picture, 3000);
    m_manager.endVideoRecord();
    m_manager.setExit(true);
    ASSERT_TRUE(m_manager.popRecordBuffer());
    const auto sizes = m_manager.recordSizes();
    ASSERT_EQ(sizes.size(), 2U) << "of what is still to come";
    EXPECT_EQ(sizes[0].first, 2000);
    EXPECT_EQ(sizes[1].first, 3000);
    EXPECT_GT(sizes[0].second, 0U);
    EXPECT_LE(sizes[1].second, 400U) << "by which the movie's progress knows it";
    m_manager.rewind();
    ASSERT_EQ(m_manager.recordSizes().size(), 3U);
    EXPECT_GT(m_manager.recordSizes()[0].second, 400U);
}

TEST_F(BufferMgrTest, FramesComeBackInTheOrderOfTheirPush)
{
    for (int i = 0; i < 10; ++i)
        push(boxPicture({ 320, 200 }, qRgb(i * 20, 100, 50), {}, 0),
             static_cast<std::uint64_t>(1000 * i + 1));
    m_manager.endVideoRecord();
    m_manager.setExit(true);
    EXPECT_EQ(m_manager.recordBufferCount(), 10U);
    EXPECT_EQ(m_manager.nextBufferTimestamp(), 1);
    EXPECT_EQ(m_manager.lastBufferTimestamp(), 9001);
    for (int i = 0; i < 10; ++i) {
        const auto record = m_manager.popRecordBuffer();
        ASSERT_TRUE(record);
        EXPECT_EQ(record->timestamp(), static_cast<std::uint64_t>(1000 * i + 1));
        ASSERT_TRUE(record->recordImage());
        EXPECT_LE(std::abs(qRed(record->recordImage()->view().pixel(100, 100)) - i * 20), 2);
        EXPECT_EQ(m_manager.nextBufferTimestamp(), i == 9 ? 0 : 1000 * (i + 1) + 1);
    }
    EXPECT_FALSE(m_manager.popRecordBuffer());
    EXPECT_EQ(m_manager.skippedBlockCount(), 0U);
}

TEST_F(BufferMgrTest, FramesAreReadFromMemoryBeforeTheEndToo)
{
    push(noisePicture({ 320, 200 }, 1), 5);
    const auto record = m_manager.getBufferVideoFrame();
    ASSERT_TRUE(record);
    EXPECT_TRUE(record->recordImage());
}

TEST_F(BufferMgrTest, TheFileIsThePlainConcatenationOfArchives)
{
    const PKAudioRecorderData first = chunkOf(randomBytes(4000, 1));
    const PKAudioRecorderData second = chunkOf(QByteArray(4000, 'x'));
    m_manager.pushAudioBuffer(first);
    m_manager.pushAudioBuffer(second);
    m_manager.endAudioRecord();
    const QByteArray file = fileOf(m_manager.tempAudioPathfile());
    // The first cannot be compressed and stands raw; the second stands behind its 8 bytes of length.
    const QByteArray raw = archivedData(first);
    ASSERT_TRUE(file.startsWith(raw));
    const QByteArray rest = file.mid(raw.size());
    quint64 length = 0;
    std::memcpy(&length, rest.constData(), sizeof length);
    ChunkSpooler spooler;
    KeyedArchiver firstArchive;
    spooler.encode(first, firstArchive);
    KeyedArchiver secondArchive;
    spooler.encode(second, secondArchive);
    EXPECT_EQ(length, static_cast<quint64>(secondArchive.bytes().size()));
    EXPECT_LT(rest.size(), 1000);
    EXPECT_EQ(samplesOf(m_manager.getAudioBuffer()), first.data());
    EXPECT_EQ(samplesOf(m_manager.getAudioBuffer()), second.data());
    EXPECT_FALSE(m_manager.getAudioBuffer());
}

TEST_F(BufferMgrTest, TellsHowManyBytesWereSpooled)
{
    EXPECT_EQ(m_manager.spooledBytes(), 0U);
    push(noisePicture({ 64, 64 }, 1), 1);
    const std::uint64_t picture = m_manager.spooledBytes();
    EXPECT_GT(picture, 0U) << "it counts while it is in memory";
    m_manager.pushAudioBuffer(chunkOf(randomBytes(5000, 1)));
    EXPECT_GT(m_manager.spooledBytes(), picture);
    m_manager.endVideoRecord();
    m_manager.endAudioRecord();
    EXPECT_EQ(m_manager.spooledBytes(),
              static_cast<std::uint64_t>(QFileInfo(m_manager.tempVideoPathfile()).size()
                                         + QFileInfo(m_manager.tempAudioPathfile()).size()));
    m_manager.readyToRecord();
    EXPECT_EQ(m_manager.spooledBytes(), 0U);
}

TEST_F(BufferMgrTest, OnlyAChunkThatWasCompressedIsUncompressed)
{
    const QStringList incompressible { "This block contains incompressible data." };
    const QByteArray random = randomBytes(4000, 1);
    m_manager.pushAudioBuffer(chunkOf(random));
    EXPECT_EQ(logged(), incompressible);
    const QByteArray even(4000, 'x');
    m_manager.pushAudioBuffer(chunkOf(even));
    for (const QByteArray &samples : { random, even }) {
        const auto chunk = m_manager.getAudioBuffer();
        ASSERT_TRUE(chunk);
        EXPECT_EQ(chunk->data(), samples);
    }
    // Uncompressing what is not compressed gives it back, but not without a word.
    EXPECT_EQ(logged(), incompressible);
}

TEST_F(BufferMgrTest, AChunkKeepsItsFormat)
{
    AudioStreamBasicDescription format = defaultAudioStreamBasicDescription();
    format.mSampleRate = 44100.5;
    format.mReserved = 0xFFFFFFFF;
    m_manager.pushAudioBuffer(PKAudioRecorderData("abcd", format));
    const auto chunk = m_manager.getAudioBuffer();
    ASSERT_TRUE(chunk);
    EXPECT_EQ(chunk->dataFormat(), format);
}

/// A pointer of 4 x 4 pixels in a colour of its own.
CursorShape pointerNumber(int number)
{
    QImage picture(4, 4, QImage::Format_ARGB32_Premultiplied);
    picture.fill(0xFF000000 | static_cast<QRgb>(number));
    return { picture, QPoint(number % 4, 0) };
}

TEST_F(BufferMgrTest, EachFrameKeepsItsPointerHoweverManyThereAre)
{
    constexpr int frames = 2 * static_cast<int>(CursorTable::maxShapes) + 10;
    for (int i = 0; i < frames; ++i) {
        m_display->setCursorShape(pointerNumber(i));
        push(noisePicture({ 16, 16 }, 1), static_cast<std::uint64_t>(i));
    }
    m_manager.setExit(true);
    for (const bool again : { false, true }) {
        if (again)
            m_manager.rewind();
        for (int i = 0; i < frames; ++i) {
            const auto record = m_manager.popRecordBuffer();
            ASSERT_TRUE(record);
            ASSERT_TRUE(record->cursorShape()) << i;
            EXPECT_EQ(*record->cursorShape(), pointerNumber(i)) << i;
        }
    }
}

TEST_F(BufferMgrTest, APointerThatStaysIsReadBackAsOneObject)
{
    m_display->setCursorShape(pointerNumber(0));
    push(noisePicture({ 16, 16 }, 1), 0);
    push(noisePicture({ 16, 16 }, 1), 1);
    for (int i = 1; i <= static_cast<int>(CursorTable::maxShapes); ++i)
        static_cast<void>(VNBufferDiscr::indexOfCursor(std::make_shared<CursorShape>(pointerNumber(i))));
    const auto first = m_manager.popRecordBuffer();
    const auto second = m_manager.popRecordBuffer();
    ASSERT_TRUE(first && second && first->cursorShape());
    EXPECT_EQ(first->cursorShape(), second->cursorShape()) << "the composer knows it by that";
}

TEST_F(BufferMgrTest, WithTheExitFlagUpAnEmptySpoolEndsWithoutAWait)
{
    m_manager.setExit(true);
    Sleeps sleeps;
    sleepsOfThisThread = &sleeps;
    EXPECT_FALSE(m_manager.popRecordBuffer());
    EXPECT_FALSE(m_manager.popAudioBuffer());
    sleepsOfThisThread = nullptr;
    EXPECT_EQ(sleeps.count, 0);
}

TEST_F(BufferMgrTest, APopWaitsForAPush)
{
    const Consumer video([this] {
        const auto record = m_manager.popRecordBuffer();
        ASSERT_TRUE(record);
        EXPECT_EQ(record->timestamp(), 77U);
    });
    const Consumer audio([this] {
        const auto chunk = m_manager.popAudioBuffer();
        ASSERT_TRUE(chunk);
        EXPECT_EQ(chunk->data(), "abcd");
    });
    EXPECT_TRUE(waitUntil([&] { return video.hasWaitedTwice() && audio.hasWaitedTwice(); }));
    push(noisePicture({ 32, 20 }, 1), 77);
    m_manager.pushAudioBuffer(chunkOf("abcd"));
    m_manager.setExit(true); // ends a consumer that has missed them; what was pushed before is still popped
}

TEST_F(BufferMgrTest, APopThatWaitsEndsWithTheExitFlag)
{
    const Consumer video([this] { EXPECT_FALSE(m_manager.popRecordBuffer()); });
    const Consumer audio([this] { EXPECT_FALSE(m_manager.popAudioBuffer()); });
    EXPECT_TRUE(waitUntil([&] { return video.hasWaitedTwice() && audio.hasWaitedTwice(); }));
    m_manager.setExit(true);
}

TEST_F(BufferMgrTest, AConsumerOfAnEmptySpoolLooksAgainTenTimesASecond)
{
    const Consumer video([this] { EXPECT_FALSE(m_manager.popRecordBuffer()); });
    const Consumer audio([this] { EXPECT_FALSE(m_manager.popAudioBuffer()); });
    EXPECT_TRUE(waitUntil([&] { return video.hasWaitedTwice() && audio.hasWaitedTwice(); }));
    m_manager.setExit(true);
    for (const Consumer *consumer : { &video, &audio }) {
        EXPECT_EQ(consumer->sleeps().shortest.load(), std::chrono::milliseconds(100));
        EXPECT_EQ(consumer->sleeps().longest.load(), std::chrono::milliseconds(100));
    }
}

TEST_F(BufferMgrTest, TimestampsOfAnEmptyIndexAreZero)
{
    EXPECT_EQ(m_manager.lastBufferTimestamp(), 0);
    EXPECT_EQ(m_manager.nextBufferTimestamp(), 0);
    EXPECT_EQ(m_manager.recordBufferCount(), 0U);
}

TEST_F(BufferMgrTest, RecordedSizesAreTruncated)
{
    m_manager.setRecordRect(QRectF(3.5, 4.5, 1920.9, 1080.4));
    EXPECT_EQ(m_manager.recordWidth(), 1920);
    EXPECT_EQ(m_manager.recordHeight(), 1080);
    EXPECT_EQ(m_manager.encodeWidth(), 1920);
    EXPECT_EQ(m_manager.encodeHeight(), 1080);
    m_manager.setRecordRect(QRectF(0, 0, 2560, 1440));
    EXPECT_EQ(m_manager.encodeWidth(), 1920);
    EXPECT_EQ(m_manager.encodeHeight(), 1080);
}

TEST_F(BufferMgrTest, FreeSpaceRules)
{
    std::uint64_t freeBytes = 0;
    m_manager.setFreeSpaceProbe([&] { return freeBytes; });
    freeBytes = 10'737'418'240;
    EXPECT_TRUE(m_manager.freespaceIsEough());
    EXPECT_FALSE(m_manager.cacheFull());
    freeBytes = 10'737'418'239;
    EXPECT_FALSE(m_manager.freespaceIsEough());
    freeBytes = 1'073'741'824;
    EXPECT_FALSE(m_manager.cacheFull());
    freeBytes = 1'073'741'823;
    EXPECT_TRUE(m_manager.cacheFull());
    // and the movie, where it goes to the same file system
    m_manager.keepFreeForMovie(5'000'000);
    freeBytes = 1'073'741'824 + 5'000'000;
    EXPECT_FALSE(m_manager.cacheFull());
    --freeBytes;
    EXPECT_TRUE(m_manager.cacheFull());
    m_manager.readyToRecord();
    EXPECT_FALSE(m_manager.cacheFull()) << "the next recording has no movie yet";
    EXPECT_EQ(VNBufferMgr::freeSpaceRequired(), 10'737'418'240U);
    EXPECT_EQ(VNBufferMgr::limitSpaceForRecord(), 1'073'741'824U);
    EXPECT_EQ(VNBufferMgr::descriptionOfFreeSpaceRequired(), "25GBytes");
}

TEST_F(BufferMgrTest, ReadyToRecordBeginsAnew)
{
    push(noisePicture({ 64, 64 }, 1), 1);
    m_manager.endVideoRecord();
    m_manager.setExit(true);
    m_manager.setMuxerContext(std::make_shared<PKMuxerContext>("x.mp4"));
    m_manager.clear();
    EXPECT_FALSE(QFile::exists(m_manager.tempVideoPathfile()));
    EXPECT_FALSE(QFile::exists(m_manager.tempAudioPathfile()));
    EXPECT_EQ(m_manager.recordBufferCount(), 0U);

    m_manager.readyToRecord();
    EXPECT_FALSE(m_manager.exit());
    EXPECT_FALSE(m_manager.muxerContext());
    EXPECT_EQ(QFile(m_manager.tempVideoPathfile()).size(), 0);
    push(noisePicture({ 64, 64 }, 1), 2);
    m_manager.endVideoRecord();
    const auto record = m_manager.getBufferVideoFrame();
    ASSERT_TRUE(record);
    EXPECT_TRUE(record->recordImage());
}

TEST_F(BufferMgrTest, ReadyToRecordForgetsWhatWasInMemoryAndLeavesTheIndex)
{
    push(noisePicture({ 64, 64 }, 1), 1);
    m_manager.pushAudioBuffer(chunkOf("old"));
    m_manager.readyToRecord();
    EXPECT_EQ(m_manager.recordBufferCount(), 1U);

    push(noisePicture({ 64, 64 }, 2), 2);
    const PKAudioRecorderData chunk = chunkOf(randomBytes(4000, 1));
    m_manager.pushAudioBuffer(chunk);
    m_manager.endVideoRecord();
    m_manager.endAudioRecord();
    EXPECT_EQ(m_manager.recordBufferCount(), 2U);
    EXPECT_EQ(m_manager.nextBufferTimestamp(), 1);
    EXPECT_EQ(fileOf(m_manager.tempAudioPathfile()), archivedData(chunk));
    // The entries of the old blocks are still there, and lead to nothing of theirs.
    static_cast<void>(m_manager.getBufferVideoFrame());
    static_cast<void>(m_manager.getAudioBuffer());
    const auto record = m_manager.getBufferVideoFrame();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->timestamp(), 2U);
    const auto popped = m_manager.getAudioBuffer();
    ASSERT_TRUE(popped);
    EXPECT_EQ(popped->data(), chunk.data());
}

TEST_F(BufferMgrTest, ARewoundSpoolIsReadAgainFromTheStart)
{
    for (std::uint32_t i = 0; i < 5; ++i)
        push(noisePicture({ 64, 64 }, i / 2), i);
    m_manager.pushAudioBuffer(chunkOf("abcd"));
    m_manager.endVideoRecord();
    m_manager.endAudioRecord();
    m_manager.setExit(true);
    for (int turn = 0; turn < 2; ++turn) {
        for (std::uint64_t i = 0; i < 3; ++i)
            EXPECT_EQ(timestampOf(m_manager.popRecordBuffer()), i);
        EXPECT_EQ(samplesOf(m_manager.popAudioBuffer()), "abcd");
        m_manager.rewind();
        EXPECT_EQ(m_manager.recordBufferCount(), 5U);
    }
    for (std::uint64_t i = 0; i < 5; ++i) {
        const auto record = m_manager.popRecordBuffer();
        ASSERT_TRUE(record);
        EXPECT_TRUE(record->recordImage());
    }
    EXPECT_FALSE(m_manager.popRecordBuffer());
}

TEST_F(BufferMgrTest, AFileThatCannotBeMadeIsLoggedAndTheRecordingGoesOn)
{
    qputenv("XDG_CACHE_HOME", "/proc/none");
    m_manager.readyToRecord();
    EXPECT_EQ(logged().count("Failed to create tmp file."), 1);
    push(noisePicture({ 64, 64 }, 1), 1);
    m_manager.endVideoRecord();
    m_manager.setExit(true);
    EXPECT_FALSE(m_manager.popRecordBuffer());
    EXPECT_EQ(m_manager.skippedBlockCount(), 1U);
}

TEST_F(BufferMgrTest, AnEqualPictureTakesNoSpaceAndComesBackAllTheSame)
{
    const QImage picture = noisePicture({ 320, 200 }, 4);
    push(picture, 0);
    push(picture, 3000);
    push(picture, 6000);
    m_manager.endVideoRecord();
    const qint64 one = [&] {
        PictureSpooler spooler;
        KeyedArchiver archiver;
        VNBufferDiscr::createWithScreenImage(grabOf(picture))->encodeWithCoder(archiver, spooler);
        return archiver.bytes().size();
    }();
    EXPECT_LT(QFile(m_manager.tempVideoPathfile()).size(), one + 300);
    const auto first = m_manager.getBufferVideoFrame();
    ASSERT_TRUE(first);
    for (int i = 1; i < 3; ++i) {
        const auto next = m_manager.getBufferVideoFrame();
        ASSERT_TRUE(next);
        EXPECT_EQ(next->timestamp(), static_cast<std::uint64_t>(3000 * i));
        EXPECT_EQ(next->recordPicture(), first->recordPicture());
    }
    EXPECT_TRUE(first->recordImage());
}

TEST_F(BufferMgrTest, AWholePictureStandsAtLeastEveryTwoSeconds)
{
    const QImage picture = noisePicture({ 320, 200 }, 4);
    const auto twoSeconds = static_cast<std::uint64_t>(2 * PKTimebase);
    for (const std::uint64_t time :
         { std::uint64_t { 0 }, twoSeconds - 1, twoSeconds, 2 * twoSeconds - 1, 2 * twoSeconds })
        push(picture, time);
    std::vector<std::shared_ptr<const JpegPicture>> pictures;
    while (const auto record = m_manager.getBufferVideoFrame())
        pictures.push_back(record->recordPicture());
    ASSERT_EQ(pictures.size(), 5U);
    EXPECT_EQ(pictures[0], pictures[1]);
    EXPECT_NE(pictures[1], pictures[2]);
    EXPECT_EQ(pictures[2], pictures[3]);
    EXPECT_NE(pictures[3], pictures[4]);
}

TEST_F(BufferMgrTest, BehindAPauseAPictureStandsWholeAndIsAKeyFrame)
{
    const QImage picture = noisePicture({ 320, 200 }, 1);
    for (const std::uint64_t ticks : { 1000U, 2000U, 3000U, 4000U }) {
        const auto record = VNBufferDiscr::createWithScreenImage(grabOf(picture));
        record->setBufferTimestamp(ticks);
        record->setFollowsPause(ticks == 3000);
        m_manager.pushRecordBuffer(*record);
    }
    const auto sizes = m_manager.recordSizes();
    ASSERT_EQ(sizes.size(), 4U);
    EXPECT_LT(sizes[1].second, sizes[0].second / 10) << "nothing has changed";
    EXPECT_GE(sizes[2].second, sizes[0].second);
    EXPECT_LT(sizes[3].second, sizes[0].second / 10);
    for (const bool isKey : { false, false, true, false }) {
        const auto record = m_manager.getBufferVideoFrame();
        ASSERT_TRUE(record);
        EXPECT_EQ(record->followsPause(), isKey) << record->timestamp();
        const auto frame = record->getVideoFrameWithLogoContext(nullptr, {});
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->isKey(), isKey) << record->timestamp();
    }
}

TEST_F(BufferMgrTest, ADamagedBlockCostsItselfAndTheMarksBehindIt)
{
    const QImage picture = noisePicture({ 320, 200 }, 4);
    push(noisePicture({ 320, 200 }, 3), 0);
    push(picture, 1000);
    push(picture, 2000);
    push(noisePicture({ 320, 200 }, 5), 3000);
    m_manager.endVideoRecord();
    m_manager.setExit(true);
    const auto first = m_manager.popRecordBuffer();
    ASSERT_TRUE(first);
    {
        // Overwrites the start of the second block.
        QFile file(m_manager.tempVideoPathfile());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        const QByteArray all = file.readAll();
        const qsizetype second = all.indexOf(QByteArray("mMouseLocation"), all.indexOf("mMouseLocation") + 1);
        file.seek(second - 8);
        file.write(QByteArray(64, '\xFF'));
    }
    const auto next = m_manager.popRecordBuffer();
    ASSERT_TRUE(next);
    // The mark at 2000 has no picture to stand for; the record itself is readable.
    EXPECT_EQ(next->timestamp(), 2000U);
    EXPECT_FALSE(next->recordImage());
    const auto last = m_manager.popRecordBuffer();
    ASSERT_TRUE(last);
    EXPECT_EQ(last->timestamp(), 3000U);
    EXPECT_TRUE(last->recordImage());
    EXPECT_FALSE(m_manager.popRecordBuffer());
    EXPECT_EQ(m_manager.skippedBlockCount(), 1U);
    EXPECT_EQ(logged().size(), 1);
}

TEST_F(BufferMgrTest, AudioChunksOfAllSizesComeBackBitForBit)
{
    std::vector<QByteArray> chunks;
    for (const qsizetype size : { 0, 1, 16, 3840, 19200, 100'000 }) {
        chunks.push_back(randomBytes(size, static_cast<quint32>(size)));
        chunks.push_back(QByteArray(size, '\0'));
    }
    for (const QByteArray &samples : chunks)
        m_manager.pushAudioBuffer(chunkOf(samples));
    m_manager.endAudioRecord();
    m_manager.setExit(true);
    for (const QByteArray &samples : chunks)
        EXPECT_EQ(samplesOf(m_manager.popAudioBuffer()), samples);
}

/// The two spools at once, from several threads, with consumers that follow.
TEST_F(BufferMgrTest, ProducersAndConsumersMayRunAtOnce)
{
    constexpr int count = 60;
    std::jthread video([this] {
        for (int i = 0; i < count; ++i)
            push(noisePicture({ 64, 64 }, static_cast<std::uint32_t>(i)), static_cast<std::uint64_t>(i));
    });
    std::jthread audio([this] {
        for (int i = 0; i < count; ++i)
            m_manager.pushAudioBuffer(chunkOf(QByteArray::number(i)));
    });
    const std::jthread videoConsumer([this] {
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(timestampOf(m_manager.popRecordBuffer()), static_cast<std::uint64_t>(i));
    });
    const std::jthread audioConsumer([this] {
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(samplesOf(m_manager.popAudioBuffer()), QByteArray::number(i));
    });
    video.join();
    audio.join();
    m_manager.setExit(true); // a consumer that missed something would wait for ever
}

/// One spool without pictures, to reach the 16 MiB mark exactly.
class SpoolStreamTest : public CaptureTest
{
protected:
    SpoolStreamTest() { open(); }
    void open()
    {
        QFile::remove(m_path);
        onQueue([this] { m_stream.open(SpoolFile::create(AT_FDCWD, QFile::encodeName(m_path)), nullptr); });
    }
    void onQueue(const std::function<void()> &block) { m_stream.queue().sync(block); }
    void append(const QByteArray &block)
    {
        onQueue([&] { m_stream.append(block, 0, false); });
    }
    std::optional<SpoolStream::Block> take()
    {
        std::optional<SpoolStream::Block> block;
        onQueue([&] { block = m_stream.takeOldest(); });
        return block;
    }
    std::optional<QByteArray> takeBytes()
    {
        const auto block = take();
        return block ? std::optional(block->bytes) : std::nullopt;
    }
    std::optional<std::uint64_t> takeLength()
    {
        const auto block = take();
        return block ? std::optional(block->entry.length()) : std::nullopt;
    }

    QString m_path = m_cacheHome.filePath("spool");
    SpoolStream m_stream { "test", SpoolKind::Video };
};

TEST_F(SpoolStreamTest, BlocksLieBehindOneAnotherFromZero)
{
    std::uint64_t expected = 0;
    for (const qsizetype size : { 5, 100, 0, 70'000 })
        append(QByteArray(size, 'a'));
    for (const qsizetype size : { 5, 100, 0, 70'000 }) {
        const auto block = take();
        ASSERT_TRUE(block);
        EXPECT_EQ(block->entry.offset(), expected);
        EXPECT_EQ(block->entry.length(), static_cast<std::uint64_t>(size));
        expected += static_cast<std::uint64_t>(size);
    }
    EXPECT_FALSE(take());
}

TEST_F(SpoolStreamTest, AnEntrySaysWhetherItsBlockIsCompressed)
{
    for (const bool compressed : { true, false, true }) {
        onQueue([&] { m_stream.append("block", 7, compressed); });
        const auto block = take();
        ASSERT_TRUE(block);
        EXPECT_EQ(block->entry.isCompressed(), compressed);
        EXPECT_EQ(block->entry.timeStamp(), 7);
    }
}

TEST_F(SpoolStreamTest, OpeningBeginsAgainAtZeroAndLeavesTheIndex)
{
    append(QByteArray(SpoolStream::flushLength, 'a')); // flushed: the next lies behind it in the file
    append("in memory");
    open();
    EXPECT_EQ(QFile(m_path).size(), 0);
    append("new");
    onQueue([this] { EXPECT_EQ(m_stream.index().count(), 3U); });
    onQueue([this] { m_stream.end(); });
    EXPECT_EQ(QFile(m_path).size(), 3);
    EXPECT_EQ(takeLength(), static_cast<std::uint64_t>(SpoolStream::flushLength));
    EXPECT_EQ(takeLength(), 9U);
    const auto block = take();
    ASSERT_TRUE(block);
    EXPECT_EQ(block->entry.offset(), 0U);
    EXPECT_EQ(block->bytes, "new");
}

TEST_F(SpoolStreamTest, ABlockThatEndsAtTheMarkIsFlushed)
{
    const QByteArray first = randomBytes(1000, 1);
    const QByteArray second = randomBytes(SpoolStream::flushLength - 1000, 2);
    append(first);
    EXPECT_EQ(QFile(m_path).size(), 0);
    append(second);
    EXPECT_EQ(QFile(m_path).size(), SpoolStream::flushLength);
    const QByteArray third = randomBytes(3000, 3);
    append(third);
    EXPECT_EQ(takeBytes(), first);
    EXPECT_EQ(takeBytes(), second);
    const auto block = take();
    ASSERT_TRUE(block);
    EXPECT_EQ(block->entry.offset(), static_cast<std::uint64_t>(SpoolStream::flushLength));
    EXPECT_EQ(block->bytes, third);
}

TEST_F(SpoolStreamTest, AfterTheEndEverythingIsReadFromTheFile)
{
    std::vector<QByteArray> blocks;
    for (quint32 i = 0; i < 5; ++i)
        blocks.push_back(randomBytes(4'500'000, i));
    for (const QByteArray &block : blocks)
        append(block);
    onQueue([this] { m_stream.end(); });
    EXPECT_EQ(QFile(m_path).size(), 5 * 4'500'000);
    for (const QByteArray &block : blocks)
        EXPECT_EQ(takeBytes(), block);
}

TEST_F(SpoolStreamTest, AFullFileSystemLosesNothingThatWasSpooled)
{
    // A limit on the size of files stands in for a full file system: a write beyond it fails.
    rlimit before {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = before;
    limit.rlim_cur = static_cast<rlim_t>(SpoolStream::flushLength) * 3 / 2;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);

    std::vector<QByteArray> blocks;
    for (quint32 i = 0; i < 9; ++i)
        blocks.push_back(randomBytes(SpoolStream::flushLength / 4, i));
    for (const QByteArray &block : blocks)
        append(block);
    EXPECT_TRUE(m_stream.writeFailed());
    onQueue([this] { m_stream.end(); });
    for (const QByteArray &block : blocks) {
        const auto taken = take();
        ASSERT_TRUE(taken);
        EXPECT_EQ(taken->bytes, block);
    }
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
}

} // namespace
} // namespace vornic
