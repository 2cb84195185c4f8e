#pragma once

#include "capture/spool/VNDataBlock.h"

#include <deque>
#include <optional>

namespace vornic {

/// Where the blocks of one spool lie, oldest first: first in, first out.
///
/// Owned by the SpoolStream, used on its queue only. Entries are in memory; nothing else knows how they are
/// kept; the journal holds the same for another process.
class BlockIndex
{
public:
    void append(const VNDataBlock &block) { mBufferDescris.push_back(block); }
    [[nodiscard]] std::optional<VNDataBlock> takeOldest();
    /// 0 when empty.
    [[nodiscard]] std::int64_t oldestTimeStamp() const;
    [[nodiscard]] std::int64_t newestTimeStamp() const;
    [[nodiscard]] std::size_t count() const { return mBufferDescris.size(); }
    /// Oldest first.
    [[nodiscard]] const std::deque<VNDataBlock> &blocks() const { return mBufferDescris; }
    /// Puts back all blocks that were taken since clear(), so that the whole spool can be read again.
    void rewind();
    void clear();

private:
    std::deque<VNDataBlock> mBufferDescris;
    std::deque<VNDataBlock> m_taken; ///< since the last clear()
};

} // namespace vornic
