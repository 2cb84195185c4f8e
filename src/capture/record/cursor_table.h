#pragma once

#include "display/display_backend.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace vornic {

/// The pointer shapes seen in this process, in the order of their first use; it only grows.
///
/// The process has one, made at the first use; its functions may be called from any thread.
class CursorTable
{
public:
    [[nodiscard]] static CursorTable &shared();

    /// The index of the first shape equal to \a cursor, which is added when there is none.
    [[nodiscard]] std::uint64_t indexOf(const std::shared_ptr<const CursorShape> &cursor);
    /// Null when \a index is not below the count.
    [[nodiscard]] std::shared_ptr<const CursorShape> at(std::uint64_t index) const;
    [[nodiscard]] std::uint64_t count() const;

private:
    mutable std::mutex m_mutex;
    std::vector<std::shared_ptr<const CursorShape>> m_shapes;
};

} // namespace vornic
