#pragma once

#include "audio/chunk_spooler.h"
#include "audio/chunk_unspooler.h"
#include "base/serial_queue.h"
#include "capture/record/picture_spooler.h"
#include "capture/record/picture_unspooler.h"
#include "capture/spool/spool_stream.h"

#include <QDateTime>
#include <QRectF>
#include <QString>

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace vornic {

class Journal;
class PKAudioRecorderData;
class PKMuxerContext;
class RecordingFolder;
class VNBufferDiscr;
struct CursorShape;
struct JournalContents;
struct RecordingDescription;

/// The two spools between recording and encoding, one for frames and one for sound; first in, first out.
///
/// Each recording has a folder of its own beneath the cache folder, with a journal from which another process can read
/// the spools. What is older than half a second is in the files, what is older than two on the disk.
///
/// One lives for the whole run, owned by the session. Any thread may call it: everything that touches a spool runs on
/// that spool's serial queue, which the caller waits for. Files are written and synced by two threads of its own.
class VNBufferMgr
{
public:
    /// A number of buffers, which is ignored: the spools grow on disk.
    explicit VNBufferMgr(int /*size*/);
    ~VNBufferMgr();
    VNBufferMgr(const VNBufferMgr &) = delete;
    VNBufferMgr &operator=(const VNBufferMgr &) = delete;

    /// Begins a recording: empty spool files, no muxer context, exit flag down, nothing skipped. The indexes
    /// stay as they are. A recording that was open is kept.
    void readyToRecord();
    /// Makes a recording's folder with both spool files and opens them.
    void prepareFileHandle();
    /// Opens what an earlier process left of the recording \a id, to be popped: its rectangle and muxer context (null
    /// where it got none) are set, the exit flag is up. Nothing is opened where the recording runs, or cannot be read;
    /// \a whyNot is a sentence for the user then.
    [[nodiscard]] bool openRecording(const QString &id, QString &whyNot);
    /// Of the recording that is open; empty when none is.
    [[nodiscard]] QString recordingId() const;
    [[nodiscard]] RecordingDescription description() const;
    /// Why the recording that begins has no folder, in the system's words; empty where it has one.
    [[nodiscard]] const QString &whyNothingIsStored() const { return m_whyNothingIsStored; }
    /// Deletes what is at \a path and makes an empty file there; false (and logged) when that fails.
    static bool createEmptyFile(const QString &path);

    void pushRecordBuffer(const VNBufferDiscr &record);
    /// Writes what is still in memory; no push follows.
    void endVideoRecord();
    void pushAudioBuffer(const PKAudioRecorderData &chunk);
    void endAudioRecord();

    /// The oldest record, taken out of the index; null when that is empty, or when the record cannot be read.
    /// The same for chunks of sound.
    [[nodiscard]] std::unique_ptr<VNBufferDiscr> getBufferVideoFrame();
    [[nodiscard]] std::optional<PKAudioRecorderData> getAudioBuffer();
    /// The oldest record that can be read, waiting for one while the exit flag is down; null when the flag is
    /// up and none is left. Records that cannot be read are skipped, counted and logged. The same for chunks
    /// of sound.
    [[nodiscard]] std::unique_ptr<VNBufferDiscr> popRecordBuffer();
    [[nodiscard]] std::optional<PKAudioRecorderData> popAudioBuffer();

    /// Of the newest and the oldest record in the index, in PKTimebase ticks; 0 when it is empty.
    [[nodiscard]] std::int64_t lastBufferTimestamp();
    [[nodiscard]] std::int64_t nextBufferTimestamp();
    [[nodiscard]] std::uint64_t recordBufferCount();
    /// Of each record in the index, the oldest first: its timestamp, and its bytes as stored.
    [[nodiscard]] std::vector<std::pair<std::int64_t, std::uint64_t>> recordSizes();
    /// Bytes of all that was pushed since readyToRecord(), as stored. Waits for nobody.
    [[nodiscard]] std::uint64_t spooledBytes() const { return m_spooledBytes; }
    /// The same of the pictures alone.
    [[nodiscard]] std::uint64_t spooledPictureBytes() const { return m_spooledPictureBytes; }
    /// Blocks that could not be read back since readyToRecord() or rewind().
    [[nodiscard]] std::uint64_t skippedBlockCount() const { return m_skippedBlocks; }

    /// Blocks the calling thread.
    static void waitSeconds(double seconds);
    /// Puts back everything that was taken since clear(): the same recording can be encoded again.
    void rewind();
    /// Empties both indexes, closes both files and deletes them, with all that is left of the recording.
    void clear();
    /// Empties both indexes and closes the files. The recording stays, and can be opened again.
    void keep();

    /// Whether a recording may start: freeSpaceRequired() bytes are free on the cache folder's file system.
    [[nodiscard]] bool freespaceIsEough() const;
    /// Whether a recording must stop: fewer than limitSpaceForRecord() bytes are free, beside those of the movie.
    [[nodiscard]] bool cacheFull() const;
    /// Bytes that the movie of this recording will take from the cache folder's file system. Any thread.
    void keepFreeForMovie(std::uint64_t bytes) { m_movieBytes = bytes; }
    /// A spool or the journal could not be written; what was pushed is still in memory and can be popped.
    [[nodiscard]] bool writeFailed() const;
    /// Why, as the system's number; 0 where that is not known.
    [[nodiscard]] int writeError() const;
    /// Bytes.
    [[nodiscard]] static std::uint64_t freeSpaceRequired() { return 10'737'418'240; }
    /// For the user; says more than is asked for.
    [[nodiscard]] static QString descriptionOfFreeSpaceRequired();
    /// Bytes.
    [[nodiscard]] static std::uint64_t limitSpaceForRecord() { return 1'073'741'824; }
    /// For tests: asked for the number of free bytes in place of the file system. Before any other thread
    /// uses the manager.
    void setFreeSpaceProbe(std::function<std::uint64_t()> probe) { m_freeSpaceProbe = std::move(probe); }

    /// No more data will come: ends the consumers' waits.
    void setExit(bool exit) { mExit = exit; }
    [[nodiscard]] bool exit() const { return mExit; }
    /// The recorded region in screen coordinates (y up).
    void setRecordRect(const QRectF &rect);
    [[nodiscard]] QRectF recordRect() const;
    /// A rectangle of the display is recorded, not the whole.
    void setIsRecordPart(bool part);
    [[nodiscard]] bool isRecordPart() const { return _isRecordPart; }
    void setMuxerContext(std::shared_ptr<const PKMuxerContext> context);
    [[nodiscard]] std::shared_ptr<const PKMuxerContext> muxerContext() const;
    /// The number of a RecordQuality.
    void setRecordQuality(int quality);

    /// Of the recorded region, truncated to whole pixels.
    [[nodiscard]] std::int64_t recordWidth() const;
    [[nodiscard]] std::int64_t recordHeight() const;
    /// Of the movie: those of the region fitted into 1920 x 1080.
    [[nodiscard]] std::int64_t encodeWidth() const;
    [[nodiscard]] std::int64_t encodeHeight() const;

    [[nodiscard]] static QString cachePath();
    /// Of the recording that is open, or was open last; empty before the first.
    [[nodiscard]] QString tempVideoPathfile() const;
    [[nodiscard]] QString tempAudioPathfile() const;

private:
    /// The oldest block of a spool as an object, which is null for an unreadable block.
    template<typename Object>
    struct Taken {
        bool wasEmpty = false; ///< there was no block
        Object object {};
    };

    [[nodiscard]] std::uint64_t freeBytes() const;
    /// Calls \a take until it gives an object, or finds the spool empty and the exit flag up. \a kind names
    /// the objects in the log.
    template<typename Take>
    [[nodiscard]] auto pop(Take take, QLatin1StringView kind);
    [[nodiscard]] Taken<std::unique_ptr<VNBufferDiscr>> takeRecord();
    [[nodiscard]] Taken<std::optional<PKAudioRecorderData>> takeChunk();

    /// What a journal is told of is in the file by then.
    struct Open {
        std::shared_ptr<RecordingFolder> folder; ///< null where none could be made, or none is open
        std::shared_ptr<Journal> journal;        ///< null where there is no folder
    };
    [[nodiscard]] Open opened() const;
    void setOpened(const Open &open);
    void describe();
    void openLeft(const std::shared_ptr<RecordingFolder> &folder, const JournalContents &contents);
    void closeFolder();
    void journalShape(const VNBufferDiscr &record);
    [[nodiscard]] std::shared_ptr<const CursorShape> shapeOf(const VNBufferDiscr &record);
    void writeSoon();
    void writeAll();
    void syncSoon();
    void sync();

    SpoolStream m_video;
    SpoolStream m_audio;
    PictureSpooler m_pictures;       ///< on the video queue
    PictureUnspooler m_picturesBack; ///< on the video queue
    ChunkSpooler m_chunks;           ///< on the audio queue
    ChunkUnspooler m_chunksBack;     ///< on the audio queue
    /// On the video queue: the pointer shapes of an opened recording, and the one that was read back last with its index.
    std::optional<std::map<std::uint64_t, std::shared_ptr<const CursorShape>>> m_shapesBack;
    std::pair<std::uint64_t, std::shared_ptr<const CursorShape>> m_lastShape;
    std::function<std::uint64_t()> m_freeSpaceProbe;
    QString m_whyNothingIsStored; ///< on the thread that calls readyToRecord()
    std::atomic<std::uint64_t> m_spooledBytes = 0;
    std::atomic<std::uint64_t> m_spooledPictureBytes = 0; ///< among them
    std::atomic<std::uint64_t> m_movieBytes = 0;          ///< still to come, on the spool's file system
    std::atomic<std::uint64_t> m_skippedBlocks = 0;
    std::atomic<bool> mExit = false;
    std::atomic<bool> _isRecordPart = false;
    std::atomic<int> m_recordQuality = 0;
    std::atomic<bool> m_writesSoon = false;
    std::atomic<bool> m_syncsSoon = false;
    std::atomic<bool> m_syncFailed = false;
    mutable std::mutex m_mutex; ///< guards what follows; held for a copy only
    QRectF _recordRect;
    std::shared_ptr<const PKMuxerContext> _muxerContext;
    Open m_open;
    QString m_folderPath; ///< of the recording that is open, or was open last
    QDateTime m_start;
    double m_monotonicStart = 0;
    // Last: their threads end before what they use is destroyed.
    SerialQueue m_syncer { "vornic sync" };
    SerialQueue m_writer { "vornic spool" };
};

} // namespace vornic
