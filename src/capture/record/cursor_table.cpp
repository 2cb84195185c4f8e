#include "capture/record/cursor_table.h"

#include <algorithm>
#include <iterator>

namespace vornic {

CursorTable &CursorTable::shared()
{
    static CursorTable table;
    return table;
}

std::uint64_t CursorTable::indexOf(const std::shared_ptr<const CursorShape> &cursor)
{
    const std::lock_guard lock(m_mutex);
    const auto isEqual = [&](const Entry &entry) { return entry.shape == cursor || *entry.shape == *cursor; };
    const auto found = std::find_if(m_shapes.rbegin(), m_shapes.rend(), isEqual);
    if (found != m_shapes.rend()) {
        std::rotate(m_shapes.rbegin(), found, std::next(found));
        return m_shapes.back().index;
    }
    m_shapes.push_back({ m_count, cursor });
    m_bytes += cursor->picture.sizeInBytes();
    while (m_shapes.size() > maxShapes || (m_bytes > maxBytes && m_shapes.size() > 1))
        forgetOldest();
    return m_count++;
}

void CursorTable::forgetOldest()
{
    m_bytes -= m_shapes.front().shape->picture.sizeInBytes();
    m_shapes.pop_front();
}

std::shared_ptr<const CursorShape> CursorTable::at(std::uint64_t index) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = std::ranges::find(m_shapes, index, &Entry::index);
    return found == m_shapes.end() ? nullptr : found->shape;
}

std::uint64_t CursorTable::count() const
{
    const std::lock_guard lock(m_mutex);
    return m_count;
}

} // namespace vornic
