#include "capture/record/cursor_table.h"

#include <algorithm>

namespace vornic {

CursorTable &CursorTable::shared()
{
    static CursorTable table;
    return table;
}

std::uint64_t CursorTable::indexOf(const std::shared_ptr<const CursorShape> &cursor)
{
    const std::lock_guard lock(m_mutex);
    const auto isEqual = [&](const auto &shape) { return shape == cursor || *shape == *cursor; };
    const auto found = std::ranges::find_if(m_shapes, isEqual);
    const auto index = static_cast<std::uint64_t>(found - m_shapes.begin());
    if (found == m_shapes.end())
        m_shapes.push_back(cursor);
    return index;
}

std::shared_ptr<const CursorShape> CursorTable::at(std::uint64_t index) const
{
    const std::lock_guard lock(m_mutex);
    return index < m_shapes.size() ? m_shapes[index] : nullptr;
}

std::uint64_t CursorTable::count() const
{
    const std::lock_guard lock(m_mutex);
    return m_shapes.size();
}

} // namespace vornic
