#pragma once

#include "base/serial_queue.h"
#include "capture/spool/block_index.h"
#include "capture/spool/journal_format.h"

#include <QByteArray>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vornic {

class Journal;
class SpoolFile;

/// One spool on disk: a file that is the plain concatenation of its blocks, and the index of where each lies.
///
/// Owned by the spool manager. Everything but queue(), writeBehind() and writeFailed() runs on queue() only, which
/// the disk keeps waiting only where it is 16 MiB behind.
class SpoolStream
{
public:
    /// Bytes gathered in memory that are written at once, with the queue waiting.
    static constexpr qsizetype flushLength = 16'777'216;

    SpoolStream(std::string queueLabel, SpoolKind kind);

    [[nodiscard]] SerialQueue &queue() { return m_queue; }
    /// A write to the file failed since open(). What is not in the file stays in memory and can be read.
    [[nodiscard]] bool writeFailed() const { return m_writeFailed; }
    /// Called on the queue when a first block is gathered, so that writeBehind() may be called soon.
    void setGatheringBegins(std::function<void()> tell) { m_gatheringBegins = std::move(tell); }

    /// Starts over in the empty \a file; the \a journal is told of what is written to it. What is in memory is
    /// dropped, the index stays as it is. Where \a file is null, writes do nothing and reads give no bytes.
    void open(std::shared_ptr<SpoolFile> file, std::shared_ptr<Journal> journal);
    /// Reads \a blocks from \a file, which an earlier process left; no append() may follow.
    void openLeft(std::shared_ptr<SpoolFile> file, const std::vector<VNDataBlock> &blocks);
    /// Empties the index and lets go of the file.
    void close();

    void append(const QByteArray &block, std::int64_t timeStamp, bool compressed);
    /// Writes what is in memory to the file. No append() may follow.
    void end();
    /// Writes what is in memory to the file, from any thread but the queue's, which may go on meanwhile; one call at
    /// a time.
    void writeBehind();

    struct Block {
        VNDataBlock entry;
        QByteArray bytes; ///< as stored; empty where they are not what was appended
    };
    /// The oldest block, taken out of the index; nothing when that is empty.
    [[nodiscard]] std::optional<Block> takeOldest();
    /// Begins again with the first block since close(); the bytes are all still there.
    void rewind() { m_index.rewind(); }
    [[nodiscard]] const BlockIndex &index() const { return m_index; }

private:
    /// Blocks one behind the other, on their way into the file.
    struct Batch {
        QByteArray bytes;
        std::uint64_t offset = 0; ///< where the first byte belongs in the file
        std::vector<VNDataBlock> entries;
        std::shared_ptr<SpoolFile> file;
        bool isWritten = false; ///< once isDone
        std::atomic<bool> isDone = false;

        void write();
        [[nodiscard]] std::optional<QByteArray> find(const VNDataBlock &entry) const;
    };

    [[nodiscard]] std::shared_ptr<Batch> takeGathered();
    void settle();
    void writeNow();
    void forgetMemory();
    [[nodiscard]] QByteArray read(const VNDataBlock &entry) const;

    const SpoolKind m_kind;
    std::function<void()> m_gatheringBegins;
    std::shared_ptr<SpoolFile> m_tmpDataFileHandle;
    std::shared_ptr<Journal> m_journal;
    QByteArray m_tmpBufWrite;      ///< appended, not yet on its way into the file
    std::uint64_t m_tmpOffset = 0; ///< where the first byte of m_tmpBufWrite belongs in the file
    std::vector<VNDataBlock> m_gatheredEntries;
    std::shared_ptr<Batch> m_batch; ///< being written by another thread, or written and not yet settled
    BlockIndex m_index;
    std::atomic<bool> m_writeFailed = false;
    SerialQueue m_queue; ///< last, so that its thread ends before what it uses is destroyed
};

} // namespace vornic
