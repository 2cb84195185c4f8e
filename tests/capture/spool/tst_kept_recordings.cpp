#include "base/PKTimebase.h"
#include "base/keyed_archive.h"
#include "capture/spool/journal_format.h"
#include "capture/spool/pointer_shape_archive.h"
#include "capture/spool/recording_description.h"
#include "display/display_backend.h"
#include "kept_recording_fixture.h"
#include "support/file_size_limit.h"
#include "support/wait_until.h"

#include <dlfcn.h>

#include <algorithm>
#include <atomic>

namespace {

std::atomic<bool> writesAreHeld = false;
std::atomic<bool> aWriteIsHeld = false;
std::atomic<bool> aFinishedJournalIsSynced = false;
std::atomic<bool> syncsAreHeld = false;
std::atomic<bool> aSyncIsHeld = false;

} // namespace

/// Stands before the system's, so that a test can hold the spool's writes as a slow disk does.
extern "C" ssize_t pwrite(int file, const void *bytes, std::size_t count, off_t offset)
{
    if (writesAreHeld) {
        aWriteIsHeld = true;
        writesAreHeld.wait(true);
    }
    using Function = ssize_t (*)(int, const void *, std::size_t, off_t);
    static const auto systems = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "pwrite"));
    return systems(file, bytes, count, offset);
}

/// The same for its syncs, and so that a test knows what was synced.
extern "C" int fdatasync(int file)
{
    if (syncsAreHeld) {
        aSyncIsHeld = true;
        syncsAreHeld.wait(true);
    }
    QFile synced(QStringLiteral("/proc/self/fd/%1").arg(file));
    if (synced.open(QIODevice::ReadOnly) && vornic::readJournal(synced.readAll()).isFinished)
        aFinishedJournalIsSynced = true;
    using Function = int (*)(int);
    static const auto systems = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "fdatasync"));
    return systems(file);
}

namespace vornic {
namespace {

using test::waitUntil;
using Timestamps = std::vector<std::uint64_t>;

class KeptRecordings : public KeptRecordingTest
{
protected:
    /// What comes out of the recording that is open, to its end.
    [[nodiscard]] static Timestamps popPictures(VNBufferMgr &manager)
    {
        Timestamps timestamps;
        while (const auto record = manager.popRecordBuffer())
            timestamps.push_back(record->recordImage() ? record->timestamp() : ~0ULL);
        return timestamps;
    }
    [[nodiscard]] static QByteArrayList popSound(VNBufferMgr &manager)
    {
        QByteArrayList chunks;
        while (const auto chunk = manager.popAudioBuffer())
            chunks.push_back(chunk->data());
        return chunks;
    }
    [[nodiscard]] bool open(const QString &id) { return m_manager.openRecording(id, m_whyNot); }

    VNBufferMgr m_manager { 0 };
    QString m_whyNot;
};

TEST_F(KeptRecordings, WhatIsDeletedIsKnownToBeNothingBeforeItGoes)
{
    m_manager.readyToRecord();
    describe(m_manager);
    push(m_manager, 1, 0);
    m_manager.endVideoRecord();
    aFinishedJournalIsSynced = false;
    m_manager.clear();
    // A loss of power from here on leaves either nothing, or a journal that says so.
    EXPECT_TRUE(aFinishedJournalIsSynced);
}

TEST_F(KeptRecordings, WhatIsPushedIsSoonInTheFilesWithoutAnEnd)
{
    m_manager.readyToRecord();
    describe(m_manager);
    push(m_manager, 1, 0);
    push(m_manager, "abcd");
    const QString id = m_manager.recordingId();
    EXPECT_TRUE(
        waitUntil([&] { return journalOf(id).video.size() == 1 && journalOf(id).audio.size() == 1; }));
    push(m_manager, 2, 3000);
    ASSERT_TRUE(waitUntil([&] { return journalOf(id).video.size() == 2; }));
    const JournalContents contents = journalOf(id);
    EXPECT_TRUE(contents.description);
    EXPECT_EQ(QFile(m_manager.tempVideoPathfile()).size(),
              static_cast<qint64>(contents.video.back().offset() + contents.video.back().length()));
}

TEST_F(KeptRecordings, WhatIsOnItsWayToTheDiskCanBeRead)
{
    m_manager.readyToRecord();
    describe(m_manager);
    push(m_manager, 1, 0);
    ASSERT_TRUE(waitUntil([&] { return journalOf(m_manager.recordingId()).video.size() == 1; }));
    writesAreHeld = true;
    push(m_manager, 2, 3000);
    EXPECT_TRUE(waitUntil([] { return aWriteIsHeld.load(); }));
    push(m_manager, 3, 6000);
    m_manager.setExit(true);
    EXPECT_EQ(popPictures(m_manager), (Timestamps { 0, 3000, 6000 }));
    writesAreHeld = false;
    writesAreHeld.notify_all();
    m_manager.endVideoRecord();
    m_manager.rewind();
    EXPECT_EQ(popPictures(m_manager), (Timestamps { 0, 3000, 6000 }));
    EXPECT_EQ(m_manager.skippedBlockCount(), 0U);
}

TEST_F(KeptRecordings, AreReadAsTheyWerePushed)
{
    const QString id = left();
    ASSERT_TRUE(open(id)) << m_whyNot.toStdString();
    EXPECT_EQ(m_manager.recordingId(), id);
    EXPECT_TRUE(m_manager.exit());
    EXPECT_EQ(m_manager.recordRect(), QRectF(QPointF(0, 0), pictureSize));
    ASSERT_TRUE(m_manager.muxerContext());
    EXPECT_EQ(m_manager.muxerContext()->filename(), "/nowhere/movie.mp4");
    EXPECT_EQ(m_manager.recordBufferCount(), 5U);
    EXPECT_EQ(m_manager.lastBufferTimestamp(), 12000);
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(popPictures(m_manager), (Timestamps { 0, 3000, 6000, 9000, 12000 }));
        EXPECT_EQ(popSound(m_manager), (QByteArrayList { "0", "1", "2", "3", "4" }));
        m_manager.rewind();
    }
    EXPECT_EQ(m_manager.skippedBlockCount(), 0U);
}

TEST_F(KeptRecordings, TellAtOnceWhereTheirMovieIsWritten)
{
    const QString id = left();
    ASSERT_TRUE(open(id));
    m_manager.setMuxerContext(std::make_shared<PKMuxerContext>("/elsewhere/movie.mp4"));
    EXPECT_EQ(journalOf(id).description->movie->filename(), "/elsewhere/movie.mp4");
}

TEST_F(KeptRecordings, StayWhenTheyAreKeptAndGoWhenTheyAreCleared)
{
    const QString id = left();
    ASSERT_TRUE(open(id));
    m_manager.keep();
    EXPECT_EQ(m_manager.recordingId(), QString());
    EXPECT_TRUE(QFile::exists(pathOf(id)));
    ASSERT_TRUE(open(id)) << m_whyNot.toStdString();
    m_manager.clear();
    EXPECT_FALSE(QFile::exists(pathOf(id)));
    EXPECT_FALSE(open(id));
    EXPECT_EQ(m_whyNot, QStringLiteral("There is no recording %1.").arg(id));
}

TEST_F(KeptRecordings, CanBeOpenedAtOnceHoweverLongTheDiskSyncs)
{
    VNBufferMgr running(0);
    running.readyToRecord();
    describe(running);
    syncsAreHeld = true;
    push(running, 1, 0);
    const QString id = running.recordingId();
    EXPECT_TRUE(waitUntil([] { return aSyncIsHeld.load(); }));
    EXPECT_FALSE(open(id));
    running.keep();
    const bool isOpen = open(id);
    syncsAreHeld = false;
    syncsAreHeld.notify_all();
    ASSERT_TRUE(isOpen) << qPrintable(m_whyNot);
    EXPECT_EQ(popPictures(m_manager), Timestamps { 0 });
}

TEST_F(KeptRecordings, AreNotTouchedByANewOne)
{
    const QString id = left();
    const QByteArray video = bytesOf(pathOf(id, RecordingFolder::videoName));
    const QByteArray journal = bytesOf(pathOf(id, RecordingFolder::journalName));
    m_manager.readyToRecord();
    push(m_manager, 7, 0);
    m_manager.endVideoRecord();
    m_manager.clear();
    EXPECT_EQ(bytesOf(pathOf(id, RecordingFolder::videoName)), video);
    EXPECT_EQ(bytesOf(pathOf(id, RecordingFolder::journalName)), journal);
}

TEST_F(KeptRecordings, OneThatRunsIsNotOpened)
{
    VNBufferMgr running(0);
    running.readyToRecord();
    push(running, 1, 0);
    EXPECT_FALSE(open(running.recordingId()));
    EXPECT_EQ(m_whyNot,
              QStringLiteral("The recording %1 is in use by another Vornic.").arg(running.recordingId()));
    EXPECT_EQ(m_manager.recordBufferCount(), 0U);
}

/// The journal's shape stands for what another process had at that index.
TEST_F(KeptRecordings, PointersHaveTheShapesOfTheProcessThatRecorded)
{
    m_display->setCursorShape(
        { test::noisePicture({ 9, 9 }, 1).convertToFormat(QImage::Format_ARGB32_Premultiplied), {} });
    const QString id = left(2);
    const CursorShape theirs {
        test::noisePicture({ 11, 13 }, 2).convertToFormat(QImage::Format_ARGB32_Premultiplied), QPoint(4, 2)
    };
    const QByteArray journal = bytesOf(pathOf(id, RecordingFolder::journalName));
    QByteArray changed;
    qsizetype position = 0;
    int shapes = 0;
    while (const auto record = nextJournalRecord(journal, position)) {
        QByteArray payload = record->payload.toByteArray();
        if (record->kind == JournalKind::PointerShape) {
            payload = pointerShapeArchive(pointerShapeFromArchive(payload)->first, theirs);
            ++shapes;
        }
        changed += journalRecord(record->kind, payload);
        position = record->end;
    }
    ASSERT_EQ(shapes, 1);
    setBytes(pathOf(id, RecordingFolder::journalName), changed);
    ASSERT_TRUE(open(id));
    for (int i = 0; i < 2; ++i) {
        const auto record = m_manager.popRecordBuffer();
        ASSERT_TRUE(record);
        const auto shape = record->cursorShape();
        ASSERT_TRUE(shape);
        EXPECT_EQ(*shape, theirs);
    }
}

TEST_F(KeptRecordings, APointerWhoseShapeIsLostHasNone)
{
    m_display->setCursorShape(
        { test::noisePicture({ 9, 9 }, 1).convertToFormat(QImage::Format_ARGB32_Premultiplied), {} });
    const QString id = left(1);
    QByteArray journal = bytesOf(pathOf(id, RecordingFolder::journalName));
    qsizetype position = 0;
    while (const auto record = nextJournalRecord(journal, position)) {
        position = record->end;
        if (record->kind == JournalKind::PointerShape)
            journal[position - 1] = static_cast<char>(~journal[position - 1]);
    }
    setBytes(pathOf(id, RecordingFolder::journalName), journal);
    ASSERT_TRUE(open(id));
    const auto record = m_manager.popRecordBuffer();
    ASSERT_TRUE(record);
    EXPECT_TRUE(record->recordImage());
    EXPECT_FALSE(record->cursorShape());
}

TEST_F(KeptRecordings, ATurnedByteCostsItsPicture)
{
    const QString id = left();
    damage(id, 2);
    ASSERT_TRUE(open(id));
    const Timestamps popped = popPictures(m_manager);
    EXPECT_EQ(std::ranges::count(popped, 6000U), 0);
    EXPECT_EQ(popped.front(), 0U);
    EXPECT_EQ(popped.back(), 12000U);
    EXPECT_EQ(m_manager.skippedBlockCount(), 1U);
    EXPECT_EQ(popSound(m_manager).size(), 5);
}

TEST_F(KeptRecordings, OfASpoolThatWasCutOffTheStartIsThere)
{
    const QString id = left();
    const VNDataBlock third = journalOf(id).video.at(2);
    ASSERT_TRUE(QFile::resize(pathOf(id, RecordingFolder::videoName),
                              static_cast<qint64>(third.offset() + third.length() - 1)));
    ASSERT_TRUE(open(id));
    EXPECT_EQ(popPictures(m_manager), (Timestamps { 0, 3000 }));
    EXPECT_EQ(m_manager.skippedBlockCount(), 3U);
    EXPECT_EQ(popSound(m_manager).size(), 5);
}

TEST_F(KeptRecordings, EntriesThatAreLostCostTheirPictures)
{
    const QString id = left();
    QByteArray journal = bytesOf(pathOf(id, RecordingFolder::journalName));
    qsizetype position = 0;
    int videoBlocks = 0;
    while (const auto record = nextJournalRecord(journal, position)) {
        position = record->end;
        const auto block
            = record->kind == JournalKind::Block ? blockFromPayload(record->payload) : std::nullopt;
        if (block && block->first == SpoolKind::Video && ++videoBlocks == 2)
            journal[position - 1] = static_cast<char>(~journal[position - 1]);
    }
    setBytes(pathOf(id, RecordingFolder::journalName), journal);
    ASSERT_TRUE(open(id));
    const Timestamps popped = popPictures(m_manager);
    EXPECT_EQ(popped.front(), 0U);
    EXPECT_EQ(popped.back(), 12000U);
    EXPECT_EQ(std::ranges::count(popped, 3000U), 0);
    EXPECT_EQ(m_manager.skippedBlockCount(), 1U);
}

TEST_F(KeptRecordings, WithoutItsPicturesARecordingIsRefusedAndStays)
{
    const QString id = left();
    const QByteArray audio = bytesOf(pathOf(id, RecordingFolder::audioName));
    ASSERT_TRUE(QFile::remove(pathOf(id, RecordingFolder::videoName)));
    EXPECT_FALSE(open(id));
    EXPECT_EQ(m_whyNot, QStringLiteral("The recording %1 cannot be read: its pictures are missing.").arg(id));
    EXPECT_EQ(bytesOf(pathOf(id, RecordingFolder::audioName)), audio);
    EXPECT_EQ(m_manager.recordingId(), QString());
}

TEST_F(KeptRecordings, WithoutItsSoundThePicturesAreThere)
{
    const QString id = left();
    ASSERT_TRUE(QFile::remove(pathOf(id, RecordingFolder::audioName)));
    ASSERT_TRUE(open(id));
    EXPECT_EQ(popPictures(m_manager).size(), 5U);
    EXPECT_EQ(popSound(m_manager), QByteArrayList());
}

TEST_F(KeptRecordings, WithoutItsJournalARecordingIsRefusedAndStays)
{
    const QString id = left();
    const QByteArray video = bytesOf(pathOf(id, RecordingFolder::videoName));
    ASSERT_TRUE(QFile::remove(pathOf(id, RecordingFolder::journalName)));
    EXPECT_FALSE(open(id));
    EXPECT_EQ(m_whyNot,
              QStringLiteral("The recording %1 cannot be read: its journal is missing or damaged.").arg(id));
    EXPECT_EQ(bytesOf(pathOf(id, RecordingFolder::videoName)), video);
}

TEST_F(KeptRecordings, AJournalThatTakesNoMoreIsTold)
{
    m_manager.readyToRecord();
    describe(m_manager);
    ASSERT_TRUE(waitUntil([&] { return journalOf(m_manager.recordingId()).description.has_value(); }));
    EXPECT_FALSE(m_manager.writeFailed());
    {
        const test::FileSizeLimit limit(0);
        push(m_manager, 1, 0);
        EXPECT_TRUE(waitUntil([&] { return m_manager.writeFailed(); }));
    }
    m_manager.setExit(true);
    EXPECT_EQ(popPictures(m_manager), Timestamps { 0 });
}

TEST_F(KeptRecordings, WhatAFullDiskRefusedIsWrittenOnceThereIsRoom)
{
    m_manager.readyToRecord();
    describe(m_manager);
    const QString id = m_manager.recordingId();
    push(m_manager, 1, 0);
    ASSERT_TRUE(waitUntil([&] { return journalOf(id).video.size() == 1; }));
    {
        const test::FileSizeLimit limit(1);
        push(m_manager, 2, 3000);
        ASSERT_TRUE(waitUntil([&] { return m_manager.writeFailed(); }));
        push(m_manager, 3, 6000);
    }
    m_manager.keep();
    ASSERT_TRUE(open(id));
    EXPECT_EQ(popPictures(m_manager), (Timestamps { 0, 3000, 6000 }));
    EXPECT_EQ(m_manager.skippedBlockCount(), 0U);
}

TEST_F(KeptRecordings, AFolderThatIsRemovedMeanwhileCostsNothingToTheProcessThatRecords)
{
    m_manager.readyToRecord();
    describe(m_manager);
    push(m_manager, 1, 0);
    push(m_manager, "abcd");
    ASSERT_TRUE(waitUntil([&] { return journalOf(m_manager.recordingId()).video.size() == 1; }));
    ASSERT_TRUE(QDir(cache()).removeRecursively());
    push(m_manager, 2, 3000);
    m_manager.endVideoRecord();
    m_manager.endAudioRecord();
    m_manager.setExit(true);
    EXPECT_EQ(popPictures(m_manager), (Timestamps { 0, 3000 }));
    EXPECT_EQ(popSound(m_manager), QByteArrayList { "abcd" });
}

} // namespace
} // namespace vornic
