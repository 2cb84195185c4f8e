#include "capture/spool/block_index.h"

namespace vornic {

std::optional<VNDataBlock> BlockIndex::takeOldest()
{
    if (mBufferDescris.empty())
        return std::nullopt;
    const VNDataBlock oldest = mBufferDescris.front();
    mBufferDescris.pop_front();
    m_taken.push_back(oldest);
    return oldest;
}

void BlockIndex::rewind()
{
    mBufferDescris.insert(mBufferDescris.begin(), m_taken.begin(), m_taken.end());
    m_taken.clear();
}

void BlockIndex::clear()
{
    mBufferDescris.clear();
    m_taken.clear();
}

std::int64_t BlockIndex::oldestTimeStamp() const
{
    return mBufferDescris.empty() ? 0 : mBufferDescris.front().timeStamp();
}

std::int64_t BlockIndex::newestTimeStamp() const
{
    return mBufferDescris.empty() ? 0 : mBufferDescris.back().timeStamp();
}

} // namespace vornic
