/// Feeds damaged journals, and whole recordings that are cut, swapped and turned over, to what finds and reads them:
/// fuzz_recordings [inputs [seed]].
///
/// Half of the damaged records get a valid checksum again, as one written by a hostile hand would have. Prints how much
/// was still read. Fails where hardly anything was: then the inputs test nothing.

#include "audio/PKAudioRecorderData.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/spool/VNBufferMgr.h"
#include "capture/spool/journal_contents.h"
#include "capture/spool/journal_format.h"
#include "capture/spool/pointer_shape_archive.h"
#include "capture/spool/recording_folder.h"
#include "capture/spool/stored_recordings.h"
#include "codec/PKMuxerContext.h"
#include "display/bitmap_image.h"
#include "display/fake_display.h"
#include "support/fuzz_run.h"
#include "support/test_pictures.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <array>
#include <cstdio>
#include <memory>
#include <vector>

using namespace vornic;

namespace {

/// The files of one recording.
struct Files {
    QByteArray journal;
    QByteArray video;
    QByteArray audio;
};

QString pathOf(const QString &id, const char *name)
{
    return VNBufferMgr::cachePath() + "/recordings/" + id + '/' + QLatin1StringView(name);
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What is there already is not written again: files take most of this fuzzer's time.
void setBytes(const QString &path, QByteArray &current, const QByteArray &bytes)
{
    if (current == bytes)
        return;
    current = bytes;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s cannot be written", qPrintable(path));
}

Files filesOf(const QString &id)
{
    return { bytesOf(pathOf(id, RecordingFolder::journalName)),
             bytesOf(pathOf(id, RecordingFolder::videoName)),
             bytesOf(pathOf(id, RecordingFolder::audioName)) };
}

/// Records on a display that it makes, with two pointer shapes; the id.
QString recorded(std::uint32_t seed)
{
    constexpr QSize size(40, 30);
    const auto display = std::make_shared<FakeDisplay>(size);
    setMainDisplay(display);
    VNBufferMgr manager(0);
    manager.readyToRecord();
    manager.setRecordRect(QRectF(QPointF(0, 0), size));
    manager.setMuxerContext(std::make_shared<PKMuxerContext>("/nowhere/movie.mp4"));
    for (std::uint32_t i = 0; i < 6; ++i) {
        display->setPicture(test::noisePicture(size, seed + i / 2));
        display->setCursorShape({ test::noisePicture({ 8, 8 }, i % 2), QPoint(1, 1) });
        const auto record = VNBufferDiscr::createWithScreenImage(display->grab(QRect(QPoint(0, 0), size)));
        record->setBufferTimestamp(3000 * i);
        manager.pushRecordBuffer(*record);
        manager.pushAudioBuffer(
            PKAudioRecorderData(QByteArray(100, static_cast<char>(i)), defaultAudioStreamBasicDescription()));
    }
    const QString id = manager.recordingId();
    manager.keep();
    setMainDisplay(nullptr);
    return id;
}

/// Records are left out, doubled, swapped and damaged; a damaged one may get its checksum anew.
QByteArray damagedJournal(const QByteArray &journal, test::FuzzRandom &random)
{
    std::vector<QByteArray> records;
    qsizetype position = 0;
    while (const auto record = nextJournalRecord(journal, position)) {
        QByteArray payload = record->payload.toByteArray();
        const int fate = random.below(12);
        if (fate == 0)
            payload = random.damaged(payload, 3);
        if (fate != 1)
            records.push_back(journalRecord(record->kind, payload));
        if (fate == 2)
            records.push_back(records.back());
        if (fate == 3 && records.size() > 1)
            std::swap(records.back(), records[static_cast<std::size_t>(random.below(std::ssize(records)))]);
        position = record->end;
    }
    QByteArray result;
    for (const QByteArray &record : records)
        result += record;
    return random.below(2) == 0 ? result : random.damaged(result, 3);
}

Files damaged(const Files &files, const Files &others, test::FuzzRandom &random)
{
    Files result = files;
    if (random.below(2) == 0)
        result.journal = damagedJournal(files.journal, random);
    if (random.below(2) == 0)
        result.video = random.damaged(files.video, 3);
    if (random.below(4) == 0)
        result.audio = random.damaged(files.audio, 3);
    switch (random.below(10)) {
    case 0:
        std::swap(result.video, result.audio);
        break;
    case 1:
        result.video = others.video;
        break;
    case 2:
        result.journal = others.journal + result.journal;
        break;
    default:
        break;
    }
    return result;
}

struct Tally {
    int entries = 0;
    int shapes = 0;
    int opened = 0;
    int pictures = 0;
    int chunks = 0;
    int previews = 0;
};

void feedJournal(const QByteArray &journal, Tally &tally)
{
    const JournalContents contents = readJournal(journal);
    tally.entries += static_cast<int>(contents.video.size() + contents.audio.size());
    tally.shapes += static_cast<int>(contents.pointerShapes.size());
    static_cast<void>(pointerShapeFromArchive(journal));
    static_cast<void>(
        blockFromPayload(QByteArrayView(journal).first(std::min<qsizetype>(34, journal.size()))));
}

void feedRecording(
    const QString &id, Files &current, const Files &files, test::FuzzRandom &random, Tally &tally)
{
    setBytes(pathOf(id, RecordingFolder::journalName), current.journal, files.journal);
    setBytes(pathOf(id, RecordingFolder::videoName), current.video, files.video);
    setBytes(pathOf(id, RecordingFolder::audioName), current.audio, files.audio);
    // What lists recordings and shows them reads the same files in the same way: some of the inputs do for it.
    switch (random.below(6)) {
    case 0:
        static_cast<void>(storedRecordings(VNBufferMgr::cachePath()));
        break;
    case 1:
        tally.previews += storedPicture(VNBufferMgr::cachePath(), id) ? 1 : 0;
        break;
    default:
        break;
    }
    VNBufferMgr manager(0);
    QString whyNot;
    if (!manager.openRecording(id, whyNot))
        return;
    ++tally.opened;
    while (const auto record = manager.popRecordBuffer()) {
        if (record->recordImage())
            ++tally.pictures;
        static_cast<void>(record->cursorShape());
    }
    while (manager.popAudioBuffer())
        ++tally.chunks;
}

} // namespace

int main(int argc, char **argv)
{
    // The toolkit tells of each damaged picture.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qPrintable(text));
    });
    const QTemporaryDir cache;
    qputenv("XDG_CACHE_HOME", QFile::encodeName(cache.path()));
    test::FuzzRun run(argc, argv, 100'000);
    test::FuzzRandom &random = run.random();
    const QString id = recorded(1);
    const std::array<Files, 2> recordings { filesOf(id), filesOf(recorded(50)) };
    Files current = recordings[0]; // of the recording that is damaged
    Tally tally;
    run.feedAll("journals and recordings", [&](int) {
        const std::size_t number = random.next() % 2;
        const Files files = damaged(recordings[number], recordings[1 - number], random);
        // A whole recording takes a hundred times as long as a journal does.
        switch (random.below(4)) {
        case 0:
            feedJournal(random.bytes(400), tally);
            break;
        case 1:
            feedRecording(id, current, files, random, tally);
            break;
        default:
            feedJournal(damagedJournal(files.journal, random), tally);
        }
    });
    std::printf("%d entries, %d shapes; %d recordings opened: %d pictures, %d chunks, %d previews\n",
                tally.entries,
                tally.shapes,
                tally.opened,
                tally.pictures,
                tally.chunks,
                tally.previews);
    const int least = run.count() / 20;
    return tally.entries > least && tally.opened > least && tally.pictures > least ? 0 : 1;
}
