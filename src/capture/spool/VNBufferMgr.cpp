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
            taken.object = PKAudioRecorderData::createWithCoder(*unarchiver);
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
