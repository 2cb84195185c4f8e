#include "capture/spool/stored_recordings.h"

#include "base/PKTimebase.h"
#include "base/keyed_archive.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/record/picture_unspooler.h"
#include "capture/spool/checksum.h"
#include "capture/spool/journal.h"
#include "capture/spool/journal_contents.h"
#include "capture/spool/recording_folder.h"
#include "capture/spool/spool_file.h"
#include "codec/movie_place.h"
#include "display/bitmap_image.h"

#include <algorithm>
#include <functional>

namespace vornic {

namespace {

std::uint64_t sizeOf(const std::shared_ptr<SpoolFile> &file)
{
    return file ? file->size() : 0;
}

JournalContents readJournalOf(const RecordingFolder &folder)
{
    return readJournal(folder.journal()->read(0, folder.journal()->size()));
}

/// What of the index is in the file.
std::vector<VNDataBlock> readableFrames(const RecordingFolder &folder, const JournalContents &contents)
{
    const std::uint64_t size = sizeOf(folder.video());
    std::vector<VNDataBlock> frames;
    std::ranges::copy_if(contents.video, std::back_inserter(frames), [size](const VNDataBlock &block) {
        return !block.isLost() && block.offset() + block.length() <= size;
    });
    return frames;
}

StoredRecording storedRecording(const RecordingFolder &folder, const JournalContents &contents)
{
    StoredRecording recording;
    recording.id = folder.id();
    recording.bytes = sizeOf(folder.video()) + sizeOf(folder.audio()) + sizeOf(folder.journal());
    recording.isReadable = contents.description.has_value();
    if (!recording.isReadable)
        return recording;
    const std::vector<VNDataBlock> frames = readableFrames(folder, contents);
    recording.start = contents.description->start;
    recording.frames = frames.size();
    if (!frames.empty())
        recording.seconds = static_cast<double>(frames.back().timeStamp()) / PKTimebase;
    if (const auto &movie = contents.description->movie) {
        recording.hasSound = movie->audioCodecID() != PKMuxerContext::audioCodecNone;
        recording.movie = movie->filename();
    }
    return recording;
}

/// Nobody can want it any more. Where the journal is damaged, only an empty recording is sure to be nothing.
bool isWaste(const RecordingFolder &folder, const JournalContents &contents)
{
    return contents.isFinished || (sizeOf(folder.video()) == 0 && contents.video.empty());
}

/// Looks into each recording that can be opened, oldest first.
void forEachRecording(const QString &cachePath,
                      const std::function<void(RecordingFolder &, const JournalContents &)> &look)
{
    for (const QString &id : RecordingFolder::ids(cachePath)) {
        RecordingFolder::Refusal refusal {};
        if (const auto folder = RecordingFolder::open(cachePath, id, refusal))
            look(*folder, readJournalOf(*folder));
    }
}

} // namespace

QList<StoredRecording> storedRecordings(const QString &cachePath)
{
    QList<StoredRecording> recordings;
    forEachRecording(cachePath, [&](const RecordingFolder &folder, const JournalContents &contents) {
        if (!isWaste(folder, contents))
            recordings.push_back(storedRecording(folder, contents));
    });
    return recordings;
}

std::shared_ptr<const BitmapImage> storedPicture(const QString &cachePath, const QString &id)
{
    RecordingFolder::Refusal refusal {};
    const auto folder = RecordingFolder::open(cachePath, id, refusal);
    if (!folder)
        return nullptr;
    const std::vector<VNDataBlock> frames = readableFrames(*folder, readJournalOf(*folder));
    if (frames.empty())
        return nullptr;
    // A whole picture stands at least every two seconds; the ones behind it tell what has changed.
    const std::int64_t middle = frames.back().timeStamp() / 2;
    constexpr std::int64_t lead = 3 * PKTimebase;
    PictureUnspooler pictures;
    std::unique_ptr<VNBufferDiscr> found;
    for (const VNDataBlock &block : frames) {
        if (block.timeStamp() < middle - lead)
            continue;
        if (found && block.timeStamp() > middle)
            break;
        const QByteArray bytes = folder->video()->read(block.offset(), block.length());
        const auto unarchiver
            = checksumOf(bytes) == block.checksum() ? KeyedUnarchiver::create(bytes) : std::nullopt;
        std::unique_ptr<VNBufferDiscr> record
            = unarchiver ? VNBufferDiscr::createWithCoder(*unarchiver, pictures) : nullptr;
        if (!unarchiver)
            pictures.forgetPicture();
        if (record && record->recordPicture())
            found = std::move(record);
    }
    return found ? found->recordImage() : nullptr;
}

bool deleteStoredRecording(const QString &cachePath, const QString &id, QString &whyNot)
{
    RecordingFolder::Refusal refusal {};
    const auto folder = RecordingFolder::open(cachePath, id, refusal);
    if (!folder) {
        whyNot = RecordingFolder::refusalText(refusal, id);
        return false;
    }
    Journal(folder->journal()).finish();
    if (folder->remove())
        return true;
    whyNot = RecordingFolder::deletionFailedText(id);
    return false;
}

QStringList cleanUpStoredRecordings(const QString &cachePath)
{
    RecordingFolder::removeHalfMade(cachePath);
    QStringList movieFolders;
    forEachRecording(cachePath, [&](RecordingFolder &folder, const JournalContents &contents) {
        if (contents.description && contents.description->movie)
            movieFolders += folderOfMovie(contents.description->movie->filename());
        if (isWaste(folder, contents))
            folder.remove();
    });
    movieFolders.removeDuplicates();
    return movieFolders;
}

} // namespace vornic
