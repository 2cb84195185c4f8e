#pragma once

#include "capture/spool/journal_format.h"

#include <QByteArray>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

namespace vornic {

class SpoolFile;
struct CursorShape;
struct RecordingDescription;

/// The journal of one recording while it is written: what another process needs to read the spools.
///
/// Made with the recording's folder; every function may be called from any thread. What is added waits in memory
/// for write().
class Journal
{
public:
    /// Goes on behind what is in \a file.
    explicit Journal(std::shared_ptr<SpoolFile> file);

    void add(const RecordingDescription &description);
    /// \a index is what frame records call the shape. Only the first one of an index is written.
    void add(std::uint64_t index, const CursorShape &shape);
    /// The shape that was added, read back; null where none was. May wait for a write().
    [[nodiscard]] std::shared_ptr<const CursorShape> pointerShape(std::uint64_t index);
    /// The bytes of \a blocks must be in the spool's file already.
    void add(SpoolKind spool, const std::vector<VNDataBlock> &blocks);
    /// The recording is no longer wanted. On the disk when this returns, so that what is left of it after a loss of power
    /// is known to be nothing. Blocks until then.
    void finish();

    /// Writes what was added; false where the file takes no more: it waits for the next call then.
    bool write();
    [[nodiscard]] bool writeFailed() const { return m_writeFailed; }

private:
    /// One record in the file, or on its way into it.
    struct Place {
        std::uint64_t offset;
        qsizetype length;
    };
    /// Nothing where no journal could hold it.
    std::optional<Place> append(JournalKind kind, QByteArrayView payload);
    [[nodiscard]] QByteArray read(Place place);

    std::shared_ptr<SpoolFile> m_file;
    std::atomic<bool> m_writeFailed = false;
    std::mutex m_addMutex; ///< guards the three below; held for a copy only
    QByteArray m_added;
    std::uint64_t m_addedEnd; ///< where the next record will be
    std::unordered_map<std::uint64_t, Place> m_shapes;
    std::mutex m_writeMutex; ///< guards the two below, held over a write to the file
    QByteArray m_beingWritten;
    std::uint64_t m_end;
};

} // namespace vornic
