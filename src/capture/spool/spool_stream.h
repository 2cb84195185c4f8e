#pragma once

#include "base/serial_queue.h"
#include "capture/spool/block_index.h"

#include <QByteArray>
#include <QFile>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

namespace vornic {

/// One spool on disk: a file that is the plain concatenation of its blocks, and the index of where each lies.
///
/// Owned by the spool manager. Everything but queue() and writeFailed() runs on queue() only.
class SpoolStream
{
public:
    /// Bytes gathered in memory before they are written.
    static constexpr qsizetype flushLength = 16'777'216;

    explicit SpoolStream(std::string queueLabel);

    [[nodiscard]] SerialQueue &queue() { return m_queue; }
    /// A write to the file failed since open(). What is not in the file stays in memory and can be read.
    [[nodiscard]] bool writeFailed() const { return m_writeFailed; }

    /// Makes an empty file at \a path and starts over there; what is in memory is dropped, the index stays as
    /// it is. Where no file can be made, writes do nothing and reads give no bytes.
    void open(const QString &path);
    /// Empties the index, closes the file and deletes it.
    void clear(const QString &path);
    /// Deletes what is at \a path and makes an empty file there; false (and logged) when that fails.
    static bool createEmptyFile(const QString &path);

    void append(const QByteArray &block, std::int64_t timeStamp, bool compressed);
    /// Writes what is in memory to the file. No append() may follow.
    void end();

    struct Block {
        VNDataBlock entry;
        QByteArray bytes; ///< as stored; short or empty where the file could not be read
    };
    /// The oldest block, taken out of the index; nothing when that is empty.
    [[nodiscard]] std::optional<Block> takeOldest();
    /// Begins again with the first block since clear(); the bytes are all still there.
    void rewind() { m_index.rewind(); }
    [[nodiscard]] const BlockIndex &index() const { return m_index; }

private:
    [[nodiscard]] std::optional<std::uint64_t> writeBufferToFile();
    [[nodiscard]] QByteArray read(const VNDataBlock &entry);

    std::unique_ptr<QFile> m_tmpDataFileHandle;
    QByteArray m_tmpBufWrite;      ///< appended, not yet in the file
    std::uint64_t m_tmpOffset = 0; ///< where the first byte of m_tmpBufWrite belongs in the file
    BlockIndex m_index;
    std::atomic<bool> m_writeFailed = false;
    SerialQueue m_queue; ///< last, so that its thread ends before what it uses is destroyed
};

} // namespace vornic
