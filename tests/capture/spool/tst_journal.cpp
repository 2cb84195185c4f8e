#include "base/keyed_archive.h"
#include "base/log.h"
#include "capture/spool/journal.h"
#include "capture/spool/journal_contents.h"
#include "capture/spool/journal_format.h"
#include "capture/spool/pointer_shape_archive.h"
#include "capture/spool/recording_description.h"
#include "capture/spool/spool_file.h"
#include "display/display_backend.h"
#include "support/file_size_limit.h"
#include "support/test_pictures.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>
#include <QtEndian>

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace vornic {
namespace {

RecordingDescription someDescription()
{
    RecordingDescription description;
    description.start = QDateTime(QDate(2026, 3, 17), QTime(14, 5, 6, 789), QTimeZone::utc());
    description.monotonicStart = 1234.5;
    description.rectangle = QRectF(10.5, 20, 640, 480);
    description.isPart = true;
    description.quality = 1;
    PKMuxerContext movie(QStringLiteral("/home/me/Ünïcode.mp4"), PKMuxerContext::formatMp4);
    movie.setWidth(640);
    movie.setHeight(480);
    movie.setVideoCodecID(PKMuxerContext::videoCodecH264);
    movie.setFrameRate(29.97);
    movie.setVideoBitrate(4'000'000);
    movie.setAudioCodecID(PKMuxerContext::audioCodecAac);
    movie.setSamplerate(48000);
    movie.setNumberOfChannels(2);
    movie.setAudioTracks({ QStringLiteral("Mikrofon (Büro)"), QStringLiteral("System") });
    movie.setSampleFormat(PKMuxerContext::sampleFormatSigned16);
    description.movie = movie;
    return description;
}

CursorShape shapeOf(QSize size, std::uint32_t seed)
{
    const QImage picture = test::noisePicture(size, seed);
    return { picture.convertToFormat(QImage::Format_ARGB32_Premultiplied), QPoint(3, 5) };
}

VNDataBlock blockAt(std::uint64_t offset, std::uint64_t length)
{
    VNDataBlock block(offset, length);
    block.setTimeStamp(static_cast<std::int64_t>(offset) * 10);
    block.setChecksum(offset * 7 + length);
    block.setIsCompressed(offset % 2 == 1);
    return block;
}

QByteArray recordOf(const RecordingDescription &description)
{
    return journalRecord(JournalKind::Description, archivedData(description));
}

QByteArray recordOf(SpoolKind spool, const VNDataBlock &block)
{
    return journalRecord(JournalKind::Block, blockPayload(spool, block));
}

QByteArray recordOf(std::uint64_t index, const CursorShape &shape)
{
    return journalRecord(JournalKind::PointerShape, pointerShapeArchive(index, shape));
}

std::vector<std::uint64_t> offsetsOf(const std::vector<VNDataBlock> &blocks)
{
    std::vector<std::uint64_t> offsets;
    for (const VNDataBlock &block : blocks)
        offsets.push_back(block.offset());
    return offsets;
}

TEST(Journal, AnEmptyOneSaysNothing)
{
    const JournalContents contents = readJournal({});
    EXPECT_FALSE(contents.description);
    EXPECT_TRUE(contents.pointerShapes.empty());
    EXPECT_TRUE(contents.video.empty());
    EXPECT_TRUE(contents.audio.empty());
    EXPECT_FALSE(contents.isFinished);
}

TEST(Journal, ADescriptionComesBackWhole)
{
    const RecordingDescription written = someDescription();
    const auto read = readJournal(recordOf(written)).description;
    ASSERT_TRUE(read);
    EXPECT_EQ(read->start, written.start);
    EXPECT_EQ(read->monotonicStart, written.monotonicStart);
    EXPECT_EQ(read->rectangle, written.rectangle);
    EXPECT_EQ(read->isPart, written.isPart);
    EXPECT_EQ(read->quality, written.quality);
    ASSERT_TRUE(read->movie);
    EXPECT_EQ(read->movie->filename(), written.movie->filename());
    EXPECT_EQ(read->movie->format(), written.movie->format());
    EXPECT_EQ(read->movie->width(), written.movie->width());
    EXPECT_EQ(read->movie->height(), written.movie->height());
    EXPECT_EQ(read->movie->videoCodecID(), written.movie->videoCodecID());
    EXPECT_EQ(read->movie->frameRate(), written.movie->frameRate());
    EXPECT_EQ(read->movie->videoBitrate(), written.movie->videoBitrate());
    EXPECT_EQ(read->movie->audioCodecID(), written.movie->audioCodecID());
    EXPECT_EQ(read->movie->samplerate(), written.movie->samplerate());
    EXPECT_EQ(read->movie->numberOfChannels(), written.movie->numberOfChannels());
    EXPECT_EQ(read->movie->audioTracks(), written.movie->audioTracks());
    EXPECT_EQ(read->movie->sampleFormat(), written.movie->sampleFormat());
}

TEST(Journal, TheLastDescriptionCounts)
{
    RecordingDescription first;
    first.quality = 1;
    RecordingDescription second;
    second.quality = 2;
    EXPECT_EQ(readJournal(recordOf(first) + recordOf(second)).description->quality, 2);
    EXPECT_FALSE(readJournal(recordOf(first)).description->movie);
}

TEST(Journal, ADescriptionOfAnotherVersionIsNotUnderstood)
{
    KeyedArchiver archiver;
    archiver.encodeInt32(QLatin1StringView("version"), 2);
    const QByteArray later = journalRecord(JournalKind::Description, archiver.bytes());
    EXPECT_FALSE(readJournal(later).description);
    EXPECT_TRUE(readJournal(recordOf(someDescription()) + later).description);
}

TEST(Journal, PointerShapesComeBackUnderTheirIndexes)
{
    const CursorShape arrow = shapeOf({ 24, 25 }, 1);
    const CursorShape hand = shapeOf({ 7, 3 }, 2);
    const auto shapes = readJournal(recordOf(5, arrow) + recordOf(~0ULL, hand)).pointerShapes;
    ASSERT_EQ(shapes.size(), 2U);
    EXPECT_EQ(*shapes.at(5), arrow);
    EXPECT_EQ(*shapes.at(~0ULL), hand);
}

TEST(Journal, APointerShapeThatNobodyCanHaveIsLeftOut)
{
    EXPECT_TRUE(pointerShapeFromArchive(pointerShapeArchive(1, shapeOf({ 1024, 4 }, 1))));
    EXPECT_FALSE(pointerShapeFromArchive(pointerShapeArchive(1, shapeOf({ 1025, 4 }, 1))));
    EXPECT_FALSE(pointerShapeFromArchive(pointerShapeArchive(1, CursorShape())));
    EXPECT_FALSE(pointerShapeFromArchive("no archive"));
}

TEST(Journal, APictureThatClaimsToBeLargerIsNotMadeRoomFor)
{
    const CursorShape shape = shapeOf({ 16, 16 }, 1);
    const QByteArray archive = pointerShapeArchive(1, shape);
    const QByteArray length = QByteArray::fromHex("00000400"); // what the compressed pixels begin with
    ASSERT_EQ(archive.count(length), 1);
    QByteArray lying = archive;
    lying.replace(length, QByteArray::fromHex("7fffffff"));
    EXPECT_TRUE(pointerShapeFromArchive(archive));
    EXPECT_FALSE(pointerShapeFromArchive(lying));
}

TEST(Journal, EntriesComeBackSpoolBySpool)
{
    const QByteArray journal = recordOf(SpoolKind::Video, blockAt(0, 100))
        + recordOf(SpoolKind::Audio, blockAt(0, 11)) + recordOf(SpoolKind::Video, blockAt(100, 0))
        + recordOf(SpoolKind::Audio, blockAt(11, 5)) + recordOf(SpoolKind::Video, blockAt(100, 7));
    const JournalContents contents = readJournal(journal);
    EXPECT_EQ(offsetsOf(contents.video), (std::vector<std::uint64_t> { 0, 100, 100 }));
    ASSERT_EQ(contents.audio.size(), 2U);
    const VNDataBlock written = blockAt(11, 5);
    const VNDataBlock &read = contents.audio.back();
    EXPECT_EQ(read.offset(), written.offset());
    EXPECT_EQ(read.length(), written.length());
    EXPECT_EQ(read.timeStamp(), written.timeStamp());
    EXPECT_EQ(read.checksum(), written.checksum());
    EXPECT_TRUE(read.isCompressed());
    EXPECT_FALSE(contents.audio.front().isCompressed());
    EXPECT_FALSE(read.isLost());
}

TEST(Journal, ALostBlockStandsForMissingEntries)
{
    const JournalContents contents = readJournal(recordOf(SpoolKind::Video, blockAt(50, 10))
                                                 + recordOf(SpoolKind::Video, blockAt(100, 10)));
    ASSERT_EQ(offsetsOf(contents.video), (std::vector<std::uint64_t> { 0, 50, 60, 100 }));
    EXPECT_TRUE(contents.video[0].isLost());
    EXPECT_FALSE(contents.video[1].isLost());
    EXPECT_TRUE(contents.video[2].isLost());
    EXPECT_EQ(contents.video[2].length(), 40U);
    EXPECT_FALSE(contents.video[3].isLost());
}

TEST(Journal, AnEntryInThePlaceOfAnEarlierOneIsLeftOut)
{
    const QByteArray entry = recordOf(SpoolKind::Audio, blockAt(0, 10));
    const JournalContents contents = readJournal(entry + entry + recordOf(SpoolKind::Audio, blockAt(9, 10)));
    EXPECT_EQ(offsetsOf(contents.audio), std::vector<std::uint64_t> { 0 });
}

TEST(Journal, AnEntryBeyondAnyFileIsLeftOut)
{
    constexpr auto end = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    EXPECT_TRUE(blockFromPayload(blockPayload(SpoolKind::Video, VNDataBlock(end - 1, 1))));
    EXPECT_FALSE(blockFromPayload(blockPayload(SpoolKind::Video, VNDataBlock(end, 1))));
    EXPECT_FALSE(blockFromPayload(blockPayload(SpoolKind::Video, VNDataBlock(end + 1, 0))));
    EXPECT_FALSE(blockFromPayload(blockPayload(SpoolKind::Video, VNDataBlock(1, ~0ULL))));
}

TEST(Journal, AnEntryOfNoSpoolIsLeftOut)
{
    const QByteArray payload = blockPayload(SpoolKind::Audio, blockAt(0, 10));
    ASSERT_TRUE(blockFromPayload(payload));
    QByteArray other = payload;
    other[0] = 2;
    EXPECT_FALSE(blockFromPayload(other));
    other = payload;
    other[1] = 2; // flags
    EXPECT_FALSE(blockFromPayload(other));
    EXPECT_FALSE(blockFromPayload(payload + 'x'));
    EXPECT_FALSE(blockFromPayload(payload.chopped(1)));
}

/// A journal of all kinds of records.
QList<QByteArray> someRecords()
{
    return { recordOf(someDescription()),
             recordOf(0, shapeOf({ 8, 8 }, 1)),
             recordOf(SpoolKind::Video, blockAt(0, 100)),
             recordOf(SpoolKind::Audio, blockAt(0, 100)),
             recordOf(SpoolKind::Video, blockAt(100, 100)),
             journalRecord(JournalKind::Finished, {}) };
}

/// How many of someRecords() have been understood.
std::size_t understood(const JournalContents &contents)
{
    const auto whole = [](const VNDataBlock &block) { return !block.isLost(); };
    return (contents.description ? 1U : 0U) + contents.pointerShapes.size()
        + static_cast<std::size_t>(std::ranges::count_if(contents.video, whole))
        + static_cast<std::size_t>(std::ranges::count_if(contents.audio, whole))
        + (contents.isFinished ? 1U : 0U);
}

TEST(Journal, ATornTailCostsTheRecordThatItTearsWhereverThatIs)
{
    const QList<QByteArray> records = someRecords();
    const QByteArray journal = records.join();
    std::size_t whole = 0;
    qsizetype nextEnd = records[0].size();
    for (qsizetype length = 0; length <= journal.size(); ++length) {
        if (length == nextEnd) {
            ++whole;
            nextEnd += static_cast<qsizetype>(whole) < records.size()
                ? records[static_cast<qsizetype>(whole)].size()
                : journal.size();
        }
        ASSERT_EQ(understood(readJournal(QByteArrayView(journal).first(length))), whole) << length;
    }
    EXPECT_EQ(whole, 6U);
}

TEST(Journal, AnyTurnedBitCostsItsRecordAndNoOther)
{
    const QList<QByteArray> records = someRecords();
    for (qsizetype damaged = 0; damaged < records.size(); ++damaged)
        for (qsizetype bit = 0; bit < records[damaged].size() * 8; ++bit) {
            QList<QByteArray> turned = records;
            char &byte = turned[damaged][bit / 8];
            byte = static_cast<char>(byte ^ (1 << bit % 8));
            ASSERT_FALSE(nextJournalRecord(turned[damaged], 0)) << damaged << ' ' << bit;
            ASSERT_EQ(understood(readJournal(turned.join())), 5U) << damaged << ' ' << bit;
        }
}

TEST(Journal, WhatLiesBetweenTheRecordsIsSkipped)
{
    const QByteArray startOfOne = recordOf(SpoolKind::Video, blockAt(0, 100)).first(30);
    EXPECT_EQ(understood(readJournal(someRecords().join(startOfOne))), 6U);
}

TEST(Journal, ALengthThatNoRecordHasIsNotBelieved)
{
    QByteArray record = journalRecord(JournalKind::Finished, QByteArray(maxJournalPayload, 'x'));
    EXPECT_TRUE(nextJournalRecord(record, 0));
    EXPECT_FALSE(
        nextJournalRecord(journalRecord(JournalKind::Finished, QByteArray(maxJournalPayload + 1, 'x')), 0));
    qToLittleEndian(std::numeric_limits<quint32>::max(), record.data() + 8);
    EXPECT_FALSE(nextJournalRecord(record, 0));
}

class JournalFile : public testing::Test
{
protected:
    JournalFile()
    {
        setLogSink([](const QString &) {});
    }
    ~JournalFile() override { setLogSink({}); }

    [[nodiscard]] std::shared_ptr<SpoolFile> file(bool isNew) const
    {
        const QByteArray path = QFile::encodeName(m_folder.filePath("journal"));
        return isNew ? SpoolFile::create(AT_FDCWD, path) : SpoolFile::open(AT_FDCWD, path);
    }
    [[nodiscard]] JournalContents contents() const
    {
        const auto journal = file(false);
        return readJournal(journal->read(0, journal->size()));
    }

    QTemporaryDir m_folder;
};

TEST_F(JournalFile, HoldsWhatWasAddedOnceItIsWritten)
{
    Journal journal(file(true));
    journal.add(someDescription());
    journal.add(4, shapeOf({ 8, 8 }, 1));
    journal.add(SpoolKind::Video, { blockAt(0, 5), blockAt(5, 6) });
    EXPECT_EQ(file(false)->size(), 0U);
    EXPECT_TRUE(journal.write());
    EXPECT_EQ(understood(contents()), 4U);
    EXPECT_FALSE(contents().isFinished);
    journal.add(SpoolKind::Audio, { blockAt(0, 5) });
    journal.finish();
    EXPECT_EQ(understood(contents()), 6U);
    EXPECT_TRUE(contents().isFinished);
}

TEST_F(JournalFile, GivesPointerShapesBackWrittenOrNot)
{
    Journal first(file(true));
    first.add(someDescription());
    ASSERT_TRUE(first.write());
    Journal journal(file(false));
    const auto expectShapes = [&journal](std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto shape = journal.pointerShape(100 + i);
            ASSERT_TRUE(shape) << i;
            EXPECT_EQ(*shape, shapeOf({ 8, 8 }, i));
        }
        EXPECT_FALSE(journal.pointerShape(100 + count));
    };
    journal.add(100, shapeOf({ 8, 8 }, 0));
    journal.add(SpoolKind::Video, { blockAt(0, 5) });
    journal.add(101, shapeOf({ 8, 8 }, 1));
    expectShapes(2);
    ASSERT_TRUE(journal.write());
    expectShapes(2);
    journal.add(102, shapeOf({ 8, 8 }, 2));
    {
        const test::FileSizeLimit limit(file(false)->size() + 10);
        EXPECT_FALSE(journal.write());
        journal.add(103, shapeOf({ 8, 8 }, 3));
        expectShapes(4);
    }
    EXPECT_TRUE(journal.write());
    expectShapes(4);
}

TEST_F(JournalFile, WritesAPointerShapeOnce)
{
    Journal journal(file(true));
    for (const std::uint32_t seed : { 1U, 2U })
        journal.add(4, shapeOf({ 8, 8 }, seed));
    ASSERT_TRUE(journal.write());
    EXPECT_EQ(file(false)->size(), static_cast<std::uint64_t>(recordOf(4, shapeOf({ 8, 8 }, 1)).size()));
}

TEST_F(JournalFile, IsGoneOnWithWhereItEnds)
{
    Journal first(file(true));
    first.add(someDescription());
    ASSERT_TRUE(first.write());
    Journal second(file(false));
    second.finish();
    EXPECT_TRUE(contents().description);
    EXPECT_TRUE(contents().isFinished);
}

TEST_F(JournalFile, WhatCouldNotBeWrittenWaitsForTheNextCall)
{
    Journal journal(file(true));
    journal.add(SpoolKind::Video, { blockAt(0, 5) });
    ASSERT_TRUE(journal.write());
    const std::uint64_t size = file(false)->size();
    journal.add(SpoolKind::Video, { blockAt(5, 5) });
    {
        const test::FileSizeLimit limit(size + 10);
        EXPECT_FALSE(journal.write());
        EXPECT_TRUE(journal.writeFailed());
        EXPECT_EQ(file(false)->size(), size);
        journal.add(SpoolKind::Video, { blockAt(10, 5) });
        EXPECT_FALSE(journal.write());
    }
    EXPECT_TRUE(journal.write());
    EXPECT_EQ(offsetsOf(contents().video), (std::vector<std::uint64_t> { 0, 5, 10 }));
    EXPECT_TRUE(journal.writeFailed());
}

} // namespace
} // namespace vornic
