#pragma once

#include "capture/record/picture_spooler.h"
#include "capture/record/picture_unspooler.h"
#include "capture/spool/spool_stream.h"

#include <QRectF>
#include <QString>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace vornic {

class PKAudioRecorderData;
class PKMuxerContext;
class VNBufferDiscr;

/// The two spools that stand between recording and encoding, first in, first out.
///
/// One lives for the whole run, owned by the application delegate. Pushes and pops may come from any thread:
/// all that touches a spool runs on its serial queue, and no operation waits for both.
class VNBufferMgr
{
public:
    /// \a size means nothing any more.
    explicit VNBufferMgr(int size);
    ~VNBufferMgr();
    VNBufferMgr(const VNBufferMgr &) = delete;
    VNBufferMgr &operator=(const VNBufferMgr &) = delete;

    /// Begins a recording: empty spool files, no muxer context, exit flag down.
    void readyToRecord();
    void prepareFileHandle();
    static bool createEmptyFile(const QString &path);

    void pushRecordBuffer(const VNBufferDiscr &record);
    /// Writes what is still in memory; no push follows.
    void endVideoRecord();
    void pushAudioBuffer(const PKAudioRecorderData &chunk);
    void endAudioRecord();

    /// The oldest record, taken out of the index; null when that is empty, or when the record cannot be read.
    [[nodiscard]] std::unique_ptr<VNBufferDiscr> getBufferVideoFrame();
    /// The oldest record that can be read, waiting for one while the exit flag is down; null when the flag is
    /// up and none is left. Records that cannot be read are skipped, counted and logged.
    [[nodiscard]] std::unique_ptr<VNBufferDiscr> popRecordBuffer();
    [[nodiscard]] std::optional<PKAudioRecorderData> getAudioBuffer();
    [[nodiscard]] std::optional<PKAudioRecorderData> popAudioBuffer();

    /// Of the newest and the oldest record in the index, in PKTimebase ticks; 0 when it is empty.
    [[nodiscard]] std::int64_t lastBufferTimestamp();
    [[nodiscard]] std::int64_t nextBufferTimestamp();
    [[nodiscard]] std::uint64_t recordBufferCount();
    /// Blocks that could not be read back since readyToRecord().
    [[nodiscard]] std::uint64_t skippedBlockCount() const { return m_skippedBlocks; }

    /// Blocks the calling thread.
    static void waitSeconds(double seconds);
    /// Puts everything that was popped back: the same recording can be encoded again.
    void rewind();
    /// Empties both indexes and deletes both files.
    void clear();

    [[nodiscard]] bool freespaceIsEough() const;
    [[nodiscard]] bool cacheFull() const;
    /// The file system of a spool took no more bytes; what is in memory is not lost.
    [[nodiscard]] bool writeFailed() const;
    /// Bytes that must be free before a recording.
    [[nodiscard]] static std::uint64_t freeSpaceRequired() { return 10'737'418'240; }
    [[nodiscard]] static QString descriptionOfFreeSpaceRequired();
    /// Bytes; a recording stops when fewer are free.
    [[nodiscard]] static std::uint64_t limitSpaceForRecord() { return 1'073'741'824; }
    /// What is asked for the free bytes of the cache volume, for tests; an empty one asks the file system.
    void setFreeSpaceProbe(std::function<std::uint64_t()> probe) { m_freeSpaceProbe = std::move(probe); }

    /// No more data will come: ends the consumers' waits.
    void setExit(bool exit) { mExit = exit; }
    [[nodiscard]] bool exit() const { return mExit; }
    /// The recorded region in screen coordinates (y up).
    void setRecordRect(const QRectF &rect);
    [[nodiscard]] QRectF recordRect() const;
    void setIsRecordPart(bool part) { _isRecordPart = part; }
    [[nodiscard]] bool isRecordPart() const { return _isRecordPart; }
    void setMuxerContext(std::shared_ptr<const PKMuxerContext> context);
    [[nodiscard]] std::shared_ptr<const PKMuxerContext> muxerContext() const;

    [[nodiscard]] std::int64_t recordWidth() const;
    [[nodiscard]] std::int64_t recordHeight() const;
    [[nodiscard]] std::int64_t encodeWidth() const;
    [[nodiscard]] std::int64_t encodeHeight() const;

    [[nodiscard]] static QString cachePath();
    [[nodiscard]] static QString tempVideoPathfile();
    [[nodiscard]] static QString tempAudioPathfile();

private:
    [[nodiscard]] std::uint64_t freeBytes() const;
    void countSkipped(const char *what);
    [[nodiscard]] std::unique_ptr<VNBufferDiscr> takeRecord(bool &wasEmpty);
    [[nodiscard]] std::optional<PKAudioRecorderData> takeChunk(bool &wasEmpty);

    SpoolStream m_video;
    SpoolStream m_audio;
    PictureSpooler m_pictures;       ///< on the video queue
    PictureUnspooler m_picturesBack; ///< on the video queue
    std::function<std::uint64_t()> m_freeSpaceProbe;
    std::atomic<std::uint64_t> m_skippedBlocks = 0;
    std::atomic<bool> mExit = false;
    std::atomic<bool> _isRecordPart = false;
    mutable std::mutex m_mutex; ///< guards the two below; held for a copy only
    QRectF _recordRect;
    std::shared_ptr<const PKMuxerContext> _muxerContext;
};

} // namespace vornic
