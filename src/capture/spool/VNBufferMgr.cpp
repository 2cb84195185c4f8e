#include "capture/spool/VNBufferMgr.h"

#include "audio/PKAudioRecorderData.h"
#include "base/clock.h"
#include "base/free_space.h"
#include "base/keyed_archive.h"
#include "base/log.h"
#include "capture/record/VNBufferDiscr.h"
#include "capture/spool/journal.h"
#include "capture/spool/journal_contents.h"
#include "capture/spool/recording_description.h"
#include "capture/spool/recording_folder.h"
#include "capture/spool/spool_file.h"
#include "codec/PKMuxerContext.h"
#include "compression/codecs.h"

#include <QFile>

#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>

namespace vornic {

namespace {

constexpr double pollSeconds = 0.1;

/// A process that is killed loses what was pushed since the last write, and the time that takes.
constexpr std::chrono::milliseconds writeDelay(200);
/// A loss of power, what was written since the last sync, and the time that takes.
constexpr std::chrono::milliseconds syncDelay(800);

} // namespace

VNBufferMgr::VNBufferMgr(int /*size*/)
    : m_video("com.kavlor.videobuffer", SpoolKind::Video)
    , m_audio("com.kavlor.audiobuffer", SpoolKind::Audio)
{
    m_video.setGatheringBegins([this] { writeSoon(); });
    m_audio.setGatheringBegins([this] { writeSoon(); });
}

VNBufferMgr::~VNBufferMgr()
{
    keep();
}

// ---- a recording begins, ends, and is found again

void VNBufferMgr::readyToRecord()
{
    closeFolder();
    setMuxerContext(nullptr);
    mExit = false;
    m_spooledBytes = 0;
    m_spooledPictureBytes = 0;
    m_movieBytes = 0;
    m_skippedBlocks = 0;
    prepareFileHandle();
}

void VNBufferMgr::prepareFileHandle()
{
    Open open;
    open.folder = RecordingFolder::create(cachePath());
    m_whyNothingIsStored = open.folder ? QString() : qt_error_string();
    if (open.folder)
        open.journal = std::make_shared<Journal>(open.folder->journal());
    const int error = errno;
    if (!open.folder)
        logMessage(QStringLiteral("Failed to create tmp file."));
    setOpened(open);
    m_video.queue().sync([&] {
        m_video.open(open.folder ? open.folder->video() : nullptr, open.journal);
        m_pictures.beginPart();
        m_picturesBack.forgetPicture();
        m_shapesBack.reset();
        m_lastShape = {};
    });
    m_audio.queue().sync([&] {
        m_audio.open(open.folder ? open.folder->audio() : nullptr, open.journal);
        m_chunks.beginSpool();
        m_chunksBack.forget();
    });
    describe();
    errno = error;
}

bool VNBufferMgr::openRecording(const QString &id, QString &whyNot)
{
    keep();
    RecordingFolder::Refusal refusal {};
    const std::shared_ptr<RecordingFolder> folder = RecordingFolder::open(cachePath(), id, refusal);
    if (!folder) {
        whyNot = RecordingFolder::refusalText(refusal, id);
        return false;
    }
    const JournalContents contents = readJournal(folder->journal()->read(0, folder->journal()->size()));
    if (!contents.description) {
        whyNot = RecordingFolder::refusalText(RecordingFolder::Refusal::Unusable, id);
        return false;
    }
    if (!folder->video()) {
        whyNot = RecordingFolder::refusalText(RecordingFolder::Refusal::WithoutPictures, id);
        return false;
    }
    openLeft(folder, contents);
    return true;
}

void VNBufferMgr::openLeft(const std::shared_ptr<RecordingFolder> &folder, const JournalContents &contents)
{
    const RecordingDescription &description = *contents.description;
    mExit = true;
    m_skippedBlocks = 0;
    m_recordQuality = description.quality;
    _isRecordPart = description.isPart;
    setOpened({ folder, std::make_shared<Journal>(folder->journal()) });
    {
        const std::lock_guard lock(m_mutex);
        _recordRect = description.rectangle;
        m_start = description.start;
        m_monotonicStart = description.monotonicStart;
        _muxerContext
            = description.movie ? std::make_shared<const PKMuxerContext>(*description.movie) : nullptr;
    }
    m_video.queue().sync([&] {
        m_video.openLeft(folder->video(), contents.video);
        m_picturesBack.forgetPicture();
        m_shapesBack = contents.pointerShapes;
    });
    m_audio.queue().sync([&] {
        m_audio.openLeft(folder->audio(), contents.audio);
        m_chunksBack.forget();
    });
}

VNBufferMgr::Open VNBufferMgr::opened() const
{
    const std::lock_guard lock(m_mutex);
    return m_open;
}

void VNBufferMgr::setOpened(const Open &open)
{
    m_syncFailed = false;
    const std::lock_guard lock(m_mutex);
    m_open = open;
    m_folderPath = open.folder ? open.folder->path() : cachePath();
    m_start = QDateTime::currentDateTimeUtc();
    m_monotonicStart = absoluteTimeSeconds();
}

QString VNBufferMgr::recordingId() const
{
    const Open open = opened();
    return open.folder ? open.folder->id() : QString();
}

RecordingDescription VNBufferMgr::description() const
{
    RecordingDescription description;
    description.isPart = _isRecordPart;
    description.quality = m_recordQuality;
    const std::lock_guard lock(m_mutex);
    description.start = m_start;
    description.monotonicStart = m_monotonicStart;
    description.rectangle = _recordRect;
    if (_muxerContext)
        description.movie = *_muxerContext;
    return description;
}

/// The journal has the description as it is now.
void VNBufferMgr::describe()
{
    const Open open = opened();
    if (!open.journal)
        return;
    open.journal->add(description());
    writeSoon();
}

void VNBufferMgr::rewind()
{
    m_video.queue().sync([this] {
        m_video.rewind();
        m_picturesBack.forgetPicture();
    });
    m_audio.queue().sync([this] { m_audio.rewind(); });
    m_skippedBlocks = 0;
}

void VNBufferMgr::closeFolder()
{
    m_writer.sync([this] { writeAll(); });
    const std::lock_guard lock(m_mutex);
    m_open = {};
}

void VNBufferMgr::keep()
{
    const Open open = opened();
    closeFolder();
    m_video.queue().sync([this] {
        m_video.close();
        m_shapesBack.reset();
        m_lastShape = {};
    });
    m_audio.queue().sync([this] { m_audio.close(); });
    if (open.folder)
        open.folder->letGo(); // now, and not when the last sync has ended
}

void VNBufferMgr::clear()
{
    const Open open = opened();
    if (open.journal)
        open.journal->finish(); // should this be all that becomes of it, the next start goes on here
    m_video.queue().sync([this] {
        m_video.close();
        m_shapesBack.reset();
        m_lastShape = {};
    });
    m_audio.queue().sync([this] { m_audio.close(); });
    if (open.folder && !open.folder->remove())
        logMessage(
            QStringLiteral("Failed to delete the spool %1: %2").arg(open.folder->path(), qt_error_string()));
    const std::lock_guard lock(m_mutex);
    m_open = {};
}

// ---- to the disk

void VNBufferMgr::writeSoon()
{
    if (!m_writesSoon.exchange(true))
        m_writer.after(writeDelay, [this] { writeAll(); });
}

/// On the writer's thread only: the spools and their entries in the journal are written by one.
void VNBufferMgr::writeAll()
{
    m_writesSoon = false;
    m_video.writeBehind();
    m_audio.writeBehind();
    if (const Open open = opened(); open.journal && open.journal->write())
        syncSoon();
}

void VNBufferMgr::syncSoon()
{
    if (m_syncsSoon.exchange(true))
        return;
    m_syncer.after(syncDelay, [this] {
        m_syncsSoon = false;
        sync();
    });
}

void VNBufferMgr::sync()
{
    const Open open = opened();
    if (open.folder && !open.folder->sync())
        m_syncFailed = true;
}

// ---- in and out

bool VNBufferMgr::createEmptyFile(const QString &path)
{
    QFile::remove(path);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return true;
    logMessage(QStringLiteral("Failed to create tmp file."));
    return false;
}

/// Before the first record that shows a shape, the journal gets it: another process has another table, and that of this
/// one forgets.
void VNBufferMgr::journalShape(const VNBufferDiscr &record)
{
    const auto shape = record.cursorShape();
    if (const Open open = opened(); shape && open.journal)
        open.journal->add(record.cursorIndex(), *shape);
}

/// Of a record that was read back. As long as it is the same shape, it is the same object.
std::shared_ptr<const CursorShape> VNBufferMgr::shapeOf(const VNBufferDiscr &record)
{
    const std::uint64_t index = record.cursorIndex();
    if (m_shapesBack) {
        const auto shape = m_shapesBack->find(index);
        return shape == m_shapesBack->end() ? nullptr : shape->second;
    }
    if (m_lastShape.second && m_lastShape.first == index)
        return m_lastShape.second;
    auto shape = VNBufferDiscr::cusorAtIndex(index);
    if (const Open open = opened(); !shape && open.journal)
        shape = open.journal->pointerShape(index);
    m_lastShape = { index, shape };
    return shape;
}

void VNBufferMgr::pushRecordBuffer(const VNBufferDiscr &record)
{
    m_video.queue().sync([&] {
        journalShape(record);
        KeyedArchiver archiver;
        record.encodeWithCoder(archiver, m_pictures);
        const QByteArray stored = archiver.bytes();
        m_video.append(stored, static_cast<std::int64_t>(record.timestamp()), false);
        m_spooledBytes += static_cast<std::uint64_t>(stored.size());
        m_spooledPictureBytes += static_cast<std::uint64_t>(stored.size());
    });
}

void VNBufferMgr::endVideoRecord()
{
    m_video.queue().sync([this] { m_video.end(); });
}

void VNBufferMgr::pushAudioBuffer(const PKAudioRecorderData &chunk)
{
    m_audio.queue().sync([&] {
        KeyedArchiver archiver;
        m_chunks.encode(chunk, archiver);
        bool compressed = false;
        const QByteArray stored = LZOCompress(archiver.bytes(), &compressed);
        m_audio.append(stored, 0, compressed);
        m_spooledBytes += static_cast<std::uint64_t>(stored.size());
    });
}

void VNBufferMgr::endAudioRecord()
{
    m_audio.queue().sync([this] { m_audio.end(); });
}

VNBufferMgr::Taken<std::unique_ptr<VNBufferDiscr>> VNBufferMgr::takeRecord()
{
    Taken<std::unique_ptr<VNBufferDiscr>> taken;
    m_video.queue().sync([&] {
        const std::optional<SpoolStream::Block> block = m_video.takeOldest();
        taken.wasEmpty = !block;
        if (!block)
            return;
        if (const auto unarchiver = KeyedUnarchiver::create(block->bytes))
            taken.object = VNBufferDiscr::createWithCoder(*unarchiver, m_picturesBack);
        else
            m_picturesBack.forgetPicture();
        if (taken.object)
            taken.object->setCursorShape(shapeOf(*taken.object));
    });
    return taken;
}

VNBufferMgr::Taken<std::optional<PKAudioRecorderData>> VNBufferMgr::takeChunk()
{
    Taken<std::optional<PKAudioRecorderData>> taken;
    m_audio.queue().sync([&] {
        const std::optional<SpoolStream::Block> block = m_audio.takeOldest();
        taken.wasEmpty = !block;
        if (!block)
            return;
        const QByteArray bytes = block->entry.isCompressed() ? LZOUncompress(block->bytes) : block->bytes;
        if (const auto unarchiver = KeyedUnarchiver::create(bytes))
            taken.object = m_chunksBack.decode(*unarchiver);
    });
    return taken;
}

template<typename Take>
auto VNBufferMgr::pop(Take take, QLatin1StringView kind)
{
    while (true) {
        // Read before the spool: what is pushed before the flag goes up must still be found.
        const bool exiting = mExit;
        auto taken = take();
        if (taken.object || (taken.wasEmpty && exiting))
            return std::move(taken.object);
        if (taken.wasEmpty) {
            waitSeconds(pollSeconds);
            continue;
        }
        ++m_skippedBlocks;
        logMessage(QStringLiteral("A spooled %1 could not be read back and is left out.").arg(kind));
    }
}

std::unique_ptr<VNBufferDiscr> VNBufferMgr::getBufferVideoFrame()
{
    return takeRecord().object;
}

std::unique_ptr<VNBufferDiscr> VNBufferMgr::popRecordBuffer()
{
    return pop([this] { return takeRecord(); }, QLatin1StringView("frame"));
}

std::optional<PKAudioRecorderData> VNBufferMgr::getAudioBuffer()
{
    return takeChunk().object;
}

std::optional<PKAudioRecorderData> VNBufferMgr::popAudioBuffer()
{
    return pop([this] { return takeChunk(); }, QLatin1StringView("audio chunk"));
}

std::int64_t VNBufferMgr::lastBufferTimestamp()
{
    std::int64_t ticks = 0;
    m_video.queue().sync([&] { ticks = m_video.index().newestTimeStamp(); });
    return ticks;
}

std::int64_t VNBufferMgr::nextBufferTimestamp()
{
    std::int64_t ticks = 0;
    m_video.queue().sync([&] { ticks = m_video.index().oldestTimeStamp(); });
    return ticks;
}

std::uint64_t VNBufferMgr::recordBufferCount()
{
    std::uint64_t count = 0;
    m_video.queue().sync([&] { count = m_video.index().count(); });
    return count;
}

std::vector<std::pair<std::int64_t, std::uint64_t>> VNBufferMgr::recordSizes()
{
    std::vector<std::pair<std::int64_t, std::uint64_t>> sizes;
    m_video.queue().sync([&] {
        sizes.reserve(m_video.index().count());
        for (const VNDataBlock &block : m_video.index().blocks())
            sizes.emplace_back(block.timeStamp(), block.length());
    });
    return sizes;
}

void VNBufferMgr::waitSeconds(double seconds)
{
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

std::uint64_t VNBufferMgr::freeBytes() const
{
    return m_freeSpaceProbe ? m_freeSpaceProbe() : freeSpaceBytes(cachePath());
}

bool VNBufferMgr::freespaceIsEough() const
{
    return freeBytes() >= freeSpaceRequired();
}

bool VNBufferMgr::cacheFull() const
{
    return freeBytes() < limitSpaceForRecord() + m_movieBytes;
}

bool VNBufferMgr::writeFailed() const
{
    const Open open = opened();
    return m_video.writeFailed() || m_audio.writeFailed() || m_syncFailed
        || (open.journal && open.journal->writeFailed());
}

int VNBufferMgr::writeError() const
{
    const Open open = opened();
    if (!open.folder)
        return 0;
    for (const auto &file : { open.folder->video(), open.folder->audio(), open.folder->journal() }) {
        if (const int error = file ? file->firstError() : 0; error != 0)
            return error;
    }
    return 0;
}

QString VNBufferMgr::descriptionOfFreeSpaceRequired()
{
    return QStringLiteral("25GBytes");
}

void VNBufferMgr::setRecordRect(const QRectF &rect)
{
    {
        const std::lock_guard lock(m_mutex);
        _recordRect = rect;
    }
    describe();
}

void VNBufferMgr::setIsRecordPart(bool part)
{
    _isRecordPart = part;
    describe();
}

void VNBufferMgr::setRecordQuality(int quality)
{
    m_recordQuality = quality;
    describe();
}

QRectF VNBufferMgr::recordRect() const
{
    const std::lock_guard lock(m_mutex);
    return _recordRect;
}

void VNBufferMgr::setMuxerContext(std::shared_ptr<const PKMuxerContext> context)
{
    {
        const std::lock_guard lock(m_mutex);
        _muxerContext = std::move(context);
    }
    describe();
    // At once: should the program die while it writes the movie, the next one looks there for what is half written.
    // On the disk too: without a description the rest of a recording is worth nothing.
    if (const Open open = opened(); open.journal && open.journal->write())
        m_syncer.async([this] { sync(); });
}

std::shared_ptr<const PKMuxerContext> VNBufferMgr::muxerContext() const
{
    const std::lock_guard lock(m_mutex);
    return _muxerContext;
}

std::int64_t VNBufferMgr::recordWidth() const
{
    return static_cast<std::int64_t>(recordRect().width());
}

std::int64_t VNBufferMgr::recordHeight() const
{
    return static_cast<std::int64_t>(recordRect().height());
}

std::int64_t VNBufferMgr::encodeWidth() const
{
    return static_cast<std::int64_t>(VNBufferDiscr::calcMaxFitSize(recordWidth(), recordHeight()).first);
}

std::int64_t VNBufferMgr::encodeHeight() const
{
    return static_cast<std::int64_t>(VNBufferDiscr::calcMaxFitSize(recordWidth(), recordHeight()).second);
}

QString VNBufferMgr::cachePath()
{
    return VNBufferDiscr::cachePath();
}

QString VNBufferMgr::tempVideoPathfile() const
{
    const std::lock_guard lock(m_mutex);
    return m_folderPath.isEmpty() ? QString()
                                  : m_folderPath + u'/' + QLatin1String(RecordingFolder::videoName);
}

QString VNBufferMgr::tempAudioPathfile() const
{
    const std::lock_guard lock(m_mutex);
    return m_folderPath.isEmpty() ? QString()
                                  : m_folderPath + u'/' + QLatin1String(RecordingFolder::audioName);
}

} // namespace vornic
