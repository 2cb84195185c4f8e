#include "capture/spool/VNBufferMgr.h"

#include "audio/PKAudioRecorderData.h"
#include "base/free_space.h"
#include "base/keyed_archive.h"
#include "base/log.h"
#include "capture/record/VNBufferDiscr.h"
#include "codec/PKMuxerContext.h"
#include "compression/codecs.h"

#include <chrono>
#include <thread>
#include <utility>

namespace vornic {

namespace {

constexpr double pollSeconds = 0.1;

} // namespace

VNBufferMgr::VNBufferMgr(int /*size*/)
    : m_video("com.kavlor.videobuffer")
    , m_audio("com.kavlor.audiobuffer")
{
}

VNBufferMgr::~VNBufferMgr() = default;

void VNBufferMgr::readyToRecord()
{
    setMuxerContext(nullptr);
    mExit = false;
    m_skippedBlocks = 0;
    prepareFileHandle();
}

void VNBufferMgr::prepareFileHandle()
{
    m_video.queue().sync([this] {
        m_video.open(tempVideoPathfile());
        m_pictures.beginSpool();
        m_picturesBack.forgetPicture();
    });
    m_audio.queue().sync([this] { m_audio.open(tempAudioPathfile()); });
}

bool VNBufferMgr::createEmptyFile(const QString &path)
{
    return SpoolStream::createEmptyFile(path);
}

void VNBufferMgr::pushRecordBuffer(const VNBufferDiscr &record)
{
    m_video.queue().sync([&] {
        KeyedArchiver archiver;
        record.encodeWithCoder(archiver, m_pictures);
        m_video.append(archiver.bytes(), static_cast<std::int64_t>(record.timestamp()), false);
    });
}

void VNBufferMgr::endVideoRecord()
{
    m_video.queue().sync([this] { m_video.end(); });
}

void VNBufferMgr::pushAudioBuffer(const PKAudioRecorderData &chunk)
{
    m_audio.queue().sync([&] {
        bool compressed = false;
        const QByteArray stored = LZOCompress(archivedData(chunk), &compressed);
        m_audio.append(stored, 0, compressed);
    });
}

void VNBufferMgr::endAudioRecord()
{
    m_audio.queue().sync([this] { m_audio.end(); });
}

void VNBufferMgr::countSkipped(const char *what)
{
    ++m_skippedBlocks;
    logMessage(
        QStringLiteral("A spooled %1 could not be read back and is left out.").arg(QLatin1StringView(what)));
}

std::unique_ptr<VNBufferDiscr> VNBufferMgr::takeRecord(bool &wasEmpty)
{
    std::unique_ptr<VNBufferDiscr> record;
    m_video.queue().sync([&] {
        const std::optional<SpoolStream::Block> block = m_video.takeOldest();
        wasEmpty = !block;
        if (!block)
            return;
        if (const auto unarchiver = KeyedUnarchiver::create(block->bytes))
            record = VNBufferDiscr::createWithCoder(*unarchiver, m_picturesBack);
        else
            m_picturesBack.forgetPicture();
    });
    return record;
}

std::unique_ptr<VNBufferDiscr> VNBufferMgr::getBufferVideoFrame()
{
    bool wasEmpty = false;
    return takeRecord(wasEmpty);
}

std::unique_ptr<VNBufferDiscr> VNBufferMgr::popRecordBuffer()
{
    while (true) {
        // Read first: what is pushed before the flag goes up must still be found.
        const bool exiting = mExit;
        bool wasEmpty = false;
        if (auto record = takeRecord(wasEmpty))
            return record;
        if (!wasEmpty)
            countSkipped("frame");
        else if (exiting)
            return nullptr;
        else
            waitSeconds(pollSeconds);
    }
}

std::optional<PKAudioRecorderData> VNBufferMgr::takeChunk(bool &wasEmpty)
{
    std::optional<PKAudioRecorderData> chunk;
    m_audio.queue().sync([&] {
        const std::optional<SpoolStream::Block> block = m_audio.takeOldest();
        wasEmpty = !block;
        if (!block)
            return;
        const QByteArray bytes = block->entry.isCompressed() ? LZOUncompress(block->bytes) : block->bytes;
        if (const auto unarchiver = KeyedUnarchiver::create(bytes))
            chunk = PKAudioRecorderData::createWithCoder(*unarchiver);
    });
    return chunk;
}

std::optional<PKAudioRecorderData> VNBufferMgr::getAudioBuffer()
{
    bool wasEmpty = false;
    return takeChunk(wasEmpty);
}

std::optional<PKAudioRecorderData> VNBufferMgr::popAudioBuffer()
{
    while (true) {
        const bool exiting = mExit;
        bool wasEmpty = false;
        if (auto chunk = takeChunk(wasEmpty))
            return chunk;
        if (!wasEmpty)
            countSkipped("audio chunk");
        else if (exiting)
            return std::nullopt;
        else
            waitSeconds(pollSeconds);
    }
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

void VNBufferMgr::waitSeconds(double seconds)
{
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
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

void VNBufferMgr::clear()
{
    m_video.queue().sync([this] { m_video.clear(tempVideoPathfile()); });
    m_audio.queue().sync([this] { m_audio.clear(tempAudioPathfile()); });
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
    return freeBytes() < limitSpaceForRecord();
}

bool VNBufferMgr::writeFailed() const
{
    return m_video.writeFailed() || m_audio.writeFailed();
}

QString VNBufferMgr::descriptionOfFreeSpaceRequired()
{
    return QStringLiteral("25GBytes");
}

void VNBufferMgr::setRecordRect(const QRectF &rect)
{
    const std::lock_guard lock(m_mutex);
    _recordRect = rect;
}

QRectF VNBufferMgr::recordRect() const
{
    const std::lock_guard lock(m_mutex);
    return _recordRect;
}

void VNBufferMgr::setMuxerContext(std::shared_ptr<const PKMuxerContext> context)
{
    const std::lock_guard lock(m_mutex);
    _muxerContext = std::move(context);
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

QString VNBufferMgr::tempVideoPathfile()
{
    return cachePath() + QStringLiteral("/vornicvideo.tmp");
}

QString VNBufferMgr::tempAudioPathfile()
{
    return cachePath() + QStringLiteral("/vornicaudio.tmp");
}

} // namespace vornic
